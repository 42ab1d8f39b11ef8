// Vexil - exact integer optimization on lattices.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>

#include "lattice/lattice.h"
#include "support/pairs.h"
#include "support/programs.h"

namespace vexil {

/// Whether the rows of both matrices span the same lattice.
inline bool spanTheSame(const Matrix<QQ>& A, const Matrix<QQ>& B) {
  const auto isWithin = [](const Matrix<QQ>& rows, const Matrix<QQ>& basis) {
    Membership<QQ> lattice;
    lattice.build(basis);
    return std::all_of(rows.elements().begin(), rows.elements().end(),
                       [&](const Vector<QQ>& row) { return lattice.contains(row); });
  };
  return isWithin(A, B) && isWithin(B, A);
}

/// A generated lattice on the program of an opt text, with its files in a folder of its own. It
/// does not end with its first star.
template <typename Pair>
struct Engine {
  using T = typename Pair::T;

  support::TemporaryFolder folder;
  Vexil<QQ> exact;    ///< the program as the text has it
  Vexil<T> original;  ///< in the numbers of the lattice
  Lattice<T, typename Pair::U> lattice;

  explicit Engine(const std::string& opt, bool force1 = false, bool force2 = false)
      : exact(programOf<QQ>(opt)) {
    lattice.program.assign(exact);
    lattice.setFileNames((folder / "x.sol").string());
    original = lattice.program;
    lattice.params.sol.current = 0;
    lattice.prepare(force1, force2);
    lattice.generate();
  }

  [[nodiscard]] Vector<T> latticeVector(const Vector<T>& point) const {
    Vector<T> result;
    lattice.opt2lat(point, result, false);
    return result;
  }

  /// The points of the accepted stars, or of those with the norm.
  [[nodiscard]] std::set<std::string> starPoints(const std::optional<T>& norm = {}) const {
    std::set<std::string> points;
    for (const auto& star : lattice.found.stars.elements()) {
      if (norm && star.targetNorm != *norm) continue;
      Vector<T> x;
      EXPECT_EQ(lattice.lat2opt(star, x, true, false), 1);
      points.insert(joined(x));
    }
    return points;
  }
};

}  // namespace vexil
