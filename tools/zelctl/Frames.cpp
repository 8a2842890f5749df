#include "Frames.h"

#include <Tolvar/Varundo/Protocol.h>

#include <algorithm>
#include <array>

namespace Tolvar::Varundo::Zelctl::Frames {

namespace {

bool isTyped(const QByteArray& bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return static_cast<quint8>(byte) >= Protocol::FirstPrintable; });
}

} // namespace

Piece pieceOf(const Client::Response& response)
{
    using ResponseKind = Client::Response::Kind;
    switch (response.kind) {
    case ResponseKind::Ack:
        return {Kind::Ack, response.bytes, {}};
    case ResponseKind::Nack:
        return {Kind::Nack, response.bytes, {}};
    case ResponseKind::Frame:
        return {Kind::Frame, response.bytes, response.frame};
    case ResponseKind::Noise:
        break;
    }
    return {isTyped(response.bytes) ? Kind::Typed : Kind::Stray, response.bytes, {}};
}

QVector<Piece> split(const QByteArray& bytes)
{
    Client::ResponseDecoder decoder;
    QVector<Piece> pieces;
    for (const Client::Response& response : decoder.decode(bytes)) {
        pieces.append(pieceOf(response));
    }
    if (decoder.isInsideFrame()) {
        pieces.append({Kind::Incomplete, decoder.incompleteFrame(), {}});
    }
    return pieces;
}

QString kindName(Kind kind)
{
    constexpr std::array Names{"frame", "ack", "nack", "typed", "stray", "incomplete"};
    return QLatin1String(Names.at(static_cast<std::size_t>(kind)));
}

QString meaning(const Piece& piece, Client::Sender sender, Client::TextCodec codec)
{
    switch (piece.kind) {
    case Kind::Frame:
        return Client::frameMeaning(piece.frame, sender, codec);
    case Kind::Ack:
        return QStringLiteral("ACK");
    case Kind::Nack:
        return QStringLiteral("NACK");
    case Kind::Typed:
        return QStringLiteral("typed \"%1\"").arg(QString::fromLatin1(piece.bytes));
    case Kind::Incomplete:
        return QStringLiteral("incomplete frame");
    case Kind::Stray:
        break;
    }
    return QStringLiteral("no frame, ignored");
}

} // namespace Tolvar::Varundo::Zelctl::Frames
