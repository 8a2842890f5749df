#ifndef TOLVAR_VARUNDO_PARSER_COMMANDTABLE_H
#define TOLVAR_VARUNDO_PARSER_COMMANDTABLE_H

#include <QtGlobal>

#include <array>
#include <cstddef>

namespace Tolvar::Varundo {

/// One command of a group: its id, and the function that carries it out.
template <class Handler>
struct CommandRow
{
    quint8 id;
    Handler handler;
};

/// A group's commands by id, built at compile time from the rows that a parser writes down. Finding a
/// handler, or finding that there is none, is one look-up.
template <class Handler, std::size_t Count>
class CommandTable
{
public:
    constexpr explicit CommandTable(const CommandRow<Handler> (&rows)[Count])
    {
        for (std::size_t i = 0; i < Count; ++i) {
            m_handlers[i + 1] = rows[i].handler;
            m_indexes[rows[i].id] = static_cast<quint8>(i + 1);
        }
    }

    /// Null for an id that is not in the table.
    constexpr Handler find(quint8 id) const { return m_handlers[m_indexes[id]]; }

private:
    static_assert(Count < 256, "an index is one byte");

    std::array<quint8, 256> m_indexes{};
    std::array<Handler, Count + 1> m_handlers{}; // the first is that of every unknown id
};

/// Whether the ids ascend, so that a reader finds a row where it is expected, and none stands twice.
template <class Handler, std::size_t Count>
constexpr bool idsAscend(const CommandRow<Handler> (&rows)[Count])
{
    for (std::size_t i = 1; i < Count; ++i) {
        if (rows[i - 1].id >= rows[i].id) {
            return false;
        }
    }
    return true;
}

} // namespace Tolvar::Varundo

#endif
