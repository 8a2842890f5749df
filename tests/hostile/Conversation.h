#ifndef TOLVAR_VARUNDO_TEST_CONVERSATION_H
#define TOLVAR_VARUNDO_TEST_CONVERSATION_H

#include "RawPeer.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>

namespace Tolvar::Varundo::Test {

/// Requests and what must come back for them, byte by byte, sent as fast as the other end takes them.
class Conversation
{
public:
    void add(const QByteArray& request, const QByteArray& replies)
    {
        m_requests += request;
        m_replies += replies;
    }
    void repeat(int times) { m_times = times; }

    /// Reads nothing meanwhile. False if nothing at all was taken.
    bool sendUntilBlocked(RawPeer& peer)
    {
        sendMore(peer, 500);
        return m_sent > 0;
    }

    /// Sends the rest while it reads; true if all came back as it should.
    bool finish(RawPeer& peer)
    {
        QElapsedTimer sinceProgress;
        sinceProgress.start();
        while (m_compared < m_replies.size() * m_times) {
            sendMore(peer, 0);
            const QByteArray received = peer.receiveUpTo(1 << 20, 100);
            if (!received.isEmpty()) {
                sinceProgress.restart();
            } else if (sinceProgress.hasExpired(30000)) {
                return false;
            }
            if (!compare(received)) {
                return false;
            }
        }
        return true;
    }

    QString report() const
    {
        return QStringLiteral("%1 of %2 bytes sent; as expected up to byte %3 of %4")
            .arg(m_sent)
            .arg(m_requests.size() * m_times)
            .arg(m_compared)
            .arg(m_replies.size() * m_times);
    }

private:
    void sendMore(RawPeer& peer, int patienceMs)
    {
        const qint64 total = m_requests.size() * m_times;
        while (m_sent < total) {
            const QByteArray block = m_requests.mid(int(m_sent % m_requests.size()));
            const qint64 count = peer.sendUntilBlocked(block, block.size(), patienceMs);
            m_sent += count;
            if (count < block.size()) {
                return;
            }
        }
    }

    bool compare(const QByteArray& received)
    {
        for (int at = 0; at < received.size();) {
            const int from = int(m_compared % m_replies.size());
            const int size = qMin(received.size() - at, m_replies.size() - from);
            if (memcmp(received.constData() + at, m_replies.constData() + from, size_t(size)) != 0) {
                return false;
            }
            at += size;
            m_compared += size;
        }
        return true;
    }

    QByteArray m_requests;
    QByteArray m_replies;
    qint64 m_times = 1;
    qint64 m_sent = 0;
    qint64 m_compared = 0;
};

} // namespace Tolvar::Varundo::Test

#endif
