// Vexil - exact integer optimization on lattices.
//
// Exact conclusions from inexact multipliers.
#pragma once

#include <cstdint>
#include <vector>

#include "solver/items.h"

namespace vexil::solver {

/// The bounds of all items at a node, all of them proved.
template <typename Z>
struct Boxes {
  std::vector<Z> lower;
  std::vector<Z> upper;
};

/// Takes multipliers of items that a floating computation came up with, makes integers m_i of them,
/// and computes in exact integers
///
///     sum m_i item_i = C + sum r_k parameter_k .
///
/// The parameters have proved ranges, so the right side lies in a known interval [A, B]; the items
/// have boxes. Whatever the multipliers are, it follows that the boxes have no common point if the
/// left side cannot reach [A, B], and for every item a bound from the boxes of the others (compare
/// Neumaier and Shcherbina 2004). Good multipliers make r nearly 0 and the conclusions sharp.
template <typename Z>
class Prover {
 public:
  /// Both are kept by reference.
  Prover(const ItemSystem<Z>& itemSystem, const Boxes<Z>& currentBoxes);

  /// Chooses the size of the multipliers anew after items were added.
  void adapt();

  /// Prepares the combination item - sum over j < size of a[j] other[j]. False if the numbers are
  /// of no use (not finite, too far apart); nothing is concluded then.
  [[nodiscard]] bool load(std::size_t item, const double* a, const std::size_t* other,
                          std::size_t size);

  /// The boxes have no common point.
  [[nodiscard]] bool contradicts() const { return slackBelow < 0 || slackAbove < 0; }

  /// Number of items of the combination; item(0) is that of `load`.
  [[nodiscard]] std::size_t size() const { return items.size(); }
  [[nodiscard]] std::size_t item(std::size_t i) const { return items[i]; }
  [[nodiscard]] const Z& multiplier(std::size_t i) const { return multipliers[i]; }

  /// The proved bounds of item(i), from the boxes of the others. Only without a contradiction.
  [[nodiscard]] Z provedLower(std::size_t i) const;
  [[nodiscard]] Z provedUpper(std::size_t i) const;

 private:
  using W = Wide<Z>;

  [[nodiscard]] bool combine();
  void addReach(const Z& m, const Z& low, const Z& high, W& least, W& greatest) const;

  const ItemSystem<Z>& system;
  const Boxes<Z>& boxes;
  double greatestMultiplier = 1;  ///< a power of two, for the largest multiplier
  bool sumsFit = false;           ///< the r_k fit into Z
  std::vector<std::size_t> items;
  std::vector<Z> multipliers;
  std::vector<Z> narrowResidues;
  std::vector<W> wideResidues;
  W slackBelow{};  ///< B less the least value of the left side
  W slackAbove{};  ///< the greatest value of the left side less A
};

extern template class Prover<std::int64_t>;
extern template class Prover<ZZ>;

}  // namespace vexil::solver
