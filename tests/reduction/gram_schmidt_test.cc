// Vexil - exact integer optimization on lattices.
#include "reduction/gram_schmidt.h"

#include "reducible.h"
#include "support/pairs.h"

namespace vexil {
namespace {

template <typename Pair>
class GramSchmidtData : public testing::Test {
 protected:
  /// Data for a basis, nothing of which is known.
  static auto fresh(const Matrix<typename Pair::T>& B) {
    GramSchmidt<typename Pair::T, typename Pair::U> data;
    data.resize(B.rowCount, B.columnCount);
    return data;
  }

  static double difference(const typename Pair::U& a, const QQ& b) {
    return static_cast<double>(numberAs<dbl_t>(abs(numberAs<QQ>(a) - b)));
  }
};
TYPED_TEST_SUITE(GramSchmidtData, Pairs);

TYPED_TEST(GramSchmidtData, AgreeInAllThreeWays) {
  using T = typename TypeParam::T;
  std::mt19937 random(7);
  for (int round = 0; round < 10; ++round) {
    const auto B = matrix<T>(randomBasis(random, 1 + round, 10));
    const ExactGramSchmidt exact(B);
    auto recurrence = this->fresh(B);
    auto full = this->fresh(B);
    auto reduced = this->fresh(B);
    EXPECT_TRUE(recurrence.updateGramSchmidt(B, 1, 0));
    EXPECT_EQ(full.lqFullRows(B, 1, 0, true), 0);
    EXPECT_EQ(reduced.lqReducedRows(B, 1, 0, true), 0);
    for (auto* const data : {&recurrence, &full, &reduced}) {
      for (std::int64_t i = 1; i <= B.rowCount; ++i) {
        EXPECT_LT(this->difference(data->bstar[i], exact.bstar[i]), 1e-9);
        EXPECT_EQ(data->rowNorm[i], B[i] * B[i]);
        for (std::int64_t j = 1; j <= B.rowCount; ++j) {
          EXPECT_LT(this->difference(data->mu[i][j], exact.mu[i][j]), 1e-9);
        }
      }
    }
    for (std::int64_t i = 1; i <= B.rowCount; ++i) {
      EXPECT_EQ(words(recurrence.rowState[i], full.rowState[i], reduced.rowState[i]), "2 14 22");
      for (std::int64_t j = 1; j <= B.columnCount; ++j) {
        EXPECT_LT(this->difference(full.Q[i][j], exact.orthogonal[i][j]), 1e-7);
      }
    }
  }
}

TYPED_TEST(GramSchmidtData, AreTakenUpAtTheFirstInvalidRow) {
  using T = typename TypeParam::T;
  auto B = matrix<T>("[ [1 2 0] [4 5 2] [1 1 1] ]");
  for (const int way : {0, 1, 2}) {
    auto data = this->fresh(B);
    const auto update = [&] {
      if (way == 0) data.updateGramSchmidt(B, 1, 3);
      if (way == 1) data.lqFullRows(B, 1, 3, false);
      if (way == 2) data.lqReducedRows(B, 1, 3, false);
    };
    update();
    data.rowNorm[2] = T(77);
    data.rowState[3] = 0;
    update();
    EXPECT_EQ(data.rowNorm[2], T(77)) << way;
    EXPECT_NE(data.rowState[3], 0) << way;
  }
}

/// What is held through row operations is what would be computed anew.
TYPED_TEST(GramSchmidtData, FollowTheOperationsOnRows) {
  using T = typename TypeParam::T;
  using U = typename TypeParam::U;
  std::mt19937 random(11);
  const auto below = [&](std::int64_t n) { return static_cast<std::int64_t>(random()) % n; };
  for (int round = 0; round < 2; ++round) {
    auto B = matrix<T>(randomBasis(random, 6, 8));
    auto data = this->fresh(B);
    for (int step = 0; step < 200; ++step) {
      ASSERT_TRUE(data.updateGramSchmidt(B, 1, 0));
      const ExactGramSchmidt exact(B);
      for (std::int64_t i = 1; i <= B.rowCount; ++i) {
        EXPECT_EQ(data.rowNorm[i], B[i] * B[i]);
        EXPECT_LT(this->difference(data.bstar[i], exact.bstar[i]), 1e-9);
        for (std::int64_t j = 1; j <= B.rowCount; ++j) {
          EXPECT_LT(this->difference(data.mu[i][j], exact.mu[i][j]), 1e-9) << step;
        }
      }
      const std::int64_t k = 2 + below(B.rowCount - 1);
      if (step % 3 == 0) {
        const std::int64_t other = step % 2 == 0 ? k - 1 : 1 + below(k - 1);
        B.swapRows(k, other);
        data.swapRows(k, other);
        EXPECT_LT(data.held[B.rowCount], other);
      }
      for (std::int64_t j = k - 1; j >= 1 && step % 3 != 0; --j) {
        const U q = NumberTraits<U>::round(data.mu[k][j]);
        B[k].subtractMultiple(numberAs<T>(q), B[j]);
        data.subtractMultiple(k, q, j);
      }
      data.invalidateFrom(1);
    }
  }
}

/// A floating row is computed anew when operations have taken its digits.
TYPED_TEST(GramSchmidtData, AreHeldWhileTheyHaveDigits) {
  using U = typename TypeParam::U;
  constexpr bool FLOATING = std::is_floating_point_v<U>;
  auto B = matrix<typename TypeParam::T>("[ [7 3 0] [10 5 1] [1 1 1] ]");
  auto data = this->fresh(B);
  const auto isHeld = [&] {
    data.updateGramSchmidt(B, 1, 0);
    const U wrong = data.mu[2][1] + U(1);
    data.mu[2][1] = wrong;
    data.rowState[2] = 0;
    data.updateGramSchmidt(B, 1, 0);
    return data.mu[2][1] == wrong;
  };
  const auto change = [&](int q) {
    data.subtractMultiple(2, U(q), 1);
    data.subtractMultiple(2, U(-q), 1);
  };
  EXPECT_TRUE(isHeld());
  change(1024);
  EXPECT_TRUE(isHeld());
  change(1025);
  EXPECT_EQ(isHeld(), !FLOATING);
  data.clearRowState();
  data.updateGramSchmidt(B, 1, 0);
  for (int i = 0; i < 8; ++i) change(1);
  EXPECT_TRUE(isHeld());
  change(1);
  EXPECT_EQ(isHeld(), !FLOATING);
  B[2].swap(1, 3);
  data.clearRowState();
  data.updateGramSchmidt(B, 1, 0);
  EXPECT_EQ(data.rowNorm[2], B[2] * B[2]);
  EXPECT_LT(this->difference(data.mu[2][1], QQ(22, 58)), 1e-9);
}

TYPED_TEST(GramSchmidtData, TellADependentRow) {
  using T = typename TypeParam::T;
  for (const auto& [basis, dependent] : {std::pair("[ [0 0] [1 0] ]", 1),
                                         {"[ [1 2] [2 4] [0 1] ]", 2},
                                         {"[ [1 2] [0 1] [5 7] ]", 3},
                                         {"[ [3 1 1] [0 2 1] [3 3 2] ]", 3}}) {
    const auto B = matrix<T>(basis);
    auto data = this->fresh(B);
    EXPECT_FALSE(data.updateGramSchmidt(B, 1, 0)) << basis;
    EXPECT_TRUE(data.isDependent(dependent)) << basis;
    EXPECT_EQ(data.lqReducedRows(B, 1, 0, false), dependent) << basis;
    EXPECT_EQ(this->fresh(B).lqFullRows(B, 1, 0, false), dependent) << basis;
    EXPECT_EXIT(data.lqReducedRows(B, 1, 0, true), testing::ExitedWithCode(1),
                "Linear dependency detected - remove these first!");
    EXPECT_EXIT(data.lqFullRows(B, 1, 0, true), testing::ExitedWithCode(1),
                "Linear dependency detected - remove first!");
  }
}

TYPED_TEST(GramSchmidtData, BecomeInvalid) {
  auto data = this->fresh(matrix<typename TypeParam::T>("[ [1] [1] [1] ]"));
  const auto after = [&](bool keepDependent, std::int64_t from) {
    for (short& word : data.rowState.elements()) word = DEPENDENT;
    data.rowState[2] = SIZE_REDUCED;
    data.keepDependent = keepDependent;
    data.invalidateFrom(from);
    return words(data.rowState[1], data.rowState[2], data.rowState[3]);
  };
  EXPECT_EQ(after(false, 2), "1 0 0");
  EXPECT_EQ(after(true, 1), "0 0 1");
}

}  // namespace
}  // namespace vexil
