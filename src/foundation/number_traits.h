// Vexil - exact integer optimization on lattices.
//
// Everything in which the number types differ. Algorithms read the same for all of them.
#pragma once

#include <cmath>
#include <istream>
#include <string>

#include "foundation/dbl.h"
#include "foundation/overflow.h"

namespace vexil {

/// Settings of a number type T:
///   infinity()               the value that the word "inf" stands for
///   isZero(x)                |x| <= tolerance() = 10^-9
///   agree(a, b)              equal, or closer than 10^-9
///   isNoPivot(x)             an elimination cannot divide by x: a rounded 0, or 0 itself where
///                            numbers are exact
///   addProduct(sum, a, b)    sum += a b
///   abs(x)
/// For `dbl_t` and `QQ` also:
///   isFinite(x)
///   floor(x), ceil(x), round(x)  whole numbers, halves rounded away from zero; infinities stay
///   sqrt(x, digits)          x >= 0; in `QQ` with an error below 10^-digits
///   roundDecimals(x, digits) drops what stands behind the decimal `digits`; `dbl_t` has dropped it
///   gcd(a, b), lcm(a, b)     of whole numbers, by their magnitudes
///   den(x)                   the denominator: 1 for whole numbers and infinities. In `dbl_t` that
///                            of the decimal fraction with 17 significant digits
///   powerOfTen(x)            10^x
///   guard(x, text)           throws `PrecisionException` with the text, "<name> overflow", for a
///                            value that is too great to be trusted (overflow.h); in `QQ` nothing
///                            is
///   append(text, x, format)  appends x as a stream with the settings of `format` prints it
///   append(text, x, digits)  appends x with `digits` significant digits (not for `long`)
template <typename T>
struct NumberTraits;

template <>
struct NumberTraits<dbl_t> {
  static constexpr dbl_t infinity() { return INF_F; }
  static constexpr dbl_t tolerance() { return TOLERANCE; }
  static bool isZero(dbl_t x) { return std::fabs(x) <= TOLERANCE; }
  static bool agree(dbl_t a, dbl_t b) { return a == b || isZero(a - b); }
  static bool isNoPivot(dbl_t x) { return isZero(x); }
  static void addProduct(dbl_t& sum, dbl_t a, dbl_t b) { sum += a * b; }
  static dbl_t abs(dbl_t x) { return std::fabs(x); }
  static bool isFinite(dbl_t x) { return std::fabs(x) != INF_F; }
  static dbl_t floor(dbl_t x) { return std::floor(x); }
  static dbl_t ceil(dbl_t x) { return std::ceil(x); }
  static dbl_t round(dbl_t x) { return std::round(x); }
  static dbl_t sqrt(dbl_t x, std::int64_t /*digits*/) { return std::sqrt(x); }
  static void roundDecimals(dbl_t& /*x*/, std::int64_t /*digits*/) {}
  static dbl_t gcd(dbl_t a, dbl_t b);
  static dbl_t lcm(dbl_t a, dbl_t b) { return std::fabs(a) / gcd(a, b) * std::fabs(b); }
  static dbl_t den(dbl_t x);
  static dbl_t powerOfTen(dbl_t x) { return std::pow(TEN_F, x); }
  static void guard(dbl_t x, const char* text) {
    if (checkOverflow(x)) throw PrecisionException(text);
  }
  static void append(std::string& text, dbl_t x, int digits);
  static void append(std::string& text, dbl_t x, const std::ios_base& format);
};

template <>
struct NumberTraits<long> {
  static constexpr long infinity() { return HUGE_LONG; }
  static bool isZero(long x) { return x == 0; }
  static bool agree(long a, long b) { return a == b; }
  static bool isNoPivot(long x) { return x == 0; }
  static void addProduct(long& sum, long a, long b) { sum += a * b; }
  static long abs(long x) { return x < 0 ? -x : x; }
  static void append(std::string& text, long x, const std::ios_base& format);
};

/// The tolerant zero test of T.
template <typename T>
[[nodiscard]] bool isZero(const T& x) {
  return NumberTraits<T>::isZero(x);
}

/// Neither infinity.
template <typename T>
[[nodiscard]] bool isFinite(const T& x) {
  return NumberTraits<T>::isFinite(x);
}

}  // namespace vexil
