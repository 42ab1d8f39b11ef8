// Vexil - exact integer optimization on lattices.
#pragma once

#include <algorithm>

#include "foundation/failure.h"
#include "numbers/qq_vectors.h"
#include "reduction/lq.h"

namespace vexil {

namespace detail {

/// The reflection I + beta u u^T of the coordinates from `first` on; beta 0 is the identity. Where
/// numbers are exact, results are rounded to `decimals`.
template <Number U>
class Reflection {
 public:
  /// Takes all coordinates of `row` behind `first` to 0, and the row with them.
  Reflection(Vector<U>& row, std::int64_t first, std::int64_t decimals)
      : first_(first), decimals_(decimals) {
    using N = NumberTraits<U>;
    U square{};
    for (std::int64_t j = first; j <= row.MN; ++j) {
      u_.append(row.data[j]);
      N::addProduct(square, row.data[j], row.data[j]);
    }
    const U length = N::sqrt(square, decimals);
    if (isZero<U>(length)) return;
    const bool negative = row.data[first] < U{};
    u_.data[1] += negative ? U(-length) : length;
    beta_ = U(-1) / (length * N::abs(u_.data[1]));
    row.data[first] = negative ? length : U(-length);
    std::fill(row.data + first + 1, row.data + row.MN + 1, U{});
  }

  void apply(Vector<U>& row) const {
    using N = NumberTraits<U>;
    if (beta_ == U{}) return;
    U factor{};
    for (std::int64_t j = 1; j <= u_.MN; ++j) {
      N::addProduct(factor, u_.data[j], row.data[first_ + j - 1]);
    }
    factor *= beta_;
    N::roundDecimals(factor, decimals_);
    for (std::int64_t j = 1; j <= u_.MN; ++j) {
      U& element = row.data[first_ + j - 1];
      N::addProduct(element, factor, u_.data[j]);
      N::roundDecimals(element, decimals_);
    }
  }

 private:
  std::int64_t first_;
  std::int64_t decimals_;
  Vector<U> u_;
  U beta_{};
};

/// Decimals that keep the parts of a dependent row in the directions behind it small. Such a part
/// is the combination of as small parts of the rows before it, by factors which for whole numbers
/// are below the product of all lengths.
template <Number U, Number T>
std::int64_t decimalsFor(const Matrix<T>& B, std::int64_t end) {
  constexpr std::int64_t MARGIN = 20;
  std::int64_t decimals = 0;
  if constexpr (std::same_as<U, QQ>) {
    std::int64_t longest = 0;
    for (std::int64_t i = 1; i <= end; ++i) {
      std::int64_t digits = 0;
      for (const T& element : B.rows[i].elements()) {
        const auto x = numberAs<QQ>(element);
        digits = std::max(digits, digitCount(x.ganze) + digitCount(x.nenner));
      }
      decimals += digits;
      longest = std::max(longest, digits);
    }
    decimals += longest + MARGIN;
  }
  return decimals;
}

template <Number T, Number U>
void copyNumbers(const Vector<T>& source, Vector<U>& target) {
  target.resize(source.MN, false);
  std::transform(source.data + 1, source.data + source.MN + 1, target.data + 1, numberAs<U, T>);
}

/// Brings the rows kk to `end` of B into L, by the reflections of the rows before them.
template <Number T, Number U>
void takeRows(const Matrix<T>& B, Matrix<U>& L, const Array<Matrix<U>>& stages, std::int64_t kk,
              std::int64_t end) {
  L.setSize(end, B.columnCount);
  const std::int64_t stage = std::min(kk - 1, stages.MN);
  for (std::int64_t i = kk; i <= end; ++i) {
    copyNumbers(B.rows[i], L.rows[i]);
    if (stage > 0) L.rows[i] = L.rows[i] * stages[stage];
  }
}

}  // namespace detail

template <Number T, Number U>
void lq_full(const Matrix<T>& B, Matrix<U>& L, Matrix<U>& Q, Array<Matrix<U>>& stages,
             std::int64_t kk, std::int64_t end) {
  if (kk < 1) fail("lq_full: kk is invalid (< 1)");
  if (end > B.rowCount) fail("lq_full: end index overflow");
  if (end == 0) end = B.rowCount;
  if (kk > end) fail("lq_full: dimension mismatch");
  const std::int64_t n = B.columnCount;
  const std::int64_t last = std::min(n - 1, end);
  const std::int64_t decimals = detail::decimalsFor<U>(B, end);
  stages.resize(last, false);
  detail::takeRows(B, L, stages, kk, end);
  for (std::int64_t i = kk; i <= last; ++i) {
    const detail::Reflection<U> reflection(L.rows[i], i, decimals);
    for (std::int64_t t = i + 1; t <= end; ++t) reflection.apply(L.rows[t]);
    if (i == 1) {
      stages[1].setIdentity(n);
    } else {
      stages[i] = stages[i - 1];
    }
    for (Vector<U>& row : stages[i].elements()) reflection.apply(row);
  }
  if (kk == 1) Q.setIdentity(n);
  if (last == 0) return;
  Q.setSize(n, n);
  const Matrix<U>& product = stages[last];
  for (std::int64_t i = kk; i <= n; ++i) {
    for (std::int64_t j = 1; j <= n; ++j) Q.rows[i].data[j] = product.rows[j].data[i];
  }
}

template <Number T, Number U>
std::int64_t lq_reduced(const Matrix<T>& B, Matrix<U>& L, Matrix<U>& Q, Array<Matrix<U>>& stages,
                        Vector<U>& norms, std::int64_t kk, std::int64_t end) {
  if (kk < 1) fail("lq_reduced: kk is invalid (< 1)");
  if (end == 0) end = B.rowCount;
  if (end < kk) fail("lq_reduced: dimension mismatch");
  const std::int64_t n = B.columnCount;
  Q.setSize(end, n);
  L.setSize(end, end);
  stages.resize(end, false);
  for (Matrix<U>& stage : stages.elements()) stage.setSize(end, n);
  norms.resize(end, false);
  // Takes the part of row i along row j of Q off, on the way from stage j to the next.
  const auto orthogonalize = [&](std::int64_t i, std::int64_t j) {
    L.rows[i].data[j] = (Q.rows[j] * stages[j].rows[i]) / norms.data[j];
    if (j == end) return;
    Vector<U>& next = stages[j + 1].rows[i];
    next = stages[j].rows[i];
    next.subtractMultiple(L.rows[i].data[j], Q.rows[j]);
  };
  for (std::int64_t i = kk; i <= end; ++i) {
    detail::copyNumbers(B[i], stages[1].rows[i]);
    for (std::int64_t j = 1; j < kk; ++j) orthogonalize(i, j);
  }
  for (std::int64_t j = kk; j <= end; ++j) {
    Q.rows[j] = stages[j].rows[j];
    norms.data[j] = Q.rows[j] * Q.rows[j];
    if (isZero<U>(norms.data[j])) return j;
    for (std::int64_t i = 1; i < j; ++i) L.rows[i].data[j] = U{};
    L.rows[j].data[j] = U(1);
    for (std::int64_t i = 1; j < end && i <= j; ++i) stages[j + 1].rows[i].fill(U{});
    for (std::int64_t i = j + 1; i <= end; ++i) orthogonalize(i, j);
  }
  return 0;
}

}  // namespace vexil
