// Vexil - exact integer optimization on lattices.
#pragma once

#include <tuple>

#include "numbers/qq_vectors.h"

namespace vexil {

/// How the program is embedded into the lattice: scale and bounds of each coordinate. All vectors
/// have the dimension of a lattice vector, or are empty where there is no generated basis.
template <typename T>
struct Embedding {
  T R{};                   ///< common radius of the embedding
  Vector<T> c;             ///< scale of each coordinate
  Vector<T> l;             ///< lower bound of each coordinate; infinities allowed
  Vector<T> l0;            ///< `l` in the weighted form
  Vector<T> r;             ///< upper bound of each coordinate; infinities allowed
  Vector<T> r0;            ///< `r` in the weighted form
  T maxNorm{};             ///< 3 times the larger of l.l and r.r
  bool symmetric = false;  ///< `l` is the negative of `r`
  std::int8_t checkMode =
      0;  ///< 0: bounds not set; 1: the lattice of the equations; 2: the full lattice

  template <typename Self>
  static auto members(Self& self) {
    auto& [R, c, l, l0, r, r0, maxNorm, symmetric, checkMode] = self;
    return std::tie(R, c, l, l0, r, r0, maxNorm, symmetric, checkMode);
  }

  void resize(std::int64_t cols);

  /// Takes out the first `count` coordinates.
  void dropLeading(std::int64_t count);

  /// `maxNorm` from `l` and `r`.
  void computeMaxNorm();
};

extern template struct Embedding<dbl_t>;
extern template struct Embedding<QQ>;

}  // namespace vexil
