// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "reduction/bkz.h"
#include "reduction/floating_lll.h"
#include "reduction/integral_lll.h"

namespace vexil {
namespace {

using Rows = std::vector<std::vector<Integer>>;

/// A knapsack basis: the identity beside a column of long numbers.
WeightedRows knapsack(std::size_t d, int factors) {
  std::mt19937_64 random(d);
  WeightedRows result;
  for (std::size_t k = 0; k < d; ++k) {
    std::vector<Integer>& row = result.rows.emplace_back(d + 1);
    row[k] = 1;
    row[d] = 1;
    for (int i = 0; i < factors; ++i) row[d] *= static_cast<std::int64_t>(random() >> 34);
  }
  result.weights.assign(d + 1, 1);
  return result;
}

/// Gram-Schmidt in the widest floating type, for bases that are reduced.
FloatingLll<dbl_t> orthogonalised(WeightedRows& basis, WorkMeter& meter) {
  FloatingLll<dbl_t> result(basis, {}, meter);
  EXPECT_TRUE(result.orthogonalise());
  return result;
}

void expectReduced(WeightedRows& basis, dbl_t delta) {
  WorkMeter meter;
  const auto rows = orthogonalised(basis, meter);
  for (std::size_t k = 1; k < basis.rows.size(); ++k) {
    for (std::size_t j = 0; j < k; ++j) EXPECT_LE(std::fabs(rows.mu(k, j)), 0.52L);
    const dbl_t mu = rows.mu(k, k - 1);
    EXPECT_GE(rows.squaredLength(k) + mu * mu * rows.squaredLength(k - 1),
              (delta - 1e-6L) * rows.squaredLength(k - 1));
  }
}

/// Every row of `a` is an integral combination of those of `b`, which are reduced.
void expectWithin(const Rows& a, WeightedRows& b) {
  WorkMeter meter;
  for (std::vector<Integer> row : a) {
    reducePoint(row, b, meter);
    EXPECT_TRUE(std::all_of(row.begin(), row.end(), [](const Integer& x) { return x.isZero(); }));
  }
}

TEST(Lll, FloatingAndIntegralReduceTheSameLattice) {
  for (const std::size_t d : {1U, 2U, 5U, 12U}) {
    for (const int factors : {0, 1, 4}) {
      const WeightedRows start = knapsack(d, factors);
      WeightedRows floating = start;
      WeightedRows integral = start;
      WeightedRows deep = start;
      WorkMeter meter;
      lllReduce(floating, {}, meter);
      integralLll(integral, meter);
      lllReduce(deep, {.delta = 0.99, .deep = true}, meter);
      expectReduced(floating, 0.99L);
      expectReduced(integral, 0.75L);
      expectReduced(deep, 0.99L);
      for (WeightedRows* const other : {&floating, &integral, &deep}) {
        expectWithin(start.rows, *other);
        expectWithin(other->rows, floating);
      }
    }
  }
}

TEST(Lll, IsCarriedByIntegersWhereFloatingNumbersEnd) {
  WeightedRows basis = knapsack(6, 10);  // rows of 300 bits, dependent but for the last of them
  for (std::size_t k = 0; k < 6; ++k) basis.rows[k][k] *= k + 1 == 6 ? 1 : 3;
  const Rows start = basis.rows;
  WorkMeter meter;
  EXPECT_FALSE(FloatingLll<double>(basis, {}, meter).orthogonalise());
  lllReduce(basis, {}, meter);
  expectReduced(basis, 0.99L);
  expectWithin(start, basis);
}

TEST(Lll, HeedsTheWeights) {
  WeightedRows basis{{{1, 0, 7}, {0, 1, 3}}, {1, 1, 0}};
  WorkMeter meter;
  lllReduce(basis, {}, meter);
  EXPECT_EQ(basis.rows[0][2], 7);  // the last column does not count
  basis.weights[2] = 1000;
  lllReduce(basis, {}, meter);
  EXPECT_EQ(abs(basis.rows[0][0]), 3);
  EXPECT_EQ(basis.rows[0][2], 0);
}

TEST(Bkz, ShortensWhatLllLeaves) {
  WeightedRows basis = knapsack(40, 8);
  WorkMeter meter;
  lllReduce(basis, {}, meter);
  const Rows before = basis.rows;
  const auto halfVolume = [&] {
    const auto rows = orthogonalised(basis, meter);
    dbl_t volume = 1;
    for (std::size_t k = 0; k < 20; ++k) volume *= rows.squaredLength(k);
    return volume;
  };
  const dbl_t volume = halfVolume();
  bkzReduce(basis, 16, {}, meter);
  EXPECT_LT(halfVolume(), volume / 100);
  expectReduced(basis, 0.99L);
  expectWithin(before, basis);
}

}  // namespace
}  // namespace vexil
