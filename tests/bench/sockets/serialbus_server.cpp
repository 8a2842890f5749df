// QtSerialBus' Modbus server, as its documentation sets one up.

#include "ServerArguments.h"

#include <QCoreApplication>
#include <QModbusTcpServer>

using namespace Tolvar::Varundo;

int main(int argc, char** argv)
{
    const Bench::ServerArguments arguments = Bench::serverArguments(argc, argv, Bench::Wire::Modbus);
    const QCoreApplication application(argc, argv);

    constexpr quint16 registerCount = 128;
    QModbusTcpServer server;
    QModbusDataUnitMap map;
    map.insert(QModbusDataUnit::InputRegisters, {QModbusDataUnit::InputRegisters, 0, registerCount});
    map.insert(QModbusDataUnit::HoldingRegisters, {QModbusDataUnit::HoldingRegisters, 0, registerCount});
    server.setMap(map);
    server.setConnectionParameter(QModbusDevice::NetworkPortParameter, arguments.port);
    server.setConnectionParameter(QModbusDevice::NetworkAddressParameter, QStringLiteral("127.0.0.1"));
    server.setServerAddress(1);
    if (!server.connectDevice()) {
        std::fprintf(stderr, "%s\n", qPrintable(server.errorString()));
        return 1;
    }
    Bench::tellReady();
    return QCoreApplication::exec();
}
