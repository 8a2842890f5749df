#ifndef TOLVAR_VARUNDO_TEST_RECORDINGSINK_H
#define TOLVAR_VARUNDO_TEST_RECORDINGSINK_H

#include "WireOutcome.h"

#include <QStringList>

#include <functional>
#include <utility>
#include <vector>

namespace Tolvar::Varundo::Test {

/// A decoder's sink that writes down what it is told, in order, and may ask the decoder to stop.
class RecordingSink
{
public:
    void frameAccepted(const CommandMessage& record)
    {
        m_outcomes.push_back({WireOutcome::Kind::Accepted, 0, record});
    }
    void frameRejected() { m_outcomes.push_back({WireOutcome::Kind::Rejected, 0, {}}); }
    void printableByte(quint8 byte) { m_outcomes.push_back({WireOutcome::Kind::Printable, byte, {}}); }
    void byteDiscarded(quint8 byte) { m_outcomes.push_back({WireOutcome::Kind::Discarded, byte, {}}); }
    bool wantsMore()
    {
        ++m_timesAsked;
        return !m_wantsMore || m_wantsMore();
    }

    /// Answers the decoder's question whether to go on; without an answerer it always does.
    void answerWantsMore(std::function<bool()> answer) { m_wantsMore = std::move(answer); }

    [[nodiscard]] int timesAsked() const { return m_timesAsked; }
    [[nodiscard]] const std::vector<WireOutcome>& outcomes() const { return m_outcomes; }

    /// What was told since the last call, in words.
    [[nodiscard]] QStringList take()
    {
        QStringList words;
        for (const WireOutcome& outcome : m_outcomes) {
            words.append(describe(outcome));
        }
        m_outcomes.clear();
        return words;
    }

private:
    std::vector<WireOutcome> m_outcomes;
    std::function<bool()> m_wantsMore;
    int m_timesAsked = 0;
};

} // namespace Tolvar::Varundo::Test

#endif
