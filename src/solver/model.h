// Vexil - exact integer optimization on lattices.
//
// The exact integer form of a program. The solver counts from 0 in contiguous vectors; only points
// and programs of the outside count from 1.
#pragma once

#include <cstddef>
#include <vector>

#include "foundation/vector.h"
#include "numbers/qq.h"
#include "numbers/zz.h"
#include "program/vexil.h"
#include "solver/stop.h"

namespace vexil::solver {

/// One side of a variable or row.
struct Side {
  bool finite = false;
  /// The program has no such side, or none that proves this value: it was put in, or follows from
  /// one that was.
  bool artificial = false;
  ZZ value;

  [[nodiscard]] bool isProved() const { return finite && !artificial; }
};

/// lower <= a X <= upper; an equation has two equal finite sides.
struct ModelRow {
  std::vector<ZZ> a;  ///< n coefficients
  Side lower;
  Side upper;

  [[nodiscard]] bool isEquation() const {
    return lower.finite && upper.finite && lower.value == upper.value;
  }
};

/// A target that is to come near to a value: contributes |g X - wish| to the objective.
struct ModelGoal {
  std::vector<ZZ> g;  ///< n coefficients
  ZZ wish;
};

/// The program in integral variables X_i = 10^decimals_i x_i:
///
///     minimise  c X + constant + sum over goals |g X - wish|
///
/// over rows and sides, all numbers integral; this is `scale` times the target norm. A variable
/// whose sides are equal is fixed and stays in its place.
struct Model {
  std::size_t n = 0;
  std::vector<int> decimals;  ///< n, >= 0
  std::vector<Side> lower;    ///< n
  std::vector<Side> upper;    ///< n
  std::vector<ModelRow> rows;
  bool hasObjective = false;  ///< the program has targets
  std::vector<ZZ> c;          ///< n
  ZZ constant = 0;
  ZZ scale = 1;
  std::vector<ModelGoal> goals;

  /// Both sides are proved and equal.
  [[nodiscard]] bool isFixed(std::size_t i) const {
    return lower[i].isProved() && upper[i].isProved() && lower[i].value == upper[i].value;
  }
};

/// The model of a program that was read and validated, its sides rounded inward, which takes no
/// point away; an empty range is left to `presolve` to notice. A row may be shorter than the
/// program has variables; what it lacks is 0. Fatal: "dx[i] = ... is no number of decimal places"
/// for one that is no whole number or above 10^6. Throws `Stopped` if `stop` says so.
[[nodiscard]] Model makeModel(const Vexil<QQ>& program, StopToken* stop = nullptr);

/// The point x of the program (from 1) for X.
[[nodiscard]] Vector<QQ> programPoint(const Model& model, const std::vector<ZZ>& X);

/// The exact check of a point against the program as read: bounds, decimals, equations and
/// inequations.
[[nodiscard]] bool isPointOf(const Vexil<QQ>& program, const Vector<QQ>& x);

}  // namespace vexil::solver
