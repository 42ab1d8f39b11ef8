// Vexil - exact integer optimization on lattices.
//
// Arithmetic on magnitudes: blocks of decimal limbs, the least significant first, counted from 0.
// The callers own signs, sizes and storage.
#pragma once

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

/// Products of at least this many pairs of limbs are split.
inline constexpr Index KARATSUBA_THRESHOLD = 201;

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

/// r = a + b on `an` limbs, an >= bn; returns the carry, 0 or 1. `r` may be `a` or `b`.
Limb add(Limb* r, const Limb* a, Index an, const Limb* b, Index bn);

/// r = a - b on `an` limbs, for a >= b and an >= bn. `r` may be `a` or `b`.
void subtract(Limb* r, const Limb* a, Index an, const Limb* b, Index bn);

/// r = a * factor on `n` limbs, factor < BASE; returns the limb above. `r` may be `a`.
Limb multiplySmall(Limb* r, const Limb* a, Index n, Limb factor);

/// q = a / divisor on `n` limbs, 0 < divisor < BASE; returns the remainder. `q` may be `a`.
Limb divideSmall(Limb* q, const Limb* a, Index n, Limb divisor);

/// r = a * b on an + bn limbs, apart from both operands; an, bn >= 1. Karatsuba and Ofman, 1962, on
/// top of the schoolbook product.
void multiply(Limb* r, const Limb* a, Index an, const Limb* b, Index bn);

/// Knuth, The Art of Computer Programming, volume 2, 4.3.1, algorithm D, for operands that are
/// normalised: the top limb of `v` is at least BASE / 2. `u` has un + 1 limbs, of which the top
/// `vn` hold a number below `v`, and un >= vn >= 2. Leaves the quotient in q[0] to q[un - vn] and
/// the remainder in u[0] to u[vn - 1].
void divide(Limb* q, Limb* u, Index un, const Limb* v, Index vn);

/// Replaces (u, v) by (A u + B v, C u + D v) on `n` limbs, for factors of at most BASE in magnitude
/// whose results are not negative and fit.
struct Combination {
  Limb A = 1;
  Limb B = 0;
  Limb C = 0;
  Limb D = 1;
};
void combine(Limb* u, Limb* v, Index n, const Combination& by);

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
