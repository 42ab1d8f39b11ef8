// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "solver/dictionary.h"
#include "solver/proof.h"
#include "solver/propagation.h"
#include "solver/search_state.h"

namespace vexil::solver {

/// What is known about a node.
enum class NodeState : std::uint8_t {
  Open,   ///< nothing against points
  Moved,  ///< open, and bounds have moved since the last linear program
  Empty   ///< proved: no wanted point
};

/// What lies nearer to an integer is taken for one where nothing is proved by it.
inline constexpr double INTEGRAL = 1e-6;

/// The linear relaxation at a node of a search: proved bounds of all items with the trail that
/// takes them back, the dictionary that follows them, and the prover through which every conclusion
/// goes.
template <typename Z>
class Relaxation {
 public:
  /// All are kept by reference; the boxes start as those of `itemSystem`.
  Relaxation(const FormSystem<Z>& formSystem, ItemSystem<Z>& itemSystem,
             SearchState<Z>& searchState);

  /// Adds cuts that the present solution violates, at the root, whose moves become final. The
  /// number of cuts; none in a system of long numbers.
  std::size_t addCuts();
  /// Takes back the last cuts, for a linear program that fails with them, and starts it afresh.
  void retractCuts(std::size_t cuts);
  /// Removes the cuts that do not hold the present solution.
  void dropCuts();

  [[nodiscard]] const ItemSystem<Z>& items() const { return system; }
  [[nodiscard]] const Z& lower(std::size_t item) const { return boxes.lower[item]; }
  [[nodiscard]] const Z& upper(std::size_t item) const { return boxes.upper[item]; }
  [[nodiscard]] bool isFixed(std::size_t item) const { return lower(item) == upper(item); }

  /// Leaves an item these values alone until `undo`. False: nothing is left.
  [[nodiscard]] bool branch(std::size_t item, const Z& lower, const Z& upper);
  /// Moves a bound inward, the caller having proved it. False: nothing is left.
  [[nodiscard]] bool raiseLower(std::size_t item, const Z& value);
  [[nodiscard]] bool dropUpper(std::size_t item, const Z& value);

  [[nodiscard]] std::size_t mark() const { return trail.size(); }
  /// Takes back all moves behind a mark.
  void undo(std::size_t mark);

  /// Takes over the cut and the bound of the search state.
  [[nodiscard]] NodeState followState();

  /// Solves the linear program and draws conclusions, up to `rounds` times, ending with a solution
  /// that belongs to the present bounds. `solved` tells whether there is one; without it the node
  /// is open but its values mean nothing. Where equations order the coordinates all rows of the
  /// dictionary are tried on the bounds; otherwise the rows of the system, before the linear
  /// program, and the objective (reduced costs).
  [[nodiscard]] NodeState examine(int rounds);
  [[nodiscard]] bool solved() const { return hasSolution; }
  /// The objective after a few pivots; nothing if the node is proved empty.
  [[nodiscard]] std::optional<double> estimate(int pivots);
  /// Goes back to a solution of the present bounds, which had one; false if that fails.
  [[nodiscard]] bool resolve();

  /// Tries every row of the dictionary on the bounds of its items.
  [[nodiscard]] NodeState tighten();
  /// Tries one row.
  [[nodiscard]] NodeState conclude(std::size_t item);

  /// Value of coordinate k in the last solution.
  [[nodiscard]] double coordinate(std::size_t k) const;
  [[nodiscard]] Dictionary& linearProgram() { return dictionary; }

  /// Offers the lattice point with these coordinates, if it is within the boxes of the system and
  /// under the cut. True if it was kept.
  bool offer(const std::vector<Z>& coordinates);

  /// The values of all forms at the last point that was kept; nothing before.
  [[nodiscard]] const std::vector<Z>& kept() const { return keptValues; }

  /// The value of an item in the last solution as an integer within its present bounds.
  [[nodiscard]] Z rounded(std::size_t item) const;
  /// The integer at or below that value, such that it and its successor are within the bounds of
  /// the item, which is not fixed.
  [[nodiscard]] Z roundedDown(std::size_t item) const;
  /// Offers the point whose coordinates are those of the last solution, rounded. True if it was
  /// kept.
  bool offerSolution();

  /// Counted work so far.
  [[nodiscard]] std::int64_t work() const {
    return dictionary.work() + proofWork + propagation.work();
  }
  [[nodiscard]] std::int64_t proofs() const { return proofCount; }

 private:
  struct Move {
    std::size_t item;
    bool isLower;
    Z old;
  };

  void setBound(std::size_t item, bool isLower, const Z& value);
  [[nodiscard]] bool moveGoalSides(std::size_t item);
  [[nodiscard]] bool propagate();
  void tellItems();
  void tellLoaded();
  void tellRow(std::size_t item);
  [[nodiscard]] NodeState drawConclusions();
  [[nodiscard]] LpEnd solve(int limit);
  [[nodiscard]] bool holdsSolution() const;
  [[nodiscard]] bool promises(std::size_t item) const;
  [[nodiscard]] Z onCosetUpward(const Z& value) const;

  const FormSystem<Z>& forms;
  ItemSystem<Z>& system;
  SearchState<Z>& state;
  Boxes<Z> boxes;
  Prover<Z> prover;
  Propagation<Z> propagation;
  Dictionary dictionary;
  std::vector<Move> trail;
  std::size_t firstCut;
  std::vector<std::size_t> goalOf;  ///< R: index of the goal whose form an item is, NONE for others
  std::vector<Z> formValues;
  std::vector<Z> keptValues;
  bool hasSolution = false;
  std::int64_t proofWork = 0;
  std::int64_t proofCount = 0;
};

extern template class Relaxation<std::int64_t>;
extern template class Relaxation<ZZ>;

}  // namespace vexil::solver
