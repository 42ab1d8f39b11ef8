// Vexil - exact integer optimization on lattices.
#include "solver/model.h"

#include <utility>

#include "foundation/failure.h"
#include "numbers/zz_words.h"
#include "solutions/point_check.h"
#include "solver/integers.h"

namespace vexil::solver {

namespace {

constexpr std::int64_t MOST_DECIMALS = 1'000'000;

ZZ numeratorOf(const QQ& x) { return wholeSigned(x) * x.nenner + numeratorSigned(x); }

ZZ quotient(const ZZ& a, const ZZ& b) {
  ZZ q;
  ZZ r;
  div(a, b, q, r);
  return q;
}

ZZ tenTo(std::int64_t exponent) {
  ZZ power;
  powerOfTen(exponent, power);
  return power;
}

/// Values of 0 and below leave a variable a whole number.
int decimalPlaces(const QQ& dx, std::int64_t i) {
  if (!(dx > QQ())) return 0;
  if (dx.isInf || dx.nenner != 1 || dx > QQ(MOST_DECIMALS)) {
    fail("dx[", i, "] = ", toString(dx), " is no number of decimal places");
  }
  return static_cast<int>(toWord(dx.ganze));
}

/// The integral row a, with a X = factor (row x).
struct ScaledRow {
  std::vector<ZZ> a;
  ZZ factor;
};

class Builder {
 public:
  Builder(const Vexil<QQ>& program, StopToken* stop) : program_(program), stop_(stop) {}

  Model build() {
    model_.n = static_cast<std::size_t>(program_.lx.MN);
    for (std::int64_t i = 1; i <= program_.lx.MN; ++i) addVariable(i);
    for (std::int64_t i = 1; i <= program_.Ag.rowCount; ++i) {
      addRow(program_.Ag[i], program_.bg[i], program_.bg[i]);
    }
    for (std::int64_t i = 1; i <= program_.Au.rowCount; ++i) {
      addRow(program_.Au[i], program_.lu[i], program_.ru[i]);
    }
    addTargets();
    return std::move(model_);
  }

 private:
  void addVariable(std::int64_t i) {
    model_.decimals.push_back(decimalPlaces(program_.dx[i], i));
    units_.push_back(tenTo(model_.decimals.back()));
    auto [lower, upper] = sides(program_.lx[i], program_.rx[i], units_.back());
    model_.lower.push_back(std::move(lower));
    model_.upper.push_back(std::move(upper));
  }

  void addRow(const Vector<QQ>& row, const QQ& left, const QQ& right) {
    if (stop_ != nullptr) throwIfStopped(*stop_);
    ScaledRow scaled = wholeRow(row, 1);
    auto [lower, upper] = sides(left, right, scaled.factor);
    model_.rows.push_back({std::move(scaled.a), std::move(lower), std::move(upper)});
  }

  /// The integers from `left` to `right`, both times `factor`. Nothing lies beyond an infinity on
  /// the wrong side: such a range becomes an empty one.
  static std::pair<Side, Side> sides(const QQ& left, const QQ& right, const ZZ& factor) {
    if (left == QQ::INF() || right == -QQ::INF()) return {{true, false, 1}, {true, false, 0}};
    Side lower;
    Side upper;
    if (!left.isInf) lower = {true, false, ceilDivide(numeratorOf(left) * factor, left.nenner)};
    if (!right.isInf) upper = {true, false, floorDivide(numeratorOf(right) * factor, right.nenner)};
    return {std::move(lower), std::move(upper)};
  }

  /// `row` in the integers X, with a factor that is a multiple of `least`.
  [[nodiscard]] ScaledRow wholeRow(const Vector<QQ>& row, const ZZ& least) const {
    std::vector<QQ> exact(model_.n);
    ScaledRow result{std::vector<ZZ>(model_.n), least};
    for (std::size_t i = 0; i < model_.n && static_cast<std::int64_t>(i) < row.MN; ++i) {
      const QQ& element = row.data[i + 1];
      exact[i] = model_.decimals[i] == 0 ? element : element / QQ(units_[i]);
      result.factor = lcm(result.factor, exact[i].nenner);
    }
    for (std::size_t i = 0; i < model_.n; ++i) {
      result.a[i] = numeratorOf(exact[i]) * quotient(result.factor, exact[i].nenner);
    }
    return result;
  }

  void addTargets() {
    model_.hasObjective = program_.At.rowCount > 0;
    model_.c.assign(model_.n, 0);
    std::vector<ScaledRow> scaled;
    for (std::int64_t i = 1; i <= program_.At.rowCount; ++i) {
      const QQ& wish = program_.dt[i];
      scaled.push_back(wholeRow(program_.At[i], wish.isInf ? ZZ(1) : wish.nenner));
      model_.scale = lcm(model_.scale, scaled.back().factor);
    }
    for (std::int64_t i = 1; i <= program_.At.rowCount; ++i) {
      ScaledRow& row = scaled[static_cast<std::size_t>(i) - 1];
      const ZZ factor = quotient(model_.scale, row.factor);
      for (ZZ& element : row.a) mul(element, factor, element);
      addTarget(std::move(row.a), program_.dt[i]);
    }
  }

  void addTarget(std::vector<ZZ> a, const QQ& wish) {
    if (!wish.isInf) {
      model_.goals.push_back(
          {std::move(a), quotient(model_.scale, wish.nenner) * numeratorOf(wish)});
      return;
    }
    for (std::size_t i = 0; i < model_.n; ++i) {
      model_.c[i] = wish.positive ? model_.c[i] - a[i] : model_.c[i] + a[i];
    }
  }

  const Vexil<QQ>& program_;
  StopToken* stop_;
  Model model_;
  std::vector<ZZ> units_;  ///< 10^decimals
};

}  // namespace

Model makeModel(const Vexil<QQ>& program, StopToken* stop) {
  return Builder(program, stop).build();
}

Vector<QQ> programPoint(const Model& model, const std::vector<ZZ>& X) {
  Vector<QQ> x;
  x.resize(static_cast<std::int64_t>(X.size()), false);
  for (std::size_t i = 0; i < X.size(); ++i) x.data[i + 1] = QQ(X[i], tenTo(model.decimals[i]));
  return x;
}

bool isPointOf(const Vexil<QQ>& program, const Vector<QQ>& x) { return !faultOfPoint(program, x); }

}  // namespace vexil::solver
