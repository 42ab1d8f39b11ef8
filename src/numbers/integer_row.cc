// Vexil - exact integer optimization on lattices.
#include "numbers/integer_row.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "numbers/zz_words.h"

namespace vexil {

namespace {

std::optional<long> wholeWord(const QQ& x) {
  if (x.isInf || limbCount(x.zaehler) > 0 || limbCount(x.ganze) > WORD_LIMBS) return std::nullopt;
  const auto magnitude = static_cast<long>(toWord(x.ganze));
  return x.positive ? magnitude : -magnitude;
}

std::optional<long> wholeWord(dbl_t x) {
  if (!(std::fabs(x) <= static_cast<dbl_t>(IntegerRow::LIMIT))) return std::nullopt;
  const auto word = static_cast<long>(x);
  if (static_cast<dbl_t>(word) != x) return std::nullopt;
  return word;
}

bool fits(long a, long b) {
  return static_cast<DoubleWord>(a) * static_cast<DoubleWord>(b) <=
         static_cast<DoubleWord>(IntegerRow::LIMIT);
}

}  // namespace

void IntegerRow::clear() {
  taken_ = false;
  values_.clear();
  greatest_ = sum_ = 0;
}

template <typename T>
bool IntegerRow::takeNumbers(const Vector<T>& x) {
  clear();
  taken_ = true;
  values_.resize(x.MN, false);
  for (std::int64_t i = 1; i <= x.MN; ++i) {
    const auto word = wholeWord(x.data[i]);
    if (!word || std::abs(*word) > LIMIT - sum_) {
      values_.clear();
      return false;
    }
    values_.data[i] = *word;
    greatest_ = std::max(greatest_, std::abs(*word));
    sum_ += std::abs(*word);
  }
  return true;
}

bool IntegerRow::take(const Vector<QQ>& x) { return takeNumbers(x); }

bool IntegerRow::take(const Vector<dbl_t>& x) { return takeNumbers(x); }

std::optional<long> IntegerRow::operator*(const IntegerRow& other) const {
  if (isEmpty() || values_.MN != other.values_.MN) return std::nullopt;
  if (!fits(greatest_, other.sum_) && !fits(sum_, other.greatest_)) return std::nullopt;
  const auto a = values_.elements();
  const auto b = other.values_.elements();
  return std::inner_product(a.begin(), a.end(), b.begin(), 0L);
}

}  // namespace vexil
