// Vexil - exact integer optimization on lattices.
#include "solver/enumeration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <set>

#include "solver/basis.h"
#include "solver/kernel.h"
#include "solver/presolve.h"
#include "solver/ranges.h"
#include "support/random_program.h"

namespace vexil::solver {
namespace {

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

/// Keeps all points.
template <typename Z>
struct Collector : SearchState<Z> {
  bool offer(const FormSystem<Z>& /*system*/, const std::vector<Z>& values) override {
    return points.insert(values).second;
  }

  std::set<std::vector<Z>> points;
};

template <typename Z>
RunEnd runToEnd(Enumeration<Z>& enumeration, std::int64_t slice) {
  RunEnd end = RunEnd::Budget;
  for (int runs = 0; end == RunEnd::Budget && runs < 1'000'000; ++runs)
    end = enumeration.run(slice);
  return end;
}

Model withoutTargets(Model model) {
  model.hasObjective = false;
  model.c.assign(model.n, 0);
  model.goals.clear();
  return model;
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
    Collector<std::int64_t> found;
    Enumeration<std::int64_t> enumeration(program->system, program->ranges, found, never,
                                          [&](Projection& p) { spoil(p, generator); });
    const RunEnd end = runToEnd(enumeration, 100);
    (end == RunEnd::Exhausted ? carried : refused) += 1;
    if (end == RunEnd::Exhausted) {
      ASSERT_EQ(found.points.size(), random.points().size());
    }
  }
  EXPECT_GT(carried, 50);
  EXPECT_GT(refused, 50);
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
  Collector<std::int64_t> found;
  Always stop;
  Enumeration<std::int64_t> enumeration(program->system, program->ranges, found, stop);
  EXPECT_THROW(static_cast<void>(enumeration.run(1000)), Stopped);
}

}  // namespace
}  // namespace vexil::solver
