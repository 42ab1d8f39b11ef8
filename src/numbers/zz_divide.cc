// Vexil - exact integer optimization on lattices.
#include <algorithm>

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

/// Drops the zero limbs at the top of a result but for the last limb.
void trim(ZZ& a) { a.MN = std::max<Index>(1, limbs::trimmed(a.data + 1, a.MN)); }

void divideByWord(const ZZ& a, Index an, Word divisor, ZZ& q, ZZ& r) {
  q.Array::resize(an, false);
  const Word remainder = limbs::divideSmall(q.data + 1, a.data + 1, an, divisor);
  trim(q);
  if (&q != &r) assignWord(r, remainder);
}

void divideLong(const ZZ& a, Index an, const ZZ& b, Index bn, ZZ& q, ZZ& r) {
  const bool wantsRemainder = &q != &r;
  q.Array::resize(std::max(q.MN, an - bn + 1), false);  // keeps the limbs of an operand
  if (wantsRemainder) r.Array::resize(std::max(r.MN, bn), false);
  limbs::divide(q.data + 1, wantsRemainder ? r.data + 1 : nullptr, a.data + 1, an, b.data + 1, bn);
  q.MN = an - bn + 1;
  trim(q);
  if (!wantsRemainder) return;
  r.MN = bn;
  trim(r);
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
  } else if (bn <= WORD_LIMBS) {
    divideByWord(a, an, toWord(b), q, r);
  } else {
    divideLong(a, an, b, bn, q, r);
  }
  setSigns(q, quotientPositive, r, remainderPositive);
}

void divideExactly(ZZ& a, Word divisor) {
  limbs::divideSmall(a.data + 1, a.data + 1, a.MN, divisor);
  trim(a);
}

ZZ mod(const ZZ& a, const ZZ& b) {
  ZZ quotient;
  ZZ r;
  div(a, b, quotient, r);
  if (!r.positive) add(r, b, r);
  return r;
}

}  // namespace vexil
