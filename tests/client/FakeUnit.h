#ifndef TOLVAR_VARUNDO_TESTS_FAKEUNIT_H
#define TOLVAR_VARUNDO_TESTS_FAKEUNIT_H

#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/FrameCodec.h>

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QVector>

#include <functional>

namespace Tolvar::Varundo::Tests {

/// The unit's end of a connection, as well-behaved or as broken as a test wants it. Unless told otherwise it
/// acknowledges every frame and answers the reads that it has an answer for.
class FakeUnit : public QObject
{
    Q_OBJECT

public:
    using Behaviour = std::function<void(const CommandMessage&)>;

    /// The payload with which a read is answered.
    void setAnswer(quint8 cmdId, const QByteArray& payload) { m_answers.insert(cmdId, payload); }

    /// What happens for the frames to come, instead of the usual.
    void setBehaviour(const Behaviour& behaviour) { m_behaviour = behaviour; }

    void behaveWell(const CommandMessage& frame);
    virtual void say(const QByteArray& bytes) = 0;
    virtual void hangUp() = 0;

    [[nodiscard]] const QVector<CommandMessage>& frames() const { return m_frames; }
    [[nodiscard]] const QByteArray& typed() const { return m_typed; }
    [[nodiscard]] const QByteArray& received() const { return m_received; }

    [[nodiscard]] static QByteArray ack() { return QByteArray(1, '\x06'); }
    [[nodiscard]] static QByteArray nack() { return QByteArray(1, '\x15'); }
    [[nodiscard]] static QByteArray answer(quint8 cmdId, const QByteArray& payload);

    // What the decoder tells.
    void frameAccepted(const CommandMessage& frame);
    void frameRejected() { say(nack()); }
    void printableByte(quint8 byte) { m_typed.append(static_cast<char>(byte)); }
    static void byteDiscarded(quint8) {}
    [[nodiscard]] static bool wantsMore() { return true; }

protected:
    void take(const QByteArray& bytes);

private:
    FrameDecoder m_decoder;
    Behaviour m_behaviour;
    QHash<quint8, QByteArray> m_answers;
    QVector<CommandMessage> m_frames;
    QByteArray m_typed;
    QByteArray m_received;
};

} // namespace Tolvar::Varundo::Tests

#endif
