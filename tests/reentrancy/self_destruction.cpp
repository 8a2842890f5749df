// self_destruction tcp|serial|error: destroys a transport in a slot of its own signal, which no host should.
// Exits 0 if that was survived and told on the log.

#include "Controller.h"

#include <Tolvar/Varundo/SerialAdaptor.h>
#include <Tolvar/Varundo/TcpServer.h>

#include <QCoreApplication>

#include <cstring>
#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

bool wasTold = false;

void noteCriticals(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    wasTold = wasTold || (type == QtCriticalMsg && text.contains(QLatin1String("deleteLater")));
}

/// A frame, and characters and another one behind it in the same read.
QByteArray oneRead()
{
    return inertFrame() + "typed" + inertFrame() + inertFrame();
}

bool destroyServer()
{
    auto server = std::make_unique<TcpServer>();
    WireClient client;
    QObject::connect(server.get(), &TcpServer::receivedValidMessage, [&] {
        server.reset();
        spin(30);
    });
    client.send(oneRead());
    return spinUntil([&] { return !client.isConnected() && !server; });
}

bool destroyAdaptor(bool byAnError)
{
    PseudoAdapter adapter("/dev/ttyUSB5");
    auto adaptor = std::make_unique<SerialAdaptor>(QStringLiteral("/dev/ttyUSB1"));
    const auto destroy = [&] {
        adaptor.reset();
        spin(30);
    };
    QObject::connect(adaptor.get(), &SerialAdaptor::receivedValidMessage, destroy);
    QObject::connect(adaptor.get(), &SerialAdaptor::serialPortError, destroy);
    adaptor->openSerialPort(QStringLiteral("ttyUSB5"));
    byAnError ? adapter.hangUpOnly() : static_cast<void>(adapter.send(oneRead()));
    return spinUntil([&] { return !adaptor && !adapter.isOpenedByUnit(); });
}

} // namespace

int main(int argc, char** argv)
{
    alarm(240); // who hangs is ended
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        return 2;
    }
    qInstallMessageHandler(noteCriticals);
    const bool survived = std::strcmp(argv[1], "tcp") == 0
                              ? destroyServer()
                              : destroyAdaptor(std::strcmp(argv[1], "error") == 0);
    return survived && wasTold ? 0 : 1;
}
