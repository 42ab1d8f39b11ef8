// Vexil - exact integer optimization on lattices.
#pragma once

#include <algorithm>

#include "foundation/failure.h"
#include "numbers/qq_vectors.h"
#include "program/elimination.h"
#include "reduction/lq.h"

namespace vexil {

namespace detail {

template <Number T>
bool vanishes(const Vector<T>& x) {
  const auto all = x.elements();
  return std::all_of(all.begin(), all.end(), NumberTraits<T>::isNoPivot);
}

/// The first row of which the decomposition shows that it depends on those before it; the one
/// behind the last column if there are more rows than columns; else 0.
template <Number T>
std::int64_t firstDependentRow(const Matrix<T>& M) {
  if (M.rowCount == 0) return 0;
  Matrix<T> L, Q;
  Array<Matrix<T>> stages;
  lq_full(M, L, Q, stages, 1, 0);
  const std::int64_t most = std::min(M.rowCount, M.columnCount);
  for (std::int64_t i = 1; i <= most; ++i) {
    if (isZero<T>(L[i][i])) return i;
  }
  return M.rowCount > most ? most + 1 : 0;
}

template <Number T>
Matrix<T> leadingRows(const Matrix<T>& M, std::int64_t count) {
  Matrix<T> G = M;
  G.setSize(count, M.columnCount);
  return G;
}

/// Puts the last row in place of row i.
template <Number T>
void dropRow(Matrix<T>& M, std::int64_t i) {
  M.swapRows(i, M.rowCount);
  M.removeRow(M.rowCount);
}

/// The first row without an element that is not zero; 0 if there is none.
template <Number T>
std::int64_t zeroRow(const Matrix<T>& S) {
  const auto all = S.elements();
  const auto found = std::find_if(all.begin(), all.end(), vanishes<T>);
  return found == all.end() ? 0 : found - all.begin() + 1;
}

/// Row operations that make a row of S zero, which returns it.
template <Number T>
std::int64_t eliminateRow(Matrix<T>& S) {
  std::int64_t a = S.rowCount;
  for (std::int64_t b = S.columnCount; zeroRow(S) == 0 && a > 0 && b > 0; --b) {
    const ProductLimit limit;
    const std::int64_t k = euclidColumnStep<T>(S, a, b, nullptr);
    if (k > 0) S.swapRows(k, a--);
  }
  const std::int64_t zero = zeroRow(S);
  if (zero == 0) fail("Dependent row could not be eliminated!");
  return zero;
}

/// Row i of M is the combination x of those before it, but not one by integers.
template <Number T>
void mergeDependentRow(Matrix<T>& M, std::int64_t i, const Vector<T>& x) {
  Matrix<T> S;
  Array<long> indices;
  const auto take = [&](std::int64_t j) {
    S.appendRow(M[j]);
    indices.resize(S.rowCount, true);
    indices[S.rowCount] = j;
  };
  for (std::int64_t j = 1; j <= x.MN; ++j) {
    if (NumberTraits<T>::isNoPivot(x[j])) continue;
    if (j >= i) fail("Coordinate inconsistency - index is too big!");
    take(j);
  }
  take(i);
  const std::int64_t zero = eliminateRow(S);
  for (std::int64_t t = 1; t <= S.rowCount; ++t) {
    if (t != zero) M[indices[t]] = S[t];
  }
  dropRow(M, indices[zero]);
}

}  // namespace detail

template <Number T>
void removeDependentRows(Matrix<T>& M) {
  while (const std::int64_t i = detail::firstDependentRow(M)) {
    const Matrix<T> G = detail::leadingRows(M, i - 1);
    Vector<T> x;
    if (i > 1 && !solveRowCoordinates(G, M[i], x, false)) {
      fail("Coordinates of dependent row could not be computed!");
    }
    Vector<T> y = x;
    for (T& component : y.elements()) component = NumberTraits<T>::round(component);
    if (i == 1 || (y * G).equalsExactly(M[i])) {
      detail::dropRow(M, i);
    } else {
      detail::mergeDependentRow(M, i, x);
    }
  }
}

template <Number T>
bool solveRowCoordinates(const Matrix<T>& G, const Vector<T>& row, Vector<T>& x, bool integral) {
  return RowCoordinates<T>(G).solve(row, x, integral);
}

template <Number T>
RowCoordinates<T>::RowCoordinates(const Matrix<T>& G) {
  gaussLU(G.transposed(), Lo_, Up_, p_);
}

template <Number T>
bool RowCoordinates<T>::solve(const Vector<T>& row, Vector<T>& x, bool integral) const {
  return gaussSolve(Lo_, Up_, p_, row, x, false, integral) == 1;
}

template <Number T>
void gaussLU(const Matrix<T>& A, Matrix<T>& Lo, Matrix<T>& Up, Array<long>& p) {
  using N = NumberTraits<T>;
  const std::int64_t m = A.rowCount;
  const std::int64_t n = A.columnCount;
  Lo = A;
  Up.setSize(n, n);
  for (Vector<T>& row : Up.elements()) row.fill(T{});
  p.resize(m, false);
  for (std::int64_t i = 1; i <= m; ++i) p[i] = i;
  std::int64_t rank = n;
  for (std::int64_t j = 1; j <= n; ++j) {
    const auto magnitude = [&](std::int64_t i) { return N::abs(Lo.rows[i].data[j]); };
    std::int64_t pivot = j;
    for (std::int64_t i = j + 1; i <= m; ++i) {
      if (magnitude(pivot) < magnitude(i)) pivot = i;
    }
    if (pivot > m || N::isNoPivot(Lo.rows[pivot].data[j])) {
      --rank;
      continue;
    }
    Lo.swapRows(pivot, j);
    p.swap(pivot, j);
    const Vector<T>& upper = Lo.rows[j];
    for (std::int64_t i = j + 1; i <= m; ++i) {
      Vector<T>& row = Lo.rows[i];
      if (row.data[j] == T{}) continue;
      row.data[j] /= upper.data[j];
      const T factor = -row.data[j];
      for (std::int64_t k = j + 1; k <= n; ++k) N::addProduct(row.data[k], factor, upper.data[k]);
    }
  }
  const std::int64_t most = std::min(m, n);
  for (std::int64_t i = 1; i <= most; ++i) {
    for (std::int64_t k = i; k <= n; ++k) std::swap(Up.rows[i].data[k], Lo.rows[i].data[k]);
    Lo.rows[i].data[i] = T(1);
  }
  if (rank > most) fail("gauss: rang too big");
}

namespace detail {

/// a[first].b[first] + ... + a[last].b[last]
template <Number T>
T partialProduct(const Vector<T>& a, const Vector<T>& b, std::int64_t first, std::int64_t last) {
  T sum{};
  for (std::int64_t k = first; k <= last; ++k) {
    NumberTraits<T>::addProduct(sum, a.data[k], b.data[k]);
  }
  return sum;
}

}  // namespace detail

template <Number T>
int gaussSolve(const Matrix<T>& Lo, const Matrix<T>& Up, const Array<long>& p, const Vector<T>& b,
               Vector<T>& x, bool unique, bool integral) {
  using N = NumberTraits<T>;
  const std::int64_t m = Lo.rowCount;
  const std::int64_t n = Lo.columnCount;
  const std::int64_t most = std::min(m, n);
  Vector<T> y;
  y.resize(n, false);
  y.fill(T{});
  for (std::int64_t i = 1; i <= most; ++i) {
    y[i] = b[p[i]] - detail::partialProduct(Lo[i], y, 1, i - 1);
  }
  x.resize(n, false);
  bool whole = true;
  for (std::int64_t i = n; i >= 1; --i) {
    const T rest = y[i] - detail::partialProduct(Up[i], x, i + 1, n);
    if (!N::isNoPivot(Up[i][i])) {
      x[i] = rest / Up[i][i];
      if (!integral) continue;
      const T nearest = N::round(x[i]);
      whole = whole && N::isNoPivot(x[i] - nearest);
      x[i] = nearest;
    } else {
      if (unique) return 0;
      if (!N::isNoPivot(rest)) return -1;
      x[i] = T{};
    }
  }
  if (!whole) return -1;
  const Vector<T> product = Up * x;
  for (std::int64_t i = 1; i <= m; ++i) {
    const T residual = Lo[i] * product - b[p[i]];
    if (!N::isNoPivot(residual)) return -1;
  }
  return 1;
}

namespace detail {

/// The row of the smallest element of column j that is not zero, among the rows i down to 1; 0 if
/// there is none.
template <Number T>
std::int64_t smallestInColumn(const Matrix<T>& M, std::int64_t i, std::int64_t j) {
  using N = NumberTraits<T>;
  std::int64_t smallest = 0;
  for (std::int64_t t = i; t >= 1; --t) {
    const T& element = M[t][j];
    if (N::isNoPivot(element)) continue;
    if (smallest == 0 || N::abs(element) < N::abs(M[smallest][j])) smallest = t;
  }
  return smallest;
}

template <Number T>
void subtractRow(Matrix<T>& M, std::int64_t t, const T& factor, std::int64_t p, const char* text) {
  M[t].subtractMultiple(factor, M[p]);
  for (const T& element : M[t].elements()) NumberTraits<T>::guard(element, text);
}

}  // namespace detail

template <Number T>
std::int64_t euclidColumnStep(Matrix<T>& M, std::int64_t i, std::int64_t j,
                              Matrix<T>* transformation) {
  using N = NumberTraits<T>;
  T last{};
  while (const std::int64_t p = detail::smallestInColumn(M, i, j)) {
    const T value = M[p][j];
    if (N::abs(value) == last) return p;
    last = N::abs(value);
    for (std::int64_t t = i; t >= 1; --t) {
      if (t == p || N::isNoPivot(M[t][j])) continue;
      const T factor = N::floor(M[t][j] / value);
      N::guard(factor, "factor overflow");
      detail::subtractRow(M, t, factor, p, "row overflow");
      if (transformation != nullptr) {
        detail::subtractRow(*transformation, t, factor, p, "T->row overflow");
      }
    }
  }
  return 0;
}

template <Number T>
bool isUnimodular(const Matrix<T>& M, T& determinant) {
  using N = NumberTraits<T>;
  const auto isOne = [&] { return N::abs(determinant - T(1)) * T(10) <= T(1); };
  determinant = N::abs(M.determinant());
  if (isOne()) return true;
  Matrix<T> sorted = M;
  const auto byLength = [](const Vector<T>& a, const Vector<T>& b) { return a * a < b * b; };
  const auto rows = sorted.elements();
  std::sort(rows.begin(), rows.end(), byLength);
  determinant = N::abs(sorted.determinant());
  return isOne();
}

}  // namespace vexil
