#ifndef TOLVAR_VARUNDO_RUNNER_RUNNERLOG_H
#define TOLVAR_VARUNDO_RUNNER_RUNNERLOG_H

#include <QLoggingCategory>

namespace Tolvar::Varundo {

Q_DECLARE_LOGGING_CATEGORY(runnerLog)

} // namespace Tolvar::Varundo

#endif
