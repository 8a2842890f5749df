#ifndef TOLVAR_VARUNDO_RUNNER_INTURN_H
#define TOLVAR_VARUNDO_RUNNER_INTURN_H

namespace Tolvar::Varundo {

/// Takes steps one after the other for as long as a condition holds; asked before each step and after the
/// last. Returns whether it held to the end.
///
/// Each step calls the host, or something that the host listens to. It may do there what it likes: delete the
/// element that is being changed, load another profile, destroy the Runner.
template <class Condition, class... Steps>
bool inTurn(const Condition& holds, const Steps&... steps)
{
    return ((holds() && (steps(), true)) && ...) && holds();
}

} // namespace Tolvar::Varundo

#endif
