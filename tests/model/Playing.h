#ifndef TOLVAR_VARUNDO_TESTS_PLAYING_H
#define TOLVAR_VARUNDO_TESTS_PLAYING_H

#include "UnitModel.h"

#include <QString>

#include <optional>

namespace Tolvar::Varundo::Model {

struct Disagreement
{
    std::size_t step = 0; ///< after which the two did not agree
    QString difference;
};

/// Takes a fresh unit and a fresh model through the sequence, up to the first disagreement.
[[nodiscard]] std::optional<Disagreement> play(const Sequence& sequence,
                                               UnitModel::Flaw flaw = UnitModel::Flaw::None);

/// The shortest sequence found that still leads to a disagreement.
[[nodiscard]] Sequence shrunk(const Sequence& sequence, UnitModel::Flaw flaw = UnitModel::Flaw::None);

/// The sequence and what it leads to, for people.
[[nodiscard]] QString explained(const Sequence& sequence, UnitModel::Flaw flaw = UnitModel::Flaw::None);

} // namespace Tolvar::Varundo::Model

#endif
