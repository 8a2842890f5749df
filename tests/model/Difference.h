#ifndef TOLVAR_VARUNDO_TESTS_DIFFERENCE_H
#define TOLVAR_VARUNDO_TESTS_DIFFERENCE_H

#include "RealUnit.h"
#include "UnitModel.h"

namespace Tolvar::Varundo::Model {

/// The first thing in which the unit is not what the model says after both took the same step: the replies,
/// what the host was told, the cursor, and every property of every element. Empty if they agree.
[[nodiscard]] QString firstDifference(const UnitModel& model, RealUnit& unit);

} // namespace Tolvar::Varundo::Model

#endif
