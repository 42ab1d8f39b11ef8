// Vexil - exact integer optimization on lattices.
#include "numbers/strict_number.h"

#include <algorithm>

#include "foundation/string.h"

namespace vexil {

namespace {

using Text = std::string_view;

constexpr std::size_t EXPONENT_DIGITS = 4;

bool areDigits(Text text) { return std::all_of(text.begin(), text.end(), isDigit); }

bool isWhole(Text text) { return !text.empty() && areDigits(text); }

ZZ wholeNumber(Text digits) {
  ZZ number;
  fromString(number, digits);
  return number;
}

/// Takes the signs off; true if they leave the number as it is.
bool takeSigns(Text& text) {
  bool positive = true;
  for (int i = 0; i < 2 && !text.empty() && (text.front() == '-' || text.front() == '+'); ++i) {
    positive = positive == (text.front() == '+');
    text.remove_prefix(1);
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  }
  return positive;
}

/// "n/d".
std::optional<QQ> fraction(Text text) {
  const std::size_t slash = text.find('/');
  if (slash == Text::npos) return std::nullopt;
  const Text numerator = text.substr(0, slash);
  const Text denominator = text.substr(slash + 1);
  if (!isWhole(numerator) || !isWhole(denominator)) return std::nullopt;
  ZZ divisor = wholeNumber(denominator);
  if (isZero(divisor)) return std::nullopt;
  return QQ(wholeNumber(numerator), std::move(divisor));
}

/// "w:n/d", a proper fraction behind the colon.
std::optional<QQ> mixed(Text whole, Text rest) {
  if (!rest.empty() && rest.front() == '+') rest.remove_prefix(1);
  const auto part = fraction(rest);
  if (!areDigits(whole) || !part || *part >= QQ(1)) return std::nullopt;
  return QQ(wholeNumber(whole)) + *part;
}

/// Digits with a separator among them, or none.
std::optional<QQ> decimal(Text text) {
  const std::size_t separator = std::min(text.find_first_of(".,"), text.size());
  const Text whole = text.substr(0, separator);
  const Text places = text.substr(std::min(separator + 1, text.size()));
  if (!areDigits(whole) || !areDigits(places)) return std::nullopt;
  if (whole.empty() && places.empty()) return std::nullopt;
  ZZ scale;
  powerOfTen(static_cast<std::int64_t>(places.size()), scale);
  return QQ(wholeNumber(std::string(whole).append(places)), std::move(scale));
}

std::optional<QQ> withExponent(Text mantissa, Text exponent) {
  const bool negative = !exponent.empty() && exponent.front() == '-';
  if (negative || (!exponent.empty() && exponent.front() == '+')) exponent.remove_prefix(1);
  while (exponent.size() > 1 && exponent.front() == '0') exponent.remove_prefix(1);
  const auto number = decimal(mantissa);
  if (!number || !isWhole(exponent) || exponent.size() > EXPONENT_DIGITS) return std::nullopt;
  int power = 0;
  for (const char digit : exponent) power = 10 * power + (digit - '0');
  ZZ factor;
  powerOfTen(power, factor);
  return negative ? *number / QQ(std::move(factor)) : *number * QQ(std::move(factor));
}

std::optional<QQ> magnitude(Text text) {
  if (text == "inf") return QQ::INF();
  if (const auto e = text.find_first_of("eE"); e != Text::npos) {
    return withExponent(text.substr(0, e), text.substr(e + 1));
  }
  if (const auto colon = text.find(':'); colon != Text::npos) {
    return mixed(text.substr(0, colon), text.substr(colon + 1));
  }
  return text.find('/') == Text::npos ? decimal(text) : fraction(text);
}

}  // namespace

std::optional<QQ> strictNumber(std::string_view text) {
  const bool positive = takeSigns(text);
  auto number = magnitude(text);
  if (number && !positive) number = -*number;
  return number;
}

}  // namespace vexil
