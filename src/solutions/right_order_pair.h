// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/pair.h"

namespace vexil {

/// Pair that is ordered by its right member.
template <typename A, typename B>
class RightOrderPair : public SerializablePair<A, B> {
 public:
  using SerializablePair<A, B>::SerializablePair;

  [[nodiscard]] bool operator<(const RightOrderPair& other) const {
    return this->right < other.right;
  }
};

}  // namespace vexil
