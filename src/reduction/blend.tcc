// Vexil - exact integer optimization on lattices.
//
// Rows that depend on the rows before them are not dropped, since they may still become short
// vectors, but go out of the way of the reduction.
#pragma once

#include "lattice/lattice.h"

namespace vexil {

template <typename T, typename U>
std::int64_t Lattice<T, U>::blend(std::int64_t k, std::int64_t kk) {
  if (!gramSchmidt.isDependent(k)) return 0;
  if (!isZero<T>(basis.B[k].supNorm())) {
    const std::int64_t r = deepStep(k);
    if (r < k) return r;
  }
  std::int64_t end = kk;
  while (end > k && gramSchmidt.isDependent(end)) --end;
  if (end <= k) throw DependencyException("Blending is not possible");
  for (std::int64_t i = k; i < end; ++i) swapRows(i, i + 1, i > k);
  return -k;
}

}  // namespace vexil
