#ifndef TOLVAR_VARUNDO_TESTS_SESSIONPLAYER_H
#define TOLVAR_VARUNDO_TESTS_SESSIONPLAYER_H

#include "SessionScript.h"

#include <memory>
#include <vector>

namespace Tolvar::Varundo::Tests {

class ControllerLink;
class ExampleUnit;

/// Plays a session against a whole unit over TCP and compares every byte that comes back, and every fact that
/// the session states. Begins with a fresh unit. Lives in the main thread.
class SessionPlayer
{
public:
    SessionPlayer();
    ~SessionPlayer();

    /// What went wrong first, with file and line; empty when all was as written.
    [[nodiscard]] QString play(const SessionScript& script);

private:
    QString playStep(const SessionScript& script, int index);
    QString send(const SessionScript& script, int index);
    QString compare(const SessionScript::Step& expected, const QByteArray& received, int& at) const;
    QString check(const SessionScript::Step& step);
    QString happen(const SessionScript::Step& step);
    QString connectController();
    QString startUnit();
    QString olderControllersFailure();

    std::unique_ptr<ExampleUnit> m_unit;
    std::vector<std::unique_ptr<ControllerLink>> m_links; ///< the newest last
};

} // namespace Tolvar::Varundo::Tests

#endif
