// Vexil - exact integer optimization on lattices.
//
// Lattice basis reduction [LLL] with a budget of exchanges, and its variant with deep insertions
// [SE]. Every row that a pass visits is a candidate, so the reduction is also the search.
#pragma once

#include <ctime>
#include <iostream>

#include "foundation/row_operation.h"
#include "foundation/trace.h"
#include "lattice/lattice.h"
#include "solutions/write_time.h"

namespace vexil {

namespace detail {

/// The factor of the Lovász condition, 1 - 10^-9.
template <typename U>
const U& lovaszFactor() {
  static const U delta = U(1) - NumberTraits<U>::tolerance();
  return delta;
}

/// Whether |x| <= 1/2.
template <typename U>
bool isAtMostHalf(const U& x) {
  static const U half = U(1) / U(2);
  static const U minusHalf = -half;
  return minusHalf <= x && x <= half;
}

/// Whether a - q b is longer than a in the sup-norm.
template <typename T>
bool growsInSupNorm(const Vector<T>& a, const T& q, const Vector<T>& b) {
  const T limit = a.supNorm();
  for (std::int64_t i = 1; i <= a.MN; ++i) {
    if (limit < NumberTraits<T>::abs(a.data[i] - q * b.data[i])) return true;
  }
  return false;
}

/// Puts the entry `i` of a heap of 1 to m, greatest first, in its place; of equal children the left
/// one goes up.
template <typename Less, typename Exchange>
void siftDown(std::int64_t i, std::int64_t m, Less less, Exchange exchangeEntries) {
  for (std::int64_t child = 2 * i; child <= m; child = 2 * i) {
    if (child < m && less(child, child + 1)) ++child;
    if (!less(i, child)) return;
    exchangeEntries(i, child);
    i = child;
  }
}

}  // namespace detail

template <typename T, typename U>
std::int64_t Lattice<T, U>::lll(std::int64_t start, std::int64_t m, std::int64_t kk) {
  constexpr std::int64_t STATUS_INTERVAL = 3600;
  if (m == 0) m = basis.latRows;
  if (kk == 0) kk = basis.latRows;
  for (short& word : gramSchmidt.rowState.elements()) word = static_cast<short>(word & ~PASSED);
  const std::int64_t t0 = std::time(nullptr);
  std::int64_t last = t0;
  bool blended = false;
  const T* useless = nullptr;
  std::int64_t k = start;
  std::int64_t steps = 0;
  std::int64_t skipped = 0;
  while (k <= m) {
    if ((gramSchmidt.rowState[k] & PASSED) != 0) {
      ++k;
      continue;
    }
    if (!visitRow(k, kk, blended, useless)) break;
    const std::int64_t now = std::time(nullptr);
    if (params.btime.current != 0 && now - t0 >= params.btime.current) break;
    if (params.verb.current >= 2 && now > last + STATUS_INTERVAL) {
      std::cout << traceBegin() << " lll interval_tt status: k = " << k << " (m = " << m << ") ";
      writeTime(std::cout, now - t0);
      std::cout << traceEnd(false);
      last = now;
    }
    if (steps >= interval_tt) {
      ++skipped;
      ++k;
      continue;
    }
    k = params.deep ? deepStep(k) : swapStep(k);
    ++steps;
    gramSchmidt.rowState[k - 1] = static_cast<short>(gramSchmidt.rowState[k - 1] | PASSED);
  }
  if (skipped > steps / 10) {
    interval_tt *= 2;
  } else if (skipped == 0) {
    --interval_tt;
  }
  for (std::int64_t j = k; j <= m && visitRow(j, kk, blended, useless); ++j) {
  }
  gramSchmidt.keepDependent = false;
  return std::min(k, start);
}

template <typename T, typename U>
bool Lattice<T, U>::reduceStep(std::int64_t k, std::int64_t kk, bool& blended) {
  const T* useless = nullptr;
  return visitRow(k, kk, blended, useless);
}

/// `useless` is the storage of the row that was checked last, if that was in vain: behind an
/// exchange it comes next, as it was.
template <typename T, typename U>
bool Lattice<T, U>::visitRow(std::int64_t k, std::int64_t kk, bool& blended, const T*& useless) {
  gramSchmidt.keepDependent = k >= 2;
  bool inVain = basis.B[k].data == useless || checkRow(k);
  useless = nullptr;
  if (sizeReduce(k, blended)) inVain = checkRow(k);
  std::int64_t r = 0;
  try {
    r = blend(k, kk);
  } catch (const DependencyException&) {
    return false;
  }
  if (r == 0) {
    if (inVain) useless = basis.B[k].data;
    return true;
  }
  if (r < 0) {
    blended = true;
    r = -r;
  }
  for (; r <= k; ++r) {
    if (!visitRow(r, kk, blended, useless)) return false;
  }
  return true;
}

template <typename T, typename U>
bool Lattice<T, U>::sizeReduce(std::int64_t k, bool blended) {
  if ((gramSchmidt.rowState[k] & SIZE_REDUCED) != 0) return false;
  if (!gramSchmidt.updateGramSchmidt(basis.B, 1, k) &&
      gramSchmidt.lqReducedRows(basis.B, 1, k, false) != 0) {
    return false;
  }
  Vector<T>& row = basis.B[k];
  const U* const mu = gramSchmidt.mu[k].data;
  Matrix<T>* const transformation = params.consistency ? &basis.transformation() : nullptr;
  bool changed = false;
  for (std::int64_t j = k - 1; j >= 1; --j) {
    if (detail::isAtMostHalf(mu[j])) continue;
    const T q = numberAs<T>(NumberTraits<U>::round(mu[j]));
    NumberTraits<T>::guard(q, "q overflow");
    const Vector<T>& other = basis.B[j];
    if (blended && detail::growsInSupNorm(row, q, other)) continue;
    gramSchmidt.subtractMultiple(k, numberAs<U>(q), j);
    subtractMultiple(row.data, q, other.data, row.MN);
    if (transformation != nullptr) {
      subtractMultiple((*transformation)[k].data, q, (*transformation)[j].data,
                       transformation->columnCount);
    }
    changed = true;
  }
  if (changed) {
    gramSchmidt.invalidateFrom(k);
    secondBlock.clear();
  }
  gramSchmidt.rowState[k] = static_cast<short>(gramSchmidt.rowState[k] | SIZE_REDUCED);
  return changed;
}

template <typename T, typename U>
std::int64_t Lattice<T, U>::swapStep(std::int64_t k) {
  if (k < 2) return k + 1;
  const U& c = gramSchmidt.bstar[k - 1];
  const U& coefficient = gramSchmidt.mu[k][k - 1];
  if (gramSchmidt.bstar[k] + coefficient * coefficient * c < detail::lovaszFactor<U>() * c) {
    swapRows(k, k - 1, false);
    return k - 1;
  }
  return k + 1;
}

template <typename T, typename U>
std::int64_t Lattice<T, U>::deepStep(std::int64_t k) {
  if (k < 2) return k + 1;
  U C = numberAs<U>(basis.B[k] * basis.B[k]);
  for (std::int64_t j = 1; j < k; ++j) {
    const U& c = gramSchmidt.bstar[j];
    if (j >= 2 && C > NumberTraits<U>::tolerance() && C < detail::lovaszFactor<U>() * c) {
      ++run.deepInsertions;
      for (std::int64_t i = k; i > j; --i) swapRows(i, i - 1, j + 1 < i);
      return j;
    }
    const U& coefficient = gramSchmidt.mu[k][j];
    C -= c * coefficient * coefficient;
  }
  return k + 1;
}

template <typename T, typename U>
void Lattice<T, U>::swapRows(std::int64_t i, std::int64_t j, bool keepState) {
  if (i == j) return;
  basis.B.swapRows(i, j);
  if (params.consistency) basis.transformation().swapRows(i, j);
  gramSchmidt.swapRows(i, j);
  if (keepState) return;
  gramSchmidt.invalidateFrom(std::min(i, j));
  secondBlock.clear();
}

template <typename T, typename U>
void Lattice<T, U>::sortRows(std::int64_t m) {
  if (m == 0) m = basis.latRows;
  Vector<T> lengths;
  lengths.resize(m, false);
  for (std::int64_t i = 1; i <= m; ++i) lengths[i] = basis.B[i] * basis.B[i];
  const auto less = [&](std::int64_t i, std::int64_t j) { return lengths[i] < lengths[j]; };
  const auto exchangeRows = [&](std::int64_t i, std::int64_t j) {
    lengths.swap(i, j);
    swapRows(i, j, false);
  };
  for (std::int64_t i = m / 2; i >= 1; --i) detail::siftDown(i, m, less, exchangeRows);
  for (; m > 1; --m) {
    exchangeRows(1, m);
    detail::siftDown(1, m - 1, less, exchangeRows);
  }
}

}  // namespace vexil
