// Vexil - exact integer optimization on lattices.
//
// Kernels and bounds of models that brute force is too slow for.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "solver/basis.h"
#include "solver/kernel.h"
#include "solver/presolve.h"

namespace vexil::solver {
namespace {

struct Never : StopToken {
  bool stopRequested() override { return false; }
};
Never never;

ZZ product(const std::vector<ZZ>& a, const std::vector<ZZ>& X) {
  ZZ sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum = sum + a[i] * X[i];
  return sum;
}

/// A program without targets over n variables from 0 to `upper`.
Model boxModel(const std::vector<std::vector<ZZ>>& equations, const std::vector<ZZ>& rightHandSides,
               const ZZ& upper) {
  Model model;
  model.n = equations[0].size();
  model.decimals.assign(model.n, 0);
  model.lower.assign(model.n, {true, false, 0});
  model.upper.assign(model.n, {true, false, upper});
  model.c.assign(model.n, 0);
  for (std::size_t i = 0; i < equations.size(); ++i) {
    const Side side{true, false, rightHandSides[i]};
    model.rows.push_back({equations[i], side, side});
  }
  return model;
}

TEST(Kernel, TellsWhyThereIsNoPoint) {
  const Model multiple = boxModel({{6, 10, 15}, {6, 10, 15}}, {30, 31}, 9);
  EXPECT_STREQ(kernel(multiple, never).contradiction, "equations contradict each other");
  const Model parity = boxModel({{1, 1, 0}, {1, -1, 0}}, {1, 0}, 9);
  EXPECT_STREQ(kernel(parity, never).contradiction, "the equations have no integral point");
  EXPECT_EQ(kernel(boxModel({{6, 10, 15}, {12, 20, 30}}, {31, 62}, 9), never).contradiction,
            nullptr);
}

TEST(Kernel, StaysShortUnderLongCoefficients) {
  constexpr std::size_t N = 40;
  std::mt19937_64 generator(3);
  std::vector<ZZ> row;
  for (std::size_t i = 0; i < N; ++i) {
    std::string digits = "1";
    while (digits.size() < 40) digits += static_cast<char>('0' + generator() % 10);
    ZZ number;
    fromString(number, digits);
    row.push_back(number);
  }
  const Model model = boxModel({row}, {row[3] + row[30]}, 1);
  LatticeBasis basis = kernel(model, never);
  reduce(basis, model, 20, false, never);
  ASSERT_EQ(basis.K.size(), N - 1);
  EXPECT_EQ(product(row, basis.x0), row[3] + row[30]);
  for (const std::vector<ZZ>& vector : basis.K) {
    EXPECT_EQ(product(row, vector), 0);
    EXPECT_LE(product(vector, vector), 2000);  // 10^40 spread over 39 rows makes some 11 of length
  }
  EXPECT_TRUE(isNarrowSystem(model, basis));
}

TEST(Presolve, BoundsVariablesByRowsAndMarksWhatItPutsIn) {
  Model model = boxModel({{2, 0, 0, 0}, {0, 1, 1, 0}}, {0, 7}, 5);
  model.rows[0].upper.value = 9;  // 0 <= 2 X_0 <= 9
  model.upper[0].finite = model.upper[2].finite = false;
  model.lower[3].finite = model.upper[3].finite = false;
  ASSERT_EQ(presolve(model, never), nullptr);
  EXPECT_EQ(model.upper[0].value, 4);
  EXPECT_EQ(model.upper[2].value, 7);
  EXPECT_FALSE(model.upper[2].artificial);
  EXPECT_EQ(model.lower[2].value, 2);
  EXPECT_TRUE(model.lower[3].artificial);
  EXPECT_EQ(model.upper[3].value, 1 << 20);
  EXPECT_EQ(model.rows.size(), 1U);  // the first row is the range of its variable

  Model creeping = boxModel({{1, -1, 0}}, {1}, 1'000'000);
  creeping.rows.push_back({{-1, 1, 0}, {true, false, 0}, {}});
  EXPECT_STREQ(presolve(creeping, never), nullptr);  // not before the rounds are over
  EXPECT_STREQ(kernel(creeping, never).contradiction, nullptr);
}

struct Always : StopToken {
  bool stopRequested() override { return true; }
};

TEST(Kernel, StopsWhenTold) {
  Always stop;
  std::vector<ZZ> row;
  for (long i = 0; i < 100; ++i) row.push_back(ZZ(1'000'000'000'007L) * ZZ(i * i + 3) + ZZ(i));
  const Model model = boxModel({row}, {row[0]}, 1);
  EXPECT_THROW(static_cast<void>(kernel(model, stop)), Stopped);
}

}  // namespace
}  // namespace vexil::solver
