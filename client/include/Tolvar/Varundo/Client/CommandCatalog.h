#ifndef TOLVAR_VARUNDO_CLIENT_COMMANDCATALOG_H
#define TOLVAR_VARUNDO_CLIENT_COMMANDCATALOG_H

#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QByteArray>
#include <QLatin1String>
#include <QStringView>

#include <optional>

/// Every command of the ZEL interface, by number and by name. Constant data; usable from any thread.
namespace Tolvar::Varundo::Client {

/// What a command does to its element, or asks of it.
enum class Verb : quint8 {
    Value,
    State,
    Text,
    Position,
    Orientation,
    Color,
    Format,
    Show,
    Hide,
    Toggle,
    On,
    Off,
    Clear,
    MainPipe,
    Lateral,
};

/// How the bytes of a payload are laid out. The same kind is used for either direction.
enum class PayloadKind : quint8 {
    None,
    Codec,           ///< text codec number
    Format,          ///< display format number
    Single,          ///< one big-endian single
    Position,        ///< column, row
    Date,            ///< day, month, century, year within the century
    Time,            ///< hour, minute, second; an answer has a zero byte more
    VideoCounter,    ///< hours, minutes, seconds; an answer has the frames as well
    Text,            ///< text in the selected codec, up to the end of the frame
    LineText,        ///< line number, text
    Colors,          ///< text and background colour number
    NumberedColors,  ///< line or element number, colours
    Point3D,         ///< three big-endian doubles
    Orientation,     ///< two big-endian singles
    FreeText,        ///< unused, duration, unused, up to five texts with a zero byte between them
    PackedNumber,    ///< line number as packed decimal digits
    Index,           ///< plain number
    State,           ///< format, visible, column, row
    StatusLineState, ///< line number, colours, visible, two zero bytes
    Laser,           ///< index, then a big-endian double for the indexes that exist
    Measurement3D,   ///< three big-endian doubles and a single
};

struct CommandInfo
{
    Protocol::Group group;
    quint8 id;
    const char* element; ///< kebab case; of an indexed element the name without its number
    Verb verb;
    PayloadKind request;
    PayloadKind answer; ///< None unless the group is Read
};

/// All rows in the order of group and id.
class CommandRange
{
public:
    constexpr CommandRange(const CommandInfo* first, const CommandInfo* last)
        : m_first(first)
        , m_last(last)
    {}
    [[nodiscard]] constexpr const CommandInfo* begin() const { return m_first; }
    [[nodiscard]] constexpr const CommandInfo* end() const { return m_last; }
    [[nodiscard]] constexpr qsizetype size() const { return m_last - m_first; }

private:
    const CommandInfo* m_first;
    const CommandInfo* m_last;
};

[[nodiscard]] ZEL_CLIENT_EXPORT CommandRange allCommands();

/// Null if there is no such command.
[[nodiscard]] ZEL_CLIENT_EXPORT const CommandInfo* findCommand(quint8 group, quint8 id);
[[nodiscard]] ZEL_CLIENT_EXPORT const CommandInfo* findCommand(Protocol::Group group, QStringView element,
                                                               Verb verb);

/// The message that carries this command. A payload beyond Protocol::MaxPayloadSize has no right length;
/// ZelClient refuses to send it.
[[nodiscard]] ZEL_CLIENT_EXPORT CommandMessage makeCommand(const CommandInfo& info,
                                                           const QByteArray& payload = QByteArray());

[[nodiscard]] ZEL_CLIENT_EXPORT QLatin1String groupName(Protocol::Group group);
[[nodiscard]] ZEL_CLIENT_EXPORT QLatin1String verbName(Verb verb);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<Verb> verbFromName(QStringView name);

/// The layout in words, for listings; empty for None.
[[nodiscard]] ZEL_CLIENT_EXPORT QLatin1String payloadLayout(PayloadKind kind);

/// True for elements of which there are several under one command: the number goes into the payload.
[[nodiscard]] ZEL_CLIENT_EXPORT bool isIndexedElement(QStringView element);

/// The numbers by which the element colour command tells elements apart. They are not the command ids.
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<quint8> elementColorNumber(QStringView element);
[[nodiscard]] ZEL_CLIENT_EXPORT QLatin1String elementOfColorNumber(quint8 number);

} // namespace Tolvar::Varundo::Client

#endif
