// Vexil - exact integer optimization on lattices.
//
// The kernel of the equations by reduction with growing weights on the equation coordinates
// [AHL].
#pragma once

#include "lattice/lattice.h"

namespace vexil {

namespace detail {

/// The first `count` coordinates are 0.
template <typename T>
bool startsWithZeros(const Vector<T>& row, std::int64_t count) {
  return std::all_of(row.data + 1, row.data + count + 1, [](const T& x) { return isZero<T>(x); });
}

}  // namespace detail

/// The passes run on a copy, so nothing of them shows in this lattice should one of them throw.
template <typename T, typename U>
SerializableArray<Matrix<T>> Lattice<T, U>::reduce() {
  const std::int64_t n = this->Ag.rowCount;
  T weight = T(10) * T(std::max(n, this->rx.MN));
  Lattice copy(*this);
  copy.params.scale.set(true);
  copy.params.consistency.set(true);
  copy.params.verb.set(0);
  copy.resetTransformation(false);
  const Vector<T> weights = copy.form.weights;
  std::int64_t m = basis.latRows;
  for (;; weight *= T(10)) {
    for (std::int64_t i = 1; i <= n; ++i) copy.setWeight(i, weight);
    copy.sortRows(m);
    copy.lll(1, m, m);
    copy.sortRows(m);
    copy.checkConsistency(true, true);
    m = copy.moveKernelRows(n, m);
    if (m == n) break;
  }
  if (basis.latRows > m) {
    for (std::int64_t j = 1; j <= basis.latRows - n; ++j) {
      copy.swapRows(j, basis.latRows - j + 1, j >= 2);
    }
  }
  for (std::int64_t i = 1; i <= m; ++i) copy.setWeight(i, weights[i]);
  assign(copy, true);
  return basis.TT;
}

/// Moves the rows 1 to m that lie in the kernel of the n equations behind the others; the number of
/// the others.
template <typename T, typename U>
std::int64_t Lattice<T, U>::moveKernelRows(std::int64_t n, std::int64_t m) {
  for (std::int64_t i = 1; i <= m;) {
    if (!detail::startsWithZeros(basis.B[i], n)) {
      ++i;
      continue;
    }
    for (std::int64_t j = i; j < m; ++j) swapRows(j, j + 1, j > i);
    --m;
  }
  return m;
}

}  // namespace vexil
