// Vexil - exact integer optimization on lattices.
#include <algorithm>

#include "foundation/string.h"
#include "numbers/zz.h"
#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// The digits alone; `storage` holds them where something had to be dropped.
std::string_view digitsOf(std::string_view text, std::string& storage) {
  if (!text.empty() && !isDigit(text.front())) text.remove_prefix(1);
  if (std::all_of(text.begin(), text.end(), isDigit)) return text;
  std::copy_if(text.begin(), text.end(), std::back_inserter(storage), isDigit);
  return storage;
}

/// Number of zeros at the end of the digits, for a number that is not 0.
Index trailingZeros(const ZZ& a) {
  Index count = 0;
  Index i = 1;
  for (; a.data[i] == 0; ++i) count += limbs::LIMB_DIGITS;
  for (Limb limb = a.data[i]; limb % 10 == 0; limb /= 10) ++count;
  return count;
}

}  // namespace

void appendTo(std::string& text, const ZZ& a) {
  if (!a.positive) text += '-';
  const Index n = limbCount(a);
  if (n == 0) {
    text += '0';
  } else {
    limbs::append(text, a.data + 1, n);
  }
}

std::string toString(const ZZ& a) {
  std::string text;
  appendTo(text, a);
  return text;
}

void fromString(ZZ& a, std::string_view text) {
  std::string storage;
  const std::string_view digits = digitsOf(text, storage);
  a.positive = text.empty() || text.front() != '-';
  const Index n = std::max<Index>(1, limbs::limbsFor(static_cast<Index>(digits.size())));
  a.Array::resize(n, false);
  a.data[1] = 0;
  limbs::parse(a.data + 1, digits);
  a.MN = std::max<Index>(1, limbs::trimmed(a.data + 1, n));
}

std::int64_t digitCount(const ZZ& a) {
  const Index n = limbCount(a);
  if (n == 0) return 1;
  return (n - 1) * limbs::LIMB_DIGITS + limbs::digitCount(limbs::word(a.data[n]));
}

void stripTrailingZeros(ZZ& a) {
  if (isZero(a)) return setZero(a);
  a.MN = limbs::dropDigits(a.data + 1, limbCount(a), trailingZeros(a));
}

void dropLowDigits(ZZ& a, std::int64_t count) {
  if (isZero(a)) return;
  const Index length = digitCount(a) + (a.positive ? 0 : 1);
  if (length <= count) return setZero(a);
  a.MN = limbs::dropDigits(a.data + 1, limbCount(a), count);
  if (a.MN > 0) return;
  a.MN = 1;  // the sign stays: only "-" is left of the text
  a.data[1] = 0;
}

}  // namespace vexil
