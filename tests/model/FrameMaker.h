#ifndef TOLVAR_VARUNDO_TESTS_FRAMEMAKER_H
#define TOLVAR_VARUNDO_TESTS_FRAMEMAKER_H

#include "ModelText.h"
#include "Random.h"

namespace Tolvar::Varundo::Model {

[[nodiscard]] Bytes frame(int command, int group, const Bytes& payload);

/// What a controller may put on the wire: commands with good, short, long and odd payloads, frames that are
/// broken in every way, and characters. Cells, colours and texts repeat, so that they meet.
class FrameMaker
{
public:
    explicit FrameMaker(Random& random)
        : m_random(random)
    {}

    [[nodiscard]] Bytes command(int codec);
    [[nodiscard]] Bytes broken();
    [[nodiscard]] Bytes typing();
    [[nodiscard]] Bytes text(int codec);

private:
    [[nodiscard]] Bytes unlikely();
    [[nodiscard]] Bytes execute();
    [[nodiscard]] Bytes read();
    [[nodiscard]] Bytes write(int codec);
    [[nodiscard]] Bytes writePayload(int command, int codec);
    [[nodiscard]] Bytes cell();
    [[nodiscard]] Bytes colors();
    [[nodiscard]] Bytes freeText(int codec);
    [[nodiscard]] Bytes randomBytes(int count);
    [[nodiscard]] Bytes spoiltLength(Bytes payload);
    [[nodiscard]] std::uint8_t oddByte();

    Random& m_random;
};

} // namespace Tolvar::Varundo::Model

#endif
