#include <Tolvar/Varundo/Client/Reply.h>

#include <QEventLoop>
#include <QMetaObject>
#include <QPointer>

namespace Tolvar::Varundo::Client {

Reply::Reply(const CommandMessage& command, QObject* parent)
    : QObject(parent)
    , m_command(command)
{}

Reply::Outcome Reply::wait()
{
    const QPointer<Reply> self(this);
    if (!isFinished()) {
        QEventLoop loop;
        connect(this, &Reply::finished, &loop, &QEventLoop::quit);
        connect(this, &QObject::destroyed, &loop, &QEventLoop::quit);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return self ? m_outcome : Outcome::ConnectionLost;
}

// Queued, so that nothing that a listener does, even deleting the client, happens inside the client.
void Reply::finish(Outcome outcome, const QString& errorText)
{
    m_outcome = outcome;
    m_errorText = errorText;
    QMetaObject::invokeMethod(this, &Reply::finished, Qt::QueuedConnection);
}

void Reply::finish(const CommandMessage& answer)
{
    m_answer = answer;
    finish(Outcome::Answered, QString());
}

} // namespace Tolvar::Varundo::Client
