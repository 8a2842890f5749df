#ifndef TOLVAR_VARUNDO_TEST_TRAFFIC_H
#define TOLVAR_VARUNDO_TEST_TRAFFIC_H

#include <Tolvar/Varundo/Client/CommandCatalog.h>
#include <Tolvar/Varundo/Client/ZelClient.h>

#include <QObject>
#include <QString>

#include <random>

class QIODevice;

namespace Tolvar::Varundo::Test {

/// A controller that never rests: reads, writes, executes and types at random, several requests under way at
/// once. What it sends depends on the seed alone.
class Traffic final : public QObject
{
    Q_OBJECT

public:
    static constexpr int Window = 8; ///< requests under way at once
    static constexpr int TimeoutMs = 1000;

    Traffic(QIODevice* device, const QString& name, quint32 seed, QObject* parent = nullptr);

    /// Reads are answered by the selected interface alone; on another only writes are sent.
    void setSelected(bool selected) { m_selected = selected; }
    /// Requests that fail while nobody can be expected to answer are no errors.
    void setDisturbed(bool disturbed) { m_disturbed = disturbed; }

    void start();
    void stop(); ///< sends nothing more; what is under way comes to its end
    int underWay() const { return m_underWay; }

    qint64 done() const { return m_done; }
    qint64 lost() const { return m_lost; }     ///< while disturbed
    qint64 errors() const { return m_errors; } ///< at any other time
    QString firstError() const { return m_firstError; }

private:
    void sendNext();
    void finished(const Client::Reply& reply);
    CommandMessage nextCommand();
    QByteArray randomPayload(Client::PayloadKind kind);
    int random(int below) { return std::uniform_int_distribution<int>(0, below - 1)(m_random); }

    Client::ZelClient m_client;
    std::mt19937 m_random;
    QString m_firstError;
    qint64 m_sent = 0;
    qint64 m_done = 0;
    qint64 m_lost = 0;
    qint64 m_errors = 0;
    int m_underWay = 0;
    bool m_running = false;
    bool m_selected = false;
    bool m_disturbed = false;
};

} // namespace Tolvar::Varundo::Test

#endif
