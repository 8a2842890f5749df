#ifndef TOLVAR_VARUNDO_TESTS_SHRINKER_H
#define TOLVAR_VARUNDO_TESTS_SHRINKER_H

#include "Step.h"

#include <functional>
#include <optional>

namespace Tolvar::Varundo::Model {

/// Makes a sequence that fails short: leaves out what it fails without, first steps, then pieces of what is
/// sent, then bytes of payloads, until nothing more can be left out.
class Shrinker
{
public:
    /// Tries a sequence from scratch: the step at which it fails, if it does.
    using Trial = std::function<std::optional<std::size_t>(const Sequence&)>;

    Shrinker(Trial trial, int mostTrials)
        : m_trial(std::move(trial))
        , m_trialsLeft(mostTrials)
    {}

    /// The sequence itself if it does not fail.
    [[nodiscard]] Sequence shrunk(const Sequence& sequence);
    /// Whether it went on to the end. Otherwise there may be a shorter one.
    [[nodiscard]] bool isDone() const { return m_trialsLeft > 0; }

private:
    [[nodiscard]] bool fails(Sequence& candidate);
    void leaveOutSteps();
    void joinPartsOfFrames();
    void leaveOutPieces(std::size_t step);
    void leaveOutBytes(std::size_t step, std::size_t piece);

    Trial m_trial;
    int m_trialsLeft;
    Sequence m_sequence;
};

} // namespace Tolvar::Varundo::Model

#endif
