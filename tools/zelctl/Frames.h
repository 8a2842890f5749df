#ifndef TOLVAR_VARUNDO_ZELCTL_FRAMES_H
#define TOLVAR_VARUNDO_ZELCTL_FRAMES_H

#include <Tolvar/Varundo/Client/FrameMeaning.h>
#include <Tolvar/Varundo/Client/ResponseDecoder.h>
#include <Tolvar/Varundo/Client/TextCodec.h>

#include <QByteArray>
#include <QString>
#include <QVector>

/// Recorded bytes of either direction, taken apart for showing.
namespace Tolvar::Varundo::Zelctl::Frames {

enum class Kind : quint8 { Frame, Ack, Nack, Typed, Stray, Incomplete };

struct Piece
{
    Kind kind = Kind::Stray;
    QByteArray bytes;
    CommandMessage frame; ///< for Frame only
};

[[nodiscard]] Piece pieceOf(const Client::Response& response);
[[nodiscard]] QVector<Piece> split(const QByteArray& bytes);
[[nodiscard]] QString kindName(Kind kind);
[[nodiscard]] QString meaning(const Piece& piece, Client::Sender sender, Client::TextCodec codec);

} // namespace Tolvar::Varundo::Zelctl::Frames

#endif
