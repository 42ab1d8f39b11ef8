// Vexil - exact integer optimization on lattices.
#pragma once

#include <utility>

#include "foundation/serializable.h"

namespace vexil {

/// Two values side by side.
template <typename A, typename B>
class Pair {
 public:
  A left{};
  B right{};

  Pair() = default;
  Pair(A first, B second) : left(std::move(first)), right(std::move(second)) {}
  Pair(const Pair&) = default;
  Pair(Pair&&) noexcept = default;
  Pair& operator=(const Pair&) = default;
  Pair& operator=(Pair&&) noexcept = default;
  virtual ~Pair() = default;
};

/// Pair with the text form "(left, right)".
template <typename A, typename B>
class SerializablePair : public Pair<A, B>, public Serializable {
 public:
  SerializablePair() : Serializable(",", false, false) {}
  SerializablePair(A first, B second)
      : Pair<A, B>(std::move(first), std::move(second)), Serializable(",", false, false) {}

  std::ostream& write(std::ostream& out) const override {
    return out << '(' << this->left << ", " << this->right << ')';
  }

  /// Any single characters stand in for the punctuation.
  void read(std::istream& in) override {
    in.get();
    in >> this->left;
    in.get();
    in >> this->right;
    in.get();
  }
};

}  // namespace vexil
