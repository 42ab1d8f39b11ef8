// Vexil - exact integer optimization on lattices.
#include "solver/kernel.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include "foundation/work_meter.h"
#include "reduction/floating_lll.h"
#include "solver/conversion.h"

namespace vexil::solver {

namespace {

/// a X = right-hand side, a over `support` alone.
struct Equation {
  std::vector<std::size_t> support;
  std::vector<Integer> a;
  Integer rightHandSide;

  explicit Equation(const ModelRow& row) : rightHandSide(row.lower.value) {
    for (std::size_t i = 0; i < row.a.size(); ++i) {
      if (vexil::isZero(row.a[i])) continue;
      support.push_back(i);
      a.emplace_back(row.a[i]);
    }
  }

  [[nodiscard]] Integer product(const std::vector<Integer>& X) const {
    Integer sum;
    for (std::size_t j = 0; j < a.size(); ++j) sum.addProduct(a[j], X[support[j]]);
    return sum;
  }
};

class KernelBuilder {
 public:
  KernelBuilder(const Model& model, WorkMeter& meter) : meter_(meter), x0_(model.n) {
    for (std::size_t i = 0; i < model.n; ++i) {
      basis_.weights.push_back(1 / formWidth(model.lower[i], model.upper[i]));
      if (model.isFixed(i)) {
        x0_[i] = Integer(model.lower[i].value);
      } else {
        basis_.rows.emplace_back(model.n)[i] = 1;
      }
    }
  }

  /// Goes over to the points that satisfy `equation` too; returns why there is none.
  const char* add(const Equation& equation) {
    const Integer rest = equation.rightHandSide - equation.product(x0_);
    appendValues(equation);
    reduceValues();
    removeValues();
    const std::size_t last = eliminate();
    if (last == NONE) return rest.isZero() ? nullptr : "equations contradict each other";
    if (!divides(values_[last], rest)) return "the equations have no integral point";
    subtractMultiple(x0_, -exactQuotient(rest, values_[last]), basis_.rows[last]);
    basis_.rows.erase(basis_.rows.begin() + static_cast<std::ptrdiff_t>(last));
    lllReduce(basis_, {}, meter_);
    reducePoint(x0_, basis_, meter_);
    return nullptr;
  }

  [[nodiscard]] LatticeBasis take() const {
    LatticeBasis result;
    result.x0 = toZZ(x0_);
    for (const std::vector<Integer>& row : basis_.rows) result.K.push_back(toZZ(row));
    result.ordered = true;
    return result;
  }

 private:
  static constexpr std::size_t NONE = static_cast<std::size_t>(-1);
  static constexpr int SMALL_VALUE = 1 << 12;
  static constexpr dbl_t GROWTH = 1 << 12;

  /// The two rows of the greatest values that are not 0.
  struct Greatest {
    std::size_t first = NONE;
    std::size_t second = NONE;
  };

  template <typename Value>
  Greatest greatestOf(std::size_t count, const Value& value) const {
    Greatest result;
    for (std::size_t j = 0; j < count; ++j) {
      if (value(j).isZero()) continue;
      if (result.first == NONE || abs(value(j)) > abs(value(result.first))) {
        result = {j, result.first};
      } else if (result.second == NONE || abs(value(j)) > abs(value(result.second))) {
        result.second = j;
      }
    }
    return result;
  }

  /// Makes the values of the rows their last column.
  void appendValues(const Equation& equation) {
    for (std::vector<Integer>& row : basis_.rows) row.push_back(equation.product(row));
    basis_.weights.push_back(0);
  }

  void removeValues() {
    values_.clear();
    for (std::vector<Integer>& row : basis_.rows) {
      values_.push_back(std::move(row.back()));
      row.pop_back();
    }
    basis_.weights.pop_back();
  }

  /// Brings great values down: the reduction weighs them more and more, so that it never meets rows
  /// that are nearly dependent, as those of Euclid's algorithm on long numbers are.
  void reduceValues() {
    const auto value = [&](std::size_t j) -> const Integer& { return basis_.rows[j].back(); };
    for (;;) {
      const auto [first, second] = greatestOf(basis_.rows.size(), value);
      if (second == NONE || abs(value(second)) < SMALL_VALUE) return;
      if (basis_.weights.back() == 0) basis_.weights.back() = 1 / abs(value(first)).toReal();
      basis_.weights.back() *= GROWTH;
      lllReduce(basis_, {}, meter_);
    }
  }

  /// Euclid's algorithm on the values of the rows: the greatest is reduced by the second, until at
  /// most one is left, whose index is returned.
  std::size_t eliminate() {
    const auto value = [&](std::size_t j) -> const Integer& { return values_[j]; };
    for (;;) {
      const auto [greatest, second] = greatestOf(values_.size(), value);
      if (second == NONE) return greatest;
      const Integer factor = nearestQuotient(values_[greatest], values_[second]);
      values_[greatest].subtractProduct(factor, values_[second]);
      subtractMultiple(basis_.rows[greatest], factor, basis_.rows[second]);
      meter_.spend(4 * static_cast<std::int64_t>(x0_.size() + values_.size()));
    }
  }

  WorkMeter& meter_;
  WeightedRows basis_;
  std::vector<Integer> x0_;
  std::vector<Integer> values_;  ///< of the equation in work on the rows
};

/// Solves each equation for a variable whose coefficient is 1 or -1. As long as the entries stay
/// small the basis is as sparse as the equations, its rows are as good as unit vectors, and there
/// is nothing to reduce.
class Substitution {
 public:
  explicit Substitution(const Model& model) : x0_(model.n) {
    for (std::size_t i = 0; i < model.n; ++i) {
      if (model.isFixed(i)) {
        x0_[i] = model.lower[i].value;
      } else {
        rows_.emplace_back(model.n)[i] = 1;
      }
    }
  }

  /// False if it leads to no such basis.
  bool add(const Equation& equation) {
    std::vector<int> values;
    std::size_t pivot = rows_.size();
    std::size_t least = 0;
    for (std::size_t k = 0; k < rows_.size(); ++k) {
      const std::vector<int>& row = rows_[k];
      Integer sum;
      for (std::size_t j = 0; j < equation.a.size(); ++j) {
        if (row[equation.support[j]] != 0) sum.addProduct(equation.a[j], row[equation.support[j]]);
      }
      if (abs(sum) > MOST_ENTRY) return false;
      values.push_back(static_cast<int>(sum.word()));
      if (std::abs(values[k]) != 1) continue;
      const auto entries =
          row.size() - static_cast<std::size_t>(std::count(row.begin(), row.end(), 0));
      if (pivot == rows_.size() || entries <= least) {
        pivot = k;
        least = entries;
      }
    }
    if (pivot == rows_.size()) return false;
    const Integer rest =
        values[pivot] * (equation.rightHandSide - equation.product(toIntegers(x0_)));
    const std::vector<int> pivotRow = rows_[pivot];
    for (std::size_t i = 0; i < x0_.size(); ++i) {
      if (pivotRow[i] != 0) x0_[i] = x0_[i] + (rest * Integer(pivotRow[i])).zz();
    }
    for (std::size_t k = 0; k < rows_.size(); ++k) {
      if (k == pivot || values[k] == 0) continue;
      const int factor = values[k] * values[pivot];
      for (std::size_t i = 0; i < x0_.size(); ++i) {
        rows_[k][i] -= factor * pivotRow[i];
        if (std::abs(rows_[k][i]) > MOST_ENTRY) return false;
      }
    }
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(pivot));
    return true;
  }

  [[nodiscard]] LatticeBasis take() const {
    LatticeBasis result;
    result.x0 = x0_;
    for (const std::vector<int>& row : rows_) result.K.emplace_back(row.begin(), row.end());
    return result;
  }

 private:
  static constexpr int MOST_ENTRY = 3;

  std::vector<ZZ> x0_;
  std::vector<std::vector<int>> rows_;
};

std::optional<LatticeBasis> substituted(const Model& model, const std::vector<Equation>& equations,
                                        StopToken& stop) {
  Substitution substitution(model);
  for (const Equation& equation : equations) {
    throwIfStopped(stop);
    if (!substitution.add(equation)) return std::nullopt;
  }
  return substitution.take();
}

}  // namespace

LatticeBasis kernel(const Model& model, StopToken& stop) {
  WorkMeter meter([&stop] { throwIfStopped(stop); });
  std::vector<Equation> equations;
  for (const ModelRow& row : model.rows) {
    if (row.isEquation()) equations.emplace_back(row);
  }
  std::stable_sort(equations.begin(), equations.end(),
                   [](const Equation& a, const Equation& b) { return a.a.size() < b.a.size(); });
  if (std::optional<LatticeBasis> plain = substituted(model, equations, stop)) {
    return *std::move(plain);
  }
  KernelBuilder builder(model, meter);
  for (const Equation& equation : equations) {
    const char* const contradiction = builder.add(equation);
    if (contradiction == nullptr) continue;
    LatticeBasis none;
    none.contradiction = contradiction;
    return none;
  }
  return builder.take();
}

}  // namespace vexil::solver
