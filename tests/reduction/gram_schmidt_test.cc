// Vexil - exact integer optimization on lattices.
#include "reduction/gram_schmidt.h"

#include <functional>

#include "numbers/number_cases.h"
#include "numbers/qq_vectors.h"
#include "reducible.h"
#include "reduction/lq.h"
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

  /// What the data hold is what exact arithmetic makes of the basis.
  static void expectExact(const auto& data, const Matrix<typename Pair::T>& B,
                          const ExactGramSchmidt& exact) {
    for (std::int64_t i = 1; i <= B.rowCount; ++i) {
      EXPECT_LT(difference(data.bstar[i], exact.bstar[i]), 1e-9);
      EXPECT_EQ(data.rowNorm[i], B[i] * B[i]);
      for (std::int64_t j = 1; j <= B.rowCount; ++j)
        EXPECT_LT(difference(data.mu[i][j], exact.mu[i][j]), 1e-9);
    }
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
    for (auto* const data : {&recurrence, &full, &reduced}) this->expectExact(*data, B, exact);
    for (std::int64_t i = 1; i <= B.rowCount; ++i) {
      EXPECT_EQ(words(recurrence.rowState[i], full.rowState[i], reduced.rowState[i]), "2 14 22");
      for (std::int64_t j = 1; j <= B.columnCount; ++j)
        EXPECT_LT(this->difference(full.Q[i][j], exact.orthogonal[i][j]), 1e-7);
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
      this->expectExact(data, B, ExactGramSchmidt(B));
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

/// A basis and what a decomposition makes of it.
template <typename Pair>
class Lq : public testing::Test {
 protected:
  Matrix<typename Pair::T> B;
  Matrix<typename Pair::U> L, Q;
  Array<Matrix<typename Pair::U>> stages;
  Vector<typename Pair::U> norms;

  void randomBasis(std::int64_t m, std::int64_t n) {
    B.setSize(m, n);
    for (auto& row : B.elements()) {
      for (auto& x : row.elements()) x = below(2001) - 1000;
    }
  }
  void full(std::int64_t kk, std::int64_t end) { lq_full(B, L, Q, stages, kk, end); }
  std::int64_t reduced(std::int64_t kk, std::int64_t end) {
    return lq_reduced(B, L, Q, stages, norms, kk, end);
  }

  /// L Q is the basis and L a triangle; the rows of Q are orthogonal, within a tolerance.
  void expectDecomposition(const QQ& tolerance) {
    Matrix<typename Pair::U> basis;
    convert(B, basis, false);
    EXPECT_TRUE(L * Q == basis) << B;
    for (std::int64_t i = 1; i <= Q.rowCount; ++i) {
      for (std::int64_t j = 1; j < i; ++j) EXPECT_LE(abs(QQ(Q[i] * Q[j])), tolerance);
    }
    for (std::int64_t i = 1; i <= L.rowCount; ++i) {
      for (std::int64_t j = i + 1; j <= L.columnCount; ++j) EXPECT_LE(abs(QQ(L[i][j])), tolerance);
    }
  }
};
TYPED_TEST_SUITE(Lq, Pairs);

/// Anew, and taken up at the row kk behind which the basis has changed.
TYPED_TEST(Lq, DecomposesABasis) {
  using U = typename TypeParam::U;
  for (const auto& [m, n, kk] : {std::tuple(3, 5, 1),
                                 {4, 4, 2},
                                 {5, 3, 1},
                                 {1, 1, 1},
                                 {2, 1, 1},
                                 {5, 6, 2},
                                 {5, 6, 4},
                                 {5, 6, 5}}) {
    const auto change = [&, from = kk, last = m] {
      for (std::int64_t i = from; i <= last; ++i) this->B[i] *= typename TypeParam::T(-3);
    };
    this->randomBasis(m, n);
    this->full(1, 0);
    EXPECT_EQ(this->stages.MN, std::min(m, n - 1));
    change();
    this->full(kk, m);
    this->expectDecomposition(QQ::EPSILON());
    for (const auto& q : this->Q.elements()) EXPECT_TRUE(isZero<U>(q * q - U(1)));
    if (m > n) continue;
    this->stages.clear();
    EXPECT_EQ(this->reduced(1, 0), 0);
    change();
    EXPECT_EQ(this->reduced(kk, 0), 0);
    this->expectDecomposition(QQ("1/1000"));
    for (std::int64_t i = 1; i <= m; ++i) {
      EXPECT_TRUE(this->L[i][i] == U(1));
      EXPECT_TRUE(this->norms[i] == this->Q[i] * this->Q[i]);
      EXPECT_TRUE(i == 1 || this->stages[i][i - 1].isZero());
    }
  }
  this->B[3] = this->B[1] + this->B[2];
  EXPECT_EQ(this->reduced(1, 0), 3);
  this->B[1].fill(typename TypeParam::T{});
  EXPECT_EQ(this->reduced(1, 0), 1);
}

TEST(LqOfLongNumbers, ShowsDependentRows) {
  Matrix<QQ> L, Q;
  Array<Matrix<QQ>> stages;
  for (const int digits : {1, 9, 40, 200}) {
    Matrix<QQ> B;
    B.setSize(4, 6);
    for (Vector<QQ>& row : B.elements()) {
      for (QQ& x : row.elements()) x = randomInteger(digits);
    }
    B[3] = B[1] - B[2];
    lq_full(B, L, Q, stages, 1, 0);
    EXPECT_LT(abs(L[3][3]), QQ("1/10000000000")) << digits;
    EXPECT_GT(abs(L[4][4]), QQ("1/10000")) << digits;
  }
}

TYPED_TEST(Lq, LeavesAVanishingRowAlone) {
  using U = typename TypeParam::U;
  this->B = matrix<typename TypeParam::T>("[ [0.0000000005 0.0000000008 0] [0 3 4] ]");
  this->full(1, 0);
  EXPECT_TRUE(this->stages[1].isIdentity());
  EXPECT_TRUE(isZero<U>(NumberTraits<U>::abs(this->L[2][2]) - U(5)));
}

TYPED_TEST(Lq, RefusesRowsThatAreNotThere) {
  this->randomBasis(2, 2);
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { this->full(0, 0); }, "lq_full: kk is invalid \\(< 1\\)"},
      {[&] { this->full(1, 3); }, "lq_full: end index overflow"},
      {[&] { this->full(3, 0); }, "lq_full: dimension mismatch"},
      {[&] { this->reduced(0, 0); }, "lq_reduced: kk is invalid \\(< 1\\)"},
      {[&] { this->reduced(2, 1); }, "lq_reduced: dimension mismatch"}};
  for (const auto& [operation, text] : cases)
    EXPECT_EXIT(operation(), testing::ExitedWithCode(1), text);
}

}  // namespace
}  // namespace vexil
