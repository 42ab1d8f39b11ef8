// Vexil - exact integer optimization on lattices.
#pragma once

#include "numbers/zz.h"

namespace vexil {

/// The smallest divisor of n that is greater than `bound`, for 0 < bound < n. Up to n = 10^18 it
/// comes from the factors of n, at once. Beyond that it is looked for next to `bound` and among the
/// quotients of n by small numbers; where neither search ends within its limit, n itself is the
/// result.
[[nodiscard]] ZZ nextDivisor(const ZZ& n, const ZZ& bound);

}  // namespace vexil
