#include "FakeUnit.h"

#include <QTcpSocket>

namespace Tolvar::Varundo::Tests {

namespace {

constexpr quint8 StatusLineText = 0x90;
constexpr int LastStatusLine = 4;

} // namespace

FakeUnit::FakeUnit()
{
    connect(&m_server, &QTcpServer::newConnection, this, &FakeUnit::accept);
    if (!m_server.listen(QHostAddress::LocalHost)) {
        qFatal("no free port: %s", qPrintable(m_server.errorString()));
    }
}

void FakeUnit::behaveWell(const CommandMessage& frame)
{
    say(ack());
    if (frame.grpId != Protocol::Read) {
        return;
    }
    const int line = frame.data.toHex().toInt();
    if (frame.cmdId == StatusLineText && line > LastStatusLine) {
        say(answer(frame.cmdId, QByteArray(1, static_cast<char>(line))));
    } else if (m_answers.contains(frame.cmdId)) {
        say(answer(frame.cmdId, m_answers.value(frame.cmdId)));
    }
}

void FakeUnit::say(const QByteArray& bytes)
{
    if (m_socket) {
        m_socket->write(bytes);
        m_socket->flush();
    }
}

void FakeUnit::hangUp()
{
    if (m_socket) {
        m_socket->disconnectFromHost();
    }
}

QByteArray FakeUnit::answer(quint8 cmdId, const QByteArray& payload)
{
    return encodeFrame({cmdId, Protocol::Read, static_cast<quint16>(payload.size()), payload});
}

void FakeUnit::frameAccepted(const CommandMessage& frame)
{
    m_frames.append(frame);
    if (m_behaviour) {
        const Behaviour behaviour = m_behaviour; // it may set another one
        behaviour(frame);
    } else {
        behaveWell(frame);
    }
}

void FakeUnit::accept()
{
    m_socket = m_server.nextPendingConnection();
    ++m_connections;
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this, &FakeUnit::read);
    connect(m_socket, &QTcpSocket::disconnected, this, [this, socket = m_socket] {
        m_socket = m_socket == socket ? nullptr : m_socket;
        socket->deleteLater();
    });
}

void FakeUnit::read()
{
    const QByteArray bytes = m_socket->readAll();
    m_received.append(bytes);
    m_decoder.decode(bytes.constData(), bytes.size(), *this);
}

} // namespace Tolvar::Varundo::Tests
