#ifndef TOLVAR_VARUNDO_TEST_OBSERVEDTCPSERVER_H
#define TOLVAR_VARUNDO_TEST_OBSERVEDTCPSERVER_H

#include "WireClient.h"
#include "WireOutcome.h"

#include <Tolvar/Varundo/TcpServer.h>

#include <QStringList>
#include <QTcpServer>
#include <QtTest>

#include <functional>
#include <memory>
#include <utility>

namespace Tolvar::Varundo::Test {

/// A server on its default port that writes down what it passes on, and acts on it as it is told.
class ObservedTcpServer
{
public:
    ObservedTcpServer()
        : m_server(std::make_unique<TcpServer>())
    {
        QObject::connect(m_server.get(), &TcpServer::receivedValidMessage,
                         [this](const CommandMessage& record) {
                             m_records.append(describe(record));
                             if (m_action) {
                                 m_action(record);
                             }
                         });
        QObject::connect(m_server.get(), &TcpServer::printableCharReceived,
                         [this](char byte) { m_typed.append(byte); });
        // Queued behind the server's own connection: a client that is counted is being served.
        if (const auto* listener = m_server->findChild<QTcpServer*>()) {
            QObject::connect(
                listener, &QTcpServer::newConnection, listener, [this] { ++m_connections; },
                Qt::QueuedConnection);
        }
    }

    [[nodiscard]] TcpServer& operator*() { return *m_server; }
    [[nodiscard]] TcpServer* operator->() { return m_server.get(); }
    void destroy() { m_server.reset(); }

    /// The server's ends of its connections, older ones included.
    [[nodiscard]] QList<QObject*> sockets() const
    {
        QList<QObject*> found;
        for (QObject* const child : m_server->findChildren<QObject*>()) {
            if (child->inherits("Tolvar::Varundo::ClientSocket")) {
                found.append(child);
            }
        }
        return found;
    }

    /// What is done with every record that is passed on.
    void onRecord(std::function<void(const CommandMessage&)> action) { m_action = std::move(action); }

    /// A client that the server has taken on; null if it has not within a few seconds.
    [[nodiscard]] std::unique_ptr<WireClient> connectClient()
    {
        const int before = m_connections;
        auto client = std::make_unique<WireClient>(static_cast<quint16>(m_server->listeningPort()));
        const bool takenOn = QTest::qWaitFor([&] { return m_connections > before; });
        return takenOn && client->isConnected() ? std::move(client) : nullptr;
    }

    [[nodiscard]] const QStringList& records() const { return m_records; }
    [[nodiscard]] const QByteArray& typed() const { return m_typed; }
    [[nodiscard]] int connections() const { return m_connections; }
    void forget()
    {
        m_records.clear();
        m_typed.clear();
    }

private:
    std::unique_ptr<TcpServer> m_server;
    std::function<void(const CommandMessage&)> m_action;
    QStringList m_records;
    QByteArray m_typed;
    int m_connections = 0;
};

} // namespace Tolvar::Varundo::Test

#endif
