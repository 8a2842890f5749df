#ifndef TOLVAR_VARUNDO_RUNNER_HOSTMISTAKES_H
#define TOLVAR_VARUNDO_RUNNER_HOSTMISTAKES_H

#include <QObject>

namespace Tolvar::Varundo {

// What a host may not do in a call of the library's, docs/integration.md says why. A debug build stops at it;
// any other does not look, and what becomes of it is not defined.

/// To be called wherever the event loop, or who changes the overlay, comes in.
inline void refuseWhileElementsAreRead(bool elementsAreRead)
{
    Q_ASSERT_X(!elementsAreRead, "Tolvar::Varundo::Runner",
               "the event loop is turned or the overlay is changed in getElementList() or in an element's "
               "getter, while the library holds the overlay's mutex; queue it");
}

/// To be called when a manager's call has returned whose result is used.
inline void refuseEndOfManager(bool managerLives)
{
    Q_ASSERT_X(managerLives, "Tolvar::Varundo::Runner",
               "the overlay manager is destroyed in its own mutex(), getElementList() or createText(); use "
               "deleteLater()");
}

/// Only the Runner's own end may be the end of what it owns. By then it hears of nothing any more. The
/// witness is not the owned object itself: removing a profile breaks all connections of the data model.
inline void refuseDeletionByOthers(QObject* owned, const QObject* runner)
{
#if defined(QT_NO_DEBUG) && !defined(QT_FORCE_ASSERTS)
    Q_UNUSED(owned)
    Q_UNUSED(runner)
#else
    const auto* const witness = new QObject(owned);
    QObject::connect(
        witness, &QObject::destroyed, runner,
        [] {
            Q_ASSERT_X(
                false, "Tolvar::Varundo::Runner",
                "the data model, a parser or the responder is deleted, which is the Runner's; destroy the "
                "Runner");
        },
        Qt::DirectConnection);
#endif
}

} // namespace Tolvar::Varundo

#endif
