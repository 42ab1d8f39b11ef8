// Vexil - exact integer optimization on lattices.
#include "numbers/matrix_product.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "numbers/zz_words.h"

namespace vexil {

Vector<QQ> MatrixProduct<QQ>::operator()(const Vector<QQ>& x) {
  const auto integers = integersOf(x);
  if (x.MN != A_.columnCount || !integers) return A_ * x;
  if (rows_.empty()) {
    for (const Vector<QQ>& row : A_.elements()) rows_.push_back(integersOf(row));
  }
  Vector<QQ> result;
  result.resize(A_.rowCount, false);
  for (std::int64_t i = 1; i <= A_.rowCount; ++i) {
    const auto& row = rows_[static_cast<std::size_t>(i - 1)];
    if (row && row->values.size() == integers->values.size() && sumFits(*row, *integers)) {
      result.data[i] = std::inner_product(row->values.begin(), row->values.end(),
                                          integers->values.begin(), 0L);
    } else {
      result.data[i] = A_.rows[i] * x;
    }
  }
  return result;
}

std::optional<MatrixProduct<QQ>::Integers> MatrixProduct<QQ>::integersOf(const Vector<QQ>& x) {
  Integers integers;
  integers.values.reserve(static_cast<std::size_t>(x.MN));
  for (const QQ& number : x.elements()) {
    if (number.isInf || limbCount(number.zaehler) > 0 || limbCount(number.ganze) > WORD_LIMBS) {
      return std::nullopt;
    }
    const auto magnitude = static_cast<long>(toWord(number.ganze));
    integers.values.push_back(number.positive ? magnitude : -magnitude);
    integers.bound = std::max(integers.bound, magnitude);
  }
  return integers;
}

bool MatrixProduct<QQ>::sumFits(const Integers& a, const Integers& b) {
  constexpr auto GREATEST = static_cast<dbl_t>(std::numeric_limits<long>::max());
  return static_cast<dbl_t>(a.bound) * static_cast<dbl_t>(b.bound) *
             static_cast<dbl_t>(a.values.size()) <
         GREATEST / 2;
}

}  // namespace vexil
