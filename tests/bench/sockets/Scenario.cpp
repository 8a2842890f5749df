#include "Scenario.h"

namespace Tolvar::Varundo::Bench {

namespace {

constexpr std::size_t manyOutstanding = 64;

std::string bytes(std::initializer_list<int> values)
{
    std::string text;
    for (const int value : values) {
        text += static_cast<char>(value);
    }
    return text;
}

// The unit's own protocol.

std::string frame(int command, int group, const std::string& payload)
{
    const int length = static_cast<int>(payload.size());
    return bytes({0x02, command, group, length & 0xFF, length >> 8}) + payload + bytes({0x03});
}

/// Asks for a measured value: four bytes. The bare host's camera has never moved.
Scenario zelRead()
{
    const std::string zero(4, '\0');
    return {{}, {frame(0xF0, 0x01, {})}, bytes({0x06}), frame(0xF0, 0x01, zero), 1, false};
}

/// Moves an element on the overlay, to and fro.
Scenario zelWrite()
{
    return {
        {},   {frame(0x32, 0x02, bytes({10, 2})), frame(0x32, 0x02, bytes({11, 3}))}, bytes({0x06}), {}, 1,
        false};
}

/// The largest frame that there is. An execute command's payload is carried and never read; each toggles an
/// element.
Scenario zelLarge()
{
    return {{}, {frame(0x32, 0x00, std::string(65535, 'x'))}, bytes({0x06}), {}, 1, false};
}

/// The longest text: a status line's, which is decoded, and changes the overlay.
Scenario zelText()
{
    const std::string line(1, '\1');
    const std::string text(65534, 'x');
    return {{},
            {frame(0x90, 0x02, line + text), frame(0x90, 0x02, line + "y" + text.substr(1))},
            bytes({0x06}),
            {},
            1,
            false};
}

// Modbus TCP at equal work: a measured value has two registers of 16 bits, a position too.

std::string modbus(int function, const std::string& rest)
{
    const int length = static_cast<int>(rest.size()) + 2;
    return bytes({0, 1, 0, 0, length >> 8, length & 0xFF, 1, function}) + rest;
}

std::string registers(std::size_t count, char first)
{
    std::string values(count * 2, '\0');
    values[1] = first;
    return values;
}

Scenario modbusWriteOf(int count)
{
    const auto request = [count](char first) {
        return modbus(16,
                      bytes({0, 0, 0, count, count * 2}) + registers(static_cast<std::size_t>(count), first));
    };
    return {{}, {request(10), request(11)}, {}, modbus(16, bytes({0, 0, 0, count})), 1, false};
}

Scenario modbusRead()
{
    return {{}, {modbus(4, bytes({0, 0, 0, 2}))}, {}, modbus(4, bytes({4}) + registers(2, 0)), 1, false};
}

constexpr int mostRegisters = 123;

} // namespace

std::optional<Scenario> scenarioNamed(std::string_view name, Wire wire)
{
    const bool zel = wire == Wire::Zel;
    Scenario scenario;
    if (name == "one" || name == "many" || name == "bytes") {
        scenario = zel ? zelRead() : modbusRead();
    } else if (name == "writes") {
        scenario = zel ? zelWrite() : modbusWriteOf(2);
    } else if (name == "large") {
        scenario = zel ? zelLarge() : modbusWriteOf(mostRegisters);
    } else if (name == "text" && zel) {
        scenario = zelText();
    } else {
        return std::nullopt;
    }
    scenario.name = name;
    scenario.outstanding = name == "many" ? manyOutstanding : 1;
    scenario.byteByByte = name == "bytes";
    return scenario;
}

} // namespace Tolvar::Varundo::Bench
