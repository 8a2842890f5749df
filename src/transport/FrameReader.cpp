#include "FrameReader.h"

#include "TransportLog.h"

#include <QScopedValueRollback>

#include <utility>

namespace Tolvar::Varundo {

void FrameReader::process()
{
    if (m_processing) {
        return;
    }
    const QScopedValueRollback<bool> processing(m_processing, true);

    while (!isBehind()) {
        const bool newRead = m_rest.isEmpty();
        const QByteArray bytes = newRead ? readAvailable() : std::exchange(m_rest, QByteArray());
        if (bytes.isEmpty()) {
            return;
        }
        const quint64 discarded = counters().discardedBytes;
        const qsizetype used = newRead ? m_decoder.decode(bytes.constData(), bytes.size(), *this)
                                       : m_decoder.resume(bytes.constData(), bytes.size(), *this);
        if (counters().discardedBytes != discarded) {
            qCDebug(transportLog, "%llu bytes discarded", counters().discardedBytes - discarded);
        }
        if (used < bytes.size()) {
            m_rest = bytes.mid(static_cast<int>(used));
        }
    }
}

} // namespace Tolvar::Varundo
