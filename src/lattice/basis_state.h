// Vexil - exact integer optimization on lattices.
#pragma once

#include <tuple>

#include "numbers/qq_vectors.h"

namespace vexil {

/// `TT` is expected to hold at most so many matrices; beyond it there is a warning.
inline constexpr std::int64_t T_MAT_NBR = 20;

/// The basis with what was done to it: the product of the matrices of `TT`, the last one leftmost,
/// with `B_save` is the basis, as long as the row operations are remembered.
template <typename T>
struct BasisState {
  Matrix<T> B;                      ///< the basis, `latRows` by `latDim`, in the weighted form
  Matrix<T> B_save;                 ///< the basis at generation, unweighted, same size
  SerializableArray<Matrix<T>> TT;  ///< transformations of order `latRows`; at least one
  std::int64_t latRows = 0;         ///< rows of `B`
  std::int64_t latDim = 0;          ///< coordinates of a lattice vector, columns of `B`

  template <typename Self>
  static auto members(Self& self) {
    auto& [B, B_save, TT, latRows, latDim] = self;
    return std::tie(B, B_save, TT, latRows, latDim);
  }

  /// Cuts or stretches the basis to `rows` by `cols`; a transformation that is too small grows.
  void resize(std::int64_t rows, std::int64_t cols);

  /// Makes the last matrix of `TT` the identity: of `TT` cut to one matrix, or with `append` of one
  /// more, unless the last is the identity already. Warns "TT.MN > T_MAT_NBR".
  void resetTransformation(bool append);

  /// The matrix that row operations act on.
  [[nodiscard]] Matrix<T>& transformation() { return TT[TT.MN]; }
};

extern template struct BasisState<dbl_t>;
extern template struct BasisState<QQ>;

}  // namespace vexil
