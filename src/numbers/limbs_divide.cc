// Vexil - exact integer optimization on lattices.
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "foundation/dbl.h"
#include "numbers/wide_limbs.h"

namespace vexil::limbs {

namespace {

/// Quotient digits until the columns of a long division have to be carried.
constexpr Index LONGEST_COLUMN = 14;

constexpr dbl_t WIDE_F = 1e18L;

/// Carries the columns from the lowest up to column n - 1, which stays as it gets.
void carryColumns(SignedDoubleWord* w, Index n) {
  for (Index i = 0; i + 1 < n; ++i) {
    Limb digit = 0;
    w[i + 1] += signedCarryOf(w[i], digit);
    w[i] = digit;
  }
}

/// The number whose top column is `n` - 1, in units of that column, as far as it tells.
dbl_t leading(const SignedDoubleWord* w, Index n) {
  const auto value = [](SignedDoubleWord x) {
    return static_cast<dbl_t>(static_cast<Limb>(x >> 64)) * 0x1p64L +
           static_cast<dbl_t>(static_cast<Word>(x));
  };
  const dbl_t below = n > 2 ? value(w[n - 3]) / WIDE_F : 0;
  return value(w[n - 1]) + (value(w[n - 2]) + below) / WIDE_F;
}

/// Schoolbook division of columns by `v`, vn >= 2. The columns have a sign and are carried only
/// where they would grow too long; so have the digits of the quotient, each the nearest to what the
/// leading columns tell. Leaves the quotient in q[0] to q[un - vn] and a remainder of either sign
/// in columns 0 to vn - 1.
void divideColumns(Limb* q, SignedDoubleWord* u, Index un, const Limb* v, Index vn) {
  const dbl_t below = vn > 2 ? static_cast<dbl_t>(v[vn - 3]) / WIDE_F : 0;
  const dbl_t divisor =
      static_cast<dbl_t>(v[vn - 1]) + (static_cast<dbl_t>(v[vn - 2]) + below) / WIDE_F;
  const dbl_t inverse = 1 / divisor;
  for (Index j = un - vn, steps = 0; j >= 0; --j, ++steps) {
    SignedDoubleWord* const w = u + j;
    if (steps > 0) w[vn - 1] += w[vn] * WIDE;
    if (steps % LONGEST_COLUMN == LONGEST_COLUMN - 1) {
      carryColumns(w, vn);
    } else {
      carryColumns(w + vn - 2, 2);
    }
    const Limb digit = std::llrint(leading(w, vn) * inverse);
    for (Index i = 0; i < vn; ++i) w[i] -= static_cast<SignedDoubleWord>(digit) * v[i];
    q[j] = digit;
  }
}

/// Writes the number in the columns, plus `v` if it is negative, which is returned.
bool settleRemainder(Limb* rest, SignedDoubleWord* w, const Limb* v, Index vn) {
  carryColumns(w, vn);
  const bool negative = w[vn - 1] < 0;
  std::transform(w, w + vn, rest, [](SignedDoubleWord digit) { return static_cast<Limb>(digit); });
  if (negative) {
    rest[vn - 1] += v[vn - 1] + add<WIDE>(rest, rest, vn - 1, v, vn - 1);
  }
  return negative;
}

/// Gives all digits the sign of the number, which is not negative.
void settleQuotient(Limb* q, Index n) {
  for (Index i = 0; i + 1 < n; ++i) {
    const Limb carry = q[i] < 0 ? -1 : (q[i] >= WIDE ? 1 : 0);
    q[i] -= carry * WIDE;
    q[i + 1] += carry;
  }
}

}  // namespace

Word divideSmall(Limb* q, const Limb* a, Index n, Word divisor) {
  const Divider by(divisor);
  Word rest = 0;
  if (n % 2 != 0) {
    --n;
    const auto top = by.divide(word(a[n]));
    q[n] = limb(top.quotient);
    rest = top.rest;
  }
  for (Index i = n - 2; i >= 0; i -= 2) {
    const Word pair = word(a[i]) + word(a[i + 1]) * WORD_BASE;
    const auto step = by.divideNext(rest, pair);
    const Limb digit = limb(step.quotient);
    split(q + i, 2, &digit);
    rest = step.rest;
  }
  return rest;
}

Modulus::Modulus(Word divisor) : divisor_(divisor), by_(word(WIDE) / divisor * divisor) {
  for (std::size_t i = 1; i <= PAIRS; ++i) {
    powers_[i] = by_.divideNext(static_cast<Word>(powers_[i - 1]), 0).rest;
  }
}

Word Modulus::remainder(const Limb* a, Index n) const {
  const auto pair = [&](Index i) { return word(a[i]) + word(a[i + 1]) * WORD_BASE; };
  Word rest = 0;
  if (n % 2 != 0) rest = word(a[--n]);
  for (; n % (2 * PAIRS) != 0; n -= 2) rest = by_.divideNext(rest, pair(n - 2)).rest;
  for (; n > 0; n -= 2 * PAIRS) {
    const Index i = n - 2 * PAIRS;
    rest = by_.divide(rest * powers_[4] + pair(i + 6) * powers_[3] + pair(i + 4) * powers_[2] +
                      pair(i + 2) * powers_[1] + pair(i))
               .rest;
  }
  return rest % divisor_;
}

void divide(Limb* q, Limb* rest, const Limb* a, Index an, const Limb* b, Index bn) {
  static std::vector<SignedDoubleWord> columns;
  const Index un = wideCount(an);
  const Index vn = wideCount(bn);
  Limb* const u = room(2 * un + vn + 1);
  Limb* const v = u + un;
  Limb* const quotient = v + vn;
  join(u, a, an);
  join(v, b, bn);
  columns.assign(u, u + un);
  divideColumns(quotient, columns.data(), un, v, vn);
  if (settleRemainder(u, columns.data(), v, vn)) --quotient[0];
  settleQuotient(quotient, un - vn + 1);
  split(q, an - bn + 1, quotient);
  if (rest != nullptr) split(rest, bn, u);
}

void combine(Limb* u, Limb* v, Index n, const Combination& by) {
  Limb uCarry = 0;
  Limb vCarry = 0;
  for (Index i = 0; i < n; i += 2) {
    const SignedDoubleWord x = u[i] + u[i + 1] * BASE;
    const SignedDoubleWord y = v[i] + v[i + 1] * BASE;
    Limb digit = 0;
    uCarry = signedCarryOf(by.A * x + by.B * y + uCarry, digit);
    split(u + i, 2, &digit);
    vCarry = signedCarryOf(by.C * x + by.D * y + vCarry, digit);
    split(v + i, 2, &digit);
  }
}

void addScaled(Limb* u, Limb* v, Index n, Word A, Word B, Word D) {
  Word uCarry = 0;
  Word vCarry = 0;
  for (Index i = 0; i < n; i += 2) {
    const DoubleWord x = word(u[i]) + word(u[i + 1]) * WORD_BASE;
    const DoubleWord y = word(v[i]) + word(v[i + 1]) * WORD_BASE;
    Limb digit = 0;
    uCarry = lateCarryOf(A * x + B * y, uCarry, digit);
    split(u + i, 2, &digit);
    vCarry = lateCarryOf(D * y, vCarry, digit);
    split(v + i, 2, &digit);
  }
}

}  // namespace vexil::limbs
