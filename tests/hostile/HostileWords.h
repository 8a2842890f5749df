#ifndef TOLVAR_VARUNDO_TEST_HOSTILEWORDS_H
#define TOLVAR_VARUNDO_TEST_HOSTILEWORDS_H

#include "RawPeer.h"
#include "SimulatorProcess.h"

#include <Tolvar/Varundo/FrameCodec.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QByteArray>

namespace Tolvar::Varundo::Test {

inline QByteArray frame(Protocol::Group group, quint8 command, const QByteArray& payload = {})
{
    return encodeFrame({command, group, static_cast<quint16>(payload.size()), payload});
}

inline QByteArray acknowledgement()
{
    return QByteArray(1, static_cast<char>(Protocol::Ack));
}

/// A read whose answer carries its number, 0 to 99, so that nothing can be lost, doubled or swapped
/// unnoticed: a line of the free text, whose number is sent as two decimal digits.
inline QByteArray numberedRead(int number)
{
    const int packed = number / 10 * 16 + number % 10;
    return frame(Protocol::Read, 0x98, QByteArray(1, static_cast<char>(packed)));
}

/// What a unit whose lines are empty sends for it.
inline QByteArray numberedAnswer(int number)
{
    return acknowledgement() + frame(Protocol::Read, 0x98, QByteArray(1, static_cast<char>(number)));
}

namespace HostileWords {

/// Whatever was begun before is brought to its end, as the protocol's reference says: bytes enough for the
/// longest payload, then a read that begins with ETX. Twice, for what a dropped frame has left behind.
inline bool bringToAnEnd(RawPeer& peer)
{
    for (int round = 0; round < 2; ++round) {
        if (!peer.send(QByteArray(Protocol::MaxPayloadSize + 16, '\0'))) {
            return false;
        }
        peer.receiveFor(300);
        peer.send(QByteArray(1, '\3'));
        peer.receiveFor(300);
        peer.send(numberedRead(0));
        peer.receiveFor(300);
    }
    // A unit that is still at work on what came before answers late.
    peer.send(numberedRead(42));
    QByteArray heard;
    while (!heard.endsWith(numberedAnswer(42))) {
        const QByteArray more = peer.receiveUpTo(65536, 60000);
        if (more.isEmpty()) {
            return false;
        }
        heard += more;
    }
    return true;
}

} // namespace HostileWords

/// So much may a unit's memory grow, whatever its peers do. A sanitizer's bookkeeping is not the unit's.
constexpr int MaxGrowthKiB = 8 * 1024
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
                             * 100
#endif
    ;

} // namespace Tolvar::Varundo::Test

#endif
