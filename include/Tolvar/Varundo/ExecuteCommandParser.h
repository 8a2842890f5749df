#ifndef TOLVAR_VARUNDO_EXECUTECOMMANDPARSER_H
#define TOLVAR_VARUNDO_EXECUTECOMMANDPARSER_H

#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Export.h>

#include <QObject>

namespace Tolvar::Varundo {

class DataManager;

/// Carries out the commands of the execute group: shows, hides and toggles elements in the data model, and
/// announces the actions that are the Runner's or the host's. The payload of an execute command is never
/// read.
///
/// Lives in the host's event-loop thread; owned by the Runner. Keeps nothing between two commands, never
/// replies, and drops a command that it does not know.
class VARUNDO_EXPORT ExecuteCommandParser : public QObject
{
    Q_OBJECT

public:
    /// The data model is not owned and must outlive the parser.
    explicit ExecuteCommandParser(DataManager* dataManager, QObject* parent = nullptr);

public slots:
    void parseCommandMessage(CommandMessage cmdmsg);

signals:
    void executeScreenOverlayOn();
    void executeScreenOverlayOff();
    void executeScreenOverlayClearEdit();
    void execute3dMeasurementMainPipeActivate();
    void execute3dMeasurementLateralActivate();
    void execute3dMeasurementDeactivate();

private:
    DataManager* m_dataManager;
};

} // namespace Tolvar::Varundo

#endif
