// Vexil - exact integer optimization on lattices.
//
// Everything in which the element types of vectors and matrices differ. Algorithms read the same
// for all of them.
#pragma once

#include <cmath>
#include <istream>
#include <string>

#include "foundation/dbl.h"

namespace vexil {

/// Settings of a number type T:
///   infinity()               the value that the word "inf" stands for
///   isZero(x)                |x| <= 10^-9
///   agree(a, b)              equal, or closer than 10^-9
///   isNoPivot(x)             an elimination cannot divide by x
///   addProduct(sum, a, b)    sum += a b
///   append(text, x, format)  appends x as a stream with the settings of `format` prints it
///   append(text, x, digits)  appends x with `digits` significant digits (not for `long`)
template <typename T>
struct NumberTraits;

template <>
struct NumberTraits<dbl_t> {
  static constexpr dbl_t infinity() { return INF_F; }
  static bool isZero(dbl_t x) { return std::fabs(x) <= TOLERANCE; }
  static bool agree(dbl_t a, dbl_t b) { return a == b || isZero(a - b); }
  static bool isNoPivot(dbl_t x) { return isZero(x); }
  static void addProduct(dbl_t& sum, dbl_t a, dbl_t b) { sum += a * b; }
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
  static void append(std::string& text, long x, const std::ios_base& format);
};

/// The tolerant zero test of T.
template <typename T>
[[nodiscard]] bool isZero(const T& x) {
  return NumberTraits<T>::isZero(x);
}

}  // namespace vexil
