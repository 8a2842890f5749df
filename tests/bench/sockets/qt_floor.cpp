// The least that a server on QTcpServer can do: it decodes nothing, counts bytes, and answers each request
// with the writes that the protocol demands, each flushed by itself.

#include "ServerArguments.h"

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>

using namespace Tolvar::Varundo;

int main(int argc, char** argv)
{
    const Bench::ServerArguments arguments = Bench::serverArguments(argc, argv, Bench::Wire::Zel);
    const QCoreApplication application(argc, argv);
    const auto requestSize = static_cast<qint64>(arguments.scenario.requestSize());
    const auto acknowledgement = QByteArray::fromStdString(arguments.scenario.acknowledgement);
    const auto answer = QByteArray::fromStdString(arguments.scenario.answer);

    QTcpServer server;
    QObject::connect(&server, &QTcpServer::newConnection, &server, [&] {
        QTcpSocket* const socket = server.nextPendingConnection();
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [&, socket, received = qint64(0)]() mutable {
            received += socket->readAll().size();
            for (; received >= requestSize; received -= requestSize) {
                socket->write(acknowledgement);
                socket->flush();
                if (!answer.isEmpty()) {
                    socket->write(answer);
                    socket->flush();
                }
            }
        });
    });
    if (!server.listen(QHostAddress::Any, arguments.port)) {
        std::fprintf(stderr, "%s\n", qPrintable(server.errorString()));
        return 1;
    }
    Bench::tellReady();
    return QCoreApplication::exec();
}
