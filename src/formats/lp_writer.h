// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>

#include "formats/named_model.h"

namespace vexil::formats {

/// The LP file of a model, with exact decimals; what the form has no place for is written the way
/// plain_model.h tells. Variables come in their order when it is read.
[[nodiscard]] std::string lpText(const NamedModel& model);

}  // namespace vexil::formats
