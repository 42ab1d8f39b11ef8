// Vexil - exact integer optimization on lattices.
//
// Numbers put together from machine words.
#pragma once

#include "numbers/qq.h"
#include "numbers/zz_words.h"

namespace vexil {

/// Makes a part `value`; one that is 0 needs no block.
inline void assignPart(ZZ& part, Word value) {
  if (value != 0) return assignWord(part, value);
  part.positive = true;
  part.MN = 0;
}

/// Makes `x` the finite number of these parts, which are in normal form but for the sign of zero.
inline void assignParts(QQ& x, bool positive, Word whole, Word numerator, Word denominator) {
  x.isInf = false;
  x.positive = positive || (whole == 0 && numerator == 0);
  assignPart(x.ganze, whole);
  assignPart(x.zaehler, numerator);
  assignPart(x.nenner, denominator);
}

}  // namespace vexil
