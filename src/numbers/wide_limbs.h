// Vexil - exact integer optimization on lattices.
//
// Long products, quotients and combinations are worked out on wide limbs, which join two limbs: a
// quarter of the products of words, each of them a full one.
#pragma once

#include <bit>

#include "numbers/limbs.h"

namespace vexil {

/// __extension__ admits the types that ISO C++ does not have.
__extension__ using DoubleWord = unsigned __int128;
__extension__ using SignedDoubleWord = __int128;

}  // namespace vexil

namespace vexil::limbs {

/// The base of wide limbs.
inline constexpr Limb WIDE = BASE * BASE;

/// Number of wide limbs for `n` limbs.
constexpr Index wideCount(Index n) { return (n + 1) / 2; }

/// Fills the wideCount(n) wide limbs of `w` from `n` limbs.
inline void join(Limb* w, const Limb* a, Index n) {
  Index i = 0;
  for (; i + 1 < n; i += 2) *w++ = a[i] + a[i + 1] * BASE;
  if (i < n) *w = a[i];
}

/// Fills `n` limbs from the wideCount(n) wide limbs of `w`.
inline void split(Limb* a, Index n, const Limb* w) {
  Index i = 0;
  for (; i + 1 < n; i += 2, ++w) {
    const Word upper = word(*w) / WORD_BASE;
    a[i] = limb(word(*w) - upper * WORD_BASE);
    a[i + 1] = limb(upper);
  }
  if (i < n) a[i] = *w;
}

/// Division of double words by one word: Moeller and Granlund, Improved division by invariant
/// integers, 2011, algorithm 4.
class Divider {
 public:
  struct Result {
    Word quotient;
    Word rest;
  };

  /// 0 < divisor
  constexpr explicit Divider(Word divisor)
      : shift_(std::countl_zero(divisor)),
        normal_(divisor << shift_),
        inverse_(static_cast<Word>(~static_cast<DoubleWord>(0) / normal_)) {}

  /// For quotients that fit a word.
  [[nodiscard]] constexpr Result divide(DoubleWord dividend) const {
    dividend <<= shift_;
    const auto upper = static_cast<Word>(dividend >> 64);
    const auto lower = static_cast<Word>(dividend);
    const DoubleWord estimate = static_cast<DoubleWord>(inverse_) * upper + dividend;
    Word quotient = static_cast<Word>(estimate >> 64) + 1;
    Word rest = lower - quotient * normal_;
    if (rest > static_cast<Word>(estimate)) {
      --quotient;
      rest += normal_;
    }
    if (rest >= normal_) [[unlikely]] {
      ++quotient;
      rest -= normal_;
    }
    return {quotient, rest >> shift_};
  }

 private:
  int shift_;
  Word normal_;
  Word inverse_;
};

/// Most products of wide limbs, none negative, that `carryOf` takes as one column.
inline constexpr Index MOST_PRODUCTS = 18;

/// Leaves the digit of a column, at most MOST_PRODUCTS products and a carry, and returns the carry
/// to the next. From the top 64 of 123 bits the quotient comes out right or one too small: the bits
/// cut off below are worth 0.58 of it, what FACTOR lacks of a whole number 0.24.
[[nodiscard]] inline Word carryOf(DoubleWord column, Limb& digit) {
  constexpr int BITS = 123;
  constexpr auto FACTOR = static_cast<Word>((static_cast<DoubleWord>(1) << BITS) / word(WIDE));
  constexpr Word FOLD = word(10) * word(WIDE);
  Word quotient = 0;
  if (column >> BITS != 0) [[unlikely]] {
    column -= static_cast<DoubleWord>(FOLD) * word(WIDE);
    quotient = FOLD;
  }
  const auto top = static_cast<Word>(column >> (BITS - 64));
  const auto estimate = static_cast<Word>(static_cast<DoubleWord>(top) * FACTOR >> 64);
  const Word rest = static_cast<Word>(column) - estimate * word(WIDE);
  const bool over = rest >= word(WIDE);
  digit = limb(over ? rest - word(WIDE) : rest);
  return quotient + estimate + (over ? 1 : 0);
}

/// The same for a column of either sign, below 9 WIDE^2 in magnitude.
[[nodiscard]] inline Limb signedCarryOf(SignedDoubleWord column, Limb& digit) {
  constexpr Limb LIFT = 9 * WIDE;
  constexpr auto LIFTED = static_cast<SignedDoubleWord>(LIFT) * WIDE;
  return limb(carryOf(static_cast<DoubleWord>(column + LIFTED), digit) - word(LIFT));
}

/// Room for a computation, kept for the next one. The numbers are what the last user left.
Limb* room(Index count);

}  // namespace vexil::limbs
