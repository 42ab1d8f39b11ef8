// Vexil - exact integer optimization on lattices.
//
// Results are reduced by the greatest common divisors of small operands: Knuth, The Art of Computer
// Programming, volume 2, 4.5.1.
#include "numbers/qq_small.h"

namespace vexil {

namespace {

constexpr Word TWO_LIMBS = limbs::word(limbs::WIDE);

/// Makes `x` the whole number with this magnitude, at most 2 BASE^4.
void assignWhole(QQ& x, bool positive, DoubleWord magnitude) {
  x.isInf = false;
  x.positive = positive || magnitude == 0;
  assignDoubleWord(x.ganze, magnitude);
  assignPart(x.zaehler, 0);
  assignPart(x.nenner, 1);
}

/// Stores numerator / denominator, which is reduced; numerator < BASE^4, denominator < BASE^2.
void storeReduced(QQ& r, bool positive, DoubleWord numerator, Word denominator) {
  if (denominator == 1) return assignWhole(r, positive, numerator);
  if (const Word low = static_cast<Word>(numerator); low == numerator) {
    return assignParts(r, positive, low / denominator, low % denominator, denominator);
  }
  const DoubleWord whole = numerator / denominator;
  assignWhole(r, positive, whole);
  assignPart(r.zaehler, static_cast<Word>(numerator - whole * denominator));
  assignPart(r.nenner, denominator);
}

/// r = whole + numerator / denominator for signed parts, |numerator| < 2 * denominator; `common` is
/// a multiple of the greatest common divisor of numerator and denominator.
void storeSum(QQ& r, Limb whole, Limb numerator, Limb denominator, Word common) {
  for (; numerator < 0; --whole) numerator += denominator;
  for (; numerator >= denominator; ++whole) numerator -= denominator;
  const bool positive = whole >= 0;
  if (!positive && numerator > 0) {
    ++whole;
    numerator = denominator - numerator;
  }
  const Word divisor =
      numerator == 0 ? limbs::word(denominator) : gcdWord(limbs::word(numerator), common);
  assignParts(r, positive, limbs::word(positive ? whole : -whole), limbs::word(numerator) / divisor,
              limbs::word(denominator) / divisor);
}

}  // namespace

void addSmall(const SmallNumber& a, const SmallNumber& b, bool bPositive, QQ& r) {
  const Limb aSign = a.positive ? 1 : -1;
  const Limb bSign = bPositive ? 1 : -1;
  const Limb whole = aSign * limbs::limb(a.whole) + bSign * limbs::limb(b.whole);
  if (a.isWhole() && b.isWhole()) {
    return assignParts(r, whole >= 0, limbs::word(whole < 0 ? -whole : whole), 0, 1);
  }
  const Word common = a.isWhole() || b.isWhole() ? 1 : gcdWord(a.denominator, b.denominator);
  const Limb aScale = limbs::limb(b.denominator / common);
  const Limb bScale = limbs::limb(a.denominator / common);
  const Limb numerator =
      aSign * limbs::limb(a.numerator) * aScale + bSign * limbs::limb(b.numerator) * bScale;
  storeSum(r, whole, numerator, aScale * limbs::limb(a.denominator), common);
}

bool mulSmall(const SmallNumber& a, const SmallNumber& b, QQ& r) {
  const DoubleWord x = a.improper();
  const DoubleWord y = b.improper();
  if (x >= TWO_LIMBS || y >= TWO_LIMBS) return false;
  const bool positive = a.positive == b.positive;
  if (a.isWhole() && b.isWhole()) {
    assignWhole(r, positive, x * y);
  } else if (x == 0 || y == 0) {
    assignParts(r, true, 0, 0, 1);
  } else {
    const Word g = b.isWhole() ? 1 : gcdWord(static_cast<Word>(x), b.denominator);
    const Word h = a.isWhole() ? 1 : gcdWord(static_cast<Word>(y), a.denominator);
    storeReduced(r, positive,
                 static_cast<DoubleWord>(static_cast<Word>(x) / g) * (static_cast<Word>(y) / h),
                 (a.denominator / h) * (b.denominator / g));
  }
  return true;
}

bool divSmall(const SmallNumber& a, const SmallNumber& b, QQ& r) {
  if (a.improper() >= TWO_LIMBS || b.improper() >= TWO_LIMBS) return false;
  const auto x = static_cast<Word>(a.improper());
  const auto y = static_cast<Word>(b.improper());
  if (x == 0) {
    assignParts(r, true, 0, 0, 1);
    return true;
  }
  const Word g = gcdWord(x, y);
  const Word h = gcdWord(a.denominator, b.denominator);
  const DoubleWord denominator = static_cast<DoubleWord>(y / g) * (a.denominator / h);
  if (denominator >= TWO_LIMBS) return false;
  storeReduced(r, a.positive == b.positive, static_cast<DoubleWord>(x / g) * (b.denominator / h),
               static_cast<Word>(denominator));
  return true;
}

int compareSmall(const SmallNumber& a, const SmallNumber& b) {
  if (a.whole != b.whole) return a.whole < b.whole ? -1 : 1;
  const Word left = a.numerator * b.denominator;
  const Word right = b.numerator * a.denominator;
  return left == right ? 0 : (left < right ? -1 : 1);
}

bool addProductSmall(QQ& sum, const SmallNumber& a, const SmallNumber& b) {
  if (sum.isInf || sum.ganze.MN > 2 * WORD_LIMBS || sum.nenner.MN != 1 || sum.nenner.data[1] != 1)
    return false;
  const auto product = static_cast<SignedDoubleWord>(static_cast<DoubleWord>(a.whole) * b.whole);
  const auto before = static_cast<SignedDoubleWord>(toDoubleWord(sum.ganze));
  const SignedDoubleWord after =
      (sum.positive ? before : -before) + (a.positive == b.positive ? product : -product);
  assignWhole(sum, after >= 0, static_cast<DoubleWord>(after < 0 ? -after : after));
  return true;
}

}  // namespace vexil
