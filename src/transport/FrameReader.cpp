#include "FrameReader.h"

#include "TransportLog.h"

#include <QObject>
#include <QScopedValueRollback>

#include <utility>

namespace Tolvar::Varundo {

FrameReader::Call::Call(FrameReader& reader)
    : m_reader(reader.shared_from_this())
{
    ++m_reader->m_calls;
}

FrameReader::Call::~Call()
{
    if (--m_reader->m_calls == 0 && m_reader->m_orphanedDevice) {
        m_reader->m_orphanedDevice->deleteLater();
    }
}

void FrameReader::transportDestroyed(QObject* device)
{
    constexpr const char* complaint =
        "a transport is destroyed in a slot of its own signal; use deleteLater()";
    Q_ASSERT_X(m_calls == 0, "Tolvar::Varundo::FrameReader", complaint);
    if (m_calls > 0) {
        qCCritical(transportLog, "%s", complaint);
        device->setParent(nullptr);
        m_orphanedDevice = device;
    }
}

void FrameReader::process()
{
    if (m_processing) {
        return;
    }
    const Call call(*this);
    const QScopedValueRollback<bool> processing(m_processing, true);

    if (isOrphaned() || isBehind()) {
        return;
    }
    m_turn.start();
    do {
        if (!decodeNext()) {
            return;
        }
    } while (wantsMore());
    if (!isOrphaned() && m_turn.hasExpired(MaxTurnMs)) {
        callAgain();
    }
}

/// What was held back first, then what devices left that have gone, then a new read. False if there is
/// nothing.
bool FrameReader::decodeNext()
{
    if (!m_rest.isEmpty()) {
        const QByteArray rest = std::exchange(m_rest, QByteArray());
        const FrameCounters before = counters();
        const qsizetype used = m_decoder.resume(rest.constData(), rest.size(), *this);
        tellOfLosses(before);
        m_rest = rest.mid(static_cast<int>(used));
        return true;
    }
    if (!m_lastWords.isEmpty()) {
        const QByteArray lastWords = std::exchange(m_lastWords, QByteArray());
        return decodeRead(lastWords.constData(), lastWords.size());
    }
    if (!m_buffer) {
        m_buffer.reset(new char[MaxReadBytes]);
    }
    return decodeRead(m_buffer.get(), read(m_buffer.get(), MaxReadBytes));
}

bool FrameReader::decodeRead(const char* bytes, int size)
{
    if (size <= 0) {
        return false;
    }
    const FrameCounters before = counters();
    const auto used = static_cast<int>(m_decoder.decode(bytes, size, *this));
    tellOfLosses(before);
    if (used < size) {
        m_rest = QByteArray(bytes + used, size - used);
    }
    return true;
}

void FrameReader::leave(const QByteArray& lastWords)
{
    if (m_lastWords.size() + lastWords.size() > MaxLastWordsBytes) {
        qCDebug(transportLog, "%d bytes of a device that has gone are given up", lastWords.size());
        return;
    }
    m_lastWords += lastWords;
}

void FrameReader::tellOfLosses(const FrameCounters& before) const
{
    const FrameCounters& now = counters();
    if (now.rejected != before.rejected || now.dropped != before.dropped ||
        now.discardedBytes != before.discardedBytes) {
        qCDebug(transportLog, "%llu frames rejected, %llu dropped without a reply, %llu bytes discarded",
                now.rejected - before.rejected, now.dropped - before.dropped,
                now.discardedBytes - before.discardedBytes);
    }
}

void FrameReader::frameAccepted(const CommandMessage& message)
{
    if (!isOrphaned()) {
        onFrameAccepted(message);
    }
}

void FrameReader::frameRejected()
{
    if (!isOrphaned()) {
        onFrameRejected();
    }
}

void FrameReader::printableByte(quint8 byte)
{
    if (!isOrphaned()) {
        onPrintableByte(byte);
    }
}

} // namespace Tolvar::Varundo
