// Vexil - exact integer optimization on lattices.
#include "numbers/limbs.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

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

/// Column by column; bn^2 <= an * bn < KARATSUBA_THRESHOLD keeps the sum of a column, at most 14
/// products and the carry, below 2^64.
void multiplySchoolbook(Limb* r, const Limb* a, Index an, const Limb* b, Index bn) {
  Word sum = 0;
  for (Index k = 0; k < an + bn - 1; ++k) {
    const Index last = std::min(k, an - 1);
    for (Index i = std::max<Index>(0, k - bn + 1); i <= last; ++i)
      sum += word(a[i]) * word(b[k - i]);
    const Word carry = sum / WORD_BASE;
    r[k] = limb(sum - carry * WORD_BASE);
    sum = carry;
  }
  r[an + bn - 1] = limb(sum);
}

/// Adds `b` in place at the bottom of `r`; the carry runs on above it.
void accumulate(Limb* r, const Limb* b, Index bn) {
  Limb carry = add(r, r, bn, b, bn);
  for (Index i = bn; carry != 0; ++i) {
    r[i] += 1;
    carry = r[i] == BASE ? 1 : 0;
    if (carry != 0) r[i] = 0;
  }
}

/// r = |x - y| on `n` limbs with xn, yn <= n; true if x < y.
bool difference(Limb* r, Index n, const Limb* x, Index xn, const Limb* y, Index yn) {
  xn = trimmed(x, xn);
  yn = trimmed(y, yn);
  const bool less = xn != yn ? xn < yn : compare(x, y, xn) < 0;
  if (less) {
    std::swap(x, y);
    std::swap(xn, yn);
  }
  subtract(r, x, xn, y, yn);
  std::fill(r + xn, r + n, 0);
  return less;
}

/// Room that `multiplyInto` wants for a longer operand of `n` limbs.
constexpr Index scratchSize(Index n) { return 4 * n + 256; }

void multiplyInto(Limb* r, const Limb* a, Index an, const Limb* b, Index bn, Limb* scratch);

/// b fits the lower half of a: two products.
void multiplyUneven(Limb* r, const Limb* a, Index an, const Limb* b, Index bn, Limb* scratch) {
  const Index h = (an + 1) / 2;
  multiplyInto(r, a, h, b, bn, scratch);
  const Index upper = an - h + bn;
  multiplyInto(scratch, a + h, an - h, b, bn, scratch + upper);
  std::fill(r + h + bn, r + an + bn, 0);
  accumulate(r + h, scratch, upper);
}

/// With a = a1 B^h + a0 and b = b1 B^h + b0 the middle term a1 b0 + a0 b1 is
/// (a1 - a0) (b0 - b1) + a1 b1 + a0 b0.
void multiplyHalves(Limb* r, const Limb* a, Index an, const Limb* b, Index bn, Limb* scratch) {
  const Index h = (an + 1) / 2;
  const bool negative =
      difference(r, h, a + h, an - h, a, h) != difference(r + h, h, b, h, b + h, bn - h);
  Limb* const middle = scratch;
  Limb* const rest = scratch + 2 * h + 1;
  multiplyInto(middle, r, h, r + h, h, rest);
  middle[2 * h] = 0;
  multiplyInto(r, a, h, b, h, rest);
  multiplyInto(r + 2 * h, a + h, an - h, b + h, bn - h, rest);
  const Index upper = an + bn - 2 * h;
  if (negative) {
    std::copy(r, r + 2 * h, rest);
    rest[2 * h] = add(rest, rest, 2 * h, r + 2 * h, upper);
    subtract(middle, rest, 2 * h + 1, middle, 2 * h);
  } else {
    middle[2 * h] += add(middle, middle, 2 * h, r, 2 * h);
    middle[2 * h] += add(middle, middle, 2 * h, r + 2 * h, upper);
  }
  accumulate(r + h, middle, std::min(2 * h + 1, an + bn - h));
}

void multiplyInto(Limb* r, const Limb* a, Index an, const Limb* b, Index bn, Limb* scratch) {
  if (an < bn) {
    std::swap(a, b);
    std::swap(an, bn);
  }
  if (bn == 1) {
    r[an] = multiplySmall(r, a, an, b[0]);
  } else if (an * bn < KARATSUBA_THRESHOLD) {
    multiplySchoolbook(r, a, an, b, bn);
  } else if (bn <= (an + 1) / 2) {
    multiplyUneven(r, a, an, b, bn, scratch);
  } else {
    multiplyHalves(r, a, an, b, bn, scratch);
  }
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

Limb add(Limb* r, const Limb* a, Index an, const Limb* b, Index bn) {
  Limb carry = 0;
  Index i = 0;
  const auto store = [&](Limb sum) {
    carry = sum >= BASE ? 1 : 0;
    r[i] = sum - (sum >= BASE ? BASE : 0);
  };
  for (; i < bn; ++i) store(a[i] + b[i] + carry);
  for (; i < an && carry != 0; ++i) store(a[i] + carry);
  if (r != a) std::copy(a + i, a + an, r + i);
  return carry;
}

void subtract(Limb* r, const Limb* a, Index an, const Limb* b, Index bn) {
  Limb borrow = 0;
  Index i = 0;
  const auto store = [&](Limb difference) {
    borrow = difference < 0 ? 1 : 0;
    r[i] = difference + (difference < 0 ? BASE : 0);
  };
  for (; i < bn; ++i) store(a[i] - b[i] - borrow);
  for (; i < an && borrow != 0; ++i) store(a[i] - borrow);
  if (r != a) std::copy(a + i, a + an, r + i);
}

Limb multiplySmall(Limb* r, const Limb* a, Index n, Limb factor) {
  Word carry = 0;
  for (Index i = 0; i < n; ++i) {
    const Word sum = word(a[i]) * word(factor) + carry;
    carry = sum / WORD_BASE;
    r[i] = limb(sum - carry * WORD_BASE);
  }
  return limb(carry);
}

Limb divideSmall(Limb* q, const Limb* a, Index n, Limb divisor) {
  Word rest = 0;
  for (Index i = n - 1; i >= 0; --i) {
    const Word dividend = rest * WORD_BASE + word(a[i]);
    const Word digit = dividend / word(divisor);
    rest = dividend - digit * word(divisor);
    q[i] = limb(digit);
  }
  return limb(rest);
}

void multiply(Limb* r, const Limb* a, Index an, const Limb* b, Index bn) {
  static std::vector<Limb> scratch;
  const bool splits = an * bn >= KARATSUBA_THRESHOLD && an > 1 && bn > 1;
  const auto wanted = splits ? static_cast<std::size_t>(scratchSize(std::max(an, bn))) : 0;
  if (scratch.size() < wanted) scratch.resize(wanted);
  multiplyInto(r, a, an, b, bn, scratch.data());
}

void divide(Limb* q, Limb* u, Index un, const Limb* v, Index vn) {
  const Word top = word(v[vn - 1]);
  const Word second = word(v[vn - 2]);
  for (Index j = un - vn; j >= 0; --j) {
    Limb* const w = u + j;
    const Word leading = word(w[vn]) * WORD_BASE + word(w[vn - 1]);
    Word digit = leading / top;
    Word rest = leading - digit * top;
    while (digit >= WORD_BASE || digit * second > rest * WORD_BASE + word(w[vn - 2])) {
      --digit;
      rest += top;
    }
    Word carry = 0;
    Limb borrow = 0;
    for (Index i = 0; i < vn; ++i) {
      const Word product = digit * word(v[i]) + carry;
      carry = product / WORD_BASE;
      const Limb value = w[i] - limb(product - carry * WORD_BASE) - borrow;
      borrow = value < 0 ? 1 : 0;
      w[i] = value + (value < 0 ? BASE : 0);
    }
    if (w[vn] < limb(carry) + borrow) {
      --digit;
      add(w, w, vn, v, vn);
    }
    w[vn] = 0;
    q[j] = limb(digit);
  }
}

void combine(Limb* u, Limb* v, Index n, const Combination& by) {
  // A and B differ in sign, as C and D do: no sum leaves the range of a limb's product.
  Limb uCarry = 0;
  Limb vCarry = 0;
  const auto store = [](Limb& target, Limb& carry, Limb sum) {
    carry = sum / BASE - (sum % BASE < 0 ? 1 : 0);
    target = sum - carry * BASE;
  };
  for (Index i = 0; i < n; ++i) {
    const Limb x = u[i];
    const Limb y = v[i];
    store(u[i], uCarry, by.A * x + by.B * y + uCarry);
    store(v[i], vCarry, by.C * x + by.D * y + vCarry);
  }
}

Index dropDigits(Limb* a, Index n, Index digits) {
  const Index whole = std::min(n, digits / LIMB_DIGITS);
  std::copy(a + whole, a + n, a);
  n -= whole;
  const auto divisor = powerOfTen(static_cast<int>(digits % LIMB_DIGITS));
  if (divisor > 1) divideSmall(a, a, n, limb(divisor));
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
