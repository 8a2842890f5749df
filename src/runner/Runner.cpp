#include <Tolvar/Varundo/Runner.h>

#include "HostMistakes.h"
#include "InTurn.h"
#include "RunnerLog.h"

#include <CApplicationSettings.h>
#include <Mavril/SystemDateTime.h>
#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <Tolvar/Varundo/CommandParser.h>
#include <Tolvar/Varundo/DataManager.h>
#include <Tolvar/Varundo/ExecuteCommandParser.h>
#include <Tolvar/Varundo/ReadCommandParser.h>
#include <Tolvar/Varundo/ReadCommandResponder.h>
#include <Tolvar/Varundo/SerialAdaptor.h>
#include <Tolvar/Varundo/TcpServer.h>
#include <Tolvar/Varundo/WriteCommandParser.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QMetaEnum>
#include <QTimer>

#include <initializer_list>

namespace Tolvar::Varundo {

namespace {

QString interfaceSetting()
{
    return QStringLiteral("ZEL_INTERFACE");
}

/// -1 for a text that is no key: then no transport is listened to. The look-up is ours since QMetaEnum's own
/// also takes a qualified name.
Runner::SelectedInterface storedInterface()
{
    const QString text =
        CApplicationSettings::instance()->getCustomSetting(interfaceSetting(), QStringLiteral("Serial"));
    const auto interfaces = QMetaEnum::fromType<Runner::SelectedInterface>();
    for (int i = 0; i < interfaces.keyCount(); ++i) {
        if (text == QLatin1String(interfaces.key(i))) {
            return static_cast<Runner::SelectedInterface>(interfaces.value(i));
        }
    }
    qCWarning(runnerLog) << "the stored interface" << text << "is unknown; no interface is served";
    return static_cast<Runner::SelectedInterface>(-1);
}

} // namespace

Runner::Runner(Tolvar::VideoOverlay::CVideoOverlayControlBackend* controlBackend,
               Mavril::VideoOverlay::CVideoOverlayManager* overlayManager,
               ZelVideoOverlayElementAccessor* elementAccessor, QObject* parent)
    : QObject(parent)
    , m_controlBackend(controlBackend)
    , m_overlayManager(overlayManager)
    , m_elementAccessor(elementAccessor ? elementAccessor : new ZelVideoOverlayElementAccessor(this))
    , m_dataManager(new DataManager(this))
    , m_interface(storedInterface())
{
    refuseDeletionByOthers(m_dataManager, this);
    createOverlayManagerConnections();
    initDataManager();
    start();

    auto* const cleanUpTimer = new QTimer(this);
    connect(cleanUpTimer, &QTimer::timeout, this, &Runner::clearEmptyTexts);
    cleanUpTimer->start(CleanUpIntervalMs);
}

Runner::~Runner() = default;

void Runner::initDataManager()
{
    struct StartValue
    {
        void (DataManager::*set)(int);
        int value;
    };
    static constexpr StartValue startValues[] = {
        {&DataManager::setMeterCounter1Format, 0},
        {&DataManager::setMeterCounter2Format, 0},
        {&DataManager::setMeterCounter3Format, 0},
        {&DataManager::setDateFormat, 0},
        {&DataManager::setTimeFormat, 0},
        // What controllers read before the host has counted anything; deliberate, they recognise a fresh unit
        // by it.
        {&DataManager::setVideoCounterHours, 10},
        {&DataManager::setVideoCounterMinutes, 20},
        {&DataManager::setVideoCounterSeconds, 30},
        {&DataManager::setVideoCounterFrames, 40},
        {&DataManager::setVideoCounterFormat, 0},
        {&DataManager::setCrawlerTemperatureFormat, 0},
        {&DataManager::setCrawlerPressureFormat, 0},
        {&DataManager::setCrawlerRollFormat, 0},
        {&DataManager::setTiltFormat, 1},
        {&DataManager::setExtTemperatureFormat, 0},
        {&DataManager::setCameraTemperatureFormat, 0},
        {&DataManager::setPressureFormat, 0},
        {&DataManager::setInclinationFormat, 0},
        {&DataManager::setPanPositionFormat, 0},
        {&DataManager::setCableSpeedFormat, 1},
    };
    // Whoever hears of a change may load another profile, which then starts afresh itself, or destroy us.
    const QPointer<Runner> self(this);
    const quint32 profile = m_profile;
    const auto goesOn = [&] {
        return self && m_profile == profile;
    };
    for (const StartValue& start : startValues) {
        if (!goesOn()) {
            return;
        }
        (m_dataManager->*start.set)(start.value);
    }
    inTurn(
        goesOn, [&] { m_dataManager->setTextCodec(DataManager::Latin9); },
        [&] {
            m_dataManager->setSoftwareID(QStringLiteral("Tolvar QR740 ZEL-interface: V%1 - 20180828 - 12:00")
                                             .arg(QCoreApplication::applicationVersion()));
        },
        [&] { followCursor(); });
}

/// Made anew, since removing a profile breaks it with all the data model's connections; one at a time, since
/// a profile may also be loaded over another.
void Runner::followCursor()
{
    disconnect(m_cursorConnection);
    m_cursorConnection = connect(
        m_dataManager, &DataManager::cursorPositionChanged, m_dataManager,
        [this] { m_entryContinues = false; }, Qt::DirectConnection);
}

void Runner::start()
{
    m_serialAdaptor = new SerialAdaptor(QStringLiteral("/dev/ttyUSB1"), nullptr);
    m_commandParser = new CommandParser(this);
    m_readCommandResponder = new ReadCommandResponder(m_dataManager, this);
    m_executeCommandParser = new ExecuteCommandParser(m_dataManager, this);
    m_readCommandParser = new ReadCommandParser(m_readCommandResponder, this);
    m_writeCommandParser = new WriteCommandParser(m_dataManager, this);
    m_tcpServer = new TcpServer(nullptr);
    for (QObject* const owned :
         std::initializer_list<QObject*>{m_commandParser, m_readCommandResponder, m_executeCommandParser,
                                         m_readCommandParser, m_writeCommandParser}) {
        refuseDeletionByOthers(owned, this);
    }

    // Which interface is selected is asked each time, so that a change takes effect at once.
    const auto isSelected = [this](SelectedInterface road) {
        refuseWhileElementsAreRead(m_readsElements);
        if (m_interface != road) {
            qCDebug(runnerLog) << "not acted upon: it came over" << road << "and" << m_interface
                               << "is selected";
        }
        return m_interface == road;
    };
    connect(m_serialAdaptor, &SerialAdaptor::receivedValidMessage, this,
            [this, isSelected](const CommandMessage& message) {
                if (isSelected(Serial)) {
                    m_commandParser->onCommandMessageReceived(message);
                }
            });
    connect(m_tcpServer, &TcpServer::receivedValidMessage, this,
            [this, isSelected](const CommandMessage& message) {
                if (isSelected(Tcp)) {
                    m_commandParser->onCommandMessageReceived(message);
                }
            });

    connect(m_commandParser, &CommandParser::parsedExecuteCommand, m_executeCommandParser,
            &ExecuteCommandParser::parseCommandMessage);
    connect(m_commandParser, &CommandParser::parsedReadCommand, m_readCommandParser,
            &ReadCommandParser::parseCommandMessage);
    connect(m_commandParser, &CommandParser::parsedWriteCommand, m_writeCommandParser,
            &WriteCommandParser::parseCommandMessage);

    connect(m_readCommandResponder, &ReadCommandResponder::commandReady, this,
            [this](const CommandMessage& message) {
                if (m_interface == Tcp) {
                    m_tcpServer->writeMessage(message);
                } else {
                    m_serialAdaptor->writeMessage(message);
                }
            });

    connect(m_serialAdaptor, &SerialAdaptor::printableCharReceived, this,
            [this, isSelected](char printableChar) {
                if (isSelected(Serial)) {
                    onPrintableCharReceived(printableChar);
                }
            });
    connect(m_tcpServer, &TcpServer::printableCharReceived, this, [this, isSelected](char printableChar) {
        if (isSelected(Tcp)) {
            onPrintableCharReceived(printableChar);
        }
    });

    connectNEX();
    connectWriteCommandParser();
    connectExecuteCommandParser();
}

void Runner::connectWriteCommandParser()
{
    const WriteCommandParser* const parser = m_writeCommandParser;
    connect(
        parser, &WriteCommandParser::writeDateValue, parser,
        [](QDate date) { Mavril::SystemDateTime().setDateTime(QDateTime(date, QTime::currentTime())); },
        Qt::DirectConnection);
    connect(
        parser, &WriteCommandParser::writeTimeValue, parser,
        [](QTime time) { Mavril::SystemDateTime().setTime(time); }, Qt::DirectConnection);
    connect(
        parser, &WriteCommandParser::writeLine, parser,
        [this](int line, const QString& text) { writeLine(line, text); }, Qt::DirectConnection);
    connect(
        parser, &WriteCommandParser::writeTextOnCursorPosition, parser,
        [this](const QString& text) { writeTextOnCursorPosition(text); }, Qt::DirectConnection);

    connect(parser, &WriteCommandParser::setDistanceCounterSection, this, &Runner::setDistanceCounterSection);
    connect(parser, &WriteCommandParser::setDistanceCounterSat, this, &Runner::setDistanceCounterSat);
    connect(parser, &WriteCommandParser::setDistanceCounterTotal, this, &Runner::setDistanceCounterTotal);
    connect(parser, &WriteCommandParser::writeVideoCounter, this, &Runner::writeVideoCounter);
    connect(parser, &WriteCommandParser::writeMeasurement3DPosition, this,
            &Runner::writeMeasurement3DPosition);
    connect(parser, &WriteCommandParser::writeMeasurement3DOrientation, this,
            &Runner::writeMeasurement3DOrientation);
}

void Runner::connectExecuteCommandParser()
{
    const ExecuteCommandParser* const parser = m_executeCommandParser;
    const auto switchOverlay = [this](bool show) {
        if (m_controlBackend) {
            m_controlBackend->setOverlayVisible(show);
        }
    };
    connect(
        parser, &ExecuteCommandParser::executeScreenOverlayOn, parser,
        [switchOverlay] { switchOverlay(true); }, Qt::DirectConnection);
    connect(
        parser, &ExecuteCommandParser::executeScreenOverlayOff, parser,
        [switchOverlay] { switchOverlay(false); }, Qt::DirectConnection);
    connect(
        parser, &ExecuteCommandParser::executeScreenOverlayClearEdit, parser,
        [this] { clearCustomElements(); }, Qt::DirectConnection);

    connect(parser, &ExecuteCommandParser::execute3dMeasurementMainPipeActivate, this,
            &Runner::execute3dMeasurementMainPipeActivate);
    connect(parser, &ExecuteCommandParser::execute3dMeasurementLateralActivate, this,
            &Runner::execute3dMeasurementLateralActivate);
    connect(parser, &ExecuteCommandParser::execute3dMeasurementDeactivate, this,
            &Runner::execute3dMeasurementDeactivate);
}

void Runner::setBaudrate(int baudrate)
{
    m_serialAdaptor->setBaudrate(baudrate);
}

int Runner::baudrate() const
{
    return m_serialAdaptor->baudrate();
}

QStringList Runner::getPortNames()
{
    return m_serialAdaptor->getPortNames();
}

void Runner::setZelTcpPort(int port)
{
    if (m_tcpServer) {
        m_tcpServer->setListeningPort(port);
    }
}

int Runner::zelTcpPort() const
{
    return m_tcpServer ? m_tcpServer->listeningPort() : -1;
}

void Runner::setInterface(SelectedInterface interface)
{
    if (interface == m_interface) {
        return;
    }
    const char* const key = QMetaEnum::fromType<SelectedInterface>().valueToKey(interface);
    if (!key) {
        qCWarning(runnerLog, "interface %d does not exist; the selection stays", static_cast<int>(interface));
        return;
    }
    const QPointer<Runner> self(this);
    const SelectedInterface before = m_interface;
    CApplicationSettings::instance()->setCustomSetting(interfaceSetting(), QLatin1String(key));
    // The host's store may have led to another choice, which is the later one then, or to our end.
    if (self && m_interface == before) {
        m_interface = interface;
        emit interfaceChanged(interface);
    }
}

} // namespace Tolvar::Varundo
