// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>

#include "foundation/number_traits.h"

namespace vexil {

/// to[i] -= q from[i] for the elements 1 to count. A factor of 1 or -1 takes no multiplication.
template <typename U>
void subtractMultiple(U* to, const U& q, const U* from, std::int64_t count) {
  if (q == U(1)) {
    for (std::int64_t i = 1; i <= count; ++i) to[i] -= from[i];
  } else if (q == U(-1)) {
    for (std::int64_t i = 1; i <= count; ++i) to[i] += from[i];
  } else {
    const U factor = -q;
    for (std::int64_t i = 1; i <= count; ++i) {
      NumberTraits<U>::addProduct(to[i], factor, from[i]);
    }
  }
}

}  // namespace vexil
