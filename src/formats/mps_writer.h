// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>

#include "formats/named_model.h"

namespace vexil::formats {

/// The free MPS file of a model, with exact decimals; what the form has no place for is written the
/// way plain_model.h tells, an objective to be maximized as its negative.
[[nodiscard]] std::string mpsText(const NamedModel& model);

}  // namespace vexil::formats
