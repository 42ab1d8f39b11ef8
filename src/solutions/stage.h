// Vexil - exact integer optimization on lattices.
#pragma once

#include <array>

#include "numbers/convert.h"
#include "numbers/narrowing.h"

namespace vexil {

/// What a row of the basis carries through the reduction: a vector and six numbers.
template <typename T, typename U>
struct Stage {
  Vector<T> vector;
  std::array<U, 6> values{};
};

/// Exchanges the six numbers; the vectors stay where they are.
template <typename T, typename U>
void exchange(Stage<T, U>& a, Stage<T, U>& b) {
  static Stage<T, U> temporary;
  temporary.values = std::move(a.values);
  a.values = std::move(b.values);
  b.values = std::move(temporary.values);
}

/// Copies across the arithmetics, member by member; with `check` the round trip is tested where
/// digits can be lost.
template <typename S, typename V, typename T, typename U>
void convert(const Stage<S, V>& source, Stage<T, U>& target, bool check) {
  convert(source.vector, target.vector, check && narrows<S, T>);
  for (std::size_t i = 0; i < source.values.size(); ++i) {
    convertNumber(source.values[i], target.values[i], check && narrows<V, U>,
                  target.vector.throwOnLoss, target.vector.tolerateFraction);
  }
}

}  // namespace vexil
