// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>

#include "formats/opt_reader.h"
#include "program/vexil.h"

namespace vexil::formats {

/// A star for the people who wrote the model: a line for each target, "cost = 7680" in the model's
/// own sense and with its constant, with "(wished: 40)" behind the value of a goal; an empty line;
/// a line "from_mon = 7" for each variable that is not 0. Numbers are decimals where they end.
/// `star` holds its target values.
[[nodiscard]] std::string namedReport(const Vexil<QQ>& program, const OptHead& head,
                                      const Star<QQ>& star);

}  // namespace vexil::formats
