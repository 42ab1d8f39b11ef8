// Vexil - exact integer optimization on lattices.
#pragma once

namespace vexil {

/// The bits of the result of `checkSolution`; none for a candidate that failed a bound.
enum CheckBits : int {
  OUTSIDE_LATTICE = 1,  ///< alone
  WITHIN_BOUNDS = 2,
  EVALUATED = 4,  ///< and at least as good as the best target
  STAR = 8,
  IMPROVED = 16,  ///< the best target, or the observed range of a variable
  LAST_STAR = 32  ///< a star that completes the wanted number; in place of STAR
};

}  // namespace vexil
