// Vexil - exact integer optimization on lattices.
#include "solver/kernel.h"

#include <algorithm>
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
    if (!divides(values_[last], rest)) return "gcd of an equation";
    subtractMultiple(x0_, -exactQuotient(rest, values_[last]), basis_.rows[last]);
    basis_.rows.erase(basis_.rows.begin() + static_cast<std::ptrdiff_t>(last));
    lllReduce(basis_, {}, meter_);
    reducePoint(x0_, basis_, meter_);
    return nullptr;
  }

  [[nodiscard]] LatticeBasis take(bool ordered) const {
    LatticeBasis result;
    result.x0 = toZZ(x0_);
    for (const std::vector<Integer>& row : basis_.rows) result.K.push_back(toZZ(row));
    result.ordered = ordered;
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

}  // namespace

LatticeBasis kernel(const Model& model, StopToken& stop) {
  WorkMeter meter([&stop] { throwIfStopped(stop); });
  std::vector<Equation> equations;
  for (const ModelRow& row : model.rows) {
    if (row.isEquation()) equations.emplace_back(row);
  }
  std::stable_sort(equations.begin(), equations.end(),
                   [](const Equation& a, const Equation& b) { return a.a.size() < b.a.size(); });
  KernelBuilder builder(model, meter);
  for (const Equation& equation : equations) {
    const char* const contradiction = builder.add(equation);
    if (contradiction == nullptr) continue;
    LatticeBasis none;
    none.contradiction = contradiction;
    return none;
  }
  return builder.take(!equations.empty());
}

}  // namespace vexil::solver
