// Vexil - exact integer optimization on lattices.
//
// Arithmetic on magnitudes: blocks of decimal limbs, the least significant first, counted from 0.
// The callers own signs, sizes and storage.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/dbl.h"

namespace vexil::limbs {

using Limb = long long;           ///< 0 to BASE - 1
using Word = unsigned long long;  ///< holds the product of two limbs, and a sum of 18 such products
using Index = std::int64_t;

inline constexpr int LIMB_DIGITS = DIGITS / 2;
inline constexpr Limb BASE = 1'000'000'000;

constexpr Word word(Limb limb) { return static_cast<Word>(limb); }
constexpr Limb limb(Word value) { return static_cast<Limb>(value); }

/// BASE in the arithmetic of words.
inline constexpr Word WORD_BASE = word(BASE);

/// 10^exponent, 0 <= exponent <= 19.
[[nodiscard]] Word powerOfTen(int exponent);

/// Number of decimal digits; 1 for 0.
[[nodiscard]] int digitCount(Word value);

/// `n` without the zero limbs at the top.
[[nodiscard]] Index trimmed(const Limb* a, Index n);

/// -1, 0, 1 for two blocks of one size.
[[nodiscard]] int compare(const Limb* a, const Limb* b, Index n);

/// r = a + b on `an` digits of `base`, an >= bn; returns the carry, 0 or 1. `r` may be `a` or `b`.
template <Limb base = BASE>
Limb add(Limb* r, const Limb* a, Index an, const Limb* b, Index bn) {
  Limb carry = 0;
  Index i = 0;
  const auto store = [&](Limb sum) {
    carry = sum >= base ? 1 : 0;
    r[i] = sum - (sum >= base ? base : 0);
  };
  for (; i < bn; ++i) store(a[i] + b[i] + carry);
  for (; i < an && carry != 0; ++i) store(a[i] + carry);
  if (r != a) std::copy(a + i, a + an, r + i);
  return carry;
}

/// r = a - b on `an` digits of `base`, for a >= b and an >= bn. `r` may be `a` or `b`.
template <Limb base = BASE>
void subtract(Limb* r, const Limb* a, Index an, const Limb* b, Index bn) {
  Limb borrow = 0;
  Index i = 0;
  const auto store = [&](Limb difference) {
    borrow = difference < 0 ? 1 : 0;
    r[i] = difference + (difference < 0 ? base : 0);
  };
  for (; i < bn; ++i) store(a[i] - b[i] - borrow);
  for (; i < an && borrow != 0; ++i) store(a[i] - borrow);
  if (r != a) std::copy(a + i, a + an, r + i);
}

/// q = a / divisor on `n` limbs, 0 < divisor < BASE^2; returns the remainder. `q` may be `a`.
Word divideSmall(Limb* q, const Limb* a, Index n, Word divisor);

/// r = a * b on an + bn limbs; an, bn >= 1. `r` may begin where an operand does. Karatsuba and
/// Ofman, 1962, on top of the schoolbook product.
void multiply(Limb* r, const Limb* a, Index an, const Limb* b, Index bn);

/// q = a / b on an - bn + 1 limbs, rest = the remainder on `bn` limbs, an >= bn > 2. No top limb is
/// 0. `q` and `rest` may begin where an operand does; a null `rest` is not written.
void divide(Limb* q, Limb* rest, const Limb* a, Index an, const Limb* b, Index bn);

/// Replaces (u, v) by (A u + B v, C u + D v) on `n` limbs, for factors below BASE^2 in magnitude
/// whose results are not negative and fit. `n` is even.
struct Combination {
  Limb A = 1;
  Limb B = 0;
  Limb C = 0;
  Limb D = 1;
};
void combine(Limb* u, Limb* v, Index n, const Combination& by);

/// Replaces (u, v) by (A u + B v, D v) on `n` limbs, for factors below BASE^2 whose results fit.
/// `n` is even.
void addScaled(Limb* u, Limb* v, Index n, Word A, Word B, Word D);

/// Divides by 10^digits, dropping the remainder, and returns the number of limbs that are left.
Index dropDigits(Limb* a, Index n, Index digits);

/// Number of limbs for `digits` digits.
constexpr Index limbsFor(Index digits) { return (digits + LIMB_DIGITS - 1) / LIMB_DIGITS; }

/// The value of a short digit string, at most 19 digits.
[[nodiscard]] Word parseWord(std::string_view digits);

/// Fills r[0] to r[limbsFor(size) - 1] from a string of digits.
void parse(Limb* r, std::string_view digits);

/// Appends the digits of `value`.
void appendWord(std::string& text, Word value);

/// Appends the digits of a block without a zero limb at the top, n >= 1.
void append(std::string& text, const Limb* a, Index n);

}  // namespace vexil::limbs
