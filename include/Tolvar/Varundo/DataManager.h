#ifndef TOLVAR_VARUNDO_DATAMANAGER_H
#define TOLVAR_VARUNDO_DATAMANAGER_H

#include <Tolvar/Varundo/ColorPair.h>
#include <Tolvar/Varundo/Export.h>

#include <QByteArray>
#include <QObject>
#include <QPoint>
#include <QString>
#include <QStringList>

namespace Tolvar::Varundo {

/// The single store of what the protocol can set and read of the on-screen display: of each element its
/// value, format, visibility, position and colours; the free text lines, the cursor, the text codec.
///
/// A setter announces real changes only, synchronously, after the new value has been stored; what deviates is
/// said at the setter. A signal that concerns one element carries that element's name first, an ElementParam
/// NAME_* constant of the host, so that a listener needs no table of its own. Format signals carry none, with
/// one deliberate exception.
///
/// A listener may set the value anew, or destroy the Runner and the model with it: what the others are told
/// is a copy. Removing a profile breaks every connection from this object, a host's own too.
///
/// Positions are columns (x) and rows (y) of the overlay's text grid. Values are kept as the devices report
/// them, unscaled. Nothing is persisted, and nothing is validated: what comes off the wire is stored as it
/// is.
///
/// Lives in the host's event-loop thread; owned by the Runner.
class VARUNDO_EXPORT DataManager : public QObject
{
    Q_OBJECT

public:
    /// The encoding of text on the wire. Any other number is kept, and behaves like Latin9; hence the fixed
    /// underlying type.
    enum TextCodec : quint8 {
        Latin9 = 0, ///< ISO-8859-15
        Utf8 = 1,
        Utf16 = 2, ///< with a byte-order mark when encoded; without one, decoded in the platform's byte order
    };

    explicit DataManager(QObject* parent = nullptr);

    // Meter counter 1: the section distance
    int meterCounter1Format() const { return m_meterCounter1.format; }
    bool meterCounter1Visible() const { return m_meterCounter1.visible; }
    QPoint meterCounter1Position() const { return m_meterCounter1.position; }
    ColorPair meterCounter1ColorPair() const { return m_meterCounter1.colorPair; }

    // Meter counter 2: the SAT distance
    int meterCounter2Format() const { return m_meterCounter2.format; }
    bool meterCounter2Visible() const { return m_meterCounter2.visible; }
    QPoint meterCounter2Position() const { return m_meterCounter2.position; }
    ColorPair meterCounter2ColorPair() const { return m_meterCounter2.colorPair; }

    // Meter counter 3: the total distance
    int meterCounter3Format() const { return m_meterCounter3.format; }
    bool meterCounter3Visible() const { return m_meterCounter3.visible; }
    QPoint meterCounter3Position() const { return m_meterCounter3.position; }
    ColorPair meterCounter3ColorPair() const { return m_meterCounter3.colorPair; }

    // Date
    int dateFormat() const { return m_date.format; }
    bool dateVisible() const { return m_date.visible; }
    QPoint datePosition() const { return m_date.position; }
    ColorPair dateColorPair() const { return m_date.colorPair; }

    // Time
    int timeFormat() const { return m_time.format; }
    bool timeVisible() const { return m_time.visible; }
    QPoint timePosition() const { return m_time.position; }
    ColorPair timeColorPair() const { return m_time.colorPair; }

    // Video counter
    int videoCounterHours() const { return m_videoCounter.hours; }
    int videoCounterMinutes() const { return m_videoCounter.minutes; }
    int videoCounterSeconds() const { return m_videoCounter.seconds; }
    int videoCounterFrames() const { return m_videoCounter.frames; }
    int videoCounterFormat() const { return m_videoCounter.format; }
    bool videoCounterVisible() const { return m_videoCounter.visible; }
    QPoint videoCounterPosition() const { return m_videoCounter.position; }
    ColorPair videoCounterColorPair() const { return m_videoCounter.colorPair; }

    // Status line 1
    QString statusLine1Text() const { return m_statusLine1.text; }
    ColorPair statusLine1ColorPair() const { return m_statusLine1.colorPair; }
    bool statusLine1Visible() const { return m_statusLine1.visible; }

    // Status line 2
    QString statusLine2Text() const { return m_statusLine2.text; }
    ColorPair statusLine2ColorPair() const { return m_statusLine2.colorPair; }
    bool statusLine2Visible() const { return m_statusLine2.visible; }

    // Status line 3
    QString statusLine3Text() const { return m_statusLine3.text; }
    ColorPair statusLine3ColorPair() const { return m_statusLine3.colorPair; }
    bool statusLine3Visible() const { return m_statusLine3.visible; }

    // Status line 4
    QString statusLine4Text() const { return m_statusLine4.text; }
    ColorPair statusLine4ColorPair() const { return m_statusLine4.colorPair; }
    bool statusLine4Visible() const { return m_statusLine4.visible; }

    // Crawler temperature
    float crawlerTemperature() const { return m_crawlerTemperature.value; }
    int crawlerTemperatureFormat() const { return m_crawlerTemperature.format; }
    bool crawlerTemperatureVisible() const { return m_crawlerTemperature.visible; }
    QPoint crawlerTemperaturePosition() const { return m_crawlerTemperature.position; }
    ColorPair crawlerTemperatureColorPair() const { return m_crawlerTemperature.colorPair; }

    // Crawler pressure
    float crawlerPressure() const { return m_crawlerPressure.value; }
    int crawlerPressureFormat() const { return m_crawlerPressure.format; }
    bool crawlerPressureVisible() const { return m_crawlerPressure.visible; }
    QPoint crawlerPressurePosition() const { return m_crawlerPressure.position; }
    ColorPair crawlerPressureColorPair() const { return m_crawlerPressure.colorPair; }

    // Crawler roll
    float crawlerRollValue() const { return m_crawlerRoll.value; }
    int crawlerRollFormat() const { return m_crawlerRoll.format; }
    bool crawlerRollVisible() const { return m_crawlerRoll.visible; }
    QPoint crawlerRollPosition() const { return m_crawlerRoll.position; }
    ColorPair crawlerRollColorPair() const { return m_crawlerRoll.colorPair; }

    // Camera tilt: two getters are named tiltPosition..., everything else tilt...
    float tiltPositionValue() const { return m_tilt.value; }
    int tiltPositionFormat() const { return m_tilt.format; }
    bool tiltVisible() const { return m_tilt.visible; }
    QPoint tiltPosition() const { return m_tilt.position; }
    ColorPair tiltColorPair() const { return m_tilt.colorPair; }

    // External temperature: its format change alone carries the element name; the unit on the screen hangs on
    // it
    float extTemperatureValue() const { return m_extTemperature.value; }
    int extTemperatureFormat() const { return m_extTemperature.format; }
    bool extTemperatureVisible() const { return m_extTemperature.visible; }
    QPoint extTemperaturePosition() const { return m_extTemperature.position; }
    ColorPair extTemperatureColorPair() const { return m_extTemperature.colorPair; }

    // Camera temperature
    float cameraTemperatureValue() const { return m_cameraTemperature.value; }
    int cameraTemperatureFormat() const { return m_cameraTemperature.format; }
    bool cameraTemperatureVisible() const { return m_cameraTemperature.visible; }
    QPoint cameraTemperaturePosition() const { return m_cameraTemperature.position; }
    ColorPair cameraTemperatureColorPair() const { return m_cameraTemperature.colorPair; }

    // Camera pressure
    float pressureValue() const { return m_pressure.value; }
    int pressureFormat() const { return m_pressure.format; }
    bool pressureVisible() const { return m_pressure.visible; }
    QPoint pressurePosition() const { return m_pressure.position; }
    ColorPair pressureColorPair() const { return m_pressure.colorPair; }

    // Inclination: the crawler's pitch
    float inclinationValue() const { return m_inclination.value; }
    int inclinationFormat() const { return m_inclination.format; }
    bool inclinationVisible() const { return m_inclination.visible; }
    QPoint inclinationPosition() const { return m_inclination.position; }
    ColorPair inclinationColorPair() const { return m_inclination.colorPair; }

    // Camera pan
    float panPositionValue() const { return m_pan.value; }
    int panPositionFormat() const { return m_pan.format; }
    bool panVisible() const { return m_pan.visible; }
    QPoint panPosition() const { return m_pan.position; }
    ColorPair panPositionColorPair() const { return m_pan.colorPair; }

    // Cable speed
    float cableSpeedValue() const { return m_cableSpeed.value; }
    int cableSpeedFormat() const { return m_cableSpeed.format; }
    bool cableSpeedVisible() const { return m_cableSpeed.visible; }
    QPoint cableSpeedPosition() const { return m_cableSpeed.position; }
    ColorPair cableSpeedColorPair() const { return m_cableSpeed.colorPair; }

    // Free text, cursor, identification, codec
    QStringList lineText() const { return m_lineText; }
    ColorPair lineColorPair() const { return m_lineColorPair; } ///< white on blue until it is set
    QString softwareID() const { return m_softwareID; }
    QPoint cursorPosition() const { return m_cursorPosition; }
    TextCodec textCodec() const { return m_textCodec; }

public slots:
    // Meter counter 1: the section distance
    void setMeterCounter1Format(int format);
    void setMeterCounter1Visible(bool visible);
    void setMeterCounter1Position(QPoint const& position);
    void setMeterCounter1ColorPair(ColorPair const& colorPair);

    // Meter counter 2: the SAT distance
    void setMeterCounter2Format(int format);
    void setMeterCounter2Visible(bool visible);
    void setMeterCounter2Position(QPoint const& position);
    void setMeterCounter2ColorPair(ColorPair const& colorPair);

    // Meter counter 3: the total distance
    void setMeterCounter3Format(int format);
    void setMeterCounter3Visible(bool visible);
    void setMeterCounter3Position(QPoint const& position);
    void setMeterCounter3ColorPair(ColorPair const& colorPair);

    // Date
    void setDateFormat(int format);
    void setDateVisible(bool visible);
    void setDatePosition(QPoint const& position);
    void setDateColorPair(ColorPair const& colorPair);

    // Time
    void setTimeFormat(int format);
    void setTimeVisible(bool visible);
    void setTimePosition(QPoint const& position);
    void setTimeColorPair(ColorPair const& colorPair);

    // Video counter
    void setVideoCounterHours(int hours);
    void setVideoCounterMinutes(int minutes);
    void setVideoCounterSeconds(int seconds);
    void setVideoCounterFrames(int frames);
    void setVideoCounterFormat(int format);
    void setVideoCounterVisible(bool visible);
    void setVideoCounterPosition(QPoint const& position);
    void setVideoCounterColorPair(ColorPair const& colorPair);

    // Status line 1
    void setStatusLine1Text(QString text);
    void setStatusLine1ColorPair(ColorPair const& colorPair);
    void setStatusLine1Visible(bool visible);

    // Status line 2
    void setStatusLine2Text(QString text);
    void setStatusLine2ColorPair(ColorPair const& colorPair);
    void setStatusLine2Visible(bool visible);

    // Status line 3
    void setStatusLine3Text(QString text);
    void setStatusLine3ColorPair(ColorPair const& colorPair);
    void setStatusLine3Visible(bool visible);

    // Status line 4
    void setStatusLine4Text(QString text);
    void setStatusLine4ColorPair(ColorPair const& colorPair);
    void setStatusLine4Visible(bool visible);

    // Crawler temperature
    void setCrawlerTemperature(float value);
    void setCrawlerTemperatureFormat(int format);
    void setCrawlerTemperatureVisible(bool visible);
    void setCrawlerTemperaturePosition(QPoint const& position);
    void setCrawlerTemperatureColorPair(ColorPair const& colorPair);

    // Crawler pressure
    void setCrawlerPressure(float value);
    void setCrawlerPressureFormat(int format);
    void setCrawlerPressureVisible(bool visible);
    void setCrawlerPressurePosition(QPoint const& position);
    void setCrawlerPressureColorPair(ColorPair const& colorPair);

    // Crawler roll
    void setCrawlerRollValue(float value);
    void setCrawlerRollFormat(int format);
    void setCrawlerRollVisible(bool visible);
    void setCrawlerRollPosition(QPoint const& position);
    void setCrawlerRollColorPair(ColorPair const& colorPair);

    // Camera tilt: two getters are named tiltPosition..., everything else tilt...
    void setTiltValue(float value);
    void setTiltFormat(int format);
    void setTiltVisible(bool visible);
    void setTiltPosition(QPoint const& position);
    void setTiltColorPair(ColorPair const& colorPair);

    // External temperature: its format change alone carries the element name; the unit on the screen hangs on
    // it
    void setExtTemperatureValue(float value);
    void setExtTemperatureFormat(int format);
    void setExtTemperatureVisible(bool visible);
    void setExtTemperaturePosition(QPoint const& position);
    void setExtTemperatureColorPair(ColorPair const& colorPair);

    // Camera temperature
    void setCameraTemperatureValue(float value);
    void setCameraTemperatureFormat(int format);
    void setCameraTemperatureVisible(bool visible);
    void setCameraTemperaturePosition(QPoint const& position);
    void setCameraTemperatureColorPair(ColorPair const& colorPair);

    // Camera pressure
    void setPressureValue(float value);
    void setPressureFormat(int format);
    void setPressureVisible(bool visible);
    void setPressurePosition(QPoint const& position);
    void setPressureColorPair(ColorPair const& colorPair);

    // Inclination: the crawler's pitch
    void setInclinationValue(float value);
    void setInclinationFormat(int format);
    void setInclinationVisible(bool visible);
    void setInclinationPosition(QPoint const& position);
    void setInclinationColorPair(ColorPair const& colorPair);

    // Camera pan
    void setPanPositionValue(float value);
    void setPanPositionFormat(int format);
    void setPanVisible(bool visible);
    void setPanPosition(QPoint const& position);
    void setPanPositionColorPair(ColorPair const& colorPair);

    // Cable speed
    void setCableSpeedValue(float value);
    void setCableSpeedFormat(int format);
    void setCableSpeedVisible(bool visible);
    void setCableSpeedPosition(QPoint const& position);
    void setCableSpeedColorPair(ColorPair const& colorPair);

    // Free text, cursor, identification, codec
    /// The duration (seconds) is announced but never kept, so a repeated list is silent with duration 0 only.
    void setLineText(QStringList lineText, int duration);
    void setLineColorPair(ColorPair colorPair); ///< announces nothing
    void setSoftwareID(QString softwareID);
    void setCursorPosition(int x, int y); ///< announces always, even an unchanged position
    void setTextCodec(TextCodec codec);   ///< announces nothing

    /// Decodes protocol bytes under the current text codec. What cannot be decoded becomes replacement
    /// characters.
    QString convertTextToCodec(QByteArray text) const;
    QString convertTextToCodec(const char* bytes, int size) const; ///< the same, for a part of an array
    /// Encodes text into protocol bytes under the current text codec, without length or terminator.
    QByteArray convertByteArrayFromText(QString text) const;

signals:
    // Meter counter 1: the section distance
    void meterCounter1FormatChanged(int format);
    void meterCounter1VisibleChanged(QString const& osdElementName, bool visible);
    void meterCounter1PositionChanged(QString const& osdElementName, QPoint const& position);
    void meterCounter1ColorPairChanged(QString const& osdElementName,
                                       Tolvar::Varundo::ColorPair const& colorPair);

    // Meter counter 2: the SAT distance
    void meterCounter2FormatChanged(int format);
    void meterCounter2VisibleChanged(QString const& osdElementName, bool visible);
    void meterCounter2PositionChanged(QString const& osdElementName, QPoint const& position);
    void meterCounter2ColorPairChanged(QString const& osdElementName,
                                       Tolvar::Varundo::ColorPair const& colorPair);

    // Meter counter 3: the total distance
    void meterCounter3FormatChanged(int format);
    void meterCounter3VisibleChanged(QString const& osdElementName, bool visible);
    void meterCounter3PositionChanged(QString const& osdElementName, QPoint const& position);
    void meterCounter3ColorPairChanged(QString const& osdElementName,
                                       Tolvar::Varundo::ColorPair const& colorPair);

    // Date
    void dateFormatChanged(int format);
    void dateVisibleChanged(QString const& osdElementName, bool visible);
    void datePositionChanged(QString const& osdElementName, QPoint const& position);
    void dateColorPairChanged(QString const& osdElementName, Tolvar::Varundo::ColorPair const& colorPair);

    // Time
    void timeFormatChanged(int format);
    void timeVisibleChanged(QString const& osdElementName, bool visible);
    void timePositionChanged(QString const& osdElementName, QPoint const& position);
    void timeColorPairChanged(QString const& osdElementName, Tolvar::Varundo::ColorPair const& colorPair);

    // Video counter
    void videoCounterHoursChanged(int hours);
    void videoCounterMinutesChanged(int minutes);
    void videoCounterSecondsChanged(int seconds);
    void videoCounterFramesChanged(int frames);
    void videoCounterFormatChanged(int format);
    void videoCounterVisibleChanged(QString const& osdElementName, bool visible);
    void videoCounterPositionChanged(QString const& osdElementName, QPoint const& position);
    void videoCounterColorPairChanged(QString const& osdElementName,
                                      Tolvar::Varundo::ColorPair const& colorPair);

    // Status line 1
    void statusLine1TextChanged(QString const& osdElementName, QString const& text);
    void statusLine1ColorPairChanged(QString const& osdElementName,
                                     Tolvar::Varundo::ColorPair const& colorPair);
    void statusLine1VisibleChanged(QString const& osdElementName, bool visible);

    // Status line 2
    void statusLine2TextChanged(QString const& osdElementName, QString const& text);
    void statusLine2ColorPairChanged(QString const& osdElementName,
                                     Tolvar::Varundo::ColorPair const& colorPair);
    void statusLine2VisibleChanged(QString const& osdElementName, bool visible);

    // Status line 3
    void statusLine3TextChanged(QString const& osdElementName, QString const& text);
    void statusLine3ColorPairChanged(QString const& osdElementName,
                                     Tolvar::Varundo::ColorPair const& colorPair);
    void statusLine3VisibleChanged(QString const& osdElementName, bool visible);

    // Status line 4
    void statusLine4TextChanged(QString const& osdElementName, QString const& text);
    void statusLine4ColorPairChanged(QString const& osdElementName,
                                     Tolvar::Varundo::ColorPair const& colorPair);
    void statusLine4VisibleChanged(QString const& osdElementName, bool visible);

    // Crawler temperature
    void crawlerTemperatureChanged(float value);
    void crawlerTemperatureFormatChanged(int format);
    void crawlerTemperatureVisibleChanged(QString const& osdElementName, bool visible);
    void crawlerTemperaturePositionChanged(QString const& osdElementName, QPoint const& position);
    void crawlerTemperatureColorPairChanged(QString const& osdElementName,
                                            Tolvar::Varundo::ColorPair const& colorPair);

    // Crawler pressure
    void crawlerPressureChanged(float value);
    void crawlerPressureFormatChanged(int format);
    void crawlerPressureVisibleChanged(QString const& osdElementName, bool visible);
    void crawlerPressurePositionChanged(QString const& osdElementName, QPoint const& position);
    void crawlerPressureColorPairChanged(QString const& osdElementName,
                                         Tolvar::Varundo::ColorPair const& colorPair);

    // Crawler roll
    void crawlerRollValueChanged(float value);
    void crawlerRollFormatChanged(int format);
    void crawlerRollVisibleChanged(QString const& osdElementName, bool visible);
    void crawlerRollPositionChanged(QString const& osdElementName, QPoint const& position);
    void crawlerRollColorPairChanged(QString const& osdElementName,
                                     Tolvar::Varundo::ColorPair const& colorPair);

    // Camera tilt: two getters are named tiltPosition..., everything else tilt...
    void tiltValueChanged(float value);
    void tiltFormatChanged(int format);
    void tiltVisibleChanged(QString const& osdElementName, bool visible);
    void tiltPositionChanged(QString const& osdElementName, QPoint const& position);
    void tiltColorPairChanged(QString const& osdElementName, Tolvar::Varundo::ColorPair const& colorPair);

    // External temperature: its format change alone carries the element name; the unit on the screen hangs on
    // it
    void extTemperatureValueChanged(float value);
    void extTemperatureFormatChanged(QString const& osdElementName, int format);
    void extTemperatureVisibleChanged(QString const& osdElementName, bool visible);
    void extTemperaturePositionChanged(QString const& osdElementName, QPoint const& position);
    void extTemperatureColorPairChanged(QString const& osdElementName,
                                        Tolvar::Varundo::ColorPair const& colorPair);

    // Camera temperature
    void cameraTemperatureValueChanged(float value);
    void cameraTemperatureFormatChanged(int format);
    void cameraTemperatureVisibleChanged(QString const& osdElementName, bool visible);
    void cameraTemperaturePositionChanged(QString const& osdElementName, QPoint const& position);
    void cameraTemperatureColorPairChanged(QString const& osdElementName,
                                           Tolvar::Varundo::ColorPair const& colorPair);

    // Camera pressure
    void pressureValueChanged(float value);
    void pressureFormatChanged(int format);
    void pressureVisibleChanged(QString const& osdElementName, bool visible);
    void pressurePositionChanged(QString const& osdElementName, QPoint const& position);
    void pressureColorPairChanged(QString const& osdElementName, Tolvar::Varundo::ColorPair const& colorPair);

    // Inclination: the crawler's pitch
    void inclinationValueChanged(float value);
    void inclinationFormatChanged(int format);
    void inclinationVisibleChanged(QString const& osdElementName, bool visible);
    void inclinationPositionChanged(QString const& osdElementName, QPoint const& position);
    void inclinationColorPairChanged(QString const& osdElementName,
                                     Tolvar::Varundo::ColorPair const& colorPair);

    // Camera pan
    void panPositionVvalueChanged(float value); ///< the doubled v is part of the name
    void panPositionFormatChanged(int format);
    void panPositionVisibleChanged(QString const& osdElementName, bool visible);
    void panPositionChanged(QString const& osdElementName, QPoint const& position);
    void panPositionColorPairChanged(QString const& osdElementName,
                                     Tolvar::Varundo::ColorPair const& colorPair);

    // Cable speed
    void cableSpeedValueChanged(float value);
    void cableSpeedFormatChanged(int format);
    void cableSpeedVisibleChanged(QString const& osdElementName, bool visible);
    void cableSpeedPositionChanged(QString const& osdElementName, QPoint const& position);
    void cableSpeedColorPairChanged(QString const& osdElementName,
                                    Tolvar::Varundo::ColorPair const& colorPair);

    // Free text, cursor, identification
    void lineTextChanged(QString const& osdElementName, QStringList const& lineText, int duration);
    void softwareIDChanged(QString softwareID);
    void cursorPositionChanged(QPoint position);

private:
    struct Element
    {
        QString name; // the host's element name, which its change signals carry
        int format = 0;
        bool visible = false;
        QPoint position;
        ColorPair colorPair;
    };
    struct MeasuredElement : Element
    {
        float value = 0.0F;
    };
    struct VideoCounter : Element
    {
        int hours = 0;
        int minutes = 0;
        int seconds = 0;
        int frames = 0;
    };
    struct StatusLine
    {
        QString name;
        QString text;
        ColorPair colorPair;
        bool visible = false;
    };

    Element m_meterCounter1;
    Element m_meterCounter2;
    Element m_meterCounter3;
    Element m_date;
    Element m_time;
    VideoCounter m_videoCounter;
    StatusLine m_statusLine1;
    StatusLine m_statusLine2;
    StatusLine m_statusLine3;
    StatusLine m_statusLine4;
    MeasuredElement m_crawlerTemperature;
    MeasuredElement m_crawlerPressure;
    MeasuredElement m_crawlerRoll;
    MeasuredElement m_tilt;
    MeasuredElement m_extTemperature;
    MeasuredElement m_cameraTemperature;
    MeasuredElement m_pressure;
    MeasuredElement m_inclination;
    MeasuredElement m_pan;
    MeasuredElement m_cableSpeed;
    QStringList m_lineText;
    int m_lineTextDuration = 0; // compared with, never written; see setLineText()
    ColorPair m_lineColorPair;
    QString m_softwareID;
    QPoint m_cursorPosition;
    TextCodec m_textCodec = Latin9;
};

} // namespace Tolvar::Varundo

#endif
