#ifndef TOLVAR_VARUNDO_TESTS_MODELRECEIVER_H
#define TOLVAR_VARUNDO_TESTS_MODELRECEIVER_H

#include "ModelText.h"

namespace Tolvar::Varundo::Model {

struct Frame
{
    std::uint8_t command = 0;
    std::uint8_t group = 0;
    Bytes payload;
};

/// What the receiver finds in the bytes, in order.
class FrameListener
{
public:
    virtual void accepted(const Frame& frame) = 0;
    virtual void rejected() = 0;
    virtual void typed(std::uint8_t character) = 0;

protected:
    ~FrameListener() = default;
};

/// The unit's receiver, one for all connections.
class ModelReceiver
{
public:
    enum class Waiting : std::uint8_t { Start, Command, Group, LengthLow, LengthHigh, Payload, End };

    void read(const Bytes& bytes, FrameListener& listener);

    [[nodiscard]] Waiting waitingFor() const { return m_waiting; }
    [[nodiscard]] std::size_t missingPayload() const { return m_length - m_frame.payload.size(); }

private:
    /// False: the rest of the read is lost.
    bool take(std::uint8_t byte, FrameListener& listener);
    bool takeEnd(std::uint8_t byte, FrameListener& listener);
    void reject(FrameListener& listener);

    Waiting m_waiting = Waiting::Start;
    Frame m_frame;
    std::size_t m_length = 0;
    bool m_surplus = false; ///< too much payload had stayed: the frame is read and then rejected
    bool m_hasRejected = false;
};

} // namespace Tolvar::Varundo::Model

#endif
