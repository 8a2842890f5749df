#ifndef TOLVAR_VARUNDO_COMMANDMESSAGE_H
#define TOLVAR_VARUNDO_COMMANDMESSAGE_H

#include <QByteArray>
#include <QtGlobal>

namespace Tolvar::Varundo {

/// One message of the ZEL interface: a plain value, copied freely, passed by value in signals.
///
/// It never crosses a thread, so it is deliberately not declared as a meta type.
struct CommandMessage
{
    quint8 cmdId = 0;   ///< command number within its group; 0 is never accepted from the wire
    quint8 grpId = 0;   ///< command group, see Protocol::Group
    quint16 length = 0; ///< payload length in bytes, as it is sent; the decoder keeps it equal to data.size()
    QByteArray data;    ///< the payload
};

} // namespace Tolvar::Varundo

#endif
