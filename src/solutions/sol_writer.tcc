// Vexil - exact integer optimization on lattices.
//
// The text of the sol file; docs/file-formats.md describes it.
#pragma once

#include "program/vexil.h"

namespace vexil {

template <typename T>
String Vexil<T>::starText(const Star<T>& star) const {
  constexpr const char* BAR = " | ";
  String line;
  star.appendTo(line, FILE_DIGITS);
  line += BAR;
  NumberTraits<T>::append(line, star.targetNorm, REPORT_DIGITS);
  line += BAR;
  star.targetValues.appendTo(line, REPORT_DIGITS);
  line += BAR;
  NumberTraits<T>::append(line, star.slackNorm, REPORT_DIGITS);
  line += BAR + std::to_string(star.time) + BAR + star.paramText;
  if (!star.version.empty()) line += BAR + star.version;
  return line;
}

}  // namespace vexil
