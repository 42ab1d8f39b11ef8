// Vexil - exact integer optimization on lattices.
//
// The reduction of a basis: single steps worked out by hand, and what holds at the end of it.
#include <functional>

#include "numbers/number_cases.h"
#include "program/elimination.h"
#include "reducible.h"
#include "support/engine.h"
#include "support/random_programs.h"

namespace vexil {
namespace {

using testing::ExitedWithCode;

template <typename Pair>
class Reduction : public testing::Test {
 protected:
  Lattice<typename Pair::T, typename Pair::U> subject;

  /// The rows behind an operation on a basis, on one line, and its result.
  template <typename Operation>
  std::string after(const std::string& basis, Operation operation) {
    setBasis(subject, basis);
    const auto result = operation(subject);
    std::string text;
    for (const auto& row : subject.basis.B.elements()) text += joined(row);
    return text + ' ' + joined(result);
  }
};
TYPED_TEST_SUITE(Reduction, Pairs);

TYPED_TEST(Reduction, SortsRowsAndReducesThem) {
  const auto sorted = [](auto& lattice) { return lattice.sortRows(0), ""; };
  EXPECT_EQ(this->after("[ [1 0 0 0 0] [0 1 0 0 0] [0 0 1 0 0] [0 0 0 1 0] [0 0 0 0 1] ]", sorted),
            "[ 0 1 0 0 0 ][ 0 0 1 0 0 ][ 0 0 0 1 0 ][ 0 0 0 0 1 ][ 1 0 0 0 0 ] ");
  EXPECT_EQ(this->after("[ [9 1] [3 3] [0 5] [1 4] ]", sorted), "[ 1 4 ][ 3 3 ][ 0 5 ][ 9 1 ] ");
  const auto reduced = [](bool blended) {
    return [=](auto& lattice) { return lattice.sizeReduce(lattice.basis.latRows, blended); };
  };
  const std::tuple<const char*, bool, const char*> cases[] = {
      {"[ [2 0] [1 5] ]", false, "[ 2 0 ][ 1 5 ] 0"},  // a half stays
      {"[ [2 0] [-1 5] ]", false, "[ 2 0 ][ -1 5 ] 0"},
      {"[ [2 0] [5 5] ]", false, "[ 2 0 ][ -1 5 ] 1"},
      {"[ [2 0] [-5 5] ]", false, "[ 2 0 ][ 1 5 ] 1"},
      {"[ [1 0 0] [5 9 0] [7 13 3] ]", false, "[ 1 0 0 ][ 5 9 0 ][ 0 4 3 ] 1"},
      {"[ [4 4 4 4] [3 3 3 0] ]", true, "[ 4 4 4 4 ][ 3 3 3 0 ] 0"},
      {"[ [4 4 4 4] [3 3 3 0] ]", false, "[ 4 4 4 4 ][ -1 -1 -1 -4 ] 1"}};
  for (const auto& [basis, blended, expected] : cases) {
    EXPECT_EQ(this->after(basis, reduced(blended)), expected);
    EXPECT_NE(this->subject.gramSchmidt.rowState[this->subject.basis.latRows] & SIZE_REDUCED, 0);
  }
}

TYPED_TEST(Reduction, PutsDependentRowsOutOfTheWay) {
  const auto pass = [](auto& lattice) { return lattice.lll(1, 0, 0); };
  // The last one goes where it is shortest, the one before it behind the others.
  EXPECT_EQ(this->after("[ [3 0 0] [6 0 0] [0 5 0] ]", pass), "[ 3 0 0 ][ 0 5 0 ][ 6 0 0 ] 1");
  EXPECT_EQ(this->after("[ [10 0 0] [0 10 0] [0 3 0] ]", pass), "[ 10 0 0 ][ 0 3 0 ][ 0 10 0 ] 1");
  EXPECT_EQ(this->after("[ [3 0] [0 0] [1 5] ]", pass), "[ 3 0 ][ 1 5 ][ 0 0 ] 1");
  const auto blended = [](std::int64_t k, std::int64_t kk) {
    return [=](auto& lattice) {
      lattice.gramSchmidt.updateGramSchmidt(lattice.basis.B, 1, k);
      return lattice.blend(k, kk);
    };
  };
  EXPECT_EQ(this->after("[ [3 0] [6 0] [0 5] ]", blended(2, 3)), "[ 3 0 ][ 0 5 ][ 6 0 ] -2");
  EXPECT_EQ(this->after("[ [9 0] [0 9] [0 3] ]", blended(3, 3)), "[ 9 0 ][ 0 3 ][ 0 9 ] 2");
  EXPECT_EQ(thrown([&] { this->after("[ [3 0] [6 0] [0 5] ]", blended(2, 2)); }),
            "Blending is not possible");
}

TYPED_TEST(Reduction, KeepsToItsBudget) {
  const auto budget = [this](std::int64_t start, std::int64_t steps) {
    this->after("[ [9 4] [5 1] [1 8] ]", [&](auto& lattice) {
      lattice.interval_tt = steps;
      return lattice.lll(start, 2, 0);
    });
    return this->subject.interval_tt;
  };
  EXPECT_EQ(budget(1, 100), 99);
  EXPECT_EQ(budget(1, 1), 2);
  EXPECT_EQ(budget(1, 0), 0);
  EXPECT_EQ(budget(3, 100), 99);
  EXPECT_EQ(joined(this->subject.basis.B[1]), "[ 9 4 ]");
}

TYPED_TEST(Reduction, ReplacesTheBasisByTheProductOfItsTransformation) {
  using T = typename TypeParam::T;
  auto& lattice = this->subject;
  auto& [B, B_save, TT, latRows, latDim] = lattice.basis;
  auto& option = lattice.params.consistency;
  setBasis(lattice, "[ [1 2 0] [4 5 2] ]");
  auto& word = lattice.gramSchmidt.rowState[1];
  B = matrix<T>("[ [4 5 2] [5 7 2] ]");
  word = 2;
  EXPECT_TRUE(lattice.checkConsistency(false, true));
  EXPECT_TRUE(B_save == B);
  EXPECT_EQ(word, 2);
  // From a row outside the lattice back to its start, with the transformations remembered.
  B[1][1] += T(1) / T(2);
  EXPECT_FALSE(lattice.checkConsistency(false, true));
  EXPECT_TRUE(B_save == B);
  EXPECT_EQ(words(word, bool{option}, lattice.consistency.consistencyForced), "0 1 1");
  EXPECT_TRUE(lattice.checkConsistency(false, true));
  EXPECT_EQ(words(bool{option}, lattice.consistency.consistencyForced), "0 0");
  option.set(true);
  word = 2;
  B[1][1] += T(1) / T(1000);
  EXPECT_FALSE(lattice.checkConsistency(false, true));
  EXPECT_EQ(joined(B[1], word), "[ 4 5 2 ]0");
  TT.resize(2, false);
  EXPECT_EXIT(lattice.checkConsistency(false, true), ExitedWithCode(1),
              "In the non-aardal case TT.MN should always be == 1");
}

TYPED_TEST(Reduction, NamesWhatOverflows) {
  using T = typename TypeParam::T;
  auto& lattice = this->subject;
  auto& TT = lattice.basis.TT;
  const auto message = [&](const char* basis, const std::function<void()>& act) {
    setBasis(lattice, basis);
    lattice.params.consistency.set(true);
    return thrown(act);
  };
  const auto consistency = [&] { lattice.checkConsistency(true, true); };
  const auto transformed = [&](T factor) {
    return [=, &TT, &consistency] { TT[1][1][2] = factor, consistency(); };
  };
  EXPECT_EQ(message("[ [1 2] [0 1] ]", [&] { TT[1][1][1] = T(2), consistency(); }),
            "unimodular error");
  const bool limited = std::is_same_v<T, dbl_t>;
  const auto expected = [&](const char* text) { return limited ? text : ""; };
  EXPECT_EQ(message("[ [2000000000 2] [0 1] ]", consistency), expected("base matrix overflow"));
  EXPECT_EQ(message("[ [1 2] [0 1] ]", transformed(T(2000000000))),
            expected("Overflow when applying transformation"));
  EXPECT_EQ(message("[ [1 2] [0 0] ]", transformed(T(2000000000))), "");
  EXPECT_EQ(TT.MN, limited ? 2 : 1);
  EXPECT_EQ(message("[ [1 2] [0 0] ]", transformed(T(2e18L))), expected("transformation overflow"));
  EXPECT_EQ(message("[ [1 0] [3000000000 1] ]", [&] { lattice.lll(1, 0, 0); }),
            expected("q overflow"));
}

/// Repeats passes until the basis stays; false if it does not within many of them.
template <typename L>
bool reduceFully(L& lattice) {
  for (int pass = 0; pass < 200; ++pass) {
    const auto before = lattice.basis.B;
    lattice.lll(1, 0, 0);
    if (before.equalsExactly(lattice.basis.B)) return true;
  }
  return false;
}

TYPED_TEST(Reduction, EndsWithAReducedBasisOfTheLattice) {
  using T = typename TypeParam::T;
  std::mt19937 random(5);
  const QQ slack("1/100000000");
  for (int round = 0; round < 60 && !this->HasFailure(); ++round) {
    const int m = 2 + round % 5;
    const bool dependent = round % 4 == 3;
    auto& lattice = this->subject;
    lattice.params.consistency.set(true);
    lattice.params.deep.set(round % 2 == 0);
    setBasis(lattice,
             randomBasis(random, m, m + 1, dependent ? std::vector{m / 2} : std::vector<int>()));
    SCOPED_TRACE(joined(lattice.basis.B_save));
    EXPECT_TRUE(reduceFully(lattice) || dependent);
    const auto& [B, B_save, TT, latRows, latDim] = lattice.basis;
    T determinant;
    EXPECT_TRUE(lattice.applyTransformations(B_save) == B) << TT[1] << B;
    EXPECT_TRUE(isUnimodular(TT[1], determinant)) << TT[1];
    if (dependent) continue;
    const ExactGramSchmidt exact(B);
    for (std::int64_t k = 2; k <= m; ++k) {
      for (std::int64_t j = 1; j < k; ++j) EXPECT_LE(abs(exact.mu[k][j]), QQ("1/2") + slack);
      QQ length = exact.bstar[k];
      for (std::int64_t j = k - 1; j >= (lattice.params.deep ? 2 : k - 1); --j) {
        length += exact.mu[k][j] * exact.mu[k][j] * exact.bstar[j];
        EXPECT_GE(length, (1 - slack) * exact.bstar[j]) << k << ' ' << j;
      }
    }
  }
}

TYPED_TEST(Reduction, SetsTheKernelOfTheEquationsApart) {
  using T = typename TypeParam::T;
  for (int round = 0; round < 40 && !this->HasFailure(); ++round) {
    const int n = 1 + round % 2;
    const auto random = RandomProgram::make(n + 1 + below(4), n, 0, false, false);
    SCOPED_TRACE(random.opt.text());
    auto& lattice = this->subject;
    lattice = Lattice<T, typename TypeParam::U>();
    lattice.program.assign(programOf<T>(random.opt.text()));
    lattice.prepare(false, false);
    lattice.buildBase(true);
    lattice.reduce();
    const auto& [B, B_save, TT, latRows, latDim] = lattice.basis;
    EXPECT_TRUE(lattice.applyTransformations(B_save) == B);
    T determinant;
    for (const Matrix<T>& level : TT.elements()) EXPECT_TRUE(isUnimodular(level, determinant));
    const std::int64_t m = lattice.Ag.rowCount;
    const auto isInKernel = [m](const Vector<T>& row) {
      return std::all_of(row.data + 1, row.data + m + 1, [](const T& x) { return isZero<T>(x); });
    };
    for (std::int64_t i = 1; i <= latRows; ++i)
      EXPECT_EQ(isInKernel(B[i]), i <= latRows - m) << i << B;
  }
}

}  // namespace
}  // namespace vexil
