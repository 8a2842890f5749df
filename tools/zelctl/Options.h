#ifndef TOLVAR_VARUNDO_ZELCTL_OPTIONS_H
#define TOLVAR_VARUNDO_ZELCTL_OPTIONS_H

#include <Tolvar/Varundo/Client/TextCodec.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QString>

#include <optional>

class QCommandLineParser;

namespace Tolvar::Varundo::Zelctl {

/// What holds for every command: where the unit is, and how to talk about it. A plain value.
struct Options
{
    static constexpr int DefaultTimeout = 2000; ///< milliseconds
    static constexpr int MaxTimeout = 600000;
    static constexpr int MinBaudrate = 50;
    static constexpr int MaxBaudrate = 4000000;

    QString host = QStringLiteral("127.0.0.1");
    quint16 port = Protocol::DefaultTcpPort;
    QString serialDevice; ///< empty: over TCP
    int baudrate = Protocol::DefaultBaudrate;
    int timeout = DefaultTimeout;
    bool json = false;
    bool verbose = false;
    std::optional<Client::TextCodec> codec; ///< nothing: ask the unit

    static void declare(QCommandLineParser& parser);

    /// Takes over what the parser has seen. Returns what is wrong with it, empty if nothing is.
    [[nodiscard]] QString take(const QCommandLineParser& parser);

private:
    [[nodiscard]] QString takePlace(const QCommandLineParser& parser);
    [[nodiscard]] QString takeAddress(const QString& address);
    [[nodiscard]] QString takeSerialLine(const QString& line);

    bool m_hasAddress = false; // options may stand in front of the command and behind it
};

} // namespace Tolvar::Varundo::Zelctl

#endif
