// Vexil - exact integer optimization on lattices.
#include "numbers/convert.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "foundation/exceptions.h"
#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// Digits of a fraction that the conversion takes, the leading zeros not among them.
constexpr int FRACTION_DIGITS = DIGITS + 1;

/// Greatest exponent whose power of ten the mantissa of `dbl_t` holds.
constexpr Index EXACT_POWER = 27;

dbl_t exactPowerOfTen(Index exponent) {
  const auto high = static_cast<int>(std::max<Index>(0, exponent - DIGITS));
  const auto low = static_cast<int>(exponent) - high;
  return static_cast<dbl_t>(limbs::powerOfTen(low)) * static_cast<dbl_t>(limbs::powerOfTen(high));
}

/// The decimal fraction digits / 10^places, and whether it is less than the fraction it stands for.
struct Decimals {
  Word digits = 0;
  Index places = 0;
  bool cut = false;

  void stripTrailingZeros() {
    for (; digits != 0 && digits % 10 == 0; digits /= 10) --places;
    if (digits == 0) places = 0;
  }
};

/// Long division in words, for rests and divisors of at most 18 digits; a divisor of one limb gives
/// several digits in a step.
Decimals decimalsOf(Word rest, Word divisor) {
  Decimals decimals;
  for (int count = 0; rest != 0 && count < FRACTION_DIGITS;) {
    const int step =
        divisor < limbs::WORD_BASE ? std::min(limbs::LIMB_DIGITS, FRACTION_DIGITS - count) : 1;
    rest *= limbs::powerOfTen(step);
    const Word digits = rest / divisor;
    rest -= digits * divisor;
    decimals.digits = decimals.digits * limbs::powerOfTen(step) + digits;
    decimals.places += step;
    if (decimals.digits != 0) count = limbs::digitCount(decimals.digits);
  }
  decimals.cut = rest != 0;
  decimals.stripTrailingZeros();
  return decimals;
}

Decimals decimalsOf(const QQ& q) {
  if (q.zaehler.MN <= WORD_LIMBS && q.nenner.MN <= WORD_LIMBS) {
    return decimalsOf(toWord(q.zaehler), toWord(q.nenner));
  }
  // Behind as many zeros as lie between the two sizes the quotient has its digits, or one too few.
  Decimals decimals;
  decimals.places = digitCount(q.nenner) - digitCount(q.zaehler) + FRACTION_DIGITS - 1;
  ZZ quotient;
  ZZ rest;
  for (;; ++decimals.places) {
    powerOfTen(decimals.places, quotient);
    mul(quotient, q.zaehler, quotient);
    div(quotient, q.nenner, quotient, rest);
    if (digitCount(quotient) == FRACTION_DIGITS) break;
  }
  decimals.cut = !isZero(rest);
  for (Index i = quotient.MN; i >= 1; --i) {
    decimals.digits = decimals.digits * limbs::WORD_BASE + limbs::word(quotient.data[i]);
  }
  decimals.stripTrailingZeros();
  return decimals;
}

/// What the floating extraction of a stream makes of the number's text.
dbl_t readBack(const ZZ& whole, const Decimals& decimals) {
  static std::string text;
  text.clear();
  appendTo(text, whole);
  if (decimals.digits != 0) {
    text += '.';
    text.append(static_cast<std::size_t>(decimals.places - limbs::digitCount(decimals.digits)),
                '0');
    limbs::appendWord(text, decimals.digits);
  }
  return std::min(std::strtold(text.c_str(), nullptr), std::numeric_limits<dbl_t>::max());
}

/// One rounding at most where whole part and decimals make a mantissa of one word.
dbl_t decimalValue(const ZZ& whole, const Decimals& decimals) {
  if (whole.MN > WORD_LIMBS || decimals.places > EXACT_POWER) return readBack(whole, decimals);
  const Word part = toWord(whole);
  if (decimals.digits == 0) return static_cast<dbl_t>(part);
  if (part == 0) return static_cast<dbl_t>(decimals.digits) / exactPowerOfTen(decimals.places);
  if (decimals.places > DIGITS) return readBack(whole, decimals);
  const DoubleWord mantissa =
      static_cast<DoubleWord>(part) * limbs::powerOfTen(static_cast<int>(decimals.places)) +
      decimals.digits;
  if (mantissa != static_cast<Word>(mantissa)) return readBack(whole, decimals);
  return static_cast<dbl_t>(static_cast<Word>(mantissa)) / exactPowerOfTen(decimals.places);
}

[[noreturn]] void throwLost() { throw PrecisionException("Precision lost during conversion"); }

template <Number S, Number T>
void convertVector(const Vector<S>& source, Vector<T>& target, bool check) {
  target.resize(source.MN, false);
  target.copyTextSettings(source);
  for (std::int64_t i = 1; i <= source.MN; ++i) {
    convertNumber(source.data[i], target.data[i], false, target.throwOnLoss,
                  target.tolerateFraction);
  }
  if (!check) return;
  static S back;
  for (std::int64_t i = 1; i <= source.MN; ++i) {
    convertNumber(target.data[i], back, false, false, false);
    if (!NumberTraits<S>::agree(source.data[i], back)) throwLost();
  }
}

}  // namespace

dbl_t toFloat(const QQ& q, bool throwOnLoss, bool tolerateFraction) {
  dbl_t magnitude = INF_F;
  if (!q.isInf) {
    Decimals decimals;
    if (digitCount(q.ganze) > DIGITS) {
      if (throwOnLoss) throw PreCommaPrecisionException("QQ is not representable as dbl_t");
    } else if (!isZero(q.zaehler)) {
      decimals = decimalsOf(q);
      if (decimals.cut && throwOnLoss && !tolerateFraction) {
        throw PostCommaPrecisionException("QQ is not representable as dbl_t");
      }
    }
    magnitude = decimalValue(q.ganze, decimals);
  }
  return q.positive ? magnitude : -magnitude;
}

void convertNumber(const QQ& source, dbl_t& target, bool check, bool throwOnLoss,
                   bool tolerateFraction) {
  target = toFloat(source, throwOnLoss, tolerateFraction);
  if (!check) return;
  static QQ back;
  fromFloat(target, back);
  if (!NumberTraits<QQ>::agree(source, back)) throwLost();
}

void convertNumber(dbl_t source, QQ& target, bool check, bool throwOnLoss, bool tolerateFraction) {
  fromFloat(source, target);
  if (!check) return;
  const dbl_t back = toFloat(target, throwOnLoss, tolerateFraction);
  if (!NumberTraits<dbl_t>::agree(source, back)) throwLost();
}

void convertExactly(const QQ& source, dbl_t& target, bool check) {
  target = toFloat(source, check, false);
  if (!check) return;
  static QQ back;
  fromFloat(target, back);
  if (back != source) throwLost();
}

void convertExactly(dbl_t source, QQ& target, bool check) {
  fromFloat(source, target);
  if (check && toFloat(target, true, false) != source) throwLost();
}

void convert(const Vector<QQ>& source, Vector<dbl_t>& target, bool check) {
  convertVector(source, target, check);
}

void convert(const Vector<dbl_t>& source, Vector<QQ>& target, bool check) {
  convertVector(source, target, check);
}

}  // namespace vexil
