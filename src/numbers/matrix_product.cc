// Vexil - exact integer optimization on lattices.
#include "numbers/matrix_product.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// Sums up to here are exact in both arithmetics and in machine integers.
constexpr dbl_t GREATEST_SUM = 4e18L;

std::optional<long> wholeWord(const QQ& x) {
  if (x.isInf || limbCount(x.zaehler) > 0 || limbCount(x.ganze) > WORD_LIMBS) return std::nullopt;
  const auto magnitude = static_cast<long>(toWord(x.ganze));
  return x.positive ? magnitude : -magnitude;
}

std::optional<long> wholeWord(dbl_t x) {
  if (!(std::fabs(x) < GREATEST_SUM) || std::trunc(x) != x) return std::nullopt;
  return static_cast<long>(x);
}

}  // namespace

template <typename T>
Vector<T> MatrixProduct<T>::operator()(const Vector<T>& x) {
  const auto integers = integersOf(x);
  if (x.MN != A_.columnCount || !integers) return A_ * x;
  if (rows_.empty()) {
    for (const Vector<T>& row : A_.elements()) rows_.push_back(integersOf(row));
  }
  Vector<T> result;
  result.resize(A_.rowCount, false);
  for (std::int64_t i = 1; i <= A_.rowCount; ++i) {
    const auto& row = rows_[static_cast<std::size_t>(i - 1)];
    if (row && row->values.size() == integers->values.size() && sumFits(*row, *integers)) {
      result.data[i] = static_cast<T>(
          std::inner_product(row->values.begin(), row->values.end(), integers->values.begin(), 0L));
    } else {
      result.data[i] = A_.rows[i] * x;
    }
  }
  return result;
}

template <typename T>
std::optional<typename MatrixProduct<T>::Integers> MatrixProduct<T>::integersOf(
    const Vector<T>& x) {
  Integers integers;
  integers.values.reserve(static_cast<std::size_t>(x.MN));
  for (const T& number : x.elements()) {
    const auto word = wholeWord(number);
    if (!word) return std::nullopt;
    integers.values.push_back(*word);
    integers.bound = std::max(integers.bound, std::abs(*word));
  }
  return integers;
}

template <typename T>
bool MatrixProduct<T>::sumFits(const Integers& a, const Integers& b) {
  return static_cast<dbl_t>(a.bound) * static_cast<dbl_t>(b.bound) *
             static_cast<dbl_t>(a.values.size()) <
         GREATEST_SUM;
}

template class MatrixProduct<dbl_t>;
template class MatrixProduct<QQ>;

}  // namespace vexil
