// Vexil - exact integer optimization on lattices.
#pragma once

#include <ios>

#include "foundation/dbl.h"

namespace vexil {

/// Stream manipulator: the number format of files and reports, 17 significant digits in neither the
/// fixed nor the scientific form.
inline std::ios_base& fullPrecision(std::ios_base& stream) {
  stream.unsetf(std::ios_base::floatfield);
  stream.precision(FILE_DIGITS);
  return stream;
}

}  // namespace vexil
