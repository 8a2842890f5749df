#include "TransportLog.h"

namespace Tolvar::Varundo {

Q_LOGGING_CATEGORY(transportLog, "varundo.transport", QtWarningMsg)

} // namespace Tolvar::Varundo
