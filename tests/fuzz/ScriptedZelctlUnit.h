#ifndef TOLVAR_VARUNDO_TEST_SCRIPTEDZELCTLUNIT_H
#define TOLVAR_VARUNDO_TEST_SCRIPTEDZELCTLUNIT_H

#include <QByteArray>

namespace Tolvar::Varundo::Test {

/// What stands behind zelctl's Unit in a fuzzer: no connection, but payloads that a unit would answer with,
/// taken from the input. It is linked in place of the real one. When the payloads are used up the connection
/// is lost, so that whatever goes on until then ends.
class ScriptedZelctlUnit
{
public:
    static void setAnswers(const QByteArray& answers); ///< each a length and its bytes
    static int requests();                             ///< since then
};

} // namespace Tolvar::Varundo::Test

#endif
