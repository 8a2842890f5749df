#ifndef TOLVAR_VARUNDO_PROTOCOL_H
#define TOLVAR_VARUNDO_PROTOCOL_H

#include <QtGlobal>

/// The numbers that both ends of the wire must agree on before any command is spoken.
namespace Tolvar::Varundo::Protocol {

constexpr quint8 Stx = 0x02;  ///< first byte of every frame
constexpr quint8 Etx = 0x03;  ///< last byte of every frame
constexpr quint8 Ack = 0x06;  ///< one-byte reply: frame accepted
constexpr quint8 Nack = 0x15; ///< one-byte reply: frame rejected

constexpr int HeaderSize = 5;         ///< STX, command, group, length low, length high
constexpr int FrameOverhead = 6;      ///< header and ETX
constexpr int MaxPayloadSize = 65535; ///< what the 16-bit length field can announce

constexpr quint8 FirstPrintable = 0x20; ///< outside a frame, this byte and all above it are typed text

/// Command groups. The only place where they are numbered.
enum Group : quint8 { Execute = 0, Read = 1, Write = 2 };

constexpr quint8 LastGroup = Write;
constexpr quint8 NoGroup = 0xFF; ///< never a valid group; a record that holds it is dropped

constexpr int DefaultTcpPort = 9998;
constexpr int DefaultBaudrate = 9600; ///< 8 data bits, no parity, one stop bit, no flow control

} // namespace Tolvar::Varundo::Protocol

#endif
