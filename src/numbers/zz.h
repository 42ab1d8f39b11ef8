// Vexil - exact integer optimization on lattices.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/array.h"
#include "numbers/limbs.h"

namespace vexil {

/// Signed big integer. The magnitude stands in the elements 1 to `MN`, nine decimal digits in each,
/// the least significant first. There is no zero limb at the top but that of zero itself, which is
/// one limb 0 and positive as a result of arithmetic; a default-constructed number has no limb at
/// all and counts as zero everywhere.
///
/// The operations take the result object, which may be one of the operands.
class ZZ : public Array<long long> {
 public:
  bool positive = true;  ///< true for a non-negative number

  ZZ() = default;
  ZZ(int value) : ZZ(static_cast<long long>(value)) {}   // NOLINT(google-explicit-constructor)
  ZZ(long value) : ZZ(static_cast<long long>(value)) {}  // NOLINT(google-explicit-constructor)
  ZZ(long long value);                                   // NOLINT(google-explicit-constructor)

  /// Multiplies by BASE^steps; zero stays.
  void base_lshift(std::int64_t steps);
  /// Drops the `steps` lowest limbs; dropping all of them leaves `MN` 0. Fatal: "ZZ::base_rshift
  /// steps > N".
  void base_rshift(std::int64_t steps);
};

/// True if no limb is above 0.
[[nodiscard]] bool isZero(const ZZ& a);

/// -1, 0 or 1; zeros are equal whatever their flags.
[[nodiscard]] int compare(const ZZ& a, const ZZ& b);
/// -1, 0 or 1 for the magnitudes.
[[nodiscard]] int compareMagnitudes(const ZZ& a, const ZZ& b);
inline bool operator==(const ZZ& a, const ZZ& b) { return compare(a, b) == 0; }
inline std::strong_ordering operator<=>(const ZZ& a, const ZZ& b) { return compare(a, b) <=> 0; }

void add(const ZZ& a, const ZZ& b, ZZ& r);
void sub(const ZZ& a, const ZZ& b, ZZ& r);
void mul(const ZZ& a, const ZZ& b, ZZ& r);

/// q = a / b, truncated toward zero; r has the sign of `a`. With one object for both only the
/// quotient is made. Fatal: "ZZ::div -- division by zero".
void div(const ZZ& a, const ZZ& b, ZZ& q, ZZ& r);

/// r = a^e, with 0^0 = 1. Fatal: "[ ZZ::operator ^ ] Exponent < 0 ".
void power(const ZZ& a, const ZZ& e, ZZ& r);
/// r = 10^exponent, exponent >= 0.
void powerOfTen(std::int64_t exponent, ZZ& r);

/// The greatest common divisor of the magnitudes; gcd(a, 0) = |a|.
void gcd(const ZZ& a, const ZZ& b, ZZ& r);
[[nodiscard]] ZZ gcd(const ZZ& a, const ZZ& b);
/// a b / gcd(a, b).
[[nodiscard]] ZZ lcm(const ZZ& a, const ZZ& b);
/// The remainder of a / b, plus b where that is negative.
[[nodiscard]] ZZ mod(const ZZ& a, const ZZ& b);
[[nodiscard]] ZZ abs(ZZ a);

[[nodiscard]] ZZ operator+(const ZZ& a, const ZZ& b);
[[nodiscard]] ZZ operator-(const ZZ& a, const ZZ& b);
[[nodiscard]] ZZ operator*(const ZZ& a, const ZZ& b);
/// Zero stays as it is.
[[nodiscard]] ZZ operator-(ZZ a);

/// The digits behind "-" where the flag says negative, which for a zero gives "-0".
[[nodiscard]] std::string toString(const ZZ& a);
void appendTo(std::string& text, const ZZ& a);

/// The number made of the digits of `text`; all other characters are dropped. It is negative
/// exactly if the first character is "-", a zero too; no digits give zero.
void fromString(ZZ& a, std::string_view text);

/// Number of decimal digits; 1 for zero.
[[nodiscard]] std::int64_t digitCount(const ZZ& a);

/// Divides by 10 as long as that leaves no remainder. Zero becomes one limb 0, positive.
void stripTrailingZeros(ZZ& a);

/// Cuts `count` characters off the end of the number's text; a text not longer than that becomes 0.
/// Zero stays.
void dropLowDigits(ZZ& a, std::int64_t count);

}  // namespace vexil
