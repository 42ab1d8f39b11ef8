// Vexil - exact integer optimization on lattices.
#include "formats/coefficient.h"

#include <algorithm>
#include <charconv>

#include "foundation/string.h"

namespace vexil::formats {

namespace {

/// Decimal digits that every signed machine word holds.
constexpr std::size_t WORD_DIGITS = 18;
constexpr int GREATEST_EXPONENT = 9999;

std::size_t digitsAt(std::string_view text, std::size_t start) {
  std::size_t end = start;
  while (end < text.size() && isDigit(text[end])) ++end;
  return end - start;
}

/// digits / 10^places of a text of digits; `places` may be negative.
QQ exactDecimal(std::string_view digits, std::int64_t places) {
  ZZ number;
  ZZ power;
  fromString(number, digits);
  powerOfTen(places < 0 ? -places : places, power);
  return places < 0 ? QQ(number * power) : QQ(std::move(number), std::move(power));
}

/// Divides by the factor as often as it goes, and says how often.
std::int64_t divideOut(ZZ& number, const ZZ& factor) {
  for (std::int64_t times = 0;; ++times) {
    ZZ quotient;
    ZZ remainder;
    div(number, factor, quotient, remainder);
    if (!isZero(remainder)) return times;
    number = std::move(quotient);
  }
}

}  // namespace

Coefficient::Coefficient(const QQ& value) {
  if (vexil::isZero(value.zaehler) &&
      digitCount(value.ganze) <= static_cast<std::int64_t>(WORD_DIGITS)) {
    std::int64_t whole = 0;
    for (std::int64_t i = value.ganze.MN; i >= 1; --i)
      whole = whole * 1'000'000'000 + value.ganze[i];
    digits_ = value.positive ? whole : -whole;
  } else {
    exact_ = std::make_shared<QQ>(value);
  }
}

QQ Coefficient::value() const {
  if (exact_ != nullptr) return *exact_;
  if (places_ == 0) return digits_;
  ZZ power;
  powerOfTen(places_, power);
  return {digits_, std::move(power)};
}

bool Coefficient::isDecimal() const {
  return exact_ == nullptr || compare(decimalDenominator(*exact_), 1) == 0;
}

Coefficient Coefficient::operator-() const {
  if (exact_ != nullptr) return Coefficient(-*exact_);
  return {-digits_, places_};
}

Coefficient Coefficient::operator+(const Coefficient& other) const {
  if (isZero()) return other;
  if (other.isZero()) return *this;
  return Coefficient(value() + other.value());
}

Coefficient Coefficient::operator*(const Coefficient& other) const {
  return Coefficient(value() * other.value());
}

bool operator==(const Coefficient& a, const Coefficient& b) { return a.value() == b.value(); }

bool operator<(const Coefficient& a, const Coefficient& b) { return a.value() < b.value(); }

std::size_t decimalLength(std::string_view text) {
  const std::size_t whole = digitsAt(text, 0);
  std::size_t end = whole;
  if (end < text.size() && text[end] == '.') {
    const std::size_t fraction = digitsAt(text, end + 1);
    if (whole + fraction == 0) return 0;
    end += 1 + fraction;
  }
  if (end == 0 || end == text.size() || (text[end] != 'e' && text[end] != 'E')) return end;
  std::size_t exponent = end + 1;
  if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
  const std::size_t digits = digitsAt(text, exponent);
  return digits == 0 ? end : exponent + digits;
}

std::optional<Coefficient> parseDecimal(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  if (text.empty() || decimalLength(text) != text.size()) return std::nullopt;

  const std::size_t mark = text.find_first_of("eE");
  int exponent = 0;
  if (mark != std::string_view::npos) {
    std::string_view digits = text.substr(mark + 1);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (end.ec != std::errc() || std::abs(exponent) > GREATEST_EXPONENT) return std::nullopt;
    text = text.substr(0, mark);
  }

  std::string digits(text);
  const std::size_t point = digits.find('.');
  std::size_t fraction = 0;
  if (point != std::string::npos) {
    digits.erase(point, 1);
    fraction = digits.size() - point;
    while (fraction > 0 && digits.back() == '0') {
      digits.pop_back();
      --fraction;
    }
  }
  digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
  const std::int64_t places = static_cast<std::int64_t>(fraction) - exponent;
  if (digits.empty()) return Coefficient(0);

  const bool fitsWord = places >= 0 && places <= static_cast<std::int64_t>(WORD_DIGITS) &&
                        digits.size() <= WORD_DIGITS;
  if (!fitsWord) {
    const QQ value = exactDecimal(digits, places);
    return Coefficient(negative ? -value : value);
  }
  std::int64_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return Coefficient(negative ? -number : number, static_cast<std::int32_t>(places));
}

bool equalsIgnoringCase(std::string_view text, std::string_view lower) {
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(), [](char a, char b) {
    return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
  });
}

bool isInfinityWord(std::string_view text) {
  return equalsIgnoringCase(text, "inf") || equalsIgnoringCase(text, "infinity");
}

std::optional<StatedBound> parseBound(std::string_view text) {
  const bool negative = text.starts_with('-');
  const int sign = negative ? -1 : 1;
  const bool hasSign = negative || text.starts_with('+');
  if (isInfinityWord(text.substr(hasSign ? 1 : 0))) return StatedBound{{}, sign};
  const auto value = parseDecimal(text);
  if (!value) return std::nullopt;
  if (text.find_first_of("eE") != std::string_view::npos) {
    static const QQ infinite("1e30");
    if (abs(value->value()) >= infinite) return StatedBound{{}, sign};
  }
  return StatedBound{*value};
}

ZZ decimalDenominator(const QQ& value) {
  ZZ denominator = value.nenner;
  divideOut(denominator, 2);
  divideOut(denominator, 5);
  return denominator;
}

std::optional<std::string> decimalText(const QQ& value) {
  // The expansion ends after as many places as the denominator has factors 2 or factors 5.
  ZZ denominator = value.nenner;
  const std::int64_t twos = divideOut(denominator, 2);
  const std::int64_t fives = divideOut(denominator, 5);
  if (compare(denominator, 1) != 0) return std::nullopt;
  const std::int64_t places = std::max(twos, fives);

  std::string text = value.positive ? "" : "-";
  text += toString(value.ganze);
  if (places > 0) {
    ZZ power;
    ZZ quotient;
    ZZ remainder;
    powerOfTen(places, power);
    div(value.zaehler * power, value.nenner, quotient, remainder);
    const std::string fraction = toString(quotient);
    text += '.';
    text.append(static_cast<std::size_t>(places) - fraction.size(), '0');
    text += fraction;
  }
  return text;
}

std::string decimalText(const Coefficient& value) { return *decimalText(value.value()); }

}  // namespace vexil::formats
