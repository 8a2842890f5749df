#include <Tolvar/Varundo/Client/SerialLink.h>

#include <QElapsedTimer>
#include <QPointer>
#include <QSerialPort>

#include <poll.h>

namespace Tolvar::Varundo::Client {

namespace {

/// What may lie unread in the port. Nothing holds the unit back beyond it, but its answers are far smaller.
constexpr qint64 ReadBufferSize = 65536;

constexpr qint64 BitsPerByte = 10; // with start and stop bit

/// Which error a port reports after a hang-up depends on chance; the device itself knows.
bool hasHungUp(int handle)
{
    pollfd device{handle, 0, 0};
    return poll(&device, 1, 0) > 0; // hang-up, error and bad descriptor are reported unasked
}

} // namespace

SerialLink::SerialLink(const QString& deviceName, int baudrate, QObject* parent)
    : QObject(parent)
    , m_deviceName(deviceName)
    , m_port(new QSerialPort(this))
    , m_baudrate(baudrate)
{
    m_port->setPortName(deviceName);
    m_port->setReadBufferSize(ReadBufferSize);
    connect(m_port, &QSerialPort::errorOccurred, this, [this](int error) { handleError(error); });
}

// A port that closes with its link is no error to tell of.
SerialLink::~SerialLink()
{
    m_port->disconnect(this);
}

bool SerialLink::open()
{
    const bool isSet = m_port->setBaudRate(m_baudrate) && m_port->setDataBits(QSerialPort::Data8) &&
                       m_port->setParity(QSerialPort::NoParity) &&
                       m_port->setStopBits(QSerialPort::OneStop) &&
                       m_port->setFlowControl(QSerialPort::NoFlowControl);
    if (!isSet || !m_port->open(QIODevice::ReadWrite)) {
        m_errorText = QStringLiteral("cannot open %1: %2").arg(m_deviceName, m_port->errorString());
        return false;
    }
    m_port->clear(QSerialPort::Input);
    return true;
}

QIODevice* SerialLink::device() const
{
    return m_port;
}

int SerialLink::transmissionTime(int byteCount) const
{
    return m_baudrate > 0 ? static_cast<int>(byteCount * BitsPerByte * 1000 / m_baudrate) : 0;
}

void SerialLink::close(int timeoutMilliseconds)
{
    if (!m_port->isOpen()) {
        return;
    }
    QElapsedTimer elapsed;
    elapsed.start();
    while (m_port->bytesToWrite() > 0 && !elapsed.hasExpired(timeoutMilliseconds)) {
        if (!m_port->waitForBytesWritten(timeoutMilliseconds - static_cast<int>(elapsed.elapsed()))) {
            break;
        }
    }
    m_port->close();
}

/// A line that hung up makes its open port report errors without end, at full load, so any error ends it.
void SerialLink::handleError(int error)
{
    // Opening reports its own errors, and also that there is none. A wait that was in vain breaks nothing.
    if (!m_port->isOpen() || error == QSerialPort::NoError || error == QSerialPort::TimeoutError) {
        return;
    }
    const QString reason =
        hasHungUp(m_port->handle()) ? QStringLiteral("the line hung up") : m_port->errorString();
    // Not from within the port's own signal: closing deletes the notifier that is being served.
    QMetaObject::invokeMethod(
        this, [this, reason] { end(reason); }, Qt::QueuedConnection);
}

void SerialLink::end(const QString& reason)
{
    if (!m_port->isOpen()) {
        return; // there was more than one error
    }
    m_errorText = QStringLiteral("%1 is closed: %2").arg(m_deviceName, reason);
    const QPointer<QSerialPort> port(m_port); // a listener may delete this link
    emit lost(reason);
    if (port) {
        port->close();
    }
}

} // namespace Tolvar::Varundo::Client
