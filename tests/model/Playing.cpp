#include "Playing.h"

#include "Difference.h"
#include "RealUnit.h"
#include "SequenceText.h"
#include "Shrinker.h"

namespace Tolvar::Varundo::Model {

std::optional<Disagreement> play(const Sequence& sequence, UnitModel::Flaw flaw)
{
    UnitModel model(flaw);
    RealUnit unit;
    for (std::size_t at = 0; at < sequence.size(); ++at) {
        model.apply(sequence[at]);
        const QString difference = unit.apply(sequence[at]) ? firstDifference(model, unit) : unit.problem();
        if (!difference.isEmpty()) {
            return Disagreement{at, difference};
        }
    }
    return std::nullopt;
}

Sequence shrunk(const Sequence& sequence, UnitModel::Flaw flaw)
{
    constexpr int MostTrials = 300; // each unit leaves a thread and a socket behind
    Shrinker shrinker(
        [flaw](const Sequence& candidate) -> std::optional<std::size_t> {
            const std::optional<Disagreement> found = play(candidate, flaw);
            return found ? std::make_optional(found->step) : std::nullopt;
        },
        MostTrials);
    return shrinker.shrunk(sequence);
}

QString explained(const Sequence& sequence, UnitModel::Flaw flaw)
{
    const std::optional<Disagreement> found = play(sequence, flaw);
    QStringList lines = inWords(sequence);
    lines.append(found ? found->difference : QStringLiteral("(it has not failed again)"));
    return QStringLiteral("the unit and its model disagree after these %1 steps:\n").arg(sequence.size()) +
           lines.join(QLatin1Char('\n'));
}

} // namespace Tolvar::Varundo::Model
