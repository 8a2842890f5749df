#ifndef TOLVAR_VARUNDO_PARSER_PARSERLOG_H
#define TOLVAR_VARUNDO_PARSER_PARSERLOG_H

#include <QLoggingCategory>

namespace Tolvar::Varundo {

Q_DECLARE_LOGGING_CATEGORY(parserLog)

/// Tells, at debug level, of a command that is dropped because its group does not know it.
void logUnknownCommand(const char* group, quint8 id);

} // namespace Tolvar::Varundo

#endif
