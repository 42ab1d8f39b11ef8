// Vexil - exact integer optimization on lattices.
#include <algorithm>
#include <bit>
#include <utility>

#include "numbers/zz.h"
#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// The 18 digits of `a` that begin with the top one of its limb `n` > 2, where that limb has
/// `digits`.
Limb leading(const ZZ& a, Index n, int digits) {
  const auto limbAt = [&](Index i) { return i <= a.MN ? a.data[i] : 0; };
  const Limb upper = limbAt(n) * limbs::BASE + limbAt(n - 1);
  return upper * limbs::limb(limbs::powerOfTen(limbs::LIMB_DIGITS - digits)) +
         limbAt(n - 2) / limbs::limb(limbs::powerOfTen(digits));
}

/// As many of Euclid's steps on u and v as their leading digits tell for certain.
limbs::Combination certainSteps(Limb u, Limb v) {
  limbs::Combination steps;
  while (v + steps.C != 0 && v + steps.D != 0) {
    const Limb quotient = (u + steps.A) / (v + steps.C);
    if (quotient != (u + steps.B) / (v + steps.D)) break;
    steps.A = std::exchange(steps.C, steps.A - quotient * steps.C);
    steps.B = std::exchange(steps.D, steps.B - quotient * steps.D);
    u = std::exchange(v, u - quotient * v);
  }
  return steps;
}

/// One round for u >= v, v of more than WORD_LIMBS limbs.
void shrink(ZZ& u, ZZ& v) {
  const Index n = u.MN;
  const int digits = limbs::digitCount(limbs::word(u.data[n]));
  const limbs::Combination steps = certainSteps(leading(u, n, digits), leading(v, n, digits));
  if (steps.B == 0) {
    static ZZ quotient;
    div(u, v, quotient, u);
    std::swap(u, v);
    return;
  }
  const Index vn = v.MN;
  v.Array::resize(n, false);
  std::fill(v.data + 1 + vn, v.data + 1 + n, 0);
  limbs::combine(u.data + 1, v.data + 1, n, steps);
  u.MN = limbs::trimmed(u.data + 1, n);
  v.MN = limbs::trimmed(v.data + 1, n);
}

}  // namespace

/// Stein's algorithm behind one step of Euclid's, which evens out different sizes.
Word gcdWord(Word a, Word b) {
  if (b == 0) return a;
  a %= b;
  if (a == 0) return b;
  const int shift = std::countr_zero(a | b);
  a >>= std::countr_zero(a);
  b >>= std::countr_zero(b);
  while (a != b) {
    const Word difference = a > b ? a - b : b - a;
    b = std::min(a, b);
    a = difference >> std::countr_zero(difference);
  }
  return a << shift;
}

/// Lehmer's algorithm: Knuth, The Art of Computer Programming, volume 2, 4.5.2, algorithm L.
void gcd(const ZZ& a, const ZZ& b, ZZ& r) {
  if (limbCount(a) <= WORD_LIMBS && limbCount(b) <= WORD_LIMBS) {
    return assignWord(r, gcdWord(toWord(a), toWord(b)));
  }
  static ZZ u;
  static ZZ v;
  u = a;
  v = b;
  u.positive = v.positive = true;
  if (compareMagnitudes(u, v) < 0) std::swap(u, v);
  while (v.MN > WORD_LIMBS) shrink(u, v);
  if (isZero(v)) {
    r = u;
    return;
  }
  static ZZ quotient;
  div(u, v, quotient, u);
  assignWord(r, gcdWord(toWord(v), toWord(u)));
}

ZZ gcd(const ZZ& a, const ZZ& b) {
  ZZ r;
  gcd(a, b, r);
  return r;
}

ZZ lcm(const ZZ& a, const ZZ& b) {
  ZZ r = a * b;
  div(r, gcd(a, b), r, r);
  return r;
}

}  // namespace vexil
