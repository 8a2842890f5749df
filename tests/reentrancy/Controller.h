#ifndef TOLVAR_VARUNDO_TEST_CONTROLLER_H
#define TOLVAR_VARUNDO_TEST_CONTROLLER_H

#include "PseudoAdapter.h"
#include "WireClient.h"
#include "ZelPeer.h"

#include <QEventLoop>
#include <QTimer>

#include <memory>
#include <vector>

namespace Tolvar::Varundo::Test {

/// Turns an event loop of its own, as a dialog does.
inline void spin(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

template <class Condition>
bool spinUntil(Condition condition, int timeoutMs = 60000)
{
    for (int waited = 0; waited < timeoutMs; waited += 5) {
        if (condition()) {
            return true;
        }
        spin(5);
    }
    return condition();
}

/// Nobody knows this command: it is acknowledged, and that is all.
inline QByteArray inertFrame()
{
    return frame(Protocol::Execute, 0x33);
}

/// The other end of one of the two roads. It can go and come back while the unit is busy.
class Controller
{
public:
    Controller() = default;
    virtual ~Controller() = default;
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;

    /// Arrives, waits until the unit serves it, and forgets what came until then.
    [[nodiscard]] bool arriveAndWait()
    {
        forget();
        if (!arrive()) {
            return false;
        }
        send(inertFrame());
        const bool served = spinUntil([this] { return take() == Ack; });
        forget();
        return served;
    }

    virtual bool arrive() = 0;
    virtual void leave() = 0;
    virtual void send(const QByteArray& bytes) = 0;
    [[nodiscard]] virtual QByteArray take() = 0; ///< all that has come, from whichever end, since forget()
    virtual void forget() = 0;
};

class TcpController : public Controller
{
public:
    explicit TcpController(int port)
        : m_port(static_cast<quint16>(port))
    {}

    /// Also while an earlier connection stands: then there is a newer client.
    bool arrive() override
    {
        m_clients.push_back(std::make_unique<WireClient>(m_port));
        return m_clients.back()->isConnected();
    }
    void leave() override { m_clients.back()->close(); }
    void send(const QByteArray& bytes) override { m_clients.back()->send(bytes); }
    QByteArray take() override
    {
        QByteArray all;
        for (const auto& client : m_clients) {
            all += client->received();
        }
        return all;
    }
    void forget() override
    {
        for (const auto& client : m_clients) {
            static_cast<void>(client->received());
            client->forget();
        }
    }

private:
    quint16 m_port;
    std::vector<std::unique_ptr<WireClient>> m_clients;
};

class SerialController : public Controller
{
public:
    /// Plugs the adapter in; the one before has been away long enough for the unit to have noticed.
    bool arrive() override
    {
        if (m_adapter) {
            spin(2 * 1000 + 200);
            if (!m_adapter->plug()) {
                return false;
            }
        } else {
            m_adapter = std::make_unique<PseudoAdapter>();
        }
        return m_adapter->isPlugged() && spinUntil([this] { return m_adapter->isOpenedByUnit(); });
    }
    void leave() override
    {
        m_received += m_adapter->take();
        m_adapter->unplug();
    }
    void send(const QByteArray& bytes) override { static_cast<void>(m_adapter->send(bytes)); }
    QByteArray take() override
    {
        if (m_adapter) {
            m_received += m_adapter->take();
        }
        return m_received;
    }
    void forget() override
    {
        static_cast<void>(take());
        m_received.clear();
    }

private:
    std::unique_ptr<PseudoAdapter> m_adapter;
    QByteArray m_received;
};

} // namespace Tolvar::Varundo::Test

#endif
