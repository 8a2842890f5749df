#include <Tolvar/Varundo/CommandParser.h>

#include <Tolvar/Varundo/Protocol.h>

namespace Tolvar::Varundo {

CommandParser::CommandParser(QObject* parent)
    : QObject(parent)
{}

void CommandParser::onCommandMessageReceived(CommandMessage cmdmsg)
{
    switch (cmdmsg.grpId) {
    case Protocol::Execute:
        emit parsedExecuteCommand(cmdmsg);
        break;
    case Protocol::Read:
        emit parsedReadCommand(cmdmsg);
        break;
    case Protocol::Write:
        emit parsedWriteCommand(cmdmsg);
        break;
    default:
        break; // no frame decoder lets another group through
    }
}

} // namespace Tolvar::Varundo
