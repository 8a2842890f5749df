#ifndef TOLVAR_VARUNDO_RUNNER_H
#define TOLVAR_VARUNDO_RUNNER_H

#include <Tolvar/Varundo/ColorPair.h>
#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Export.h>

#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVector>

namespace Mavril::VideoOverlay {
class CVideoOverlayElement;
class CVideoOverlayManager;
class CVideoOverlayText;
} // namespace Mavril::VideoOverlay

namespace Tolvar::VideoOverlay {
class CVideoOverlayControlBackend;
} // namespace Tolvar::VideoOverlay

namespace Tolvar::Varundo {

class CommandParser;
class DataManager;
class ExecuteCommandParser;
class ReadCommandParser;
class ReadCommandResponder;
class SerialAdaptor;
class TcpServer;
class WriteCommandParser;
class ZelVideoOverlayElementAccessor;

/// The library's entry object. The host makes exactly one, in its event-loop thread, and keeps it;
/// construction does everything, there is nothing to start.
///
/// Both transports exist side by side all the time. The selected interface only decides whose messages and
/// typed characters are acted upon, and which transport carries the answers. The choice is kept in the host's
/// settings.
///
/// Needs a QGuiApplication (text is measured). Not thread-safe: everything is called and every signal is
/// emitted in the thread that made it.
///
/// From within a slot of one of these signals, or a call to one of its objects, a host may turn an event
/// loop, change the overlay, load a profile, switch the interface, or destroy the Runner. While the call is
/// made for a frame, the frames behind it wait until it returns; docs/integration.md tells the rest.
class VARUNDO_EXPORT Runner : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int baudrate READ baudrate WRITE setBaudrate NOTIFY baudrateChanged)
    Q_PROPERTY(int zelTcpPort READ zelTcpPort WRITE setZelTcpPort NOTIFY zelTcpPortChanged)
    Q_PROPERTY(SelectedInterface interface READ interface WRITE setInterface NOTIFY interfaceChanged)

public:
    /// Udp can be selected and is kept, but nothing serves it. A stored text that is no key gives -1, under
    /// which nothing is accepted either; hence the fixed underlying type.
    enum SelectedInterface : int { Serial = 0, Tcp = 1, Udp = 2 };
    Q_ENUM(SelectedInterface)

    /// How often empty texts are removed from the overlay.
    static constexpr int CleanUpIntervalMs = 200;

    /// The three host objects are not owned, and the back-end must outlive the Runner. One that is null is
    /// done without: the overlay then does not show what it would have changed. So is a manager or an
    /// accessor that goes before the Runner.
    Runner(Tolvar::VideoOverlay::CVideoOverlayControlBackend* controlBackend,
           Mavril::VideoOverlay::CVideoOverlayManager* overlayManager,
           ZelVideoOverlayElementAccessor* elementAccessor, QObject* parent = nullptr);
    /// The two transports are deliberately not destroyed; they go on acknowledging, and act upon nothing.
    ~Runner() override;

    DataManager* getDataManager() const { return m_dataManager; }

    // Called by the constructor; a host must not call these again.
    void start();
    void initDataManager();
    void createOverlayManagerConnections();
    void connectWriteCommandParser();
    void connectExecuteCommandParser();

    // Device readings into the data model. A device that the unit does not have is skipped, with a warning.
    void connectNEX();
    void connectNEXReel();
    void connectNEXRTS();
    void connectNEXCrawler();
    void connectNEXCamera();

    // Overlay elements and the data model.
    void connectVarundo();    ///< binds the elements of the manager's list, under the manager's mutex
    void disconnectVarundo(); ///< breaks every connection whose sender is the data model
    void connectTotalDistanceCounter(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectSectionDistanceCounter(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectSATDistanceCounter(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectCableSpeed(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectDate(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectTime(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectVideoTimeCounter(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectCameraTilt(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectCameraTemperature(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectCameraPan(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectCameraPressure(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectCrawlerPitch(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectCrawlerRoll(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectCrawlerTemperature(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectCrawlerPressure(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectObjectTemperature(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectStaticText(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectStaticText1(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectStaticText2(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectStaticText3(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectStaticText4(Mavril::VideoOverlay::CVideoOverlayText* element);
    void connectFreeText();

    // The texts that controllers created: written lines, text at the cursor, typed characters.
    void clearCustomElements(); ///< removes all
    void clearEmptyTexts();     ///< removes those that show nothing

    // Changes to one overlay element, found by its element name.
    void setOsdElementPosition(const QString& name, QPoint position); ///< x the column, y the row
    void setOsdElementVisibility(const QString& name, bool visible);
    void setOsdElementText(const QString& name, const QString& text);
    void setOsdElementColors(const QString& name, ColorPair& colours);
    void setOsdElementUnit(const QString& name, int format);                    ///< 1: °F, any other: °C
    void setOsdFreeText(const QString& name, int timeout, const QString& text); ///< seconds; 0: stays

signals:
    /// Declared for the property; never emitted.
    void baudrateChanged(int baudrate);
    void execute3dMeasurementMainPipeActivate();
    void execute3dMeasurementLateralActivate();
    void execute3dMeasurementDeactivate();
    /// Declared for the property; never emitted.
    void zelTcpPortChanged();
    void setDistanceCounterSection(float distance); ///< metres
    void setDistanceCounterTotal(float distance);   ///< metres
    void setDistanceCounterSat(float distance);     ///< metres
    void interfaceChanged(SelectedInterface interface);
    void writeVideoCounter(int hours, int minutes, int seconds);
    void writeMeasurement3DPosition(double x, double y, double z);
    void writeMeasurement3DOrientation(float xyangle, float zangle);

public slots:
    /// Writes one typed character, a Latin-1 code, into the text at the cursor.
    void onPrintableCharReceived(char printableChar);

public:
    Q_INVOKABLE void setBaudrate(int baudrate); ///< bits per second; not kept over a restart
    Q_INVOKABLE int baudrate() const;
    Q_INVOKABLE QStringList getPortNames();   ///< "disabled", then the USB serial ports there are
    Q_INVOKABLE void setZelTcpPort(int port); ///< not kept over a restart
    Q_INVOKABLE int zelTcpPort() const;       ///< -1 when there is no TCP server
    /// Selects and keeps the interface, and emits interfaceChanged(); nothing if it is selected already.
    Q_INVOKABLE void setInterface(SelectedInterface interface);
    Q_INVOKABLE SelectedInterface interface() const { return m_interface; }

private:
    struct ElementBinding;
    struct StatusLineBinding;
    struct ElementState;
    struct ReadElement;
    struct NewText;

    void followCursor();
    void bindProfile();
    static const ElementBinding* elementBinding(const QString& column);
    static const StatusLineBinding* statusLineBinding(int staticId);
    static QVector<ReadElement> readElements(const QPointer<Runner>& runner);
    void bindElement(const ElementState& state, const ElementBinding& binding);
    void follow(const ElementBinding& binding);
    void followUnit();
    void bindStatusLine(const ElementState& state, const StatusLineBinding& binding);
    void followVisibility(void (DataManager::*changed)(QString const&, bool));
    void followColors(void (DataManager::*changed)(QString const&, ColorPair const&));

    void writeLine(int line, const QString& text);
    void writeTextOnCursorPosition(const QString& text);
    bool makeText(const NewText& wanted);
    Mavril::VideoOverlay::CVideoOverlayText* customTextAt(const QPoint& position) const;
    void deleteCustomTexts(bool (*isToGo)(const Mavril::VideoOverlay::CVideoOverlayText& text));
    int placeOfCustomText(const Mavril::VideoOverlay::CVideoOverlayText* text);
    void forgetCustomText(Mavril::VideoOverlay::CVideoOverlayElement* element);

    Tolvar::VideoOverlay::CVideoOverlayControlBackend* m_controlBackend;
    QPointer<Mavril::VideoOverlay::CVideoOverlayManager> m_overlayManager;
    QPointer<ZelVideoOverlayElementAccessor> m_elementAccessor;

    DataManager* m_dataManager = nullptr;
    SelectedInterface m_interface = Serial;
    QMetaObject::Connection m_cursorConnection;
    bool m_entryContinues = false; // the next typed character is appended to the text at the cursor
    bool m_readsElements = false;  // under the overlay's mutex
    quint32 m_profile = 0;         // counts the profiles that came and went; wraps
    using Texts = QVector<QPointer<Mavril::VideoOverlay::CVideoOverlayText>>;
    Texts m_customTexts;       // in order of creation, not owned
    bool m_keepPlaces = false; // of those that are deleted
    int m_lastPlace = 0;
    Texts m_unfinishedTexts; // still being made, and not yet among them: nobody takes one for an empty text

    SerialAdaptor* m_serialAdaptor = nullptr; // never deleted
    TcpServer* m_tcpServer = nullptr;         // never deleted
    CommandParser* m_commandParser = nullptr;
    ReadCommandResponder* m_readCommandResponder = nullptr;
    ExecuteCommandParser* m_executeCommandParser = nullptr;
    ReadCommandParser* m_readCommandParser = nullptr;
    WriteCommandParser* m_writeCommandParser = nullptr;
};

} // namespace Tolvar::Varundo

#endif
