// Vexil - exact integer optimization on lattices.
#pragma once

#include <algorithm>

#include "foundation/row_block.h"
#include "reduction/gram_schmidt.h"
#include "reduction/lq.h"

namespace vexil {

template <typename T, typename U>
void GramSchmidt<T, U>::resize(std::int64_t rows, std::int64_t cols) {
  std::int64_t i = rowState.MN;
  rowState.resize(rows, false);
  while (++i <= rows) rowState[i] = 0;
  mu.setSize(rows, rows);
  Q.setSize(rows, cols);
  bstar.resize(rows, false);
  rowNorm.resize(rows, false);
}

template <typename T, typename U>
void GramSchmidt<T, U>::clear() {
  const std::int64_t rows = rowState.MN;
  clearMembers(*this);
  rowState.resize(rows, false);
  clearRowState();
}

template <typename T, typename U>
void GramSchmidt<T, U>::clearRowState() {
  for (short& word : rowState.elements()) word = 0;
}

template <typename T, typename U>
void GramSchmidt<T, U>::invalidateFrom(std::int64_t i) {
  for (; i <= rowState.MN; ++i) {
    if (!(keepDependent && i >= 2 && isDependent(i))) rowState[i] = 0;
  }
}

/// Room for the coefficients of all rows, which a new basis has taken away.
template <typename T, typename U>
void GramSchmidt<T, U>::fit(std::int64_t rows) {
  if (mu.rowCount == rows && bstar.MN == rows) return;
  mu.setSize(rows, rows);
  bstar.resize(rows, false);
  rowNorm.resize(rows, false);
}

template <typename T, typename U>
void GramSchmidt<T, U>::finishRow(std::int64_t i, short bits) {
  U* const row = mu.rows[i].data;
  row[i] = U(1);
  std::fill(row + i + 1, row + mu.columnCount + 1, U{});
  rowState[i] = static_cast<short>((rowState[i] & ~DEPENDENT) | bits);
}

template <typename T, typename U>
std::int64_t GramSchmidt<T, U>::firstWithout(short bits, std::int64_t start,
                                             std::int64_t end) const {
  while (start <= end && (rowState[start] & bits) == bits) ++start;
  return start;
}

template <typename T, typename U>
std::int64_t GramSchmidt<T, U>::lqFullRows(const Matrix<T>& B, std::int64_t start, std::int64_t end,
                                           bool abortOnDependency) {
  constexpr short VALID = ORTHOGONALIZED | NORM_KNOWN | IN_FULL_LQ;
  const std::int64_t n = B.columnCount;
  if (end == 0) end = B.rowCount;
  start = firstWithout(VALID, start, end);
  if (start > end) return 0;
  fit(B.rowCount);
  lq_full(B, Lfull, Q, fullStages, start, end);
  Q.setSize(std::min(n, B.rowCount), n);
  std::int64_t dependent = end > n ? n + 1 : 0;
  for (std::int64_t i = start; i <= std::min(end, n); ++i) {
    const U* const L = Lfull[i].data;
    rowNorm[i] = B[i] * B[i];
    bstar[i] = numberAs<U>(rowNorm[i]);
    for (std::int64_t j = 1; j < i; ++j) {
      mu[i][j] = L[j] / Lfull[j][j];
      bstar[i] -= bstar[j] * mu[i][j] * mu[i][j];
    }
    if (bstar[i] <= NumberTraits<U>::tolerance()) {
      dependent = i;
      break;
    }
    const U length = NumberTraits<U>::sqrt(bstar[i], DIGITS);
    Q[i] *= L[i] < U{} ? U(-length) : length;
    finishRow(i, VALID);
  }
  if (dependent != 0 && abortOnDependency) fail("Linear dependency detected - remove first!");
  return dependent;
}

template <typename T, typename U>
std::int64_t GramSchmidt<T, U>::lqReducedRows(const Matrix<T>& B, std::int64_t start,
                                              std::int64_t end, bool abortOnDependency) {
  constexpr short VALID = ORTHOGONALIZED | NORM_KNOWN | IN_REDUCED_LQ;
  if (end == 0) end = B.rowCount;
  start = firstWithout(VALID, start, end);
  if (start > end) return 0;
  fit(B.rowCount);
  std::int64_t dependent = lq_reduced(B, Lreduced, Q, reducedStages, reducedNorms, start, end);
  const std::int64_t last = dependent != 0 ? dependent - 1 : end;
  for (std::int64_t i = start; i <= last; ++i) {
    rowNorm[i] = B[i] * B[i];
    bstar[i] = reducedNorms[i];
    if (bstar[i] <= NumberTraits<U>::tolerance()) {
      dependent = i;
      break;
    }
    std::copy(Lreduced[i].data + 1, Lreduced[i].data + i, mu[i].data + 1);
    finishRow(i, VALID);
  }
  if (dependent != 0 && abortOnDependency) {
    fail("Linear dependency detected - remove these first!");
  }
  return dependent;
}

template <typename T, typename U>
bool GramSchmidt<T, U>::updateGramSchmidt(const Matrix<T>& B, std::int64_t start,
                                          std::int64_t end) {
  if (end == 0) end = B.rowCount;
  fit(B.rowCount);
  for (std::int64_t i = start; i <= end; ++i) {
    if ((rowState[i] & ORTHOGONALIZED) == 0 && !orthogonalizeRow(B, i)) return false;
  }
  return true;
}

/// Row i of `mu` holds s[j], the product of b[i] with b*[j], until all of them are known.
template <typename T, typename U>
bool GramSchmidt<T, U>::orthogonalizeRow(const Matrix<T>& B, std::int64_t i) {
  U* const s = mu.rows[i].data;
  projectRow(B, i);
  rowNorm.data[i] = B.rows[i] * B.rows[i];
  U projected{};
  for (std::int64_t j = 1; j < i; ++j) {
    const U coefficient = s[j] / bstar.data[j];
    NumberTraits<U>::addProduct(projected, coefficient, s[j]);
    s[j] = coefficient;
  }
  bstar.data[i] = numberAs<U>(rowNorm.data[i]) - projected;
  const bool independent = bstar.data[i] > NumberTraits<U>::tolerance();
  finishRow(i, ORTHOGONALIZED);
  if (!independent) rowState[i] = DEPENDENT;
  return independent;
}

/// s[j] = b[j] b[i] - the sum over l < j of mu[j][l] s[l], for j < i.
template <typename T, typename U>
void GramSchmidt<T, U>::projectRow(const Matrix<T>& B, std::int64_t i) {
  U* const s = mu.rows[i].data;
  const Vector<T>& row = B.rows[i];
  std::int64_t j = 1;
  if constexpr (std::is_floating_point_v<T> && std::is_same_v<T, U>) {
    for (; j + ROW_BLOCK <= i; j += ROW_BLOCK) {
      U earlier[ROW_BLOCK];
      multiplyRowBlock(B.rows + j, row.data, row.MN, s + j);
      multiplyRowBlock(mu.rows + j, s, j - 1, earlier);
      for (std::int64_t k = 0; k < ROW_BLOCK; ++k) {
        const U* const coefficients = mu.rows[j + k].data;
        for (std::int64_t l = j; l < j + k; ++l) earlier[k] += coefficients[l] * s[l];
        s[j + k] -= earlier[k];
      }
    }
  }
  for (; j < i; ++j) {
    const U* const coefficients = mu.rows[j].data;
    U earlier{};
    for (std::int64_t l = 1; l < j; ++l) {
      NumberTraits<U>::addProduct(earlier, coefficients[l], s[l]);
    }
    s[j] = numberAs<U>(B.rows[j] * row) - earlier;
  }
}

}  // namespace vexil
