// Vexil - exact integer optimization on lattices.
#include <algorithm>
#include <utility>
#include <vector>

#include "foundation/failure.h"
#include "numbers/zz.h"
#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// Sets the signs of the results of |a| / |b|.
void setSigns(ZZ& q, bool quotientPositive, ZZ& r, bool remainderPositive) {
  if (&q != &r) r.positive = remainderPositive || isZero(r);
  q.positive = quotientPositive || isZero(q);
}

/// The remainder first, the quotient over it where both are one object.
void assignWords(Word quotient, Word remainder, ZZ& q, ZZ& r) {
  assignWord(r, remainder);
  assignWord(q, quotient);
}

void divideByLimb(const ZZ& a, Index an, Limb divisor, ZZ& q, ZZ& r) {
  q.Array::resize(an, false);
  const Limb remainder = limbs::divideSmall(q.data + 1, a.data + 1, an, divisor);
  q.MN = std::max<Index>(1, limbs::trimmed(q.data + 1, an));
  if (&q != &r) assignWord(r, limbs::word(remainder));
}

/// Works on copies of the operands that are scaled for the long division.
void divideLong(const ZZ& a, Index an, const ZZ& b, Index bn, ZZ& q, ZZ& r) {
  static std::vector<Limb> dividend;
  static std::vector<Limb> divisor;
  dividend.resize(static_cast<std::size_t>(an) + 1);
  divisor.resize(static_cast<std::size_t>(bn));
  const Limb scale = limbs::BASE / (b.data[bn] + 1);
  dividend.back() = limbs::multiplySmall(dividend.data(), a.data + 1, an, scale);
  limbs::multiplySmall(divisor.data(), b.data + 1, bn, scale);
  q.Array::resize(an - bn + 1, false);
  limbs::divide(q.data + 1, dividend.data(), an, divisor.data(), bn);
  q.MN = std::max<Index>(1, limbs::trimmed(q.data + 1, q.MN));
  if (&q == &r) return;
  r.Array::resize(bn, false);
  limbs::divideSmall(r.data + 1, dividend.data(), bn, scale);
  r.MN = std::max<Index>(1, limbs::trimmed(r.data + 1, bn));
}

}  // namespace

void div(const ZZ& a, const ZZ& b, ZZ& q, ZZ& r) {
  const Index an = limbCount(a);
  const Index bn = limbCount(b);
  if (bn == 0) fail("ZZ::div -- division by zero");
  const bool quotientPositive = a.positive == b.positive;
  const bool remainderPositive = a.positive;
  if (an <= WORD_LIMBS && bn <= WORD_LIMBS) {
    const Word dividend = toWord(a);
    const Word divisor = toWord(b);
    assignWords(dividend / divisor, dividend % divisor, q, r);
  } else if (compareMagnitudes(a, b) < 0) {
    r = a;
    setZero(q);
  } else if (bn == 1) {
    divideByLimb(a, an, b.data[1], q, r);
  } else {
    divideLong(a, an, b, bn, q, r);
  }
  setSigns(q, quotientPositive, r, remainderPositive);
}

ZZ mod(const ZZ& a, const ZZ& b) {
  ZZ quotient;
  ZZ r;
  div(a, b, quotient, r);
  if (!r.positive) add(r, b, r);
  return r;
}

}  // namespace vexil
