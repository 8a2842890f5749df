#include "Options.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QHostAddress>
#include <QUrl>

namespace Tolvar::Varundo::Zelctl {

void Options::declare(QCommandLineParser& parser)
{
    parser.addOption(
        {QStringLiteral("tcp"),
         QStringLiteral("Where the unit listens; default 127.0.0.1:%1.").arg(Protocol::DefaultTcpPort),
         QStringLiteral("HOST[:PORT]")});
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
    QCommandLineOption serial(QStringLiteral("serial"), QString(), QStringLiteral("DEVICE[:BAUD]"));
    serial.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOption(serial);
}

QString Options::take(const QCommandLineParser& parser)
{
    if (parser.isSet(QStringLiteral("serial"))) {
        return QStringLiteral("--serial: serial lines are not built in yet; use --tcp");
    }
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
    return parser.isSet(QStringLiteral("tcp")) ? takeAddress(parser.value(QStringLiteral("tcp"))) : QString();
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

} // namespace Tolvar::Varundo::Zelctl
