// Vexil - exact integer optimization on lattices.
//
// What the searches work on: the lattice of the points that satisfy the equations, in coordinates
// of a basis, and all that has to stay within bounds, as integral forms in these coordinates.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "solver/integers.h"

namespace vexil::solver {

/// What a form of a system is in the model.
enum class FormKind : std::uint8_t {
  Variable,  ///< a variable X_i
  Row,       ///< an inequation
  Goal       ///< g X - d of a goal; its box is wide enough for all points
};

/// The lattice points X = x0 + sum lambda_k K_k, lambda in Z^d, and F forms that are affine in
/// lambda:
///
///     form f = offset_f + sum_k lambda_k Y_kf,   lower_f <= form f <= upper_f,
///
/// all numbers integral, all boxes finite, the forms of rank d in lambda, and lambda integral
/// exactly where all forms of kind Variable are. Indices count from 0. The objective, an integral
/// multiple of the target norm plus a constant, is
///
///     objectiveOffset + sum_k lambda_k objective_k + sum of |goal forms|.
///
/// For Z = int64 all entries, boxes and values that the forms and the objective take within the
/// boxes are below NARROW_LIMIT.
template <typename Z>
struct FormSystem {
  std::size_t dimension = 0;  ///< d
  std::size_t count = 0;      ///< F
  std::vector<Z> matrix;      ///< Y, d x F, the entries of basis row k at k F to k F + F - 1
  std::vector<Z> offset;      ///< F values at lambda = 0
  std::vector<Z> lower;       ///< F
  std::vector<Z> upper;       ///< F
  std::vector<std::uint8_t> artificialLower;  ///< F: 1 where the program has no such bound
  std::vector<std::uint8_t> artificialUpper;  ///< F
  std::vector<FormKind> kind;                 ///< F
  std::vector<std::size_t> source;  ///< F: index of the variable, row or goal in the model

  bool hasObjective = false;
  std::vector<Z> objective;  ///< d
  Z objectiveOffset = 0;

  /// Equations order the coordinates: the basis is reduced, its last rows are the longest, and a
  /// tree that branches on the last one first is small. Without it the coordinates are as good as
  /// the variables.
  bool ordered = true;

  [[nodiscard]] const Z& entry(std::size_t k, std::size_t f) const { return matrix[k * count + f]; }
};

}  // namespace vexil::solver
