// Vexil - exact integer optimization on lattices.
//
// The way between big integers and machine words, for the short cuts of numbers.
#pragma once

#include "numbers/wide_limbs.h"
#include "numbers/zz.h"

namespace vexil {

using limbs::Index;
using limbs::Limb;
using limbs::Word;

/// Greatest number of limbs whose value every word holds.
inline constexpr Index WORD_LIMBS = 2;

/// Number of limbs up to the highest that is not 0; 0 for zero.
[[nodiscard]] inline Index limbCount(const ZZ& a) {
  Index n = a.MN;
  while (n > 0 && a.data[n] == 0) --n;
  return n;
}

/// The magnitude made of the WORD_LIMBS lowest limbs.
[[nodiscard]] inline Word toWord(const ZZ& a) {
  const Word low = a.MN > 0 ? limbs::word(a.data[1]) : 0;
  return a.MN > 1 ? low + limbs::word(a.data[2]) * limbs::WORD_BASE : low;
}

/// The same for the four lowest limbs.
[[nodiscard]] inline DoubleWord toDoubleWord(const ZZ& a) {
  const auto pair = [&](Index i) {
    const Word low = a.MN >= i ? limbs::word(a.data[i]) : 0;
    return a.MN > i ? low + limbs::word(a.data[i + 1]) * limbs::WORD_BASE : low;
  };
  return pair(1) + static_cast<DoubleWord>(pair(3)) * limbs::word(limbs::WIDE);
}

/// What `assignWord` leaves: values of several limbs, and numbers without a block.
void assignWordAnyway(ZZ& a, Word value);

/// Makes `a` the non-negative `value`.
inline void assignWord(ZZ& a, Word value) {
  if (value >= limbs::WORD_BASE || a.capacity == 0) return assignWordAnyway(a, value);
  a.positive = true;
  a.MN = 1;
  a.data[1] = limbs::limb(value);
}

/// Makes `a` the non-negative `value` < 18 BASE^4.
void assignDoubleWord(ZZ& a, DoubleWord value);

inline void setZero(ZZ& a) { assignWord(a, 0); }

/// The remainder of |a| / divisor, 0 < divisor < BASE^2.
[[nodiscard]] inline Word remainder(const ZZ& a, const limbs::Modulus& modulus) {
  return modulus.remainder(a.data + 1, limbCount(a));
}
[[nodiscard]] inline Word remainder(const ZZ& a, Word divisor) {
  return remainder(a, limbs::Modulus(divisor));
}

/// Divides by 0 < divisor < BASE^2, which leaves no remainder.
void divideExactly(ZZ& a, Word divisor);

/// Replaces (u, v) by (A u + B v, D v), which are below BASE^count.
void addScaled(ZZ& u, ZZ& v, Index count, Word A, Word B, Word D);

/// The greatest common divisor of two words whose odd parts are below 2^63.
[[nodiscard]] Word gcdWord(Word a, Word b);

}  // namespace vexil
