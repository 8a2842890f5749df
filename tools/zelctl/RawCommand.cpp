#include "RawCommand.h"

#include "Frames.h"
#include "HexBytes.h"
#include "Zelctl.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>

namespace Tolvar::Varundo::Zelctl {

namespace {

/// Prints all that comes back while it exists, and counts.
class Listener
{
public:
    explicit Listener(Zelctl& zelctl)
        : m_zelctl(zelctl)
        , m_connection(QObject::connect(&zelctl.unit(), &Unit::received, &zelctl.unit(),
                                        [this](const Client::Response& response) { take(response); }))
    {}
    ~Listener() { QObject::disconnect(m_connection); }
    Q_DISABLE_COPY_MOVE(Listener)

    [[nodiscard]] bool wasAcknowledged() const { return m_acknowledgements > 0 && m_rejections == 0; }

private:
    void take(const Client::Response& response)
    {
        m_acknowledgements += response.kind == Client::Response::Kind::Ack ? 1 : 0;
        m_rejections += response.kind == Client::Response::Kind::Nack ? 1 : 0;
        const Frames::Piece piece = Frames::pieceOf(response);
        const auto codec = m_zelctl.options().codec.value_or(Client::TextCodec::Latin9);
        const QString hex = Printer::hex(piece.bytes);
        const QString meaning = Frames::meaning(piece, Client::Sender::Unit, codec);
        m_zelctl.printer().result(QStringLiteral("%1  %2").arg(hex, meaning),
                                  {{QStringLiteral("kind"), Frames::kindName(piece.kind)},
                                   {QStringLiteral("hex"), hex},
                                   {QStringLiteral("meaning"), meaning}});
    }

    Zelctl& m_zelctl;
    QMetaObject::Connection m_connection;
    int m_acknowledgements = 0;
    int m_rejections = 0;
};

/// Whole commands are sent as such, one after the other, and are done as soon as each is replied to.
ExitStatus sendCommands(Zelctl& zelctl, const QVector<Frames::Piece>& pieces)
{
    for (const Frames::Piece& piece : pieces) {
        const Unit::Result result = zelctl.unit().request(piece.frame);
        if (!result.succeeded()) {
            zelctl.printer().error(result.errorText);
            return result.exitStatus();
        }
    }
    return Done;
}

/// Of anything else nobody knows what comes back; it is listened for until the time-out.
ExitStatus sendBytes(Zelctl& zelctl, const QByteArray& bytes, const Listener& listener)
{
    if (!zelctl.unit().writeUnframed(bytes)) {
        zelctl.printer().error(zelctl.unit().errorText());
        return NoConnection;
    }
    QEventLoop loop;
    QTimer::singleShot(zelctl.options().timeout, &loop, &QEventLoop::quit);
    QObject::connect(&zelctl.unit(), &Unit::connectionLost, &loop, &QEventLoop::quit);
    loop.exec();
    if (!zelctl.unit().isConnected()) {
        zelctl.printer().error(zelctl.unit().errorText());
        return NoConnection;
    }
    if (!listener.wasAcknowledged()) {
        zelctl.printer().error(QStringLiteral("not acknowledged within %1 ms").arg(zelctl.options().timeout));
        return Refused;
    }
    return Done;
}

} // namespace

ExitStatus sendRaw(Zelctl& zelctl, const CommandCall& call)
{
    QString error;
    const auto bytes = hexBytes(call.arguments.join(QLatin1Char(' ')), &error);
    if (!bytes) {
        return zelctl.usage(QStringLiteral("raw: %1").arg(error));
    }
    const Listener listener(zelctl);
    const QVector<Frames::Piece> pieces = Frames::split(*bytes);
    const bool areCommands = std::all_of(pieces.begin(), pieces.end(), [](const Frames::Piece& piece) {
        return piece.kind == Frames::Kind::Frame;
    });
    const ExitStatus status =
        areCommands ? sendCommands(zelctl, pieces) : sendBytes(zelctl, *bytes, listener);
    zelctl.unit().forgetTextCodec();
    return status;
}

} // namespace Tolvar::Varundo::Zelctl
