#ifndef TOLVAR_VARUNDO_READCOMMANDRESPONDER_H
#define TOLVAR_VARUNDO_READCOMMANDRESPONDER_H

#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Export.h>

#include <QByteArray>
#include <QObject>
#include <QPoint>

class ITolvarReel;

namespace Tolvar::Varundo {

class DataManager;

/// Answers the commands of the read group from the data model and, for a few, from the unit's devices.
///
/// Each slot emits commandReady() exactly once, before it returns, with the group "read" and the command of
/// the request; onRead3DMeasurementValues() alone stays silent when the unit has no camera position sensor. A
/// missing reel or camera is read as zero, with one warning.
///
/// Lives in the host's event-loop thread; owned by the Runner.
class VARUNDO_EXPORT ReadCommandResponder : public QObject
{
    Q_OBJECT

public:
    /// The data model is not owned and must outlive the responder.
    explicit ReadCommandResponder(DataManager* dataManager, QObject* parent = nullptr);

    /// A record with these contents, its length taken from the payload (the low 16 bits of its size).
    CommandMessage createCommand(char cmdId, QByteArray data, char grpId);

public slots:
    void onReadTextCodec();
    void onReadMeterCounter1Value();
    void onReadMeterCounter1State();
    void onReadMeterCounter2Value();
    void onReadMeterCounter2State();
    void onReadMeterCounter3Value();
    void onReadMeterCounter3State();
    void onReadDateValue();
    void onReadDateState();
    void onReadTimeValue();
    void onReadTimeState();
    void onReadVideoCounterValue();
    void onReadVideoCounterState();
    void onReadStatusLineText(int line);  ///< lines 1 to 4; any other answers the number alone
    void onReadStatusLineState(int line); ///< lines 1 to 4; any other answers zeroes after the number
    void onReadLine(int line);            ///< free text line, counted from 0
    void onReadCrawlerTemperatureValue();
    void onReadCrawlerTemperatureState();
    void onReadCrawlerPressureValue();
    void onReadCrawlerPressureState();
    void onReadCrawlerRollValue();
    void onReadCrawlerRollState();
    void onReadCableSpeedValue();
    void onReadCableSpeedState();
    void onRead3DMeasurementValues();
    void onReadPanPositionValue();
    void onReadPanPositionState();
    void onReadTiltPositionValue();
    void onReadTiltPositionState();
    void onReadExtTemperatureValue();
    void onReadCameraTemperatureValue();
    void onReadCameraTemperatureState();
    void onReadExtTemperatureState();
    void onReadPressureValue();
    void onReadPressureState();
    void onReadInclinationValue();
    void onReadInclinationState();
    void onReadLaserCalibrationValue(unsigned char index); ///< 1 or 2; any other answers the index alone
    void onReadSoftwareID();

signals:
    void commandReady(CommandMessage message);

private:
    void answer(quint8 cmdId, const QByteArray& payload);
    void answerState(quint8 cmdId, int format, bool visible, const QPoint& position);
    void answerValue(quint8 cmdId, float value);
    void answerDistance(quint8 cmdId, float (ITolvarReel::*distance)() const);

    DataManager* m_dataManager;
};

} // namespace Tolvar::Varundo

#endif
