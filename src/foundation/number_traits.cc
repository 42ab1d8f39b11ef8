// Vexil - exact integer optimization on lattices.
#include "foundation/number_traits.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <utility>

namespace vexil {

namespace {

/// Powers of ten up to the greatest whose multiples a 64-bit integer holds.
constexpr std::array<dbl_t, 19> POWERS_OF_TEN = {1e0L,  1e1L,  1e2L,  1e3L,  1e4L,  1e5L,  1e6L,
                                                 1e7L,  1e8L,  1e9L,  1e10L, 1e11L, 1e12L, 1e13L,
                                                 1e14L, 1e15L, 1e16L, 1e17L, 1e18L};

void appendInteger(std::string& text, long value) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), value).ptr;
  text.append(digits.begin(), end);
}

/// A whole number of at most `digits` digits, which prints as an integer.
bool printsAsInteger(dbl_t x, int digits) {
  const auto limit = POWERS_OF_TEN[static_cast<std::size_t>(digits < 18 ? digits : 18)];
  return std::fabs(x) < limit && std::trunc(x) == x && (x != 0 || !std::signbit(x));
}

bool isPlain(const std::ios_base& format) {
  constexpr auto special = std::ios_base::floatfield | std::ios_base::showpoint |
                           std::ios_base::showpos | std::ios_base::uppercase;
  return (format.flags() & special) == std::ios_base::fmtflags{} && format.width() == 0;
}

/// prime^k over what it shares with `digits`.
dbl_t uncancelled(long prime, long digits, long k) {
  for (; k > 0 && digits % prime == 0; --k) digits /= prime;
  return std::pow(static_cast<dbl_t>(prime), static_cast<dbl_t>(k));
}

}  // namespace

void NumberTraits<dbl_t>::append(std::string& text, dbl_t x, int digits) {
  if (digits > 0 && printsAsInteger(x, digits)) {
    appendInteger(text, static_cast<long>(x));
    return;
  }
  std::array<char, 64> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.*Lg", digits, x);
  if (static_cast<std::size_t>(length) < buffer.size()) {
    text.append(buffer.data(), static_cast<std::size_t>(length));
    return;
  }
  std::string longText(static_cast<std::size_t>(length) + 1, '\0');
  std::snprintf(longText.data(), longText.size(), "%.*Lg", digits, x);
  text.append(longText, 0, static_cast<std::size_t>(length));
}

void NumberTraits<dbl_t>::append(std::string& text, dbl_t x, const std::ios_base& format) {
  if (isPlain(format)) {
    append(text, x, static_cast<int>(format.precision()));
    return;
  }
  std::ostringstream out;
  out.flags(format.flags());
  out.precision(format.precision());
  out << x;
  text += out.str();
}

dbl_t NumberTraits<dbl_t>::gcd(dbl_t a, dbl_t b) {
  while (b != 0) {
    a = std::fmod(a, b);
    std::swap(a, b);
  }
  return std::fabs(a);
}

dbl_t NumberTraits<dbl_t>::den(dbl_t x) {
  if (std::trunc(x) == x || !std::isfinite(x)) return 1;
  std::string text(64, '\0');
  std::snprintf(text.data(), text.size(), "%.*Le", FILE_DIGITS - 1, std::fabs(x));
  std::erase(text, '.');
  // What was d.ddde-dd is the whole number of the digits over 10^places.
  char* exponent = nullptr;
  const long digits = std::strtol(text.data(), &exponent, 10);
  const long places = FILE_DIGITS - 1 - std::strtol(exponent + 1, nullptr, 10);
  return uncancelled(2, digits, places) * uncancelled(5, digits, places);
}

void NumberTraits<long>::append(std::string& text, long x, const std::ios_base& /*format*/) {
  appendInteger(text, x);
}

}  // namespace vexil
