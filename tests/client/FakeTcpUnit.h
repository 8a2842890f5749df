#ifndef TOLVAR_VARUNDO_TESTS_FAKETCPUNIT_H
#define TOLVAR_VARUNDO_TESTS_FAKETCPUNIT_H

#include "FakeUnit.h"

#include <QTcpServer>

class QTcpSocket;

namespace Tolvar::Varundo::Tests {

/// A unit behind a real TCP connection on a free port.
class FakeTcpUnit final : public FakeUnit
{
    Q_OBJECT

public:
    FakeTcpUnit();

    [[nodiscard]] quint16 port() const { return m_server.serverPort(); }
    [[nodiscard]] bool hasClient() const { return m_socket != nullptr; }
    [[nodiscard]] int connections() const { return m_connections; }

    void say(const QByteArray& bytes) override;
    void hangUp() override;

private:
    void accept();

    QTcpServer m_server;
    QTcpSocket* m_socket = nullptr;
    int m_connections = 0;
};

} // namespace Tolvar::Varundo::Tests

#endif
