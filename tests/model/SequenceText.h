#ifndef TOLVAR_VARUNDO_TESTS_SEQUENCETEXT_H
#define TOLVAR_VARUNDO_TESTS_SEQUENCETEXT_H

#include "UnitModel.h"

#include <QStringList>

namespace Tolvar::Varundo::Model {

/// The sequence in the notation of docs/protocol.md, a step a line: bytes in hexadecimal, with what they
/// mean.
[[nodiscard]] QStringList inWords(const Sequence& sequence);

} // namespace Tolvar::Varundo::Model

#endif
