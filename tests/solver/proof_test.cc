// Vexil - exact integer optimization on lattices.
//
// What is proved holds whatever the floating numbers are.
#include "solver/proof.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "solver/dictionary.h"
#include "solver/ranges.h"
#include "solver/relaxation.h"

namespace vexil::solver {
namespace {

/// A random system of forms on Z^d with small boxes and all its points.
template <typename Z>
struct Small {
  explicit Small(std::uint64_t seed) : generator(seed) {
    const std::size_t d = 1 + draw(3);
    const std::size_t rows = 1 + draw(3);
    system.dimension = d;
    system.count = d + rows + 1;
    system.matrix.assign(d * system.count, Z(0));
    for (std::size_t k = 0; k < d; ++k) {
      for (std::size_t f = 0; f < system.count; ++f) {
        const int y = static_cast<int>(draw(13)) - 6;
        system.matrix[k * system.count + f] = f < d ? (f == k ? 1 : (f > k ? y % 3 : 0)) : y;
      }
    }
    for (std::size_t f = 0; f < system.count; ++f) {
      const int low = static_cast<int>(draw(5)) - 4;
      system.offset.push_back(Z(static_cast<int>(draw(3))));
      system.lower.push_back(Z(f + 1 == system.count ? -60 : f < d ? low : 3 * low));
      system.upper.push_back(Z(f + 1 == system.count ? 60 : f < d ? low + 4 : 3 * low + 9));
      system.kind.push_back(f < d                  ? FormKind::Variable
                            : f + 1 < system.count ? FormKind::Row
                                                   : FormKind::Goal);
    }
    system.source.assign(system.count, 0);
    system.hasObjective = true;
    for (std::size_t k = 0; k < d; ++k) {
      system.objective.push_back(Z(static_cast<int>(draw(9)) - 4));
    }
    std::vector<int> lambda(d);
    collect(lambda, 0);
  }

  std::size_t draw(std::size_t count) { return generator() % count; }

  Z form(std::size_t f, const std::vector<int>& lambda) const {
    Z value = system.offset[f];
    for (std::size_t k = 0; k < lambda.size(); ++k) {
      value = value + system.entry(k, f) * Z(lambda[k]);
    }
    return value;
  }

  Z item(const ItemSystem<Z>& items, std::size_t i, const std::vector<int>& lambda) const {
    const Z t = form(system.count - 1, lambda);
    Z value = items.offset[i];
    for (std::size_t k = 0; k < lambda.size(); ++k)
      value = value + items.entry(i, k) * Z(lambda[k]);
    return value + items.entry(i, lambda.size()) * (signOf(t) < 0 ? Z(-t) : t);
  }

  void collect(std::vector<int>& lambda, std::size_t k) {
    if (k < lambda.size()) {
      for (lambda[k] = -24; lambda[k] <= 24; ++lambda[k]) {
        std::vector<int> known(lambda.begin(), lambda.begin() + static_cast<std::ptrdiff_t>(k) + 1);
        const Z value = form(k, known);  // form k has no later coordinates
        if (!(value < system.lower[k]) && !(value > system.upper[k])) collect(lambda, k + 1);
      }
      return;
    }
    for (std::size_t f = 0; f < system.count; ++f) {
      const Z value = form(f, lambda);
      if (value < system.lower[f] || value > system.upper[f]) return;
    }
    points.push_back(lambda);
  }

  std::mt19937_64 generator;
  FormSystem<Z> system;
  std::vector<std::vector<int>> points;
};

template <typename Z>
class Proof : public testing::Test {};
using Integers = testing::Types<std::int64_t, ZZ>;
TYPED_TEST_SUITE(Proof, Integers);

TYPED_TEST(Proof, NoMultipliersCutOffAPoint) {
  using Z = TypeParam;
  const double strange[] = {std::numeric_limits<double>::quiet_NaN(),
                            std::numeric_limits<double>::infinity(),
                            1e250,
                            -1e18,
                            1e-300,
                            0.0};
  int contradictions = 0;
  int moves = 0;
  for (std::uint64_t seed = 1; seed <= 150; ++seed) {
    Small<Z> small(seed);
    const auto ranges = coordinateRanges(small.system);
    ASSERT_TRUE(ranges.has_value());
    const ItemSystem<Z> items = itemSystem(small.system, *ranges);
    for (const std::vector<int>& lambda : small.points) {
      for (std::size_t k = 0; k < lambda.size(); ++k) {
        EXPECT_LE(ranges->lower[k], Z(lambda[k])) << seed;
        EXPECT_GE(ranges->upper[k], Z(lambda[k])) << seed;
      }
    }
    const Boxes<Z> boxes{items.lower, items.upper};
    Prover<Z> prover(items, boxes);
    for (int trial = 0; trial < 40; ++trial) {
      std::vector<double> a;
      std::vector<std::size_t> others;
      const std::size_t first = small.draw(items.count);
      for (std::size_t i = 0; i < items.count; ++i) {
        if (i == first || small.draw(2) == 0) continue;
        others.push_back(i);
        a.push_back(small.draw(20) == 0 ? strange[small.draw(6)]
                                        : (static_cast<double>(small.draw(2001)) - 1000) / 250);
      }
      if (!prover.load(first, a.data(), others.data(), a.size())) continue;
      if (prover.contradicts()) {
        ++contradictions;
        EXPECT_TRUE(small.points.empty()) << seed;
        continue;
      }
      for (std::size_t i = 0; i < prover.size(); ++i) {
        const Z low = prover.provedLower(i);
        const Z high = prover.provedUpper(i);
        if (low > items.lower[prover.item(i)] || high < items.upper[prover.item(i)]) ++moves;
        for (const std::vector<int>& lambda : small.points) {
          const Z value = small.item(items, prover.item(i), lambda);
          EXPECT_LE(low, value) << seed;
          EXPECT_GE(high, value) << seed;
        }
      }
    }
  }
  EXPECT_GT(contradictions + moves, 100);
}

/// Takes every point and lowers nothing.
template <typename Z>
struct Silent : SearchState<Z> {
  bool offer(const FormSystem<Z>& /*system*/, const std::vector<Z>& /*values*/) override {
    return true;
  }
};

/// Cuts at arbitrary solutions, round after round on top of each other: a disturbed cost moves the
/// solution to another corner of the linear program, and no cut may take a point away.
TEST(CutFinderTest, CutsNoPointOff) {
  using Z = std::int64_t;
  std::size_t cuts = 0;
  for (std::uint64_t seed = 1; seed <= 400; ++seed) {
    Small<Z> small(seed);
    const auto ranges = coordinateRanges(small.system);
    ASSERT_TRUE(ranges.has_value());
    ItemSystem<Z> items = itemSystem(small.system, *ranges);
    Silent<Z> state;
    Relaxation<Z> relaxation(small.system, items, state);
    for (int round = 0; round < 6; ++round) {
      std::vector<double> cost;
      for (std::size_t i = 0; i < items.count; ++i) {
        cost.push_back(static_cast<double>(small.draw(2001)) / 1000 - 1);
      }
      relaxation.linearProgram().setCost(cost);
      if (relaxation.linearProgram().solve(100) == LpEnd::Infeasible) break;
      const std::size_t first = items.count;
      cuts += relaxation.addCuts();
      for (const std::vector<int>& lambda : small.points) {
        for (std::size_t i = first; i < items.count; ++i) {
          const Z value = small.item(items, i, lambda);
          ASSERT_LE(value, items.upper[i]) << seed;
          ASSERT_GE(value, items.lower[i]) << seed;
        }
      }
      if (round % 3 == 2) relaxation.dropCuts();
      if (round % 3 == 1 && items.count > first) relaxation.retractCuts(items.count - first);
    }
  }
  EXPECT_GT(cuts, 500U);
}

/// The optimum of a linear program over a box and one row, known in closed form: the fractional
/// knapsack.
TEST(DictionaryTest, SolvesTheFractionalKnapsack) {
  FormSystem<std::int64_t> system;
  system.dimension = 4;
  system.count = 5;
  system.matrix.assign(20, 0);
  const std::int64_t weight[] = {5, 4, 3, 2};
  for (std::size_t k = 0; k < 4; ++k) {
    system.matrix[k * 5 + k] = 1;
    system.matrix[k * 5 + 4] = weight[k];
  }
  system.offset.assign(5, 0);
  system.lower.assign(5, 0);
  system.upper = {1, 1, 1, 1, 8};
  system.kind.assign(5, FormKind::Variable);
  system.kind[4] = FormKind::Row;
  system.source = {0, 1, 2, 3, 0};
  system.hasObjective = true;
  system.objective = {-10, -9, -6, -1};
  const auto ranges = coordinateRanges(system);
  ASSERT_TRUE(ranges.has_value());
  const auto items = itemSystem(system, *ranges);
  Dictionary dictionary(items);
  dictionary.setCost(items.objective, 1);
  EXPECT_EQ(dictionary.solve(100), LpEnd::Optimal);
  EXPECT_NEAR(dictionary.value(items.objective), -17.0, 1e-9);
  dictionary.setUpper(1, 0);
  EXPECT_EQ(dictionary.solve(100), LpEnd::Optimal);
  EXPECT_NEAR(dictionary.value(items.objective), -16.0, 1e-9);
  dictionary.setLower(4, 11);
  dictionary.setUpper(4, 12);
  EXPECT_EQ(dictionary.solve(100), LpEnd::Infeasible);
}

}  // namespace
}  // namespace vexil::solver
