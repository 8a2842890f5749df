#ifndef TOLVAR_VARUNDO_COMMANDPARSER_H
#define TOLVAR_VARUNDO_COMMANDPARSER_H

#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Export.h>

#include <QObject>

namespace Tolvar::Varundo {

/// The switch between the transports and the three group parsers: looks at a record's group byte, and passes
/// the record on unchanged. The group parsers are no subclasses of this class.
///
/// Lives in the host's event-loop thread; owned by the Runner.
class VARUNDO_EXPORT CommandParser : public QObject
{
    Q_OBJECT

public:
    explicit CommandParser(QObject* parent = nullptr);

public slots:
    /// Emits one of the three signals; a record of any other group is dropped.
    void onCommandMessageReceived(CommandMessage cmdmsg);

signals:
    void parsedExecuteCommand(CommandMessage cmdmsg);
    void parsedReadCommand(CommandMessage cmdmsg);
    void parsedWriteCommand(CommandMessage cmdmsg);
};

} // namespace Tolvar::Varundo

#endif
