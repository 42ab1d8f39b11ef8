// Vexil - exact integer optimization on lattices.
//
// Behind the short cuts the operations work on integers that live for the whole process, so that
// blocks are used again. Results are reduced by the greatest common divisors of small operands:
// Knuth, The Art of Computer Programming, volume 2, 4.5.1.
#include <algorithm>
#include <utility>

#include "foundation/exceptions.h"
#include "foundation/failure.h"
#include "numbers/qq_small.h"

namespace vexil {

bool limitProducts = false;

void setLimitProducts(bool limited) { limitProducts = limited; }

namespace {

/// Digits of the denominators that `limitProducts` leaves.
constexpr int PRODUCT_DIGITS = DIGITS;

void storeInfinity(QQ& r, bool positive) {
  r.isInf = true;
  r.positive = positive;
  assignPart(r.ganze, 1);
  assignPart(r.zaehler, 0);
  assignPart(r.nenner, 1);
}

bool isWhole(const QQ& x) { return isZero(x.zaehler); }
bool isExactZero(const QQ& x) { return !x.isInf && isZero(x.ganze) && isZero(x.zaehler); }

/// Integers of one operation, whose blocks the next one uses again.
struct Scratch {
  ZZ left;
  ZZ right;
  ZZ leftDenominator;
  ZZ rightDenominator;
  ZZ divisor;
};

Scratch& scratch() {
  static Scratch numbers;
  return numbers;
}

bool isOne(const ZZ& a) { return a.MN == 1 && a.data[1] == 1; }

/// r = a / b without a remainder.
void divideExactly(const ZZ& a, const ZZ& b, ZZ& r) { div(a, b, r, r); }

void increment(ZZ& x, int by) {
  static const ZZ one = 1;
  by > 0 ? add(x, one, x) : sub(x, one, x);
}

/// Divides both by their greatest common divisor, of which `common` is a multiple.
void reduce(ZZ& numerator, ZZ& denominator, const ZZ& common) {
  if (isOne(common)) return;
  ZZ& divisor = scratch().divisor;
  gcd(numerator, common, divisor);
  if (isOne(divisor)) return;
  divideExactly(numerator, divisor, numerator);
  divideExactly(denominator, divisor, denominator);
}

void addInfinite(const QQ& a, const QQ& b, bool bPositive, QQ& r) {
  if (a.isInf && b.isInf && a.positive != bPositive) fail("INF - INF is not defined");
  storeInfinity(r, a.isInf ? a.positive : bPositive);
}

/// Gives `r` a signed whole part and no fraction.
void finishWhole(QQ& r, bool positive) {
  r.isInf = false;
  r.positive = positive || isZero(r.ganze);
  r.ganze.positive = true;
  assignPart(r.zaehler, 0);
  assignPart(r.nenner, 1);
}

void addWhole(const QQ& a, const QQ& b, bool bPositive, QQ& r) {
  const bool aPositive = a.positive;
  if (aPositive == bPositive) {
    add(a.ganze, b.ganze, r.ganze);
  } else {
    sub(a.ganze, b.ganze, r.ganze);
  }
  finishWhole(r, aPositive == r.ganze.positive);
}

/// The fraction of r is in [0, 2) and not reduced; makes it a proper one.
void carryFraction(QQ& r) {
  if (compareMagnitudes(r.zaehler, r.nenner) < 0) return;
  sub(r.zaehler, r.nenner, r.zaehler);
  increment(r.ganze, 1);
}

/// Adds numerator / denominator, a proper reduced fraction, to the fraction of r; a one that is
/// carried goes to the whole part. Until then the numerator can be one limb longer.
void addToFraction(QQ& r, Word numerator, Word denominator) {
  const limbs::Modulus modulus(denominator);
  const Word common = gcdWord(denominator, remainder(r.nenner, modulus));
  if (common > 1) divideExactly(r.nenner, common);
  addScaled(r.zaehler, r.nenner, std::max(r.zaehler.MN, r.nenner.MN) + WORD_LIMBS + 1,
            denominator / common, numerator, denominator);
  carryFraction(r);
  if (common == 1 || isZero(r.zaehler)) return;
  const Word divisor = gcdWord(common, remainder(r.zaehler, modulus));
  if (divisor == 1) return;
  divideExactly(r.zaehler, divisor);
  divideExactly(r.nenner, divisor);
}

/// The same for parts of any length.
void addToFraction(QQ& r, const ZZ& numerator, const ZZ& denominator) {
  auto& [left, right, leftDenominator, rightDenominator, divisor] = scratch();
  static ZZ common;
  gcd(r.nenner, denominator, common);
  divideExactly(r.nenner, common, leftDenominator);
  divideExactly(denominator, common, rightDenominator);
  mul(r.zaehler, rightDenominator, left);
  mul(numerator, leftDenominator, right);
  add(left, right, r.zaehler);
  mul(leftDenominator, denominator, r.nenner);
  carryFraction(r);
  reduce(r.zaehler, r.nenner, common);
}

/// Gives r, whose whole part has a sign behind that of `positive`, the sign of its value.
void settleSign(QQ& r, bool positive) {
  if (!r.ganze.positive) {
    if (!isZero(r.zaehler)) {
      increment(r.ganze, 1);
      sub(r.nenner, r.zaehler, r.zaehler);
    }
    r.ganze.positive = true;
    positive = !positive;
  }
  if (isZero(r.zaehler)) return finishWhole(r, positive);
  r.isInf = false;
  r.positive = positive;
}

/// r = a + b for finite numbers, where `b` has the sign given and no longer denominator than `a`. A
/// fraction to be subtracted is added as 1 less than its complement.
void addShorter(const QQ& a, const QQ& b, bool bPositive, QQ& r) {
  const bool positive = a.positive;
  const bool agree = positive == bPositive;
  const bool hasFraction = !isWhole(b);
  const bool isWord = b.nenner.MN <= WORD_LIMBS;
  static ZZ numerator;
  static ZZ denominator;
  Word numeratorWord = 0;
  Word denominatorWord = 1;
  if (isWord) {
    denominatorWord = toWord(b.nenner);
    numeratorWord = agree ? toWord(b.zaehler) : denominatorWord - toWord(b.zaehler);
  } else {
    denominator = b.nenner;
    numerator = b.zaehler;
    if (!agree) sub(denominator, numerator, numerator);
  }
  agree ? add(a.ganze, b.ganze, r.ganze) : sub(a.ganze, b.ganze, r.ganze);
  r.zaehler = a.zaehler;
  r.nenner = a.nenner;
  if (hasFraction) {
    if (!agree) increment(r.ganze, -1);
    isWord ? addToFraction(r, numeratorWord, denominatorWord)
           : addToFraction(r, numerator, denominator);
  }
  settleSign(r, positive);
}

/// r = a + b, where `b` has the sign given.
void addSigned(const QQ& a, const QQ& b, bool bPositive, QQ& r) {
  SmallNumber x;
  SmallNumber y;
  if (load(a, x) && load(b, y)) return addSmall(x, y, bPositive, r);
  if (a.isInf || b.isInf) return addInfinite(a, b, bPositive, r);
  if (isWhole(a) && isWhole(b)) return addWhole(a, b, bPositive, r);
  if (b.nenner.MN <= a.nenner.MN) return addShorter(a, b, bPositive, r);
  // b + a with the sign of b turned where it is not the one given, and turned back.
  const bool turned = b.positive != bPositive;
  addShorter(b, a, a.positive != turned, r);
  if (turned && !isExactZero(r)) r.positive = !r.positive;
}

/// The value times its denominator, without its sign.
void improper(const QQ& x, ZZ& r) {
  if (isWhole(x)) {
    r = x.ganze;
    return;
  }
  mul(x.ganze, x.nenner, r);
  add(r, x.zaehler, r);
}

/// r = numerator / denominator, which is reduced; takes the blocks of both.
void storeReduced(QQ& r, bool positive, ZZ& numerator, ZZ& denominator) {
  r.isInf = false;
  div(numerator, denominator, r.ganze, numerator);
  if (isZero(numerator)) return finishWhole(r, positive);
  std::swap(r.zaehler, numerator);
  std::swap(r.nenner, denominator);
  r.positive = positive;
}

/// r = a b, or a / b if `inverted`, for finite numbers and b that is not 0 then. Of either product
/// that makes the result, what could cancel against the other is taken off the factors.
void multiplyFractions(const QQ& a, const QQ& b, bool inverted, QQ& r) {
  const bool positive = a.positive == b.positive;
  auto& [x, y, xDenominator, yDenominator, divisor] = scratch();
  improper(a, x);
  improper(b, y);
  xDenominator = a.nenner;
  yDenominator = b.nenner;
  if (inverted) std::swap(y, yDenominator);
  reduce(x, yDenominator, yDenominator);
  reduce(y, xDenominator, xDenominator);
  mul(x, y, x);
  mul(xDenominator, yDenominator, yDenominator);
  storeReduced(r, positive, x, yDenominator);
}

ZZ signedPart(ZZ part, bool positive) {
  if (isZero(part)) return 0;
  part.positive = positive;
  return part;
}

/// (a * b) / denominator, cut short.
QQ limitedFraction(const ZZ& a, const ZZ& b, const ZZ& denominator) {
  QQ term(a * b, denominator);
  limitDigits(term, PRODUCT_DIGITS);
  normalize(term);
  return term;
}

/// The four terms of the product of two mixed numbers, the fractions among them cut short.
void mulLimited(const QQ& a, const QQ& b, QQ& r) {
  const ZZ wa = wholeSigned(a);
  const ZZ wb = wholeSigned(b);
  const ZZ za = numeratorSigned(a);
  const ZZ zb = numeratorSigned(b);
  QQ sum = wa * wb;
  sum += limitedFraction(wa, zb, b.nenner);
  sum += limitedFraction(za, wb, a.nenner);
  sum += limitedFraction(za, zb, a.nenner * b.nenner);
  r = std::move(sum);
}

void mulInfinite(const QQ& a, const QQ& b, QQ& r) {
  if (a.isInf && isExactZero(b)) fail("qq: INF * 0 is not defined!");
  if (b.isInf && isExactZero(a)) fail("qq: 0 * INF is not defined!");
  storeInfinity(r, a.positive == b.positive);
}

}  // namespace

QQ::QQ(long long value) : positive(value >= 0), ganze(value) { ganze.positive = true; }

QQ::QQ(ZZ value) : positive(value.positive || vexil::isZero(value)), ganze(std::move(value)) {
  ganze.positive = true;
}

QQ::QQ(ZZ numerator, ZZ denominator)
    : positive(numerator.positive == denominator.positive),
      zaehler(std::move(numerator)),
      nenner(std::move(denominator)) {
  zaehler.positive = nenner.positive = true;
  normalize(*this);
}

const QQ& QQ::ONE() {
  static const QQ one = 1;
  return one;
}

const QQ& QQ::INF() {
  static const QQ inf(Infinity{}, true);
  return inf;
}

const QQ& QQ::EPSILON() {
  static const QQ epsilon(ZZ(1), ZZ(limbs::BASE));
  return epsilon;
}

void normalize(QQ& x) {
  if (!x.ganze.positive || !x.zaehler.positive || !x.nenner.positive) {
    fail("A ganze / zaehler / nenner sign has been set, though it should not be used");
  }
  if (x.isInf) return;
  if (!isZero(x.zaehler)) {
    if (compareMagnitudes(x.zaehler, x.nenner) >= 0) {
      static ZZ quotient;
      div(x.zaehler, x.nenner, quotient, x.zaehler);
      add(x.ganze, quotient, x.ganze);
    }
    if (!isZero(x.zaehler)) reduce(x.zaehler, x.nenner, x.nenner);
  }
  if (isZero(x.zaehler)) {
    assignWord(x.nenner, 1);
    if (isZero(x.ganze)) x.positive = true;
  }
}

int compare(const QQ& a, const QQ& b) {
  if (&a == &b) return 0;
  if (a.positive != b.positive) return a.positive ? 1 : -1;
  const int sign = a.positive ? 1 : -1;
  if (a.isInf || b.isInf) return a.isInf && b.isInf ? 0 : (a.isInf ? sign : -sign);
  SmallNumber x;
  SmallNumber y;
  if (load(a, x) && load(b, y)) return sign * compareSmall(x, y);
  int order = compareMagnitudes(a.ganze, b.ganze);
  if (order == 0) {
    static ZZ left;
    static ZZ right;
    mul(a.zaehler, b.nenner, left);
    mul(b.zaehler, a.nenner, right);
    order = compareMagnitudes(left, right);
  }
  return order * sign;
}

void commonDenominator(ZZ& az, ZZ& bz, ZZ& l, const QQ& a, const QQ& b) {
  if (&az == &bz || &az == &l || &bz == &l) fail("QQ: The ZZs have the same address");
  if (a.isInf || b.isInf) {
    fail("a_z, b_z can not be set to ZZ::INF -- isInf is logic only available in QQ class");
  }
  const ZZ common = lcm(a.nenner, b.nenner);
  const ZZ left = a.zaehler;
  const ZZ right = b.zaehler;
  const ZZ bNenner = b.nenner;
  divideExactly(common, a.nenner, az);
  divideExactly(common, bNenner, bz);
  mul(left, az, az);
  mul(right, bz, bz);
  l = common;
}

void add(const QQ& a, const QQ& b, QQ& r) { addSigned(a, b, b.positive, r); }

void sub(const QQ& a, const QQ& b, QQ& r) { addSigned(a, b, !b.positive, r); }

void mul(const QQ& a, const QQ& b, QQ& r) {
  SmallNumber p;
  SmallNumber q;
  if (load(a, p) && load(b, q) && mulSmall(p, q, r)) return;
  if (a.isInf || b.isInf) return mulInfinite(a, b, r);
  if (isWhole(a) && isWhole(b)) {
    const bool positive = a.positive == b.positive;
    mul(a.ganze, b.ganze, r.ganze);
    return finishWhole(r, positive);
  }
  limitProducts ? mulLimited(a, b, r) : multiplyFractions(a, b, false, r);
}

void div(const QQ& a, const QQ& b, QQ& r) {
  if (a.isInf && b.isInf) fail("QQ: +-INF / +-INF is not defined");
  if (isExactZero(b)) throw PrecisionException("QQ: division by zero3");
  if (a.isInf) return storeInfinity(r, a.positive == b.positive);
  if (b.isInf) return assignParts(r, true, 0, 0, 1);
  SmallNumber p;
  SmallNumber q;
  if (load(a, p) && load(b, q) && divSmall(p, q, r)) return;
  multiplyFractions(a, b, true, r);
}

void addProduct(QQ& sum, const QQ& a, const QQ& b) {
  SmallNumber p;
  SmallNumber q;
  if (load(a, p) && load(b, q) && p.isWhole() && q.isWhole() && addProductSmall(sum, p, q)) return;
  static QQ product;
  mul(a, b, product);
  add(sum, product, sum);
}

QQ operator-(QQ x) {
  if (!isExactZero(x)) x.positive = !x.positive;
  return x;
}

QQ abs(QQ x) {
  x.positive = true;
  return x;
}

ZZ wholeSigned(const QQ& x) { return signedPart(x.ganze, x.positive); }

ZZ numeratorSigned(const QQ& x) { return signedPart(x.zaehler, x.positive); }

QQ denominator(const QQ& x) { return x.isInf ? QQ(1) : QQ(x.nenner); }

bool NumberTraits<QQ>::isZero(const QQ& x) {
  if (x.isInf || !vexil::isZero(x.ganze)) return false;
  // zaehler / nenner <= 1 / BASE: the numerator moves up by a limb.
  const Index n = limbCount(x.zaehler);
  const Index limit = limbCount(x.nenner);
  if (n == 0 || n + 1 != limit) return n == 0 || n + 1 < limit;
  return limbs::compare(x.zaehler.data + 1, x.nenner.data + 2, n) <= 0;
}

bool NumberTraits<QQ>::agree(const QQ& a, const QQ& b) {
  if (a == b) return true;
  if (a.isInf || b.isInf || (isWhole(a) && isWhole(b))) return false;
  static QQ difference;
  sub(a, b, difference);
  return isZero(difference);
}

}  // namespace vexil
