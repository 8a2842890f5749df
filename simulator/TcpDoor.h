#ifndef TOLVAR_VARUNDO_SIMULATOR_TCPDOOR_H
#define TOLVAR_VARUNDO_SIMULATOR_TCPDOOR_H

#include <QString>

namespace Tolvar::Varundo::Simulator {

/// Answers what the library does not tell about its TCP port. It goes on without a port that is taken, as a
/// unit has to; a simulator that nobody can reach would only puzzle. No state.
class TcpDoor
{
public:
    /// A port that nobody listens on at this moment; 0 if the machine has none.
    static int freePort();

    /// True if this very process listens there; another process that does is not taken for it.
    static bool isOpen(int port);

    /// Why nobody can listen there, in the system's words.
    static QString whyClosed(int port);
};

} // namespace Tolvar::Varundo::Simulator

#endif
