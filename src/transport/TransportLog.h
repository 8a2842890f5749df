#ifndef TOLVAR_VARUNDO_TRANSPORT_TRANSPORTLOG_H
#define TOLVAR_VARUNDO_TRANSPORT_TRANSPORTLOG_H

#include <QLoggingCategory>

namespace Tolvar::Varundo {

Q_DECLARE_LOGGING_CATEGORY(transportLog)

} // namespace Tolvar::Varundo

#endif
