#ifndef TOLVAR_VARUNDO_CLIENT_REPLY_H
#define TOLVAR_VARUNDO_CLIENT_REPLY_H

#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/CommandMessage.h>

#include <QObject>
#include <QString>

namespace Tolvar::Varundo::Client {

/// What becomes of one request. Made by ZelClient, lives in its thread, and is its child; whoever made the
/// request may deleteLater() it once it has finished, or at any time if the outcome does not matter.
class ZEL_CLIENT_EXPORT Reply final : public QObject
{
    Q_OBJECT

public:
    enum class Outcome : quint8 {
        Pending,
        Acknowledged,   ///< a write or execute command was accepted; the protocol tells no more than that
        Answered,       ///< a read command was accepted and answered
        Rejected,       ///< the unit sent NACK
        TimedOut,       ///< neither ACK nor NACK came
        Unanswered,     ///< a read command was accepted, but no answer came
        Abandoned,      ///< sent behind a request that failed: the unit may or may not have acted on it
        NotSent,        ///< no valid request; nothing went onto the wire
        ConnectionLost, ///< the connection ended first
    };
    Q_ENUM(Outcome)

    [[nodiscard]] Outcome outcome() const { return m_outcome; }
    [[nodiscard]] bool isFinished() const { return m_outcome != Outcome::Pending; }
    [[nodiscard]] bool succeeded() const
    {
        return m_outcome == Outcome::Acknowledged || m_outcome == Outcome::Answered;
    }

    [[nodiscard]] const CommandMessage& command() const { return m_command; }
    [[nodiscard]] const CommandMessage& answer() const { return m_answer; } ///< empty unless Answered
    [[nodiscard]] QString errorText() const { return m_errorText; }         ///< empty on success

    /// Runs an event loop until the reply has finished. It ends for certain: every request has a time limit.
    Outcome wait();

signals:
    /// Emitted from the event loop, never from within a call into the client.
    void finished();

private:
    friend class ZelClient;
    Reply(const CommandMessage& command, QObject* parent);
    void finish(Outcome outcome, const QString& errorText);
    void finish(const CommandMessage& answer);

    CommandMessage m_command;
    CommandMessage m_answer;
    QString m_errorText;
    Outcome m_outcome = Outcome::Pending;
};

} // namespace Tolvar::Varundo::Client

#endif
