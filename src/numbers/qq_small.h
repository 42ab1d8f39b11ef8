// Vexil - exact integer optimization on lattices.
//
// The short cut of the arithmetic of fractions for numbers that machine words hold.
#pragma once

#include "numbers/qq_parts.h"

namespace vexil {

/// A finite number whose whole part has at most two limbs, its fraction single limbs.
struct SmallNumber {
  bool positive = true;
  Word whole = 0;
  Word numerator = 0;
  Word denominator = 1;

  [[nodiscard]] bool isWhole() const { return denominator == 1; }
  /// The value times the denominator, without its sign.
  [[nodiscard]] DoubleWord improper() const {
    return static_cast<DoubleWord>(whole) * denominator + numerator;
  }
};

/// Loads a number into `small`; false if it has longer parts.
inline bool load(const QQ& x, SmallNumber& small) {
  if (x.isInf || x.ganze.MN > WORD_LIMBS || x.zaehler.MN > 1 || x.nenner.MN != 1) return false;
  small = {x.positive, toWord(x.ganze), toWord(x.zaehler), limbs::word(x.nenner.data[1])};
  return true;
}

/// r = a + b, where `b` has the sign given.
void addSmall(const SmallNumber& a, const SmallNumber& b, bool bPositive, QQ& r);

/// r = a b. False, with `r` as it was, if that needs more than words.
bool mulSmall(const SmallNumber& a, const SmallNumber& b, QQ& r);

/// r = a / b for b that is not 0. False, with `r` as it was, if that needs more than words.
bool divSmall(const SmallNumber& a, const SmallNumber& b, QQ& r);

/// -1, 0 or 1 for the magnitudes.
[[nodiscard]] int compareSmall(const SmallNumber& a, const SmallNumber& b);

/// sum += a b for whole numbers. False, with `sum` as it was, if that needs more than words.
bool addProductSmall(QQ& sum, const SmallNumber& a, const SmallNumber& b);

}  // namespace vexil
