// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <istream>
#include <ostream>

#include "foundation/number_traits.h"

namespace vexil {

/// Which bounds a variable lacks.
enum class FreedomDegree : std::int16_t {
  BOUNDED = 0,     ///< both bounds finite
  LEFT_FREE = 1,   ///< the left bound is -inf
  RIGHT_FREE = 2,  ///< the right bound is +inf
  FREE = 3         ///< both infinite
};

/// The kind of a variable with the bounds `left` and `right`.
template <typename T>
[[nodiscard]] FreedomDegree freedomDegree(const T& left, const T& right) {
  const T infinity = NumberTraits<T>::infinity();
  return static_cast<FreedomDegree>((right == infinity ? 2 : 0) + (left == -infinity ? 1 : 0));
}

/// The variable has no left bound of its own.
[[nodiscard]] inline bool isLeftFree(FreedomDegree degree) {
  return degree == FreedomDegree::LEFT_FREE || degree == FreedomDegree::FREE;
}

/// The variable has no right bound of its own.
[[nodiscard]] inline bool isRightFree(FreedomDegree degree) {
  return degree == FreedomDegree::RIGHT_FREE || degree == FreedomDegree::FREE;
}

inline std::ostream& operator<<(std::ostream& out, FreedomDegree degree) {
  return out << static_cast<std::int16_t>(degree);
}

inline std::istream& operator>>(std::istream& in, FreedomDegree& degree) {
  std::int16_t number{};
  if (in >> number) degree = static_cast<FreedomDegree>(number);
  return in;
}

}  // namespace vexil
