// Vexil - exact integer optimization on lattices.
#include "reduction/lq.h"

#include <gtest/gtest.h>

#include <functional>

#include "numbers/number_cases.h"
#include "numbers/qq_vectors.h"
#include "support/pairs.h"
#include "support/parsed.h"

namespace vexil {
namespace {

/// A basis and what both decompositions make of it.
template <typename Pair>
class Lq : public testing::Test {
 protected:
  using T = typename Pair::T;
  using U = typename Pair::U;

  Matrix<T> B;
  Matrix<U> L;
  Matrix<U> Q;
  Array<Matrix<U>> stages;
  Vector<U> norms;

  Matrix<U> basis() const {
    Matrix<U> result;
    convert(B, result, false);
    return result;
  }

  void randomBasis(std::int64_t m, std::int64_t n) {
    B.setSize(m, n);
    for (Vector<T>& row : B.elements()) {
      for (T& x : row.elements()) x = T(below(2001) - 1000);
    }
  }

  /// The products of the rows of Q with each other but for the diagonal, where `diagonal` stands.
  void expectOrthogonal(const std::function<U(std::int64_t)>& diagonal) {
    for (std::int64_t i = 1; i <= Q.rowCount; ++i) {
      for (std::int64_t j = 1; j <= i; ++j) {
        const U product = Q[i] * Q[j];
        EXPECT_TRUE(isZero<U>(product - (i == j ? diagonal(i) : U{}))) << i << ' ' << j;
      }
    }
  }

  void expectLowerTriangular() {
    for (std::int64_t i = 1; i <= L.rowCount; ++i) {
      for (std::int64_t j = i + 1; j <= L.columnCount; ++j) EXPECT_TRUE(isZero<U>(L[i][j]));
    }
  }
};
TYPED_TEST_SUITE(Lq, Pairs);

TYPED_TEST(Lq, ReflectsTheRowsIntoATriangle) {
  for (const auto& [m, n] : {std::pair(3, 5), {4, 4}, {5, 3}, {1, 1}, {2, 1}, {1, 4}}) {
    this->randomBasis(m, n);
    lq_full(this->B, this->L, this->Q, this->stages, 1, 0);
    EXPECT_TRUE(this->L * this->Q == this->basis()) << m << ' ' << n;
    this->expectLowerTriangular();
    this->expectOrthogonal([](std::int64_t) { return typename TypeParam::U(1); });
    EXPECT_EQ(this->stages.MN, std::min(m, n - 1));
  }
}

TYPED_TEST(Lq, IsTakenUpAtARow) {
  for (const std::int64_t kk : {2, 4, 5}) {
    this->randomBasis(5, 6);
    lq_full(this->B, this->L, this->Q, this->stages, 1, 0);
    Matrix<typename TypeParam::U> reducedL, reducedQ;
    Array<Matrix<typename TypeParam::U>> reducedStages;
    EXPECT_EQ(lq_reduced(this->B, reducedL, reducedQ, reducedStages, this->norms, 1, 0), 0);
    for (std::int64_t i = kk; i <= 5; ++i) this->B[i] *= typename TypeParam::T(-3);
    lq_full(this->B, this->L, this->Q, this->stages, kk, 5);
    EXPECT_TRUE(this->L * this->Q == this->basis()) << kk;
    this->expectLowerTriangular();
    this->expectOrthogonal([](std::int64_t) { return typename TypeParam::U(1); });
    EXPECT_EQ(lq_reduced(this->B, reducedL, reducedQ, reducedStages, this->norms, kk, 0), 0);
    EXPECT_TRUE(reducedL * reducedQ == this->basis()) << kk;
  }
}

TYPED_TEST(Lq, OrthogonalizesTheRows) {
  this->randomBasis(4, 5);
  const auto reduced = [this] {
    return lq_reduced(this->B, this->L, this->Q, this->stages, this->norms, 1, 0);
  };
  EXPECT_EQ(reduced(), 0);
  EXPECT_TRUE(this->L * this->Q == this->basis());
  this->expectLowerTriangular();
  EXPECT_TRUE(this->L[4][4] == typename TypeParam::U(1));
  EXPECT_TRUE(this->stages[4][3].isZero());
  for (std::int64_t i = 1; i <= 4; ++i) {
    for (std::int64_t j = 1; j < i; ++j) {
      EXPECT_LT(abs(QQ(this->Q[i] * this->Q[j])), QQ("1/1000000"));
    }
    EXPECT_TRUE(this->norms[i] == this->Q[i] * this->Q[i]);
  }
  this->B[3] = this->B[1] + this->B[2];
  EXPECT_EQ(reduced(), 3);
  this->B[1].fill(typename TypeParam::T{});
  EXPECT_EQ(reduced(), 1);
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
  this->B = matrix<typename TypeParam::T>("[ [0.0000000005 0.0000000008 0] [0 3 4] ]");
  lq_full(this->B, this->L, this->Q, this->stages, 1, 0);
  EXPECT_TRUE(this->stages[1].isIdentity());
  EXPECT_TRUE(isZero<typename TypeParam::U>(
      NumberTraits<typename TypeParam::U>::abs(this->L[2][2]) - typename TypeParam::U(5)));
}

TYPED_TEST(Lq, RefusesRowsThatAreNotThere) {
  this->randomBasis(2, 2);
  const auto full = [this](std::int64_t kk, std::int64_t end) {
    lq_full(this->B, this->L, this->Q, this->stages, kk, end);
  };
  const auto reduced = [this](std::int64_t kk, std::int64_t end) {
    (void)lq_reduced(this->B, this->L, this->Q, this->stages, this->norms, kk, end);
  };
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { full(0, 0); }, "lq_full: kk is invalid \\(< 1\\)"},
      {[&] { full(1, 3); }, "lq_full: end index overflow"},
      {[&] { full(3, 0); }, "lq_full: dimension mismatch"},
      {[&] { reduced(0, 0); }, "lq_reduced: kk is invalid \\(< 1\\)"},
      {[&] { reduced(2, 1); }, "lq_reduced: dimension mismatch"}};
  for (const auto& [operation, text] : cases) {
    EXPECT_EXIT(operation(), testing::ExitedWithCode(1), text);
  }
}

}  // namespace
}  // namespace vexil
