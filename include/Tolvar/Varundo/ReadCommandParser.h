#ifndef TOLVAR_VARUNDO_READCOMMANDPARSER_H
#define TOLVAR_VARUNDO_READCOMMANDPARSER_H

#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Export.h>

#include <QObject>

namespace Tolvar::Varundo {

class ReadCommandResponder;

/// Starts the responder slot that answers a command of the read group. The answer has been emitted when
/// parseCommandMessage() returns.
///
/// Lives in the host's event-loop thread; owned by the Runner. Keeps nothing between two commands, and drops
/// a command that it does not know: that one gets no answer.
class VARUNDO_EXPORT ReadCommandParser : public QObject
{
    Q_OBJECT

public:
    /// The responder is not owned and must outlive the parser.
    explicit ReadCommandParser(ReadCommandResponder* responder, QObject* parent = nullptr);

public slots:
    void parseCommandMessage(CommandMessage cmdmsg);

private:
    ReadCommandResponder* m_responder;
};

} // namespace Tolvar::Varundo

#endif
