// Vexil - exact integer optimization on lattices.
#include "solver/presolve.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "foundation/work_meter.h"
#include "numbers/integer.h"

namespace vexil::solver {

namespace {

constexpr int MOST_ROUNDS = 30;
constexpr const char* NO_VALUE = "no value is left for a variable";
constexpr const char* NO_REACH = "a row cannot come within its bounds";
constexpr std::int64_t ARTIFICIAL_WIDTH = std::int64_t{1} << 20;

/// Work for a coefficient of a row.
constexpr std::int64_t COEFFICIENT_WORK = 40;

/// The proved range of a variable or row.
struct Range {
  std::optional<Integer> lower;
  std::optional<Integer> upper;

  Range(const Side& left, const Side& right) {
    if (left.isProved()) lower = Integer(left.value);
    if (right.isProved()) upper = Integer(right.value);
  }

  [[nodiscard]] bool isEmpty() const { return lower && upper && *lower > *upper; }
  [[nodiscard]] bool isPoint() const { return lower && upper && *lower == *upper; }

  /// The side at which a x is least, or greatest.
  [[nodiscard]] const std::optional<Integer>& least(const Integer& a) const {
    return a.sign() > 0 ? lower : upper;
  }
  [[nodiscard]] const std::optional<Integer>& greatest(const Integer& a) const {
    return a.sign() > 0 ? upper : lower;
  }
};

struct Coefficient {
  std::size_t variable;
  Integer a;
};

struct SparseRow {
  std::vector<Coefficient> coefficients;  ///< those that are not 0
  Range range;
  bool dropped = false;
  std::int64_t seen = -1;  ///< the count of changes when the row was last looked at
};

std::vector<Coefficient> sparse(const std::vector<ZZ>& row) {
  std::vector<Coefficient> result;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!vexil::isZero(row[i])) result.push_back({i, Integer(row[i])});
  }
  return result;
}

Side side(const std::optional<Integer>& value) {
  return value ? Side{true, false, value->zz()} : Side();
}

/// The least or the greatest value of a row: the finite parts of its variables and the count of the
/// infinite ones.
struct Activity {
  Integer finite;
  int infinite = 0;

  void add(const Integer& a, const std::optional<Integer>& bound) {
    if (bound) {
      finite.addProduct(a, *bound);
    } else {
      ++infinite;
    }
  }

  [[nodiscard]] bool isFinite() const { return infinite == 0; }
};

class Presolver {
 public:
  Presolver(Model& model, StopToken& stop)
      : model_(model), meter_([&stop] { throwIfStopped(stop); }), changedAt_(model.n, 0) {
    for (std::size_t i = 0; i < model.n; ++i) box_.emplace_back(model.lower[i], model.upper[i]);
    for (const ModelRow& row : model.rows) {
      rows_.push_back({sparse(row.a), Range(row.lower, row.upper)});
    }
  }

  const char* run() {
    for (const Range& range : box_) {
      if (range.isEmpty()) return NO_VALUE;
    }
    bool changed = true;
    for (int round = 0; changed && round < MOST_ROUNDS; ++round) {
      const std::int64_t before = changes_;
      for (SparseRow& row : rows_) {
        if (isDue(row)) tighten(row);
        if (contradiction_ != nullptr) return contradiction_;
      }
      changed = changes_ != before;
    }
    writeRows();
    writeBox();
    substituteInTargets();
    settleGoals();
    return contradiction_;
  }

 private:
  [[nodiscard]] bool isDue(const SparseRow& row) const {
    if (row.dropped) return false;
    return row.seen < 0 || std::any_of(row.coefficients.begin(), row.coefficients.end(),
                                       [&](const Coefficient& coefficient) {
                                         return changedAt_[coefficient.variable] > row.seen;
                                       });
  }

  void tighten(SparseRow& row) {
    row.seen = changes_;
    meter_.spend(COEFFICIENT_WORK * static_cast<std::int64_t>(row.coefficients.size() + 1));
    substitute(row);
    divideByGcd(row);
    if (contradiction_ == nullptr && !row.dropped) testActivity(row);
    if (contradiction_ == nullptr && !row.dropped) tightenVariables(row);
  }

  /// Moves the fixed variables of a row into its range.
  void substitute(SparseRow& row) const {
    std::erase_if(row.coefficients, [&](const Coefficient& coefficient) {
      const Range& range = box_[coefficient.variable];
      if (!range.isPoint()) return false;
      if (row.range.lower) row.range.lower->subtractProduct(coefficient.a, *range.lower);
      if (row.range.upper) row.range.upper->subtractProduct(coefficient.a, *range.lower);
      return true;
    });
  }

  void divideByGcd(SparseRow& row) {
    Range& range = row.range;
    Integer divisor;
    for (const Coefficient& coefficient : row.coefficients) divisor = gcd(divisor, coefficient.a);
    if (divisor.isZero()) {
      row.dropped = true;
      const bool holds =
          !(range.lower && range.lower->sign() > 0) && !(range.upper && range.upper->sign() < 0);
      if (!holds) contradiction_ = NO_REACH;
      return;
    }
    if (divisor == 1) return;
    for (Coefficient& coefficient : row.coefficients) {
      coefficient.a = exactQuotient(coefficient.a, divisor);
    }
    if (range.lower) range.lower = ceilQuotient(*range.lower, divisor);
    if (range.upper) range.upper = floorQuotient(*range.upper, divisor);
    if (range.isEmpty()) contradiction_ = "no multiple of the gcd of a row is within its bounds";
  }

  void sumActivity(const std::vector<Coefficient>& coefficients) {
    least_ = greatest_ = Activity();
    for (const auto& [variable, a] : coefficients) {
      least_.add(a, box_[variable].least(a));
      greatest_.add(a, box_[variable].greatest(a));
    }
  }

  void testActivity(SparseRow& row) {
    sumActivity(row.coefficients);
    Range& range = row.range;
    if ((range.upper && least_.isFinite() && least_.finite > *range.upper) ||
        (range.lower && greatest_.isFinite() && greatest_.finite < *range.lower)) {
      contradiction_ = NO_REACH;
      return;
    }
    if (range.isPoint()) return;
    if (range.lower && least_.isFinite() && least_.finite >= *range.lower) range.lower.reset();
    if (range.upper && greatest_.isFinite() && greatest_.finite <= *range.upper) {
      range.upper.reset();
    }
    row.dropped = !range.lower && !range.upper;
  }

  /// The activities stay those from before the first change: they are valid, if not the best, and
  /// a row whose variables have changed comes again.
  void tightenVariables(const SparseRow& row) {
    for (const auto& [variable, a] : row.coefficients) {
      const Range before = box_[variable];
      if (row.range.upper) {
        const auto rest = leftOver(*row.range.upper, least_, before.least(a), a);
        if (rest) a.sign() > 0 ? lower(variable, *rest, a) : raise(variable, *rest, a);
      }
      if (row.range.lower) {
        const auto rest = leftOver(*row.range.lower, greatest_, before.greatest(a), a);
        if (rest) a.sign() > 0 ? raise(variable, *rest, a) : lower(variable, *rest, a);
      }
      if (box_[variable].isEmpty()) contradiction_ = NO_VALUE;
    }
  }

  /// What a side of a row leaves for a x, the other variables at their best; `own` is the side of x
  /// that is a part of the activity.
  static std::optional<Integer> leftOver(const Integer& side, const Activity& activity,
                                         const std::optional<Integer>& own, const Integer& a) {
    if (activity.infinite > (own ? 0 : 1)) return std::nullopt;
    Integer rest = side - activity.finite;
    if (own) rest.addProduct(a, *own);
    return rest;
  }

  void raise(std::size_t variable, const Integer& rest, const Integer& a) {
    Integer bound = ceilQuotient(rest, a);
    std::optional<Integer>& side = box_[variable].lower;
    if (side && *side >= bound) return;
    side = std::move(bound);
    changedAt_[variable] = ++changes_;
  }

  void lower(std::size_t variable, const Integer& rest, const Integer& a) {
    Integer bound = floorQuotient(rest, a);
    std::optional<Integer>& side = box_[variable].upper;
    if (side && *side <= bound) return;
    side = std::move(bound);
    changedAt_[variable] = ++changes_;
  }

  void writeRows() {
    model_.rows.clear();
    for (SparseRow& row : rows_) {
      substitute(row);
      divideByGcd(row);
      if (row.dropped) continue;
      ModelRow& written = model_.rows.emplace_back();
      written.a.resize(model_.n);
      for (const auto& [variable, a] : row.coefficients) written.a[variable] = a.zz();
      written.lower = side(row.range.lower);
      written.upper = side(row.range.upper);
    }
  }

  void writeBox() {
    const ZZ width = ARTIFICIAL_WIDTH;
    for (std::size_t i = 0; i < model_.n; ++i) {
      Side& lower = model_.lower[i];
      Side& upper = model_.upper[i];
      if (box_[i].lower) lower = side(box_[i].lower);
      if (box_[i].upper) upper = side(box_[i].upper);
      const bool isFree = !lower.finite && !upper.finite;
      if (!lower.finite) lower = {true, true, isFree ? -width : upper.value - width};
      if (!upper.finite) upper = {true, true, isFree ? width : lower.value + width};
      if (lower.value > upper.value) contradiction_ = NO_VALUE;
    }
  }

  void substituteInTargets() {
    for (std::size_t i = 0; i < model_.n; ++i) {
      if (!model_.isFixed(i)) continue;
      const ZZ& X = model_.lower[i].value;
      model_.constant = model_.constant + model_.c[i] * X;
      model_.c[i] = 0;
      for (ModelGoal& goal : model_.goals) {
        goal.wish = goal.wish - goal.g[i] * X;
        goal.g[i] = 0;
      }
    }
  }

  void settleGoals() {
    std::erase_if(model_.goals, [&](const ModelGoal& goal) {
      sumActivity(sparse(goal.g));
      const Integer wish(goal.wish);
      const bool above = least_.isFinite() && least_.finite >= wish;
      const bool below = greatest_.isFinite() && greatest_.finite <= wish;
      if (!above && !below) return false;
      const ZZ sign = above ? 1 : -1;
      for (std::size_t i = 0; i < model_.n; ++i) model_.c[i] = model_.c[i] + sign * goal.g[i];
      model_.constant = model_.constant - sign * goal.wish;
      return true;
    });
  }

  Model& model_;
  WorkMeter meter_;
  std::vector<Range> box_;
  std::vector<SparseRow> rows_;
  std::vector<std::int64_t> changedAt_;  ///< by variable: the count of changes at its last one
  std::int64_t changes_ = 0;
  Activity least_;  ///< of the row or goal in work
  Activity greatest_;
  const char* contradiction_ = nullptr;
};

}  // namespace

const char* presolve(Model& model, StopToken& stop) { return Presolver(model, stop).run(); }

}  // namespace vexil::solver
