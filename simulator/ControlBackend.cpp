#include "ControlBackend.h"

namespace Tolvar::Varundo::Simulator {

ControlBackend::~ControlBackend() = default;

} // namespace Tolvar::Varundo::Simulator
