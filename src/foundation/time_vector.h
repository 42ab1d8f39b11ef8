// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>

#include "foundation/vector.h"

namespace vexil {

/// A vector with the time of its discovery. The text form is that of the elements.
template <typename T>
class TimeVector : public Vector<T> {
 public:
  std::int64_t time = -1;  ///< seconds from the start of the program; -1: unknown

  void clear() override {
    this->resize(0, false);
    time = -1;
  }
};

}  // namespace vexil
