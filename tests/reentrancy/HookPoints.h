#ifndef TOLVAR_VARUNDO_TEST_HOOKPOINTS_H
#define TOLVAR_VARUNDO_TEST_HOOKPOINTS_H

#include <QByteArray>

#include <functional>
#include <utility>

namespace Tolvar::Varundo::Test {

/// The places at which the library calls its host, by name: "backend.setOverlayVisible". One of them is
/// armed; the first call that reaches it does what the host has in mind. Outlives everything that has a place
/// in it.
class HookPoints
{
public:
    void arm(QByteArray point, std::function<void()> action)
    {
        m_armed = std::move(point);
        m_action = std::move(action);
    }

    /// What the host does in between reaches nothing.
    void pause() { m_paused = true; }
    void goOn() { m_paused = false; }

    /// Whoever calls this may be gone when it returns.
    void reached(const QByteArray& point)
    {
        if (!m_paused && !m_armed.isEmpty() && point == m_armed) {
            m_armed.clear();
            m_wasReached = true;
            m_action();
            m_isLeft = true;
        }
    }

    [[nodiscard]] bool wasReached() const { return m_wasReached; } ///< the host's action has begun
    [[nodiscard]] bool isLeft() const { return m_isLeft; }         ///< and it has ended

private:
    QByteArray m_armed;
    std::function<void()> m_action;
    bool m_paused = false;
    bool m_wasReached = false;
    bool m_isLeft = false;
};

} // namespace Tolvar::Varundo::Test

#endif
