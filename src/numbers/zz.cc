// Vexil - exact integer optimization on lattices.
#include "numbers/zz.h"

#include <algorithm>
#include <utility>

#include "foundation/failure.h"
#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// r = a with the sign given, in normal form.
void assignNormal(const ZZ& a, bool positive, ZZ& r) {
  r = a;
  r.positive = positive;
  if (limbCount(r) == 0) setZero(r);
}

Limb signedLimb(const ZZ& a, bool positive) { return positive ? a.data[1] : -a.data[1]; }

void assignSmall(ZZ& r, Limb value) {
  assignWord(r, limbs::word(value < 0 ? -value : value));
  r.positive = value >= 0;
}

/// r = +-a +- b with the signs given.
void addSigned(const ZZ& a, bool aPositive, const ZZ& b, bool bPositive, ZZ& r) {
  Index an = limbCount(a);
  Index bn = limbCount(b);
  if (bn == 0) return assignNormal(a, aPositive, r);
  if (an == 0) return assignNormal(b, bPositive, r);
  if (an == 1 && bn == 1)
    return assignSmall(r, signedLimb(a, aPositive) + signedLimb(b, bPositive));
  const ZZ* greater = &a;
  const ZZ* smaller = &b;
  const int order = an != bn ? (an < bn ? -1 : 1) : compareMagnitudes(a, b);
  if (order < 0) {
    std::swap(greater, smaller);
    std::swap(an, bn);
    std::swap(aPositive, bPositive);
  }
  if (aPositive == bPositive) {
    r.Array::resize(an + 1, false);
    const Limb carry = limbs::add(r.data + 1, greater->data + 1, an, smaller->data + 1, bn);
    r.data[an + 1] = carry;
    r.MN = an + carry;
  } else if (order == 0) {
    return setZero(r);
  } else {
    r.Array::resize(an, false);
    limbs::subtract(r.data + 1, greater->data + 1, an, smaller->data + 1, bn);
    r.MN = limbs::trimmed(r.data + 1, an);
  }
  r.positive = aPositive;
}

}  // namespace

void assignWordAnyway(ZZ& a, Word value) {
  const Word upper = value / limbs::WORD_BASE;
  const Word top = upper / limbs::WORD_BASE;
  a.positive = true;
  a.Array::resize(top != 0 ? 3 : (upper != 0 ? 2 : 1), false);
  a.data[1] = limbs::limb(value % limbs::WORD_BASE);
  if (upper != 0) a.data[2] = limbs::limb(upper % limbs::WORD_BASE);
  if (top != 0) a.data[3] = limbs::limb(top);
}

void assignDoubleWord(ZZ& a, DoubleWord value) {
  if (const Word low = static_cast<Word>(value); low == value) return assignWord(a, low);
  Limb digits[2];
  const Word upper = limbs::carryOf(value, digits[0]);
  const Word top = upper / limbs::word(limbs::WIDE);
  digits[1] = limbs::limb(upper - top * limbs::word(limbs::WIDE));
  a.positive = true;
  a.Array::resize(5, false);
  limbs::split(a.data + 1, 4, digits);
  a.data[5] = limbs::limb(top);
  a.MN = limbs::trimmed(a.data + 1, 5);
}

ZZ::ZZ(long long value) {
  const Word magnitude = value < 0 ? 0 - static_cast<Word>(value) : static_cast<Word>(value);
  assignWord(*this, magnitude);
  positive = value >= 0;
}

void ZZ::base_lshift(std::int64_t steps) {
  const Index n = limbCount(*this);
  if (n == 0) return;
  Array::resize(n + steps, false);
  std::copy_backward(data + 1, data + 1 + n, data + 1 + n + steps);
  std::fill(data + 1, data + 1 + steps, 0);
}

void ZZ::base_rshift(std::int64_t steps) {
  if (steps > MN) fail("ZZ::base_rshift steps > N");
  if (steps > 0) std::copy(data + 1 + steps, data + 1 + MN, data + 1);
  MN -= steps;
}

bool isZero(const ZZ& a) { return limbCount(a) == 0; }

int compareMagnitudes(const ZZ& a, const ZZ& b) {
  const Index an = limbCount(a);
  const Index bn = limbCount(b);
  if (an != bn) return an < bn ? -1 : 1;
  for (Index i = an; i >= 1; --i) {
    if (a.data[i] != b.data[i]) return a.data[i] < b.data[i] ? -1 : 1;
  }
  return 0;
}

int compare(const ZZ& a, const ZZ& b) {
  if (&a == &b || (isZero(a) && isZero(b))) return 0;
  if (a.positive != b.positive) return a.positive ? 1 : -1;
  const int order = compareMagnitudes(a, b);
  return a.positive ? order : -order;
}

void add(const ZZ& a, const ZZ& b, ZZ& r) { addSigned(a, a.positive, b, b.positive, r); }

void sub(const ZZ& a, const ZZ& b, ZZ& r) { addSigned(a, a.positive, b, !b.positive, r); }

ZZ operator+(const ZZ& a, const ZZ& b) {
  ZZ r;
  add(a, b, r);
  return r;
}

ZZ operator-(const ZZ& a, const ZZ& b) {
  ZZ r;
  sub(a, b, r);
  return r;
}

ZZ operator-(ZZ a) {
  if (!isZero(a)) a.positive = !a.positive;
  return a;
}

ZZ abs(ZZ a) {
  a.positive = true;
  return a;
}

}  // namespace vexil
