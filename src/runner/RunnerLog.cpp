#include "RunnerLog.h"

namespace Tolvar::Varundo {

Q_LOGGING_CATEGORY(runnerLog, "varundo.runner", QtWarningMsg)

} // namespace Tolvar::Varundo
