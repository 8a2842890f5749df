// libmodbus' server, as its documentation sets one up: one client at a time, blocking.

#include "ServerArguments.h"

#include <modbus/modbus.h>

#include <unistd.h>

using namespace Tolvar::Varundo;

int main(int argc, char** argv)
{
    const Bench::ServerArguments arguments = Bench::serverArguments(argc, argv, Bench::Wire::Modbus);
    constexpr int registerCount = 128;
    modbus_t* const context = modbus_new_tcp("127.0.0.1", arguments.port);
    modbus_mapping_t* const mapping = modbus_mapping_new(0, 0, registerCount, registerCount);
    int listener = context && mapping ? modbus_tcp_listen(context, 1) : -1;
    if (listener < 0) {
        std::fprintf(stderr, "%s\n", modbus_strerror(errno));
        return 1;
    }
    Bench::tellReady();

    std::uint8_t query[MODBUS_TCP_MAX_ADU_LENGTH];
    while (modbus_tcp_accept(context, &listener) >= 0) {
        for (int size = 0; size >= 0; size = modbus_receive(context, query)) {
            if (size > 0 && modbus_reply(context, query, size, mapping) < 0) {
                break;
            }
        }
        close(modbus_get_socket(context));
    }
    return 1;
}
