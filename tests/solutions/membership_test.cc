// Vexil - exact integer optimization on lattices.
#include "solutions/membership.h"

#include <gtest/gtest.h>

#include <random>

#include "support/pairs.h"
#include "support/parsed.h"

namespace vexil {
namespace {

template <typename T>
class Members : public testing::Test {};
TYPED_TEST_SUITE(Members, NumberTypes);

/// Lattices of the vectors whose element i is a multiple of d[i] and whose last element is the sum
/// of the others, from rows that row operations have hidden. One row more than needed depends on
/// the others, where numbers are whole. Long numbers are beyond what words can decide.
TYPED_TEST(Members, AreTheIntegerCombinations) {
  using T = TypeParam;
  std::mt19937 random(1);
  const auto below = [&](long limit) { return static_cast<long>(random()) % limit; };
  Membership<T> lattice;
  for (int round = 0; round < 300; ++round) {
    const long m = 1 + below(4);
    const T large(std::is_same_v<T, QQ> && round % 3 == 0 ? 3000000000000000001 : 0);
    const T scale(round % 7 == 0 ? std::is_same_v<T, QQ> ? T(1) / T(3) : T(0.5L) : T(1));
    Matrix<T> rows;
    Vector<long> d;
    rows.setSize(m + (scale == T(1) ? below(2) : 0), m + 1);
    for (long i = 1; i <= m; ++i) {
      d.append(1 + below(4));
      rows[i][i] = rows[i][m + 1] = T(d[i]) * scale;
    }
    for (int step = 0; step < 12; ++step) {
      const auto i = 1 + below(rows.rowCount);
      const auto j = 1 + below(rows.rowCount);
      if (i != j) rows[i].subtractMultiple(T(below(5) - 2) + (step < 2 ? large : T{}), rows[j]);
    }
    lattice.build(rows);
    for (int vectors = 0; vectors < 20; ++vectors) {
      const long surplus = below(4) == 0 ? 1 : 0;
      bool expected = surplus == 0;
      Vector<T> v;
      T sum(surplus);
      for (const long divisor : d.elements()) {
        const long small = below(2) == 0 ? divisor * below(5) : below(13) - 6;
        expected = expected && small % divisor == 0;
        v.append((T(small) + T(divisor * below(9)) * large) * scale);
        sum += v[v.MN];
      }
      v.append(sum);
      EXPECT_EQ(lattice.contains(v), expected) << rows << v;
    }
  }
}

TEST(Members, OfBasesThatResistTheShortCut) {
  // The prime of the short cut as a denominator and as a coordinate; rows without a common measure.
  for (const auto& [rows, candidate, expected] :
       {std::tuple("[ [ 1/2305843009213693951 ] ]", "[ 3/2305843009213693951 ]", true),
        {"[ [ 1/2305843009213693951 ] ]", "[ 1/2 ]", false},
        {"[ [ 1 ] ]", "[ 2305843009213693951 ]", true},
        {"[ [ 2 ] ]", "[ 2305843009213693951 ]", false},
        {"[ [ 2 0 ] [ 0 3 ] ]", "[ 1 1 ]", false},
        {"[ [ 2 1 ] ]", "[ 1/2 1/4 ]", false},
        {"[ [ 2 ] [ 3 ] ]", "[ 1 ]", true},
        {"[ [ 1 2 ] ]", "[ 1 2 3 ]", false},
        {"[ ]", "[ ]", true}}) {
    Membership<QQ> lattice;
    lattice.build(matrix<QQ>(rows));
    EXPECT_EQ(lattice.contains(vector<QQ>(candidate)), expected) << rows << candidate;
  }
  Membership<dbl_t> lattice;
  EXPECT_FALSE(lattice.isBuilt());
  lattice.build(matrix<dbl_t>("[ [ 1 2 ] [ 0 3 ] ]"));
  EXPECT_FALSE(lattice.contains(vector<dbl_t>("[ 1 0.5 ]")));
  EXPECT_TRUE(lattice.contains(vector<dbl_t>("[ 9e17 0 ]")));
}

}  // namespace
}  // namespace vexil
