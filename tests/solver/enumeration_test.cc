// Vexil - exact integer optimization on lattices.
#include "solver/enumeration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfenv>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <random>

#include "solver/basis.h"
#include "solver/kernel.h"
#include "solver/presolve.h"
#include "solver/ranges.h"
#include "support/random_program.h"

namespace vexil::solver {
namespace {

using support::Point;
using support::RandomProgram;

struct Never : StopToken {
  bool stopRequested() override { return false; }
};
Never never;

/// A program up to its forms.
template <typename Z>
struct Prepared {
  Model model;
  LatticeBasis basis;
  FormSystem<Z> system;
  CoordinateRanges<Z> ranges;
};

/// Nothing if there is no point, or no enumeration.
template <typename Z>
std::optional<Prepared<Z>> prepared(Model model) {
  Prepared<Z> result;
  if (presolve(model, never) != nullptr) return std::nullopt;
  result.basis = kernel(model, never);
  if (result.basis.contradiction != nullptr) return std::nullopt;
  reduce(result.basis, model, 2, false, never);
  result.system = formSystem<Z>(model, result.basis);
  const auto ranges = coordinateRanges(result.system);
  if (!ranges) return std::nullopt;
  result.ranges = *ranges;
  result.model = std::move(model);
  return result;
}

/// Keeps all points, or only ever better ones.
template <typename Z>
class Collector : public SearchState<Z> {
 public:
  Collector(const Prepared<Z>& program, bool onlyBetter)
      : program_(program), onlyBetter_(onlyBetter) {}

  bool offer(const FormSystem<Z>& system, const std::vector<Z>& values) override {
    std::vector<ZZ> X = program_.basis.x0;
    for (std::size_t f = 0; f < system.count; ++f) {
      if (system.kind[f] == FormKind::Variable) X[system.source[f]] = toZZ(values[f]);
    }
    const Model& model = program_.model;
    const auto product = [&](const std::vector<ZZ>& a) {
      ZZ sum = 0;
      for (std::size_t i = 0; i < model.n; ++i) sum = sum + a[i] * X[i];
      return sum;
    };
    ZZ norm = model.constant + product(model.c);
    for (const ModelGoal& goal : model.goals) norm = norm + abs(product(goal.g) - goal.wish);
    if (this->hasCut) {
      EXPECT_LE(norm, toZZ(this->cut));
    }
    Point point;
    for (const ZZ& x : X) point.push_back(toNarrow(x));
    if (!points.emplace(point, QQ(norm, model.scale)).second) return false;
    order.push_back(point);
    if (!onlyBetter_) return true;
    this->hasCut = true;
    this->cut = fromZZ<Z>(norm - ZZ(1));
    this->finished = this->hasBound && this->bound > this->cut;
    return true;
  }

  std::map<Point, QQ> points;
  std::vector<Point> order;

 private:
  const Prepared<Z>& program_;
  bool onlyBetter_;
};

template <typename Z>
RunEnd runToEnd(Enumeration<Z>& enumeration, std::int64_t slice) {
  RunEnd end = RunEnd::Budget;
  for (int runs = 0; end == RunEnd::Budget && runs < 1'000'000; ++runs)
    end = enumeration.run(slice);
  return end;
}

template <typename Z>
Collector<Z>* enumerate(const Prepared<Z>& program, Collector<Z>& found, std::int64_t slice) {
  Enumeration<Z> enumeration(program.system, program.ranges, found, never);
  EXPECT_EQ(runToEnd(enumeration, slice), RunEnd::Exhausted);
  return &found;
}

Model withoutTargets(Model model) {
  model.hasObjective = false;
  model.c.assign(model.n, 0);
  model.goals.clear();
  return model;
}

QQ normOf(const RandomProgram& random, const Point& X) {
  return {ZZ(static_cast<long long>(random.norm(X))), RandomProgram::VALUE_UNIT};
}

template <typename Z>
void compareWithBruteForce(std::uint64_t seed) {
  const RandomProgram random(seed);
  SCOPED_TRACE(random.optText());
  const std::vector<Point> points = random.points();
  const Model model = makeModel(random.program());
  const auto plain = prepared<Z>(withoutTargets(model));
  if (!plain) {
    ASSERT_TRUE(points.empty());
    return;
  }
  Collector<Z> all(*plain, false);
  enumerate(*plain, all, 1'000'000);
  ASSERT_EQ(all.points.size(), points.size());
  for (const Point& X : points) ASSERT_TRUE(all.points.contains(X));
  Collector<Z> piecewise(*plain, false);
  enumerate(*plain, piecewise, 100);
  ASSERT_EQ(piecewise.order, all.order);
  if (!model.hasObjective || points.empty()) return;

  std::vector<QQ> norms;
  for (const Point& X : points) norms.push_back(normOf(random, X));
  std::sort(norms.begin(), norms.end());
  const auto aimed = prepared<Z>(model);
  Collector<Z> best(*aimed, true);
  enumerate(*aimed, best, 1000);
  ASSERT_EQ(best.points.at(best.order.back()), norms.front());

  Collector<Z> within(*aimed, false);
  const QQ limit = norms[norms.size() / 2];
  const QQ scaled = limit * QQ(aimed->model.scale);
  within.hasCut = true;
  within.cut = fromZZ<Z>(wholeSigned(scaled));
  enumerate(*aimed, within, 1'000'000);
  ASSERT_EQ(within.points.size(), std::count_if(norms.begin(), norms.end(),
                                                [&](const QQ& norm) { return norm <= limit; }));
}

TEST(Enumeration, FindsWhatIsThere) {
  for (std::uint64_t seed = 1000; seed < 1250; ++seed) compareWithBruteForce<std::int64_t>(seed);
  for (std::uint64_t seed = 2000; seed < 2030; ++seed) compareWithBruteForce<ZZ>(seed);
}

TEST(Enumeration, CountsAsResidueTablesDo) {
  constexpr std::size_t N = 24;
  std::mt19937_64 generator(11);
  for (const long most : {30L, 1000L}) {
    Model model;
    model.n = N;
    model.decimals.assign(N, 0);
    model.lower.assign(N, {true, false, 0});
    model.upper.assign(N, {true, false, 1});
    model.c.assign(N, 0);
    std::vector<ZZ> row;
    std::map<long, long> ways = {{0, 1}};
    long sum = 0;
    for (std::size_t i = 0; i < N; ++i) {
      const long a = 1 + static_cast<long>(generator() % static_cast<std::uint64_t>(most));
      row.push_back(a);
      sum += a;
      std::map<long, long> next = ways;
      for (const auto& [value, count] : ways) next[value + a] += count;
      ways = std::move(next);
    }
    const long target = most == 30 ? sum / 4 : sum / 2;
    const Side side{true, false, target};
    model.rows.push_back({row, side, side});
    const auto program = prepared<std::int64_t>(model);
    ASSERT_TRUE(program.has_value());
    Collector<std::int64_t> found(*program, false);
    enumerate(*program, found, 1 << 22);
    EXPECT_EQ(found.points.size(), ways[target]);
  }
}

/// Puts a wrong number into one of the vectors that the bounds have to be measured on.
void spoil(Projection& projection, std::mt19937_64& generator) {
  const std::array<double, 5> factors = {1 + 1e-13, 1 + 1e-6, 1.5, -1e200,
                                         std::numeric_limits<double>::quiet_NaN()};
  const std::array<std::vector<double>*, 5> vectors = {
      &projection.bStar, &projection.mu, &projection.tau, &projection.across, &projection.squared};
  std::vector<double>& vector = *vectors[generator() % vectors.size()];
  if (vector.empty()) return;
  double& number = vector[generator() % vector.size()];
  number = (number == 0 ? 1e-9 : number) * factors[generator() % factors.size()];
}

TEST(Enumeration, IsNotMisledByWrongFloatingNumbers) {
  std::mt19937_64 generator(7);
  int carried = 0;
  int refused = 0;
  for (std::uint64_t seed = 3000; seed < 3400; ++seed) {
    const RandomProgram random(seed);
    const auto program = prepared<std::int64_t>(withoutTargets(makeModel(random.program())));
    if (!program) continue;
    SCOPED_TRACE(random.optText());
    Collector<std::int64_t> found(*program, false);
    Enumeration<std::int64_t> enumeration(program->system, program->ranges, found, never,
                                          [&](Projection& p) { spoil(p, generator); });
    const RunEnd end = runToEnd(enumeration, 1 << 20);
    (end == RunEnd::Exhausted ? carried : refused) += 1;
    if (end == RunEnd::Exhausted) {
      ASSERT_EQ(found.points.size(), random.points().size());
    }
  }
  EXPECT_GT(carried, 50);
  EXPECT_GT(refused, 50);
}

TEST(Enumeration, IsRightInEveryRoundingMode) {
  for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    std::fesetround(mode);
    for (std::uint64_t seed = 4000; seed < 4060; ++seed) compareWithBruteForce<std::int64_t>(seed);
    std::fesetround(FE_TONEAREST);
  }
}

/// The claims of a projection at the points of its set, as an enumeration that passes them would
/// use them.
TEST(Projection, HoldsItsBoundsAtThePointsOfTheSet) {
  std::mt19937_64 generator(9);
  const auto draw = [&](long most) {
    return static_cast<long>(generator() % static_cast<std::uint64_t>(2 * most + 1)) - most;
  };
  int points = 0;
  for (int t = 0; t < 200; ++t) {
    constexpr std::size_t D = 3;
    ScaledForms forms;
    forms.dimension = D;
    forms.set.plain = 5 + generator() % 3;
    const std::size_t F = forms.set.plain;
    for (std::size_t f = 0; f < F; ++f) forms.offset.push_back(static_cast<dbl_t>(draw(9)) / 16);
    for (std::size_t i = 0; i < D * F; ++i) forms.rows.push_back(static_cast<dbl_t>(draw(9)) / 16);
    Projection p(forms);
    if (t % 2 == 1) spoil(p, generator);
    if (!p.bound(forms, std::vector<dbl_t>(D, 4))) continue;
    for (int code = 0; code < 729; ++code) {
      const std::array<double, D> lambda = {code % 9 - 4.0, code / 9 % 9 - 4.0, code / 81 - 4.0};
      std::vector<dbl_t> z = forms.offset;
      dbl_t greatest = 0;
      for (std::size_t f = 0; f < F; ++f) {
        for (std::size_t k = 0; k < D; ++k) z[f] += lambda[k] * forms.rows[k * F + f];
        greatest = std::max(greatest, std::fabs(z[f]));
      }
      if (greatest > 1) continue;
      ++points;
      std::vector<double> w = p.across;
      double norm = p.squaredAcross;
      for (std::size_t k = D; k-- > 0;) {
        double center = p.tau[k];
        for (std::size_t i = D; i-- > k + 1;) center += lambda[i] * p.mu[k * D + i];
        const double y = lambda[k] + center;
        dbl_t product = 0;
        for (std::size_t f = 0; f < F; ++f) {
          w[f] += y * p.bStar[k * p.stride + f];
          product += static_cast<dbl_t>(w[f]) * z[f];
        }
        norm += y * y * p.squared[k];
        ASSERT_LE(std::fabs(y), p.reach[k]);
        ASSERT_LE(norm, p.ball[k]);
        ASSERT_LE(std::fabs(product - static_cast<dbl_t>(norm)), p.error[k]);
      }
    }
  }
  EXPECT_GT(points, 1000);
}

struct Always : StopToken {
  bool stopRequested() override { return true; }
};

TEST(Enumeration, StopsWhenTold) {
  const auto program = prepared<std::int64_t>(makeModel(RandomProgram(1003).program()));
  ASSERT_TRUE(program.has_value());
  Collector<std::int64_t> found(*program, false);
  Always stop;
  Enumeration<std::int64_t> enumeration(program->system, program->ranges, found, stop);
  EXPECT_THROW(static_cast<void>(enumeration.run(1000)), Stopped);
}

}  // namespace
}  // namespace vexil::solver
