// Vexil - exact integer optimization on lattices.
//
// Long products, quotients and combinations are worked out on wide limbs, which join two limbs: a
// quarter of the products of words, each of them a full one.
#pragma once

#include <array>
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

[[nodiscard]] constexpr Word upperWord(DoubleWord x) { return static_cast<Word>(x >> 64); }

/// The upper word of the product.
[[nodiscard]] constexpr Word multiplyUpper(Word a, Word b) {
  return upperWord(static_cast<DoubleWord>(a) * b);
}

/// Takes `part` off a value that reaches it: 1 if so, else 0. A branch could not be foreseen.
constexpr Word takeOff(Word& value, Word part) {
  const Word over = value >= part ? 1 : 0;
  value -= part & (0 - over);
  return over;
}

/// Division of double words by one word: Moeller and Granlund, Improved division by invariant
/// integers, 2011, algorithm 4.
class Divider {
 public:
  struct Result {
    Word quotient;
    Word rest;
  };

  /// 0 < divisor <= WIDE
  constexpr explicit Divider(Word divisor)
      : shift_(std::countl_zero(divisor)),
        normal_(divisor << shift_),
        inverse_(static_cast<Word>(~static_cast<DoubleWord>(0) / normal_)),
        divisor_(divisor),
        wideFactor_(word(WIDE) + multiplyUpper(word(WIDE), inverse_)),
        wordFactor_((static_cast<Word>(1) << shift_) + (inverse_ >> (64 - shift_))) {}

  /// For quotients that fit a word.
  [[nodiscard]] constexpr Result divide(DoubleWord dividend) const {
    dividend <<= shift_;
    const auto lower = static_cast<Word>(dividend);
    const DoubleWord estimate = static_cast<DoubleWord>(inverse_) * upperWord(dividend) + dividend;
    Word quotient = upperWord(estimate) + 1;
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

  /// (rest WIDE + digit) / divisor for a rest of such a division and digit < WIDE. The estimate is
  /// less than 4 short of the quotient, and little of the work waits for `rest`.
  [[nodiscard]] constexpr Result divideNext(Word rest, Word digit) const {
    const Word quotient =
        multiplyUpper(rest << shift_, wideFactor_) + multiplyUpper(digit, wordFactor_);
    rest = rest * word(WIDE) + digit - quotient * divisor_;
    const Word twice = takeOff(rest, 2 * divisor_);
    const Word once = takeOff(rest, divisor_);
    return {quotient + 2 * twice + once, rest};
  }

 private:
  int shift_;
  Word normal_;
  Word inverse_;
  Word divisor_;
  Word wideFactor_;  ///< WIDE 2^64 / normal_, less than 2 short
  Word wordFactor_;  ///< 2^64 / divisor_, less than 2 short
};

/// Remainders modulo a word.
class Modulus {
 public:
  /// 0 < divisor < WIDE
  explicit Modulus(Word divisor);

  /// The remainder of a / divisor: four pairs of limbs at a time, each times the remainder of its
  /// power, modulo a multiple of the divisor that is at least WIDE / 2: their sum has a quotient of
  /// one word.
  [[nodiscard]] Word remainder(const Limb* a, Index n) const;

 private:
  static constexpr Index PAIRS = 4;

  Word divisor_;
  Divider by_;
  std::array<DoubleWord, PAIRS + 1> powers_{1};  ///< of WIDE
};

/// Most products of wide limbs, none negative, that `carryOf` takes as one column.
inline constexpr Index MOST_PRODUCTS = 18;

/// The quotient of a column below 2^BITS by WIDE, or one less, from the top 64 bits: the bits cut
/// off are worth 0.58 of it for 123 BITS, what FACTOR lacks of a whole number 0.24; 0.14 and 0.81
/// for 121.
template <int BITS>
[[nodiscard]] Word estimateQuotient(DoubleWord column) {
  constexpr auto FACTOR = static_cast<Word>((static_cast<DoubleWord>(1) << BITS) / word(WIDE));
  return multiplyUpper(static_cast<Word>(column >> (BITS - 64)), FACTOR);
}

/// Leaves the digit of a column, at most MOST_PRODUCTS products and a carry, and returns the carry
/// to the next.
[[nodiscard]] inline Word carryOf(DoubleWord column, Limb& digit) {
  constexpr int BITS = 123;
  constexpr Word FOLD = word(10) * word(WIDE);
  Word quotient = 0;
  if (column >> BITS != 0) [[unlikely]] {
    column -= static_cast<DoubleWord>(FOLD) * word(WIDE);
    quotient = FOLD;
  }
  const Word estimate = estimateQuotient<BITS>(column);
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

/// The same for one or two products and a carry that joins them late: the chain of carries is
/// short.
[[nodiscard]] inline Word lateCarryOf(DoubleWord products, Word carry, Limb& digit) {
  const Word estimate = estimateQuotient<121>(products);
  Word rest = static_cast<Word>(products) - estimate * word(WIDE) + carry;
  const Word twice = takeOff(rest, 2 * word(WIDE));
  const Word once = takeOff(rest, word(WIDE));
  digit = limb(rest);
  return estimate + 2 * twice + once;
}

/// Room for a computation, kept for the next one. The numbers are what the last user left.
Limb* room(Index count);

}  // namespace vexil::limbs
