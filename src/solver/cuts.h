// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <vector>

#include "solver/dictionary.h"
#include "solver/items.h"
#include "solver/proof.h"

namespace vexil::solver {

class Probe;

/// sum a_k parameter_k <= bound, which holds for every integral point of the boxes.
struct Cut {
  std::vector<std::int64_t> a;  ///< D
  std::int64_t bound = 0;
};

/// Looks for cuts that the solution of a linear program violates. A linear program only proposes
/// integral multipliers; whatever these are, the cut is derived from them in exact integers:
///
/// - items that are rows, each written as a bound less or plus a slack t_i >= 0, are added up to an
///   equation of the parameters and the slacks, all of which are integral and at least 0 once they
///   count from one of their bounds: sum c_j q_j = r;
/// - for any divisor delta, with F(c) = (delta - rho) floor(c / delta) + max(0, c mod delta - rho),
///   rho = r mod delta > 0, it follows that sum F(c_j) q_j <= F(r) (mixed integer rounding,
///   Nemhauser and Wolsey 1990; with the multipliers of a row of the dictionary Gomory's cut of
///   1960, with those of a single row as by Marchand and Wolsey 2001);
/// - in a row of 0/1 variables items of a cover, which exceed the bound together, cannot all be
///   chosen; the other items are lifted into this by the exact solution of knapsack problems
///   (Balas 1975; Wolsey 1975).
///
/// Cuts with long coefficients are divided and rounded down, which keeps them valid (Chvatal 1973).
class CutFinder {
 public:
  /// All are kept by reference. The boxes are those of the root.
  CutFinder(const ItemSystem<std::int64_t>& itemSystem, const Boxes<std::int64_t>& rootBoxes,
            const Dictionary& solvedProgram, Probe* probe = nullptr);

  /// The best cuts for the present solution, most violated first, no two of them alike.
  [[nodiscard]] std::vector<Cut> find();

  /// Multiplications so far.
  [[nodiscard]] std::int64_t work() const { return workDone; }

 private:
  /// An item times an integer.
  struct Multiple {
    std::size_t item;
    std::int64_t factor;
  };
  /// c q, q >= 0 being a parameter from one of its bounds, or the slack of an item.
  struct Term {
    std::size_t index;  ///< of the parameter or item
    bool isSlack;
    bool fromUpper;
    std::int64_t c;
    double q;  ///< in the solution
  };
  /// sum of terms = r.
  struct Equation {
    std::vector<Term> terms;
    std::int64_t r = 0;
  };
  struct Scored {
    Cut cut;
    double score = 0;
  };
  struct Range {
    std::int64_t lower;
    std::int64_t upper;
  };

  [[nodiscard]] Range rangeOf(std::size_t parameter) const;
  [[nodiscard]] bool isRow(std::size_t item) const;
  void takeSolution();
  void fromRow(std::size_t item);
  void fromDictionary(std::size_t item);
  void fromMultiples(const std::vector<Multiple>& multiples, std::int64_t divisor);
  [[nodiscard]] bool aggregate(const std::vector<Multiple>& multiples, Equation& equation) const;
  void round(Equation equation, std::int64_t divisor);
  [[nodiscard]] double violation(const Equation& equation, std::int64_t divisor) const;
  void complement(Equation& equation, Term& term) const;
  void addRounded(const Equation& equation, std::int64_t divisor);
  void tellRounding(const Equation& equation, std::int64_t divisor) const;
  void cover(std::size_t item, bool upward);
  void keep(std::vector<Int128> a, Int128 bound);

  const ItemSystem<std::int64_t>& system;
  const Boxes<std::int64_t>& boxes;
  const Dictionary& dictionary;
  Probe* probe;
  std::size_t D;
  std::vector<bool> namesParameter;  ///< R: the item is a coordinate plus a constant
  std::vector<double> point;         ///< D, the solution
  std::vector<Scored> found;
  mutable std::int64_t workDone = 0;
};

}  // namespace vexil::solver
