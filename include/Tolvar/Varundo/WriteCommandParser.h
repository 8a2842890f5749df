#ifndef TOLVAR_VARUNDO_WRITECOMMANDPARSER_H
#define TOLVAR_VARUNDO_WRITECOMMANDPARSER_H

#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Export.h>

#include <QDate>
#include <QObject>
#include <QString>
#include <QTime>

namespace Tolvar::Varundo {

class DataManager;

/// Carries out the commands of the write group: sets a property of an element in the data model, or decodes a
/// value and announces it for the Runner and the host.
///
/// Lives in the host's event-loop thread; owned by the Runner. Keeps nothing between two commands, never
/// replies, and drops a command that it does not know. Missing payload bytes count as 0. Values are not
/// checked: an impossible date or time is announced as an invalid one.
class VARUNDO_EXPORT WriteCommandParser : public QObject
{
    Q_OBJECT

public:
    /// The data model is not owned and must outlive the parser.
    explicit WriteCommandParser(DataManager* dataManager, QObject* parent = nullptr);

public slots:
    void parseCommandMessage(CommandMessage cmdmsg);

signals:
    void writeDateValue(QDate date);
    void writeTimeValue(QTime time);
    /// Declared only: the cursor command goes to the data model directly.
    void writeCursorPosition(int xpos, int ypos);
    void writeLine(int line, QString text);
    void writeTextOnCursorPosition(QString text);
    /// Declared only: the format command goes to the data model directly.
    void writeInclinationFormat(int format);
    void setDistanceCounterSection(float distance); ///< metres
    void setDistanceCounterTotal(float distance);   ///< metres
    void setDistanceCounterSat(float distance);     ///< metres
    void writeVideoCounter(int hours, int minutes, int seconds);
    void writeMeasurement3DPosition(double x, double y, double z);
    void writeMeasurement3DOrientation(float xyangle, float zangle);

private:
    DataManager* m_dataManager;
};

} // namespace Tolvar::Varundo

#endif
