// Vexil - exact integer optimization on lattices.
#pragma once

#include <cmath>

#include "foundation/dbl.h"
#include "foundation/exceptions.h"

namespace vexil {

/// Beyond 10^(DIGITS / 2) a computed value is no longer trusted.
inline constexpr dbl_t SOFT_LIMIT = 1e9L;
/// Beyond 10^DIGITS those computed before it are not trusted either.
inline constexpr dbl_t HARD_LIMIT = 1e18L;

/// Tells whether a finite value is above SOFT_LIMIT in magnitude; the caller names the value in the
/// `PrecisionException` that it throws. Infinities and what is no number are left to the callers'
/// own tests. Throws `FatalPrecisionException` for a finite value above HARD_LIMIT.
[[nodiscard]] inline bool checkOverflow(dbl_t x) {
  const dbl_t magnitude = std::fabs(x);
  if (!(magnitude > SOFT_LIMIT) || magnitude == INF_F) return false;
  if (magnitude > HARD_LIMIT) {
    throw FatalPrecisionException(
        "Uncorrectable precision overflow detected - probably more overflow / precision checks are "
        "needed ...");
  }
  return true;
}

}  // namespace vexil
