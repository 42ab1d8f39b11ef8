// Vexil - exact integer optimization on lattices.
#pragma once

#include <compare>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/dbl.h"
#include "foundation/number_traits.h"
#include "numbers/zz.h"

namespace vexil {

/// Exact rational with two infinities, held as a mixed number: with the sign of `positive` it is
/// ganze + zaehler / nenner.
///
/// Normal form, which every operation wants of its operands and gives its result: the parts have no
/// sign of their own; 0 <= zaehler < nenner, both without a common divisor; where zaehler is 0,
/// nenner is 1; zero is positive; an infinity has ganze 1, zaehler 0, nenner 1. A part that is 0
/// may have no limb at all.
class QQ {
 public:
  bool isInf = false;    ///< plus or minus infinity
  bool positive = true;  ///< true for zero and positive values
  ZZ ganze;              ///< whole part
  ZZ zaehler;            ///< numerator of the fraction
  ZZ nenner = 1;         ///< denominator of the fraction

  QQ() = default;
  QQ(int value) : QQ(static_cast<long long>(value)) {}   // NOLINT(google-explicit-constructor)
  QQ(long value) : QQ(static_cast<long long>(value)) {}  // NOLINT(google-explicit-constructor)
  QQ(long long value);                                   // NOLINT(google-explicit-constructor)
  QQ(ZZ value);                                          // NOLINT(google-explicit-constructor)

  /// numerator / denominator. Fatal for n / 0, n not 0: "ZZ::div -- division by zero"; 0 / 0 is 0.
  QQ(ZZ numerator, ZZ denominator);

  /// The value of `fromFloat`.
  explicit QQ(dbl_t value);
  explicit QQ(double value) : QQ(static_cast<dbl_t>(value)) {}

  /// The value of `parse`.
  explicit QQ(std::string_view text);
  explicit QQ(const std::string& text) : QQ(std::string_view(text)) {}
  explicit QQ(const char* text) : QQ(std::string_view(text)) {}

  static const QQ& ONE();
  static const QQ& INF();      ///< plus infinity
  static const QQ& EPSILON();  ///< 10^-9, the bound of the tolerant zero test

 private:
  struct Infinity {};
  QQ(Infinity, bool sign) : isInf(true), positive(sign), ganze(1) {}
};

/// Brings any parts to the normal form. Fatal for a part with a sign: "A ganze / zaehler / nenner
/// sign has been set, though it should not be used"; for a zero nenner under another zaehler:
/// "ZZ::div -- division by zero".
void normalize(QQ& x);

/// While true, products of numbers whose denominators are long are inexact: the fractions of the
/// partial products are cut to denominators of 18 digits. Keeps eliminations from swelling.
extern bool limitProducts;
void setLimitProducts(bool limited);

/// Limits products for as long as it lives.
class ProductLimit {
 public:
  ProductLimit() { setLimitProducts(true); }
  ProductLimit(ProductLimit&&) = delete;  // and no copies either
  ~ProductLimit() { setLimitProducts(false); }
};

/// -1, 0 or 1.
[[nodiscard]] int compare(const QQ& a, const QQ& b);
inline bool operator==(const QQ& a, const QQ& b) { return compare(a, b) == 0; }
inline std::strong_ordering operator<=>(const QQ& a, const QQ& b) { return compare(a, b) <=> 0; }

/// The fractions of `a` and `b` as az / l and bz / l, with l the least common multiple of the
/// denominators. Fatal: "QQ: The ZZs have the same address" for results that are not three objects,
/// "a_z, b_z can not be set to ZZ::INF -- isInf is logic only available in QQ class".
void commonDenominator(ZZ& az, ZZ& bz, ZZ& l, const QQ& a, const QQ& b);

// The result may be an operand. Failures:
//   add, sub  fatal "INF - INF is not defined"
//   mul       fatal "qq: INF * 0 is not defined!" and "qq: 0 * INF is not defined!"
//   div       fatal "QQ: +-INF / +-INF is not defined"; throws PrecisionException "QQ: division by
//             zero3" for a zero divisor
void add(const QQ& a, const QQ& b, QQ& r);
void sub(const QQ& a, const QQ& b, QQ& r);
void mul(const QQ& a, const QQ& b, QQ& r);
void div(const QQ& a, const QQ& b, QQ& r);

/// sum += a b.
void addProduct(QQ& sum, const QQ& a, const QQ& b);

[[nodiscard]] inline QQ operator+(const QQ& a, const QQ& b) {
  QQ r;
  add(a, b, r);
  return r;
}
[[nodiscard]] inline QQ operator-(const QQ& a, const QQ& b) {
  QQ r;
  sub(a, b, r);
  return r;
}
[[nodiscard]] inline QQ operator*(const QQ& a, const QQ& b) {
  QQ r;
  mul(a, b, r);
  return r;
}
[[nodiscard]] inline QQ operator/(const QQ& a, const QQ& b) {
  QQ r;
  div(a, b, r);
  return r;
}
inline QQ& operator+=(QQ& a, const QQ& b) {
  add(a, b, a);
  return a;
}
inline QQ& operator-=(QQ& a, const QQ& b) {
  sub(a, b, a);
  return a;
}
inline QQ& operator*=(QQ& a, const QQ& b) {
  mul(a, b, a);
  return a;
}
inline QQ& operator/=(QQ& a, const QQ& b) {
  div(a, b, a);
  return a;
}

[[nodiscard]] QQ operator-(QQ x);
[[nodiscard]] QQ abs(QQ x);

/// x^y, exact for a whole y, else by `root`, whose failures it shares. An infinite y gives 0, 1 or
/// the infinity with the sign of x, by the magnitude of x; an infinite x counts as 1 or -1. Throws
/// `PrecisionException` "QQ: division by zero3" for a negative y where x^-y is 0.
[[nodiscard]] QQ pow(const QQ& x, const QQ& y);

/// The k-th root by Newton's iteration, accurate to about 10^-9, or to its 18 digits where it has
/// more than nine in front of the point: the one inexact operation. Fatal: "QQ: zero-th roots are
/// not defined", "QQ: division by zero" for a negative k and x = 0, "QQ: complex roots are not
/// implemented". Throws what the division by a slope that was cut to 0 throws.
[[nodiscard]] QQ root(const QQ& x, const ZZ& k);

/// The square root of x >= 0 as a decimal fraction, with an error below 10^-digits.
[[nodiscard]] QQ squareRoot(const QQ& x, std::int64_t digits);

// Whole numbers; infinities stay.
[[nodiscard]] QQ floor(const QQ& x);
[[nodiscard]] QQ ceil(const QQ& x);
[[nodiscard]] QQ round(const QQ& x);  ///< halves away from zero

/// Rounds to the nearest decimal fraction with so many decimals.
void roundDecimals(QQ& x, std::int64_t digits);

/// Cuts a denominator of more than `digits` digits to so many, its numerator by as many digits; a
/// numerator that has no more than these leaves no fraction. The result is not in normal form.
void limitDigits(QQ& x, int digits);

[[nodiscard]] ZZ wholeSigned(const QQ& x);      ///< ganze with the sign of x
[[nodiscard]] ZZ numeratorSigned(const QQ& x);  ///< zaehler with the sign of x
[[nodiscard]] QQ denominator(const QQ& x);      ///< 1 for an infinity

/// Appends "7", "-1/3", "-7:1/3" (a mixed number), "inf".
void append(std::string& text, const QQ& x);
[[nodiscard]] std::string toString(const QQ& x);
std::ostream& operator<<(std::ostream& out, const QQ& x);

/// Skips blanks and comments and parses the longest run of digits, "+", ",", "-", ".", "/", ":",
/// with an "inf" behind it. A number may be cut off by the end of the text; the stream is then at
/// its end but has not failed. Fatal: what `parse` reports, so "QQ: parse error1" where no number
/// stands.
std::istream& operator>>(std::istream& in, QQ& x);

/// Reads a number: whole, n/d, mixed (w:n/d), decimal with point or comma, any of these with an
/// exponent behind "e" or "E", "inf", each with a sign. In the digits of a part all other
/// characters are dropped. Fatal: "QQ: parse error1" for an empty number, which the rest of "1.0"
/// behind its zeros is; "QQ: parse error2" and "QQ: parse error3" for a misspelt "inf"; "QQ:
/// malformed number1" and "QQ: malformed number2" for what is no proper fraction behind ":"; "QQ:
/// division by zero1"; a second sign where `normalize` reports it (a whole number takes it).
void parse(std::string_view text, QQ& x);

/// The value of the text of `value` with 17 significant digits: 0.1 becomes 1/10. Up to 10^-9
/// counts as 0, and so does what is no number.
void fromFloat(dbl_t value, QQ& x);

template <>
struct NumberTraits<QQ> {
  static const QQ& infinity() { return QQ::INF(); }
  static const QQ& tolerance() { return QQ::EPSILON(); }
  static bool isZero(const QQ& x);
  static bool agree(const QQ& a, const QQ& b);
  static bool isNoPivot(const QQ& x) {
    return !x.isInf && vexil::isZero(x.ganze) && vexil::isZero(x.zaehler);
  }
  static void addProduct(QQ& sum, const QQ& a, const QQ& b) { vexil::addProduct(sum, a, b); }
  static QQ abs(const QQ& x) { return vexil::abs(x); }
  static bool isFinite(const QQ& x) { return !x.isInf; }
  static QQ floor(const QQ& x) { return vexil::floor(x); }
  static QQ ceil(const QQ& x) { return vexil::ceil(x); }
  static QQ round(const QQ& x) { return vexil::round(x); }
  static QQ sqrt(const QQ& x, std::int64_t digits) { return squareRoot(x, digits); }
  static void roundDecimals(QQ& x, std::int64_t digits) { vexil::roundDecimals(x, digits); }
  static QQ gcd(const QQ& a, const QQ& b) { return vexil::gcd(a.ganze, b.ganze); }
  static QQ lcm(const QQ& a, const QQ& b) { return vexil::lcm(a.ganze, b.ganze); }
  static QQ den(const QQ& x) { return denominator(x); }
  static QQ powerOfTen(const QQ& x) { return pow(10, x); }
  static void guard(const QQ& /*x*/, const char* /*text*/) {}
  static void append(std::string& text, const QQ& x, int /*digits*/) { vexil::append(text, x); }
  static void append(std::string& text, const QQ& x, const std::ios_base& /*format*/) {
    vexil::append(text, x);
  }
};

}  // namespace vexil
