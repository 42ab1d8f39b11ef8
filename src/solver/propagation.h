// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <vector>

#include "solver/items.h"
#include "solver/proof.h"

namespace vexil::solver {

/// What the bounds of a row and of all its parameters but one leave to that one, in exact integers.
/// Every item that is more than a coordinate is a row. Bounds that have moved are announced; the
/// rows that they concern are looked at until nothing moves, or a good deal of work is done.
template <typename Z>
class Propagation {
 public:
  /// Both are kept by reference.
  Propagation(const ItemSystem<Z>& itemSystem, const Boxes<Z>& currentBoxes);

  /// Takes over items that were added to the system, or removed from it; all rows are due.
  void adapt();
  /// A bound of the item has moved.
  void announce(std::size_t item);
  /// No row is due.
  void forget();

  /// Finds what is left to the items of all rows that are due; `move(item, lower, upper)` takes
  /// the bounds over, announces them, and tells whether anything is left. False: nothing is.
  template <typename Move>
  [[nodiscard]] bool run(const Move& move) {
    std::int64_t most = 8 * static_cast<std::int64_t>(entries.size() + rowOfItem.size());
    while (!due.empty()) {
      const std::size_t row = due.back();
      due.pop_back();
      isDue[row] = false;
      if (most < 0) continue;
      most -= static_cast<std::int64_t>(begin[row + 1] - begin[row]);
      if (!look(row)) return false;
      for (const Finding& finding : findings) {
        if (!move(finding.item, finding.lower, finding.upper)) return false;
      }
    }
    return true;
  }

  /// The row that was looked at last.
  [[nodiscard]] std::size_t lastItem() const { return last; }

  /// Multiplications so far.
  [[nodiscard]] std::int64_t work() const { return workDone; }

 private:
  using W = Wide<Z>;
  struct Entry {
    std::size_t parameter;
    Z a;
  };
  /// What is left to an item.
  struct Finding {
    std::size_t item;
    Z lower;
    Z upper;
  };

  [[nodiscard]] bool look(std::size_t row);
  [[nodiscard]] Z lowerOf(std::size_t parameter) const;
  [[nodiscard]] Z upperOf(std::size_t parameter) const;

  const ItemSystem<Z>& system;
  const Boxes<Z>& boxes;
  std::vector<std::size_t> itemOf;               ///< by row
  std::vector<std::size_t> begin;                ///< by row, and the end: the first entry
  std::vector<Entry> entries;                    ///< those that are not 0, row by row
  std::vector<std::size_t> rowOfItem;            ///< NONE for coordinates
  std::vector<std::vector<std::size_t>> rowsOf;  ///< by item: the rows that a bound of it concerns
  std::vector<bool> isDue;
  std::vector<std::size_t> due;
  std::vector<Finding> findings;
  std::size_t last = NONE;
  std::int64_t workDone = 0;
};

extern template class Propagation<std::int64_t>;
extern template class Propagation<ZZ>;

}  // namespace vexil::solver
