#include "ParserLog.h"

namespace Tolvar::Varundo {

Q_LOGGING_CATEGORY(parserLog, "varundo.parser", QtWarningMsg)

void logUnknownCommand(const char* group, quint8 id)
{
    qCDebug(parserLog, "unknown %s command 0x%02X dropped", group, id);
}

} // namespace Tolvar::Varundo
