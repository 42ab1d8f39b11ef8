// Vexil - exact integer optimization on lattices.
//
// The numbers of sparse models. A model of millions of coefficients holds few that need a QQ.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "numbers/qq.h"

namespace vexil::formats {

/// A finite exact number: a decimal of up to 18 digits as two machine words, any other as `QQ`.
class Coefficient {
 public:
  Coefficient(std::int64_t whole = 0) : digits_(whole) {}  // NOLINT(google-explicit-constructor)
  explicit Coefficient(const QQ& value);

  /// digits / 10^places, places >= 0.
  Coefficient(std::int64_t digits, std::int32_t places) : digits_(digits), places_(places) {}

  [[nodiscard]] QQ value() const;
  [[nodiscard]] bool isZero() const { return exact_ == nullptr && digits_ == 0; }
  [[nodiscard]] bool isNegative() const {
    return exact_ == nullptr ? digits_ < 0 : !exact_->positive;
  }

  [[nodiscard]] bool isDecimal() const;  ///< its decimal expansion ends

  [[nodiscard]] Coefficient operator-() const;
  [[nodiscard]] Coefficient operator+(const Coefficient& other) const;
  [[nodiscard]] Coefficient operator*(const Coefficient& other) const;

 private:
  std::int64_t digits_ = 0;
  std::int32_t places_ = 0;
  std::shared_ptr<const QQ> exact_;  ///< the value where the words do not hold it
};

[[nodiscard]] bool operator==(const Coefficient& a, const Coefficient& b);
[[nodiscard]] bool operator<(const Coefficient& a, const Coefficient& b);

/// A bound that may be missing: nothing stands for -inf below and +inf above.
using Bound = std::optional<Coefficient>;

/// Length of the longest decimal number that `text` starts with, 0 if there is none: digits, one
/// point among them or at either end, and an exponent behind "e" or "E". It has no sign.
[[nodiscard]] std::size_t decimalLength(std::string_view text);

/// The value of a decimal number, exactly, with an optional sign ahead. Nothing for any other text
/// and for an exponent beyond 9999.
[[nodiscard]] std::optional<Coefficient> parseDecimal(std::string_view text);

/// A bound as a file states it.
struct StatedBound {
  Coefficient value;  ///< where it is finite
  int infinite = 0;   ///< -1: -inf, 1: +inf
};

/// A decimal number or, in any case of letters, "inf" or "infinity" with an optional sign. A number
/// with an exponent is infinite from 10^30 on, which is how models are written out by programs that
/// have no word for it; the same number without an exponent is itself. Nothing for any other text.
[[nodiscard]] std::optional<StatedBound> parseBound(std::string_view text);

/// True for "inf" and "infinity", in any case of letters.
[[nodiscard]] bool isInfinityWord(std::string_view text);

/// Equal but for the case of letters, `lower` being in lower case.
[[nodiscard]] bool equalsIgnoringCase(std::string_view text, std::string_view lower);

/// The least whole number that makes the decimal expansion of a finite number end: its denominator
/// without the factors 2 and 5.
[[nodiscard]] ZZ decimalDenominator(const QQ& value);

/// The decimal expansion of a finite number, as in "-0.125"; nothing where it does not end.
[[nodiscard]] std::optional<std::string> decimalText(const QQ& value);

/// The same of a number whose expansion is known to end.
[[nodiscard]] std::string decimalText(const Coefficient& value);

}  // namespace vexil::formats
