// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstddef>
#include <vector>

#include "numbers/integer.h"

namespace vexil {

/// A lattice basis of integer rows under the inner product sum_f weights[f]^2 a_f b_f. A column of
/// weight 0 does not count and is carried along. Indices count from 0.
struct WeightedRows {
  std::vector<std::vector<Integer>> rows;
  std::vector<dbl_t> weights;
};

/// a -= q b.
inline void subtractMultiple(std::vector<Integer>& a, const Integer& q,
                             const std::vector<Integer>& b) {
  for (std::size_t f = 0; f < a.size(); ++f) a[f].subtractProduct(q, b[f]);
}

}  // namespace vexil
