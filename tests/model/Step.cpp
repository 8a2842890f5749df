#include "Step.h"

namespace Tolvar::Varundo::Model {

Bytes Step::bytes() const
{
    Bytes all;
    for (const Bytes& piece : pieces) {
        all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
}

Step sending(const Bytes& bytes)
{
    Step step;
    step.pieces = {bytes};
    return step;
}

Step happening(Step::Kind kind, int which, const std::array<double, 4>& numbers)
{
    Step step;
    step.kind = kind;
    step.which = which;
    step.numbers = numbers;
    return step;
}

} // namespace Tolvar::Varundo::Model
