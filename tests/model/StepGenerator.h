#ifndef TOLVAR_VARUNDO_TESTS_STEPGENERATOR_H
#define TOLVAR_VARUNDO_TESTS_STEPGENERATOR_H

#include "FrameMaker.h"
#include "UnitModel.h"

namespace Tolvar::Varundo::Model {

/// Makes long sequences of what may happen to a unit. A model of its own goes along, so that the generator
/// can lead the unit's receiver out of a jam, write in the codec that is selected, and look where the texts
/// stand.
class StepGenerator
{
public:
    explicit StepGenerator(std::uint32_t seed);

    /// As many steps as it takes until so many frames were accepted.
    [[nodiscard]] Sequence sequence(long frames);

private:
    void add(const Step& step);
    void addLook(const Step& happened);
    void addSending();
    void addTidying();
    void addCut(const Bytes& bytes);
    [[nodiscard]] Bytes wayOut() const;
    [[nodiscard]] Step whatHappens();
    [[nodiscard]] Step reading();
    [[nodiscard]] Step hostsEdit();
    [[nodiscard]] double number();

    Random m_random;
    FrameMaker m_frames{m_random};
    UnitModel m_model;
    Sequence m_sequence;
};

} // namespace Tolvar::Varundo::Model

#endif
