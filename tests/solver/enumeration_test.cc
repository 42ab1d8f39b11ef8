// Vexil - exact integer optimization on lattices.
#include "solver/enumeration.h"

#include <gtest/gtest.h>

#include <array>
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

}  // namespace
}  // namespace vexil::solver
