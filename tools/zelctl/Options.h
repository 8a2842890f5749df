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

    QString host = QStringLiteral("127.0.0.1");
    quint16 port = Protocol::DefaultTcpPort;
    int timeout = DefaultTimeout;
    bool json = false;
    bool verbose = false;
    std::optional<Client::TextCodec> codec; ///< nothing: ask the unit

    static void declare(QCommandLineParser& parser);

    /// Takes over what the parser has seen. Returns what is wrong with it, empty if nothing is.
    [[nodiscard]] QString take(const QCommandLineParser& parser);

private:
    [[nodiscard]] QString takeAddress(const QString& address);
};

} // namespace Tolvar::Varundo::Zelctl

#endif
