// Vexil - exact integer optimization on lattices.
#include "foundation/failure.h"
#include "numbers/qq.h"
#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// Digits that the iterates of a root keep.
constexpr int ROOT_DIGITS = DIGITS;

/// The value times its denominator, with its sign; an infinity counts as 1.
ZZ improper(const QQ& x) {
  ZZ r = x.ganze * x.nenner + x.zaehler;
  if (!isZero(r)) r.positive = x.positive;
  return r;
}

ZZ power(const ZZ& a, const ZZ& e) {
  ZZ r;
  power(a, e, r);
  return r;
}

QQ wholePower(const QQ& x, const ZZ& e) { return {power(improper(x), e), power(x.nenner, e)}; }

QQ infinitePower(const QQ& x) {
  const int order = compare(abs(x), QQ::ONE());
  if (order < 0) return 0;
  if (order == 0) return 1;
  return x.positive ? QQ::INF() : -QQ::INF();
}

QQ limited(QQ x) {
  limitDigits(x, ROOT_DIGITS);
  normalize(x);
  return x;
}

/// x^e by squaring, each product limited: a great exponent makes no long fractions.
QQ limitedPower(const QQ& x, const ZZ& e) {
  if (isZero(e)) return 1;
  ZZ half, odd;
  div(e, 2, half, odd);
  const QQ root = limitedPower(x, half);
  const QQ square = limited(root * root);
  return isZero(odd) ? square : limited(square * x);
}

/// x >= 0, k >= 2. From the second iterate on the iteration descends by ever smaller steps, until
/// the rounding to `ROOT_DIGITS` is all that moves it. It ends there where x is too great for the
/// tolerance to be met.
QQ newtonRoot(const QQ& x, const ZZ& k) {
  const QQ factor = k;
  QQ guess = (x + 1) / factor;
  QQ lastStep = QQ::INF();
  for (;;) {
    const QQ slope = limitedPower(guess, k - 1);
    QQ next = limited(guess - (slope * guess - x) / (factor * slope));
    QQ step = abs(next - guess);
    if (isZero(step) && isZero(limitedPower(next, k) - x)) return guess;
    if (step >= lastStep) return guess;
    guess = std::move(next);
    lastStep = std::move(step);
  }
}

}  // namespace

QQ pow(const QQ& x, const QQ& y) {
  if (!y.positive) return QQ::ONE() / pow(x, -y);
  if (y.isInf) return infinitePower(x);
  QQ result = wholePower(x, y.ganze);
  if (isZero(y.zaehler)) return result;
  result *= root(power(improper(x), y.zaehler), y.nenner);
  result /= root(power(x.nenner, y.zaehler), y.nenner);
  return result;
}

QQ root(const QQ& x, const ZZ& k) {
  if (isZero(k)) fail("QQ: zero-th roots are not defined");
  if (!k.positive) {
    if (x == 0) fail("QQ: division by zero");
    return root(QQ::ONE() / x, -k);
  }
  if (!x.positive) {
    if (k.data[1] % 2 == 0) fail("QQ: complex roots are not implemented");
    return -root(-x, k);
  }
  if (k == 1) return x;
  return newtonRoot(x, k);
}

QQ squareRoot(const QQ& x, std::int64_t digits) {
  if (!isZero(x.ganze) || !isZero(x.zaehler)) {
    // x is a number between 1/10 and 1000 times 100^half, whose root starts the iteration.
    constexpr std::int64_t FIRST_DIGITS = 8;
    const std::int64_t order = digitCount(improper(x)) - digitCount(x.nenner);
    const std::int64_t half = (order - (order < 0 ? 1 : 0)) / 2;
    const QQ unit = pow(10, static_cast<long>(half));
    QQ guess = root(limited(x / (unit * unit)), 2) * unit;
    for (std::int64_t known = FIRST_DIGITS; known < digits + half + 1; known *= 2) {
      guess = (guess + x / guess) / 2;
      roundDecimals(guess, digits + 1);
    }
    roundDecimals(guess, digits);
    return guess;
  }
  return 0;
}

void limitDigits(QQ& x, int digits) {
  const Index surplus = digitCount(x.nenner) - digits;
  if (surplus <= 0) return;
  if (digitCount(x.zaehler) > surplus) {
    dropLowDigits(x.zaehler, surplus);
    dropLowDigits(x.nenner, surplus);
  } else {
    assignWord(x.zaehler, 0);
    assignWord(x.nenner, 1);
  }
}

}  // namespace vexil
