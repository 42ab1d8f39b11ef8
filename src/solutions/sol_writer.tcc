// Vexil - exact integer optimization on lattices.
//
// The text of the sol file; docs/file-formats.md describes it.
#pragma once

#include "program/vexil.h"

namespace vexil {

template <typename T>
String Vexil<T>::starText(const Star<T>& star) const {
  constexpr int ELEMENT_DIGITS = DIGITS - 1;
  constexpr int FIELD_DIGITS = 6;
  constexpr const char* BAR = " | ";
  String line;
  star.appendTo(line, ELEMENT_DIGITS);
  line += BAR;
  NumberTraits<T>::append(line, star.targetNorm, FIELD_DIGITS);
  line += BAR;
  star.targetValues.appendTo(line, FIELD_DIGITS);
  line += BAR;
  NumberTraits<T>::append(line, star.slackNorm, FIELD_DIGITS);
  line += BAR + std::to_string(star.time) + BAR + star.paramText;
  if (!star.version.empty()) line += BAR + star.version;
  return line;
}

}  // namespace vexil
