// Vexil - exact integer optimization on lattices.
//
// Each operation has a short cut for parts of one limb, which machine words hold. The others work
// on integers that live for the whole process, so that blocks are reused. Results are reduced by
// the greatest common divisors of small operands: Knuth, The Art of Computer Programming, volume
// 2, 4.5.1.
#include <utility>

#include "foundation/exceptions.h"
#include "foundation/failure.h"
#include "numbers/qq_parts.h"

namespace vexil {

bool limitProducts = false;

void setLimitProducts(bool limited) { limitProducts = limited; }

namespace {

/// Digits of the denominators that `limitProducts` leaves.
constexpr int PRODUCT_DIGITS = DIGITS;

/// A finite number whose parts are single limbs.
struct Small {
  bool positive = true;
  Limb whole = 0;
  Limb numerator = 0;
  Limb denominator = 1;

  [[nodiscard]] bool isWhole() const { return denominator == 1; }
  /// The value times the denominator, without its sign.
  [[nodiscard]] Word improper() const {
    return limbs::word(whole) * limbs::word(denominator) + limbs::word(numerator);
  }
};

Limb lowLimb(const ZZ& part) { return part.MN > 0 ? part.data[1] : 0; }

/// Loads a number into `small`; false if it has longer parts.
bool load(const QQ& x, Small& small) {
  if (x.isInf || x.ganze.MN > 1 || x.zaehler.MN > 1 || x.nenner.MN != 1) return false;
  small = {x.positive, lowLimb(x.ganze), lowLimb(x.zaehler), x.nenner.data[1]};
  return true;
}

void storeInfinity(QQ& r, bool positive) {
  r.isInf = true;
  r.positive = positive;
  assignPart(r.ganze, 1);
  assignPart(r.zaehler, 0);
  assignPart(r.nenner, 1);
}

/// Stores numerator / denominator, which is reduced; the denominator is below BASE^2.
void storeReduced(QQ& r, bool positive, DoubleWord numerator, Word denominator) {
  if (const Word low = static_cast<Word>(numerator); low == numerator) {
    return assignParts(r, positive, low / denominator, low % denominator, denominator);
  }
  const DoubleWord whole = numerator / denominator;
  const Word rest = static_cast<Word>(numerator - whole * denominator);
  const auto small = static_cast<Word>(whole);
  if (small == whole) return assignParts(r, positive, small, rest, denominator);
  constexpr Word twoLimbs = limbs::WORD_BASE * limbs::WORD_BASE;
  assignParts(r, positive, 0, rest, denominator);
  r.positive = positive;
  static ZZ low;
  assignWord(low, static_cast<Word>(whole % twoLimbs));
  assignWord(r.ganze, static_cast<Word>(whole / twoLimbs));
  r.ganze.base_lshift(2);
  add(r.ganze, low, r.ganze);
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

void addSmall(const Small& a, const Small& b, bool bPositive, QQ& r) {
  const Limb aSign = a.positive ? 1 : -1;
  const Limb bSign = bPositive ? 1 : -1;
  const Limb whole = aSign * a.whole + bSign * b.whole;
  if (a.isWhole() && b.isWhole()) {
    return assignParts(r, whole >= 0, limbs::word(whole < 0 ? -whole : whole), 0, 1);
  }
  const Word common = a.isWhole() || b.isWhole()
                          ? 1
                          : gcdWord(limbs::word(a.denominator), limbs::word(b.denominator));
  const Limb aScale = b.denominator / limbs::limb(common);
  const Limb bScale = a.denominator / limbs::limb(common);
  const Limb numerator = aSign * a.numerator * aScale + bSign * b.numerator * bScale;
  storeSum(r, whole, numerator, aScale * a.denominator, common);
}

void mulSmall(const Small& a, const Small& b, QQ& r) {
  const bool positive = a.positive == b.positive;
  Word x = a.improper();
  Word y = b.improper();
  if (a.isWhole() && b.isWhole()) return assignParts(r, positive, x * y, 0, 1);
  if (x == 0 || y == 0) return assignParts(r, true, 0, 0, 1);
  const Word g = b.isWhole() ? 1 : gcdWord(x, limbs::word(b.denominator));
  const Word h = a.isWhole() ? 1 : gcdWord(y, limbs::word(a.denominator));
  x /= g;
  y /= h;
  storeReduced(r, positive, static_cast<DoubleWord>(x) * y,
               (limbs::word(a.denominator) / h) * (limbs::word(b.denominator) / g));
}

/// False if the result needs more than words.
bool divSmall(const Small& a, const Small& b, QQ& r) {
  const bool positive = a.positive == b.positive;
  const Word x = a.improper();
  const Word y = b.improper();
  if (x == 0) {
    assignParts(r, true, 0, 0, 1);
    return true;
  }
  const Word g = gcdWord(x, y);
  const Word h = gcdWord(limbs::word(a.denominator), limbs::word(b.denominator));
  const DoubleWord denominator = static_cast<DoubleWord>(y / g) * (limbs::word(a.denominator) / h);
  if (denominator >= static_cast<DoubleWord>(limbs::WORD_BASE) * limbs::WORD_BASE) return false;
  storeReduced(r, positive, static_cast<DoubleWord>(x / g) * (limbs::word(b.denominator) / h),
               static_cast<Word>(denominator));
  return true;
}

bool isWhole(const QQ& x) { return isZero(x.zaehler); }
bool isExactZero(const QQ& x) { return !x.isInf && isZero(x.ganze) && isZero(x.zaehler); }

/// r = a / b without a remainder.
void divideExactly(const ZZ& a, const ZZ& b, ZZ& r) { div(a, b, r, r); }

void increment(ZZ& x, int by) {
  static const ZZ one = 1;
  by > 0 ? add(x, one, x) : sub(x, one, x);
}

/// Divides both by their greatest common divisor, of which `common` is a multiple.
void reduce(ZZ& numerator, ZZ& denominator, const ZZ& common) {
  static ZZ divisor;
  gcd(numerator, common, divisor);
  if (divisor.MN == 1 && divisor.data[1] == 1) return;
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

/// r = whole + numerator / denominator for signed parts; takes the blocks of all three.
void storeSum(QQ& r, ZZ& whole, ZZ& numerator, ZZ& denominator, const ZZ& common) {
  static ZZ quotient;
  div(numerator, denominator, quotient, numerator);
  add(whole, quotient, whole);
  if (!isZero(whole) && !isZero(numerator) && whole.positive != numerator.positive) {
    increment(whole, whole.positive ? -1 : 1);
    numerator.positive ? sub(numerator, denominator, numerator)
                       : add(numerator, denominator, numerator);
  }
  r.isInf = false;
  r.positive = isZero(whole) ? numerator.positive : whole.positive;
  whole.positive = numerator.positive = true;
  if (isZero(numerator)) {
    assignPart(numerator, 0);
    assignPart(denominator, 1);
  } else {
    reduce(numerator, denominator, common);
  }
  std::swap(r.ganze, whole);
  std::swap(r.zaehler, numerator);
  std::swap(r.nenner, denominator);
}

/// r = a + b, where `b` has the sign given.
void addSigned(const QQ& a, const QQ& b, bool bPositive, QQ& r) {
  Small x;
  Small y;
  if (load(a, x) && load(b, y)) return addSmall(x, y, bPositive, r);
  if (a.isInf || b.isInf) return addInfinite(a, b, bPositive, r);
  if (isWhole(a) && isWhole(b)) return addWhole(a, b, bPositive, r);
  static ZZ whole;
  static ZZ numerator;
  static ZZ denominator;
  static ZZ common;
  static ZZ left;
  static ZZ right;
  const auto sum = [&](const ZZ& p, const ZZ& q, ZZ& result) {
    if (a.positive == bPositive) {
      add(p, q, result);
    } else {
      sub(p, q, result);
    }
    if (!a.positive && !isZero(result)) result.positive = !result.positive;
  };
  sum(a.ganze, b.ganze, whole);
  if (isWhole(a) || isWhole(b)) {
    sum(a.zaehler, b.zaehler, numerator);
    denominator = isWhole(a) ? b.nenner : a.nenner;
    assignWord(common, 1);
  } else {
    gcd(a.nenner, b.nenner, common);
    divideExactly(b.nenner, common, left);
    divideExactly(a.nenner, common, right);
    mul(a.nenner, left, denominator);
    mul(a.zaehler, left, left);
    mul(b.zaehler, right, right);
    sum(left, right, numerator);
  }
  storeSum(r, whole, numerator, denominator, common);
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
  Small x;
  Small y;
  if (load(a, x) && load(b, y)) {
    if (x.whole != y.whole) return x.whole < y.whole ? -sign : sign;
    const Limb left = x.numerator * y.denominator;
    const Limb right = y.numerator * x.denominator;
    return left == right ? 0 : (left < right ? -sign : sign);
  }
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
  Small p;
  Small q;
  if (load(a, p) && load(b, q)) return mulSmall(p, q, r);
  if (a.isInf || b.isInf) return mulInfinite(a, b, r);
  const bool positive = a.positive == b.positive;
  if (isWhole(a) && isWhole(b)) {
    mul(a.ganze, b.ganze, r.ganze);
    return finishWhole(r, positive);
  }
  if (limitProducts) return mulLimited(a, b, r);
  static ZZ x;
  static ZZ y;
  static ZZ aNenner;
  static ZZ bNenner;
  improper(a, x);
  improper(b, y);
  aNenner = a.nenner;
  bNenner = b.nenner;
  reduce(x, bNenner, b.nenner);
  reduce(y, aNenner, a.nenner);
  mul(x, y, x);
  mul(aNenner, bNenner, aNenner);
  storeReduced(r, positive, x, aNenner);
}

void div(const QQ& a, const QQ& b, QQ& r) {
  if (a.isInf && b.isInf) fail("QQ: +-INF / +-INF is not defined");
  if (isExactZero(b)) throw PrecisionException("QQ: division by zero3");
  if (a.isInf) return storeInfinity(r, a.positive == b.positive);
  if (b.isInf) return assignParts(r, true, 0, 0, 1);
  Small p;
  Small q;
  if (load(a, p) && load(b, q) && divSmall(p, q, r)) return;
  const bool positive = a.positive == b.positive;
  static ZZ x;
  static ZZ y;
  static ZZ aNenner;
  static ZZ bNenner;
  improper(a, x);
  improper(b, y);
  aNenner = a.nenner;
  bNenner = b.nenner;
  reduce(x, y, y);
  reduce(aNenner, bNenner, bNenner);
  mul(x, bNenner, x);
  mul(y, aNenner, y);
  storeReduced(r, positive, x, y);
}

void addProduct(QQ& sum, const QQ& a, const QQ& b) {
  Small p;
  Small q;
  if (load(a, p) && load(b, q) && p.isWhole() && q.isWhole() && !sum.isInf && isWhole(sum) &&
      sum.ganze.MN <= WORD_LIMBS) {
    const Limb product = p.whole * q.whole;
    const Limb before = limbs::limb(toWord(sum.ganze));
    const Limb after =
        (sum.positive ? before : -before) + (p.positive == q.positive ? product : -product);
    return assignParts(sum, after >= 0, limbs::word(after < 0 ? -after : after), 0, 1);
  }
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
