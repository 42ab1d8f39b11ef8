// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>

namespace vexil {

/// The form in which found vectors are saved while the basis changes.
enum BackupMode : std::int8_t {
  AS_THEY_ARE = 0,   ///< cut to the present dimension
  WITHOUT_HEAD = 1,  ///< without the leading coordinates, which have to be 0
  COORDINATES = 2,   ///< as coordinates in the basis
  POINTS = 3         ///< as points of the program
};

}  // namespace vexil
