#include "Options.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QHostAddress>
#include <QUrl>

namespace Tolvar::Varundo::Zelctl {

void Options::declare(QCommandLineParser& parser)
{
    parser.addOption(
        {QStringLiteral("tcp"),
         QStringLiteral("Where the unit listens; default 127.0.0.1:%1.").arg(Protocol::DefaultTcpPort),
         QStringLiteral("HOST[:PORT]")});
    parser.addOption({QStringLiteral("serial"),
                      QStringLiteral("Talk over a serial line instead, 8N1; default %1 baud.")
                          .arg(Protocol::DefaultBaudrate),
                      QStringLiteral("DEVICE[:BAUD]")});
    parser.addOption({QStringLiteral("timeout"),
                      QStringLiteral("How long to wait for a connection and for each reply; default %1.")
                          .arg(DefaultTimeout),
                      QStringLiteral("MS")});
    parser.addOption(
        {QStringLiteral("codec"),
         QStringLiteral("Take text to be in this codec (latin9, utf8, utf16) instead of asking the unit."),
         QStringLiteral("CODEC")});
    parser.addOption({QStringLiteral("json"), QStringLiteral("Print one JSON object a line.")});
    parser.addOption({{QStringLiteral("v"), QStringLiteral("verbose")},
                      QStringLiteral("Show every frame on standard error, with its meaning.")});
}

QString Options::take(const QCommandLineParser& parser)
{
    json = json || parser.isSet(QStringLiteral("json"));
    verbose = verbose || parser.isSet(QStringLiteral("verbose"));
    if (parser.isSet(QStringLiteral("timeout"))) {
        const QString text = parser.value(QStringLiteral("timeout"));
        bool isNumber = false;
        timeout = text.toInt(&isNumber);
        if (!isNumber || timeout < 1 || timeout > MaxTimeout) {
            return QStringLiteral("--timeout %1: expected 1 to %2 milliseconds").arg(text).arg(MaxTimeout);
        }
    }
    if (parser.isSet(QStringLiteral("codec"))) {
        const QString text = parser.value(QStringLiteral("codec"));
        codec = Client::textCodecFromName(text);
        if (!codec) {
            return QStringLiteral("--codec %1: expected latin9, utf8 or utf16").arg(text);
        }
    }
    return takePlace(parser);
}

QString Options::takePlace(const QCommandLineParser& parser)
{
    QString error;
    if (parser.isSet(QStringLiteral("tcp"))) {
        m_hasAddress = true;
        error = takeAddress(parser.value(QStringLiteral("tcp")));
    }
    if (error.isEmpty() && parser.isSet(QStringLiteral("serial"))) {
        error = takeSerialLine(parser.value(QStringLiteral("serial")));
    }
    if (error.isEmpty() && m_hasAddress && !serialDevice.isEmpty()) {
        error = QStringLiteral("--tcp and --serial exclude each other");
    }
    return error;
}

QString Options::takeAddress(const QString& address)
{
    QHostAddress literal;
    if (literal.setAddress(address)) {
        host = address; // also catches IPv6 without brackets, whose colons are not in front of a port
        return QString();
    }
    const QUrl url(QStringLiteral("tcp://") + address);
    const int urlPort = url.port(Protocol::DefaultTcpPort);
    if (!url.isValid() || url.host().isEmpty() || !url.path().isEmpty() || !url.userInfo().isEmpty() ||
        urlPort < 1) {
        return QStringLiteral("--tcp %1: expected HOST or HOST:PORT").arg(address);
    }
    host = url.host();
    port = static_cast<quint16>(urlPort);
    return QString();
}

QString Options::takeSerialLine(const QString& line)
{
    // The names in /dev/serial/by-path have colons of their own.
    const int colon = QFileInfo::exists(line) ? -1 : line.lastIndexOf(QLatin1Char(':'));
    serialDevice = line.left(colon);
    if (serialDevice.isEmpty()) {
        return QStringLiteral("--serial %1: expected DEVICE or DEVICE:BAUD").arg(line);
    }
    if (colon < 0) {
        return QString();
    }
    const QString rate = line.mid(colon + 1);
    bool isNumber = false;
    baudrate = rate.toInt(&isNumber);
    if (!isNumber || baudrate < MinBaudrate || baudrate > MaxBaudrate) {
        return QStringLiteral("--serial %1: there is no such device, and '%2' is no baud rate from %3 to %4")
            .arg(line, rate)
            .arg(MinBaudrate)
            .arg(MaxBaudrate);
    }
    return QString();
}

} // namespace Tolvar::Varundo::Zelctl
