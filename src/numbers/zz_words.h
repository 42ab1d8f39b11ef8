// Vexil - exact integer optimization on lattices.
//
// The way between big integers and machine words, for the short cuts of numbers.
#pragma once

#include "numbers/zz.h"

namespace vexil {

using limbs::Index;
using limbs::Limb;
using limbs::Word;

/// __extension__ admits the type that ISO C++ does not have.
__extension__ using DoubleWord = unsigned __int128;

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

/// What `assignWord` leaves: values of several limbs, and numbers without a block.
void assignWordAnyway(ZZ& a, Word value);

/// Makes `a` the non-negative `value`.
inline void assignWord(ZZ& a, Word value) {
  if (value >= limbs::WORD_BASE || a.capacity == 0) return assignWordAnyway(a, value);
  a.positive = true;
  a.MN = 1;
  a.data[1] = limbs::limb(value);
}

inline void setZero(ZZ& a) { assignWord(a, 0); }

/// The greatest common divisor of two words.
[[nodiscard]] Word gcdWord(Word a, Word b);

}  // namespace vexil
