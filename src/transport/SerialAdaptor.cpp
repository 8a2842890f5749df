#include <Tolvar/Varundo/SerialAdaptor.h>

#include "FrameReader.h"
#include "TransportLog.h"

#include <Tolvar/Varundo/SerialPortWatcher.h>

#include <QCoreApplication>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <QTimer>

#include <poll.h>

namespace Tolvar::Varundo {

namespace {

/// An adapter that does not hang up but answers every read with an error is given up after so many in a row.
constexpr int maxErrorsInARow = 100;

/// Whether the kernel has hung the device up: the adapter was pulled.
bool hasHungUp(int handle)
{
    pollfd device{handle, 0, 0};
    return poll(&device, 1, 0) > 0; // hang-up, error and bad descriptor are reported unasked
}

/// What a broken line reports, as opposed to a setting that it refuses.
bool isOfTheLine(int error)
{
    return error == QSerialPort::ReadError || error == QSerialPort::WriteError ||
           error == QSerialPort::ResourceError || error == QSerialPort::UnknownError;
}

} // namespace

class SerialAdaptor::Reader final : public FrameReader
{
public:
    explicit Reader(SerialAdaptor& adaptor)
        : m_adaptor(adaptor)
        , m_nextTurn(new QTimer(&adaptor))
    {
        m_nextTurn->setSingleShot(true);
        QObject::connect(m_nextTurn, &QTimer::timeout, &adaptor, [this] { process(); });
    }

private:
    int read(char* buffer, int size) override
    {
        QSerialPort& port = *m_adaptor.m_serialPort;
        return port.isOpen() ? static_cast<int>(port.read(buffer, size)) : 0;
    }

    bool isBehind() const override
    {
        return m_adaptor.m_serialPort->isOpen() && m_adaptor.m_serialPort->bytesToWrite() >= MaxUnsentBytes;
    }

    void callAgain() override { m_nextTurn->start(0); }

    void onFrameAccepted(const CommandMessage& message) override
    {
        m_adaptor.sendACK();
        emit m_adaptor.receivedValidMessage(message);
    }

    void onFrameRejected() override { m_adaptor.sendNACK(); }

    void onPrintableByte(quint8 byte) override
    {
        emit m_adaptor.printableCharReceived(static_cast<char>(byte));
    }

    SerialAdaptor& m_adaptor;
    QTimer* m_nextTurn; // one, however often it is asked for
};

SerialAdaptor::SerialAdaptor(QString portName, QObject* parent)
    : QObject(parent)
    , m_serialPort(new QSerialPort(this))
    , m_reader(std::make_shared<Reader>(*this))
    , m_baudrate(Protocol::DefaultBaudrate)
{
    connect(m_serialPort, &QSerialPort::readyRead, this, &SerialAdaptor::handleReadyRead);
    connect(m_serialPort, &QSerialPort::errorOccurred, this, [this](int error) { onPortError(error); });
    connect(m_serialPort, &QSerialPort::bytesWritten, this, [this] { m_reader->process(); });

    m_serialPort->setBaudRate(Protocol::DefaultBaudrate, QSerialPort::AllDirections);
    m_serialPort->setPortName(portName);
    m_serialPort->setFlowControl(QSerialPort::NoFlowControl);
    m_serialPort->setParity(QSerialPort::NoParity);
    m_serialPort->setStopBits(QSerialPort::OneStop);
    m_serialPort->setDataBits(QSerialPort::Data8);
    m_serialPort->setReadBufferSize(MaxUnreadBytes);

    connectWatcher(QStringLiteral("ttyUSB1"));
    m_watcherThread.start();
    emit startWatchingForPort();
}

SerialAdaptor::~SerialAdaptor()
{
    stopWatcher();
    m_reader->transportDestroyed(m_serialPort);
}

/// Everything between the watcher and the adaptor crosses a thread, and is queued by that.
void SerialAdaptor::connectWatcher(const QString& portName)
{
    auto* const watcher = new SerialPortWatcher(portName);
    watcher->moveToThread(&m_watcherThread);
    m_watcherThread.setObjectName(QStringLiteral("varundo-watcher"));

    connect(&m_watcherThread, &QThread::finished, watcher, &QObject::deleteLater);
    connect(watcher, &SerialPortWatcher::serialPortConnected, this, &SerialAdaptor::openSerialPort);
    connect(watcher, &SerialPortWatcher::serialPortDisconnected, this, &SerialAdaptor::closeSerialPort);
    connect(this, &SerialAdaptor::startWatchingForPort, watcher, &SerialPortWatcher::startWatching);

    // The Runner never destroys its adaptor. A thread that still polls while the process takes its globals
    // down would be a crash at exit, so the watcher goes with the application object at the latest.
    if (QCoreApplication* const application = QCoreApplication::instance()) {
        connect(application, &QObject::destroyed, this, &SerialAdaptor::stopWatcher);
    }
}

void SerialAdaptor::stopWatcher()
{
    m_watcherThread.quit();
    m_watcherThread.wait();
}

const FrameCounters& SerialAdaptor::frameCounters() const
{
    return m_reader->counters();
}

QStringList SerialAdaptor::getPortNames()
{
    QStringList names{QStringLiteral("disabled")};
    const auto ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& port : ports) {
        if (port.portName().contains(QLatin1String("ttyUSB"))) {
            names.append(port.portName());
        }
    }
    return names;
}

void SerialAdaptor::handleReadyRead()
{
    m_errorsInARow = 0;
    m_reader->process();
}

void SerialAdaptor::handleError(int error)
{
    if (error != QSerialPort::NoError) {
        qCDebug(transportLog) << m_serialPort->portName() << m_serialPort->errorString();
        const FrameReader::Call call(*m_reader);
        emit serialPortError(m_serialPort->errorString());
    }
}

void SerialAdaptor::sendACK()
{
    write(QByteArray(1, static_cast<char>(Protocol::Ack)));
}

void SerialAdaptor::sendNACK()
{
    write(QByteArray(1, static_cast<char>(Protocol::Nack)));
}

void SerialAdaptor::writeMessage(CommandMessage commandMessage)
{
    write(encodeFrame(commandMessage));
}

void SerialAdaptor::openSerialPort(QString serialPort)
{
    if (m_portOpen) {
        return;
    }
    m_errorsInARow = 0;
    m_serialPort->setPortName(QStringLiteral("/dev/%1").arg(serialPort));
    m_serialPort->setBaudRate(m_baudrate, QSerialPort::AllDirections); // a line that was gone did not take it
    m_serialPort->open(QIODevice::ReadWrite);
    // Not what open() says: whoever hears of its error may have opened the port meanwhile.
    m_portOpen = m_serialPort->isOpen();
    if (!m_portOpen) {
        qCWarning(transportLog, "%s cannot be opened (%s); not tried again until the adapter has been away",
                  qPrintable(m_serialPort->portName()), qPrintable(m_serialPort->errorString()));
    }
}

void SerialAdaptor::closeSerialPort()
{
    // A device that closeIfGone() has closed already would only complain.
    if (m_serialPort->isOpen() || !m_portOpen) {
        closeDevice();
    }
    m_portOpen = false;
    m_reader->process(); // replies have nowhere to go any more; commands that were held back are carried out
}

void SerialAdaptor::portListUpdated(QStringList portList)
{
    if (portList != m_portList) {
        m_portList = portList;
    }
}

void SerialAdaptor::setBaudrate(int baudrate)
{
    if (baudrate == m_baudrate) {
        return;
    }
    m_serialPort->setBaudRate(baudrate, QSerialPort::AllDirections);
    m_baudrate = baudrate;
    emit baudrateChanged(baudrate);
}

void SerialAdaptor::onPortError(int error)
{
    if (error != QSerialPort::NoError && m_serialPort->isOpen()) {
        m_errorsInARow += isOfTheLine(error) ? 1 : 0;
        // Not from within the port's own signal: closing deletes the notifier that is being served. And
        // before anybody is told, whose event loop would see to it that the next error is told within this
        // one.
        QMetaObject::invokeMethod(this, &SerialAdaptor::closeIfGone, Qt::QueuedConnection);
    }
    handleError(error);
}

/// An adapter that was pulled makes its open port report errors without end, at full load, until the
/// watcher's next look. Which kind of error depends on chance, so the device itself is asked. Only the device
/// is closed here: to the outside the port counts as open until the watcher reports that the adapter has
/// gone.
void SerialAdaptor::closeIfGone()
{
    if (!m_serialPort->isOpen() || (!hasHungUp(m_serialPort->handle()) && m_errorsInARow < maxErrorsInARow)) {
        return;
    }
    qCWarning(transportLog, "%s no longer answers; closed until the adapter has been away and come back",
              qPrintable(m_serialPort->portName()));
    closeDevice();
    m_reader->process();
}

/// Closing throws away what was received and not read yet: while a frame is acted upon, and while replies
/// wait, that is the next frames.
void SerialAdaptor::closeDevice()
{
    if (m_serialPort->isOpen()) {
        m_reader->leave(m_serialPort->readAll());
    }
    m_serialPort->close();
}

void SerialAdaptor::write(const QByteArray& bytes)
{
    // A write to a closed port is lost without a word; Qt would print one for each.
    if (m_serialPort->isOpen()) {
        m_serialPort->write(bytes);
    }
}

} // namespace Tolvar::Varundo
