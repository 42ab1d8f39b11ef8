// Vexil - exact integer optimization on lattices.
//
// The way between the numbers of a model and those of the reduction.
#pragma once

#include <algorithm>
#include <vector>

#include "numbers/integer.h"
#include "solver/model.h"

namespace vexil::solver {

[[nodiscard]] inline std::vector<Integer> toIntegers(const std::vector<ZZ>& row) {
  return {row.begin(), row.end()};
}

[[nodiscard]] inline std::vector<ZZ> toZZ(const std::vector<Integer>& row) {
  std::vector<ZZ> result;
  result.reserve(row.size());
  for (const Integer& element : row) result.push_back(element.zz());
  return result;
}

/// The width of a box with two finite sides, between 1 and what the squares of floating numbers
/// bear.
[[nodiscard]] inline dbl_t formWidth(const Side& lower, const Side& upper) {
  const Integer width = Integer(upper.value) - Integer(lower.value);
  return std::clamp<dbl_t>(width.toReal(), 1, 1e140L);
}

}  // namespace vexil::solver
