// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "solver/items.h"
#include "solver/stop.h"

namespace vexil::solver {

/// How a linear program ended.
enum class LpEnd : std::uint8_t {
  Optimal,     ///< all items within their bounds, up to the tolerance
  Infeasible,  ///< the item `failing()` cannot reach its bounds, as far as rounding tells
  GaveUp       ///< too many pivots
};

/// The linear program over the items of a system in doubles: a dense dictionary that writes every
/// item as a combination of D nonbasic ones,
///
///     item = constant + sum over columns j of a_j (item of column j),
///
/// solved by the bounded dual simplex method with bound flipping and dual steepest edge weights
/// (Forrest and Goldfarb 1992; Koberstein 2005), which here are the norms of the rows. Every item
/// has two bounds, so each dictionary is dual feasible for each cost once its nonbasic items are
/// moved to the right bounds: bounds and cost may change at any time and the work goes on from the
/// dictionary at hand. Nothing here is exact and nothing is proved; the rows are multipliers for
/// `Prover`. All sums are written out in a fixed order. A pivot allocates nothing.
class Dictionary {
 public:
  template <typename Z>
  explicit Dictionary(const ItemSystem<Z>& system);

  /// Takes over the items that were added to the system, as basic ones.
  template <typename Z>
  void append(const ItemSystem<Z>& system);
  /// Forgets basic items, those with gone[item].
  void remove(const std::vector<bool>& gone);

  [[nodiscard]] std::size_t columns() const { return D; }
  [[nodiscard]] std::size_t itemCount() const { return R; }

  void setLower(std::size_t item, double value);
  void setUpper(std::size_t item, double value);
  [[nodiscard]] double lower(std::size_t item) const { return low[item]; }
  [[nodiscard]] double upper(std::size_t item) const { return high[item]; }

  /// Minimises weight * item from now on.
  void setCost(std::size_t item, double weight);
  /// Minimises the combination of all items with these weights.
  void setCost(const std::vector<double>& weights);
  /// The item that no ratio test lets leave, such as the objective under its cut.
  void keepBasic(std::size_t item) { kept = item; }

  /// From now on `token`, kept by reference, is asked while pivots go on; `Stopped` is thrown.
  void heed(StopToken& token) { stop = &token; }

  /// Pivots until the end or `limit` pivots are done.
  [[nodiscard]] LpEnd solve(int limit);

  [[nodiscard]] std::size_t failing() const { return failed; }
  [[nodiscard]] double value(std::size_t item) const { return values[item]; }
  [[nodiscard]] bool isBasic(std::size_t item) const { return rowOf[item] != NONE; }
  /// The row of a basic item: D coefficients.
  [[nodiscard]] const double* row(std::size_t item) const {
    return table.data() + (rowOf[item] * stride);
  }
  [[nodiscard]] const double* costRow() const { return cost.data(); }
  [[nodiscard]] const std::vector<std::size_t>& columnItems() const { return itemOf; }

  /// The least and the greatest value of a basic item over the boxes of the nonbasic ones.
  void reach(std::size_t item, double& least, double& greatest) const;

  /// Multiplications so far.
  [[nodiscard]] std::int64_t work() const { return workDone; }
  /// Counts work that the caller does on the rows.
  void addWork(std::int64_t work) { workDone += work; }

  /// Lets a test change the numbers of all rows and items.
  template <typename Change>
  void disturb(const Change& change) {
    for (double& number : table) change(number);
    for (double& number : values) change(number);
  }

  /// Distance from a bound up to which an item counts as within.
  [[nodiscard]] double tolerance(std::size_t item) const { return slack[item]; }

 private:
  struct Breakpoint {
    double ratio;
    double size;
    std::size_t column;
  };

  template <typename Z>
  void takeItem(const ItemSystem<Z>& system, std::size_t item);
  void expressItem(std::size_t item);
  void initialize();
  void refactor();
  void moveToBounds();
  void perturb();
  void recomputeValues();
  void moveColumn(std::size_t j, double value);
  [[nodiscard]] std::size_t chooseLeaving() const;
  [[nodiscard]] std::size_t chooseEntering(std::size_t item, bool rising);
  void pivot(std::size_t item, std::size_t column);
  void updateRow(double* target, double& constant, double& weight, std::size_t column);

  std::size_t D = 0;
  std::size_t R = 0;
  std::size_t stride = 0;
  std::vector<double> original;          ///< R x D, the items in the parameters
  std::vector<double> originalConstant;  ///< R
  std::vector<std::size_t> parameterItem;

  std::vector<double> table;          ///< (R - D) x stride, the rows of the basic items
  std::vector<double> constants;      ///< R - D
  std::vector<double> weights;        ///< R - D, 1 + the square of the norm of the row
  std::vector<std::size_t> rowOf;     ///< R: row of a basic item, NONE for others
  std::vector<std::size_t> columnOf;  ///< R: column of a nonbasic item, NONE for others
  std::vector<std::size_t> itemOf;    ///< D: item of a column
  std::vector<std::size_t> basicOf;   ///< R - D: item of a row
  std::vector<double> low;
  std::vector<double> high;
  std::vector<double> values;
  std::vector<double> slack;

  std::vector<double> cost;  ///< stride
  double costConstant = 0;
  std::vector<double> costWeights;  ///< R, what `cost` is made of
  std::size_t kept = NONE;

  std::vector<double> pivotRow;  ///< stride
  std::vector<std::size_t> support;
  bool sparse = false;
  std::vector<Breakpoint> breakpoints;
  std::size_t failed = NONE;
  int pivotsSinceRefactor = 0;
  std::int64_t workDone = 0;
  StopToken* stop = nullptr;
  std::int64_t nextQuestion = 0;  ///< in work
};

}  // namespace vexil::solver
