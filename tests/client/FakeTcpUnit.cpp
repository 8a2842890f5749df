#include "FakeTcpUnit.h"

#include <QTcpSocket>

namespace Tolvar::Varundo::Tests {

FakeTcpUnit::FakeTcpUnit()
{
    connect(&m_server, &QTcpServer::newConnection, this, &FakeTcpUnit::accept);
    if (!m_server.listen(QHostAddress::LocalHost)) {
        qFatal("no free port: %s", qPrintable(m_server.errorString()));
    }
}

void FakeTcpUnit::say(const QByteArray& bytes)
{
    if (m_socket) {
        m_socket->write(bytes);
        m_socket->flush();
    }
}

void FakeTcpUnit::hangUp()
{
    if (m_socket) {
        m_socket->disconnectFromHost();
    }
}

void FakeTcpUnit::accept()
{
    m_socket = m_server.nextPendingConnection();
    ++m_connections;
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this, [this] { take(m_socket->readAll()); });
    connect(m_socket, &QTcpSocket::disconnected, this, [this, socket = m_socket] {
        m_socket = m_socket == socket ? nullptr : m_socket;
        socket->deleteLater();
    });
}

} // namespace Tolvar::Varundo::Tests
