// Vexil - exact integer optimization on lattices.
#include "numbers/limbs.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace vexil::limbs {

namespace {

constexpr std::array<Word, 20> POWERS_OF_TEN = [] {
  std::array<Word, 20> powers{};
  Word power = 1;
  for (Word& entry : powers) {
    entry = power;
    power *= 10;
  }
  return powers;
}();

/// The two digits of each number below 100.
constexpr std::array<char, 200> DIGIT_PAIRS = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

/// Writes all nine digits of a limb.
void writeLimb(char* to, Limb value) {
  auto rest = static_cast<std::uint32_t>(value);
  for (int i = LIMB_DIGITS - 2; i > 0; i -= 2) {
    const std::size_t pair = rest % 100;
    rest /= 100;
    to[i] = DIGIT_PAIRS[2 * pair];
    to[i + 1] = DIGIT_PAIRS[2 * pair + 1];
  }
  to[0] = static_cast<char>('0' + rest);
}

}  // namespace

Word powerOfTen(int exponent) { return POWERS_OF_TEN[static_cast<std::size_t>(exponent)]; }

int digitCount(Word value) {
  int count = 1;
  while (count < 20 && value >= powerOfTen(count)) ++count;
  return count;
}

Index trimmed(const Limb* a, Index n) {
  while (n > 0 && a[n - 1] == 0) --n;
  return n;
}

int compare(const Limb* a, const Limb* b, Index n) {
  for (Index i = n - 1; i >= 0; --i) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return 0;
}

Index dropDigits(Limb* a, Index n, Index digits) {
  const Index whole = std::min(n, digits / LIMB_DIGITS);
  std::copy(a + whole, a + n, a);
  n -= whole;
  const auto divisor = powerOfTen(static_cast<int>(digits % LIMB_DIGITS));
  if (divisor > 1) divideSmall(a, a, n, divisor);
  return trimmed(a, n);
}

Word parseWord(std::string_view digits) {
  Word value = 0;
  for (const char c : digits) value = value * 10 + static_cast<Word>(c - '0');
  return value;
}

void parse(Limb* r, std::string_view digits) {
  for (; digits.size() > LIMB_DIGITS; ++r) {
    *r = limb(parseWord(digits.substr(digits.size() - LIMB_DIGITS)));
    digits.remove_suffix(LIMB_DIGITS);
  }
  if (!digits.empty()) *r = limb(parseWord(digits));
}

void appendWord(std::string& text, Word value) {
  std::array<char, 20> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  text.append(digits.data(), end);
}

void append(std::string& text, const Limb* a, Index n) {
  appendWord(text, word(a[n - 1]));
  if (n == 1) return;
  const std::size_t start = text.size();
  text.resize(start + static_cast<std::size_t>(n - 1) * LIMB_DIGITS);
  char* to = text.data() + start;
  for (Index i = n - 2; i >= 0; --i, to += LIMB_DIGITS) writeLimb(to, a[i]);
}

}  // namespace vexil::limbs
