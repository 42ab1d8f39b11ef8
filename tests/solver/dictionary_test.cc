// Vexil - exact integer optimization on lattices.
#include "solver/dictionary.h"

#include <gtest/gtest.h>

#include "solver/ranges.h"

namespace vexil::solver {
namespace {

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
