// Vexil - exact integer optimization on lattices.
#pragma once

#include <algorithm>

#include "foundation/row_block.h"
#include "foundation/row_operation.h"
#include "reduction/gram_schmidt.h"
#include "reduction/lq.h"

namespace vexil {

template <typename T, typename U>
void GramSchmidt<T, U>::resize(std::int64_t rows, std::int64_t cols) {
  std::int64_t i = rowState.MN;
  rowState.resize(rows, false);
  while (++i <= rows) rowState[i] = 0;
  Q.setSize(rows, cols);
  fit(rows);
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
  for (IntegerRow& row : integerRows.elements()) row.clear();
  dropHeld(1);
}

template <typename T, typename U>
void GramSchmidt<T, U>::invalidateFrom(std::int64_t i) {
  for (; i <= rowState.MN; ++i) {
    if (!(keepDependent && i >= 2 && isDependent(i))) rowState[i] = 0;
  }
}

template <typename T, typename U>
void GramSchmidt<T, U>::swapRows(std::int64_t i, std::int64_t j) {
  rowState.swap(i, j);
  if (std::max(i, j) > held.MN) return;
  mu.swapRows(i, j);
  held.swap(i, j);
  heldLength.swap(i, j);
  std::swap(integerRows[i], integerRows[j]);
  const std::int64_t before = std::min(i, j) - 1;
  for (long& count : held.elements()) count = std::min(count, before);
}

/// Each change takes a digit of a floating row, and a great factor many of them.
template <typename T, typename U>
void GramSchmidt<T, U>::subtractMultiple(std::int64_t k, const U& q, std::int64_t j) {
  constexpr dbl_t GREATEST_FACTOR = 1024;
  integerRows[k].clear();
  vexil::subtractMultiple(mu.rows[k].data, q, mu.rows[j].data, j);
  if constexpr (std::is_floating_point_v<U>) {
    heldLength.data[k] *= 2;
    if (std::fabs(q) > GREATEST_FACTOR) held.data[k] = 0;
  }
}

/// Nothing is held of the rows from i on.
template <typename T, typename U>
void GramSchmidt<T, U>::dropHeld(std::int64_t i) {
  for (; i <= held.MN; ++i) held.data[i] = 0;
}

/// Room for the coefficients of all rows, which a new basis has taken away.
template <typename T, typename U>
void GramSchmidt<T, U>::fit(std::int64_t rows) {
  if (mu.rowCount == rows && held.MN == rows) return;
  mu.setSize(rows, rows);
  bstar.resize(rows, false);
  rowNorm.resize(rows, false);
  held.resize(rows, false);
  heldLength.resize(rows, false);
  integerRows.resize(rows, false);
  for (IntegerRow& row : integerRows.elements()) row.clear();
  dropHeld(1);
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
  dropHeld(start);
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
  dropHeld(start);
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

/// Takes row i as machine integers if that was not tried yet; whether they hold it.
template <typename T, typename U>
bool GramSchmidt<T, U>::isWhole(const Matrix<T>& B, std::int64_t i) {
  IntegerRow& row = integerRows.data[i];
  if (!row.isTaken()) row.take(B.rows[i]);
  return !row.isEmpty();
}

/// B[i] B[j], in machine integers where they hold it.
template <typename T, typename U>
template <typename Number>
Number GramSchmidt<T, U>::scalarProduct(const Matrix<T>& B, std::int64_t i, std::int64_t j) {
  if (isWhole(B, i) && isWhole(B, j)) {
    if (const auto product = integerRows.data[i] * integerRows.data[j]) return Number(*product);
  }
  return numberAs<Number>(B.rows[i] * B.rows[j]);
}

/// Row i of `mu` holds s[j], the product of b[i] with b*[j], until all of them are known. What is
/// held of a floating row has lost its digits when the row has become much shorter.
template <typename T, typename U>
bool GramSchmidt<T, U>::orthogonalizeRow(const Matrix<T>& B, std::int64_t i) {
  constexpr dbl_t SHORTENING = 1 << 16;
  long& known = held.data[i];
  rowNorm.data[i] = scalarProduct<T>(B, i, i);
  const auto length = numberAs<U>(rowNorm.data[i]);
  if constexpr (std::is_floating_point_v<U>) {
    if (length * SHORTENING < heldLength.data[i]) known = 0;
  }
  if (known == 0) heldLength.data[i] = length;
  if (known < i) {
    U* const s = mu.rows[i].data;
    for (std::int64_t j = 1; j <= known; ++j) s[j] *= bstar.data[j];
    projectRow(B, i, known + 1);
    U projected{};
    U before{};
    for (std::int64_t j = 1; j < i; ++j) {
      before = s[j];
      s[j] /= bstar.data[j];
      NumberTraits<U>::addProduct(projected, before, s[j]);
    }
    bstar.data[i] = length - projected;
    known = i;
  }
  const bool independent = bstar.data[i] > NumberTraits<U>::tolerance();
  finishRow(i, ORTHOGONALIZED);
  if (!independent) rowState[i] = DEPENDENT;
  return independent;
}

/// s[j] = b[j] b[i] - the sum over l < j of mu[j][l] s[l], for `first` <= j < i.
template <typename T, typename U>
void GramSchmidt<T, U>::projectRow(const Matrix<T>& B, std::int64_t i, std::int64_t first) {
  U* const s = mu.rows[i].data;
  std::int64_t j = first;
  if constexpr (std::is_floating_point_v<T> && std::is_same_v<T, U>) {
    for (; j + ROW_BLOCK <= i; j += ROW_BLOCK) {
      if (isWhole(B, i)) {
        for (std::int64_t k = j; k < j + ROW_BLOCK; ++k) s[k] = scalarProduct<U>(B, k, i);
      } else {
        multiplyRowBlock(B.rows + j, B.rows[i].data, B.columnCount, s + j);
      }
      U earlier[ROW_BLOCK];
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
    s[j] = scalarProduct<U>(B, j, i) - earlier;
  }
}

}  // namespace vexil
