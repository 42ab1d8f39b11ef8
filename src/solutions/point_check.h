// Vexil - exact integer optimization on lattices.
#pragma once

#include <optional>

#include "program/vexil.h"

namespace vexil {

/// What the point x breaks of `program` as it was read, the first such thing in the order of
/// variables, equations, inequations: a bound, a fraction finer than the decimal places allow, a
/// row. Such as "x[2] = 10 is above its bound 9", "x[1] = 1/2 is not a whole number", "equation 3
/// gives 4 instead of 5", "inequation 1 gives 7, which is below its bound 8", "it has 2 values
/// instead of 3". Nothing for a point of the program. Everything is compared exactly, without the
/// tolerance of the tool's own check.
[[nodiscard]] std::optional<String> faultOfPoint(const Vexil<QQ>& program, const Vector<QQ>& x);

}  // namespace vexil
