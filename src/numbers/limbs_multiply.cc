// Vexil - exact integer optimization on lattices.
#include <algorithm>
#include <utility>

#include "numbers/wide_limbs.h"

namespace vexil::limbs {

namespace {

// All blocks below are of wide limbs.

/// Column by column, for an >= bn: they grow longer, keep their length, and grow shorter.
void multiplyColumns(Limb* r, const Limb* a, Index an, const Limb* b, Index bn) {
  Word carry = 0;
  const auto column = [&](const Limb* x, const Limb* y, Index length) {
    DoubleWord sum = carry;
    for (const Limb* const end = x + length; x != end; ++x, --y) {
      sum += static_cast<DoubleWord>(word(*x)) * word(*y);
    }
    carry = carryOf(sum, *r++);
  };
  for (Index i = 1; i < bn; ++i) column(a, b + i - 1, i);
  for (Index i = 0; i <= an - bn; ++i) column(a + i, b + bn - 1, bn);
  for (Index i = 1; i < bn; ++i) column(a + an - bn + i, b + bn - 1, bn - i);
  *r = limb(carry);
}

/// Adds `b` in place at the bottom of `r`; the carry runs on above it.
void accumulate(Limb* r, const Limb* b, Index bn) {
  Limb carry = add<WIDE>(r, r, bn, b, bn);
  for (Index i = bn; carry != 0; ++i) {
    r[i] += 1;
    carry = r[i] == WIDE ? 1 : 0;
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
  subtract<WIDE>(r, x, xn, y, yn);
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
    rest[2 * h] = add<WIDE>(rest, rest, 2 * h, r + 2 * h, upper);
    subtract<WIDE>(middle, rest, 2 * h + 1, middle, 2 * h);
  } else {
    middle[2 * h] += add<WIDE>(middle, middle, 2 * h, r, 2 * h);
    middle[2 * h] += add<WIDE>(middle, middle, 2 * h, r + 2 * h, upper);
  }
  accumulate(r + h, middle, std::min(2 * h + 1, an + bn - h));
}

void multiplyInto(Limb* r, const Limb* a, Index an, const Limb* b, Index bn, Limb* scratch) {
  if (an < bn) {
    std::swap(a, b);
    std::swap(an, bn);
  }
  if (bn <= MOST_PRODUCTS) {
    multiplyColumns(r, a, an, b, bn);
  } else if (bn <= (an + 1) / 2) {
    multiplyUneven(r, a, an, b, bn, scratch);
  } else {
    multiplyHalves(r, a, an, b, bn, scratch);
  }
}

}  // namespace

void multiply(Limb* r, const Limb* a, Index an, const Limb* b, Index bn) {
  const Index ac = wideCount(an);
  const Index bc = wideCount(bn);
  const bool splits = std::min(ac, bc) > MOST_PRODUCTS;
  Limb* const x = room(2 * (ac + bc) + (splits ? scratchSize(std::max(ac, bc)) : 0));
  Limb* const y = x + ac;
  Limb* const product = y + bc;
  join(x, a, an);
  join(y, b, bn);
  multiplyInto(product, x, ac, y, bc, product + ac + bc);
  split(r, an + bn, product);
}

}  // namespace vexil::limbs
