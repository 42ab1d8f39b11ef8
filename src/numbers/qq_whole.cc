// Vexil - exact integer optimization on lattices.
//
// The whole numbers and the decimal fractions beside a number.
#include "numbers/qq.h"

namespace vexil {

QQ floor(const QQ& x) {
  const QQ whole = wholeSigned(x);
  return x.isInf || isZero(x.zaehler) ? x : (x.positive ? whole : whole - 1);
}

QQ ceil(const QQ& x) { return -floor(-x); }

QQ round(const QQ& x) {
  static const QQ HALF(1, 2);
  return x.positive ? floor(x + HALF) : ceil(x - HALF);
}

void roundDecimals(QQ& x, std::int64_t digits) {
  ZZ power;
  powerOfTen(digits, power);
  if (x.isInf || compareMagnitudes(x.nenner, power) <= 0) return;
  x = round(x * power) / power;
}

}  // namespace vexil
