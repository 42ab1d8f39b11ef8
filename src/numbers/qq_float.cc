// Vexil - exact integer optimization on lattices.
#include <array>
#include <cmath>
#include <cstdio>

#include "numbers/qq_parts.h"

namespace vexil {

namespace {

/// Significant digits that are taken from a floating value.
constexpr int TEXT_DIGITS = FILE_DIGITS;

/// The value of the text of a fractional number between 0.01 and 10^17: the mantissa times
/// 10^places and over a power of two is rounded as the text is, to the nearest number, a tie to the
/// even one.
void assignRounded(QQ& x, bool positive, dbl_t magnitude) {
  int exponent = 0;
  const auto mantissa = static_cast<Word>(std::ldexp(std::frexp(magnitude, &exponent), 64));
  const int shift = 64 - exponent;
  const auto whole = static_cast<Word>(magnitude);
  int places = TEXT_DIGITS - (whole == 0 ? 0 : limbs::digitCount(whole));
  const auto scaled = [&] { return static_cast<DoubleWord>(mantissa) * limbs::powerOfTen(places); };
  while (scaled() >> shift < limbs::powerOfTen(TEXT_DIGITS - 1)) ++places;
  const DoubleWord exact = scaled();
  auto digits = static_cast<Word>(exact >> shift);
  const DoubleWord half = static_cast<DoubleWord>(1) << (shift - 1);
  const DoubleWord rest = exact - (static_cast<DoubleWord>(digits) << shift);
  if (rest > half || (rest == half && digits % 2 != 0)) ++digits;
  for (; places > 0 && digits % 10 == 0; digits /= 10) --places;
  const Word power = limbs::powerOfTen(places);
  const Word numerator = digits % power;
  const Word divisor = gcdWord(numerator, power);
  assignParts(x, positive, digits / power, numerator / divisor, power / divisor);
}

}  // namespace

void fromFloat(dbl_t value, QQ& x) {
  constexpr dbl_t exactLimit = 1e17L;  // the text of a whole number below it is the number
  constexpr dbl_t roundedLimit = 0.01L;
  const dbl_t magnitude = std::fabs(value);
  if (!(magnitude > TOLERANCE)) {
    assignParts(x, true, 0, 0, 1);
  } else if (magnitude < exactLimit && std::trunc(value) == value) {
    assignParts(x, value > 0, static_cast<Word>(magnitude), 0, 1);
  } else if (magnitude < exactLimit && magnitude >= roundedLimit) {
    assignRounded(x, value > 0, magnitude);
  } else {
    std::array<char, 64> text{};
    const int length = std::snprintf(text.data(), text.size(), "%.*Lg", TEXT_DIGITS, value);
    parse({text.data(), static_cast<std::size_t>(length)}, x);
  }
}

QQ::QQ(dbl_t value) { fromFloat(value, *this); }

}  // namespace vexil
