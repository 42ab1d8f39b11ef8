// Vexil - exact integer optimization on lattices.
#include "foundation/failure.h"
#include "numbers/zz.h"
#include "numbers/zz_words.h"

namespace vexil {

void mul(const ZZ& a, const ZZ& b, ZZ& r) {
  const Index an = limbCount(a);
  const Index bn = limbCount(b);
  if (an == 0 || bn == 0) return setZero(r);
  const bool positive = a.positive == b.positive;
  if (an <= WORD_LIMBS && bn <= WORD_LIMBS) {
    assignDoubleWord(r, static_cast<DoubleWord>(toWord(a)) * toWord(b));
  } else {
    r.Array::resize(an + bn, false);  // the blocks of operands may move with it
    limbs::multiply(r.data + 1, a.data + 1, an, b.data + 1, bn);
    r.MN = limbs::trimmed(r.data + 1, an + bn);
  }
  r.positive = positive;
}

ZZ operator*(const ZZ& a, const ZZ& b) {
  ZZ r;
  mul(a, b, r);
  return r;
}

void powerOfTen(std::int64_t exponent, ZZ& r) {
  const Index zeroLimbs = exponent / limbs::LIMB_DIGITS;
  assignWord(r, limbs::powerOfTen(static_cast<int>(exponent % limbs::LIMB_DIGITS)));
  r.base_lshift(zeroLimbs);
}

void power(const ZZ& a, const ZZ& e, ZZ& r) {
  static const ZZ ten = 10;
  if (e < 0) fail("[ ZZ::operator ^ ] Exponent < 0 ");
  ZZ exponent = e;
  if (a == ten && exponent.MN <= WORD_LIMBS) {
    return powerOfTen(static_cast<Index>(toWord(exponent)), r);
  }
  ZZ base = a;
  assignWord(r, 1);
  while (!isZero(exponent)) {
    if (exponent.data[1] % 2 != 0) mul(r, base, r);
    exponent.MN = limbs::trimmed(exponent.data + 1, exponent.MN);
    limbs::divideSmall(exponent.data + 1, exponent.data + 1, exponent.MN, 2);
    if (!isZero(exponent)) mul(base, base, base);
  }
}

}  // namespace vexil
