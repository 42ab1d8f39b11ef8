// Vexil - exact integer optimization on lattices.
#include "reduction/lq.h"

#include <functional>

#include "numbers/number_cases.h"
#include "numbers/qq_vectors.h"
#include "support/pairs.h"

namespace vexil {
namespace {

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
  for (const auto& [operation, text] : cases) {
    EXPECT_EXIT(operation(), testing::ExitedWithCode(1), text);
  }
}

}  // namespace
}  // namespace vexil
