#ifndef TOLVAR_VARUNDO_TEST_ISOLATION_H
#define TOLVAR_VARUNDO_TEST_ISOLATION_H

#include <QByteArray>
#include <QList>

namespace Tolvar::Varundo::Test {

/// Whether this program was started by `isolate` with an own "net" or an own "dev". Without them it would
/// meet the machine's ports and device nodes, and other tests'.
inline bool hasOwn(const char* what)
{
    return qgetenv("VARUNDO_TEST_ISOLATION").split(',').contains(what);
}

constexpr const char* NeedsOwnNetwork = "needs a network of its own, which this machine does not permit";
constexpr const char* NeedsOwnDevices = "needs a /dev of its own, which this machine does not permit";

} // namespace Tolvar::Varundo::Test

#endif
