// Vexil - exact integer optimization on lattices.
#pragma once

#include <algorithm>
#include <cstdint>

#include "foundation/vector.h"

namespace vexil {

/// Rows whose scalar products are formed side by side: a floating sum waits for the one before it,
/// and four of them keep the unit busy. The order of the terms in each sum stays.
inline constexpr std::int64_t ROW_BLOCK = 4;

/// sums[k] = the scalar product of rows[k] with x over the elements 1 to n, for ROW_BLOCK rows.
template <typename T>
void multiplyRowBlock(const Vector<T>* rows, const T* x, std::int64_t n, T* sums) {
  const T* const a = rows[0].data;
  const T* const b = rows[1].data;
  const T* const c = rows[2].data;
  const T* const d = rows[3].data;
  T results[ROW_BLOCK] = {};
  for (std::int64_t j = 1; j <= n; ++j) {
    const T factor = x[j];
    results[0] += a[j] * factor;
    results[1] += b[j] * factor;
    results[2] += c[j] * factor;
    results[3] += d[j] * factor;
  }
  std::copy(results, results + ROW_BLOCK, sums);
}

}  // namespace vexil
