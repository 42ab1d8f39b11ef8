// Vexil - exact integer optimization on lattices.
#include "program/elimination.h"

#include <gtest/gtest.h>

#include "lattice/lattice.h"
#include "numbers/number_cases.h"
#include "numbers/qq_vectors.h"
#include "reduction/reducible.h"
#include "support/engine.h"
#include "support/pairs.h"
#include "support/parsed.h"
#include "support/programs.h"

namespace vexil {
namespace {

using testing::ExitedWithCode;

template <typename T>
class Elimination : public testing::Test {};
TYPED_TEST_SUITE(Elimination, NumberTypes);

template <typename T>
std::string text(const Vector<T>& row) {
  std::string result;
  row.appendTo(result, FILE_DIGITS);
  return result;
}

/// The rows on one line.
template <typename T>
std::string text(const Matrix<T>& M) {
  std::string rows;
  for (const Vector<T>& row : M.elements()) rows += text(row);
  return rows;
}

/// Small whole numbers, of little rank now and then.
template <typename T>
Matrix<T> randomMatrix(std::int64_t m, std::int64_t n) {
  Matrix<T> M;
  M.setSize(m, n);
  for (Vector<T>& row : M.elements()) {
    for (T& x : row.elements()) x = T(below(13) - 6);
  }
  if (m > 2 && below(2) == 0) {
    M[m] = M[1] + M[2];
    M.swapRows(m, 1 + below(static_cast<int>(m)));
  }
  return M;
}

TYPED_TEST(Elimination, RemovesDependentRows) {
  const std::pair<const char*, const char*> cases[] = {
      {"[ ]", ""},
      {"[ [0 0] ]", ""},
      {"[ [0 0] [0 3] ]", "[ 0 3 ]"},
      {"[ [2 4] [3 6] ]", "[ 1 2 ]"},
      {"[ [4 1 1] [5 1 1] ]", "[ 4 1 1 ][ 5 1 1 ]"},
      {"[ [2 2 0] [6 6 0] ]", "[ 2 2 0 ]"},
      {"[ [1 2 0 0] [2 4 0 0] [1 0 -1 0] [0 1 0 -1] ]", "[ 1 2 0 0 ][ 0 1 0 -1 ][ 1 0 -1 0 ]"},
      {"[ [1 0] [0 1] [7 9] ]", "[ 1 0 ][ 0 1 ]"},
      {"[ [3] [2] ]", "[ 1 ]"},
      {"[ [123456789 246913578] [370370367 740740734] ]", "[ 123456789 246913578 ]"},
  };
  for (const auto& [before, after] : cases) {
    auto M = matrix<TypeParam>(before);
    removeDependentRows(M);
    EXPECT_EQ(text(M), after) << before;
  }
}

TYPED_TEST(Elimination, KeepsTheLatticeOfTheRows) {
  for (int round = 0; round < 200; ++round) {
    const auto rows = randomMatrix<TypeParam>(1 + below(5), 1 + below(5));
    auto M = rows;
    removeDependentRows(M);
    Matrix<QQ> before, behind;
    convert(rows, before);
    convert(M, behind);
    ASSERT_TRUE(spanTheSame(before, behind)) << text(rows);
    const ExactGramSchmidt exact(M);
    for (const QQ& length : exact.bstar.elements()) ASSERT_GT(length, 0) << text(rows) << text(M);
  }
}

TEST(EliminationOfLongNumbers, SeesEveryDependence) {
  for (int round = 0; round < 20; ++round) {
    Matrix<QQ> M;
    M.setSize(3, 4);
    for (Vector<QQ>& row : M.elements()) {
      for (QQ& x : row.elements()) x = randomInteger(40);
    }
    M.appendRow(M[1] + M[2] + M[2] - M[3]);
    const std::string independent = text(M[1]) + text(M[2]) + text(M[3]);
    removeDependentRows(M);
    ASSERT_EQ(text(M), independent);
  }
  auto parallel = matrix<QQ>("[ [1000000000 1000000001] [999999999 1000000000] ]");
  EXPECT_EXIT(removeDependentRows(parallel), ExitedWithCode(1),
              "Coordinates of dependent row could not be computed!");
  auto uneven = matrix<dbl_t>("[ [1000 1] [1414.2135623730951 1.4142135623730951] ]");
  EXPECT_EXIT(removeDependentRows(uneven), ExitedWithCode(1),
              "Dependent row could not be eliminated!");
}

TYPED_TEST(Elimination, SolvesForCoordinates) {
  const struct {
    const char* G;
    const char* row;
    bool integral;
    const char* x;  ///< null where there is none
  } cases[] = {
      {"[ [2 0 1] [0 3 1] ]", "[ 4 -3 1 ]", true, "[ 2 -1 ]"},
      {"[ [2 0 1] [0 3 1] ]", "[ 4 -3 2 ]", false, nullptr},
      {"[ [2 0] [0 4] ]", "[ 1 2 ]", true, nullptr},
      {"[ [0 2] [4 0] ]", "[ 1 -1 ]", false, "[ -0.5 0.25 ]"},
      {"[ [1 1] [2 2] ]", "[ 3 3 ]", false, "[ 3 0 ]"},
      {"[ [1 1] [2 2] ]", "[ 3 4 ]", false, nullptr},
      {"[ [1] [2] [4] ]", "[ 5 ]", true, "[ 5 0 0 ]"},
  };
  for (const auto& [G, row, integral, expected] : cases) {
    Vector<TypeParam> x;
    const bool found =
        solveRowCoordinates(matrix<TypeParam>(G), vector<TypeParam>(row), x, integral);
    EXPECT_EQ(found, expected != nullptr) << G << row;
    if (!found) continue;
    EXPECT_EQ(text(x), text(vector<TypeParam>(expected))) << G << row;
  }
  Matrix<TypeParam> Lo, Up;
  Array<long> p;
  Vector<TypeParam> x;
  gaussLU(matrix<TypeParam>("[ [1 2] [2 4] [-8 8] ]"), Lo, Up, p);
  EXPECT_EQ(text(Lo) + text(Up),
            text(matrix<TypeParam>("[ [1 0] [-0.25 1] [-0.125 0.5] ]")) + "[ -8 8 ][ 0 6 ]");
  EXPECT_EQ(gaussSolve(Lo, Up, p, vector<TypeParam>("[ 5 10 8 ]"), x, true, false), 1);
  EXPECT_EQ(text(x), "[ 1 2 ]");
  gaussLU(matrix<TypeParam>("[ [1 1] [1 1] ]"), Lo, Up, p);
  EXPECT_EQ(gaussSolve(Lo, Up, p, vector<TypeParam>("[ 1 1 ]"), x, true, false), 0);
}

TYPED_TEST(Elimination, StepsDownAColumn) {
  auto M = matrix<TypeParam>("[ [7 6] [1 -4] [5 9] [9 1] ]");
  Matrix<TypeParam> followed;
  followed.setIdentity(4);
  const auto start = M;
  EXPECT_EQ(euclidColumnStep(M, 3, 2, &followed), 3);
  EXPECT_EQ(text(followed * start), text(M));
  EXPECT_EQ(text(M.transposed()[2]), "[ 0 0 -1 1 ]");
  EXPECT_EQ(text(M[4]), "[ 9 1 ]");
  auto zeros = matrix<TypeParam>("[ [1 0] [2 0] ]");
  EXPECT_EQ(euclidColumnStep<TypeParam>(zeros, 2, 2, nullptr), 0);
}

TEST(EliminationGuards, NameTheValueThatOverflows) {
  const auto message = [](const char* rows) {
    auto M = matrix<dbl_t>(rows);
    auto followed = matrix<dbl_t>("[ [1e9 1] [1 0] ]");
    return thrown([&] { euclidColumnStep(M, 2, 2, &followed); });
  };
  EXPECT_EQ(message("[ [1 1] [1 5000000000] ]"), "factor overflow");
  EXPECT_EQ(message("[ [600000000 1] [1 3] ]"), "row overflow");
  EXPECT_EQ(message("[ [1 1] [1 3] ]"), "T->row overflow");
  EXPECT_FALSE(limitProducts);
}

TYPED_TEST(Elimination, KnowsUnimodularMatrices) {
  const std::pair<const char*, bool> cases[] = {{"[ [0 1] [1 5] ]", true},
                                                {"[ [1.05 0] [7 1] ]", true},
                                                {"[ [1.2 0] [7 1] ]", false},
                                                {"[ [2 4] [1 2] ]", false}};
  TypeParam determinant;
  for (const auto& [M, expected] : cases)
    EXPECT_EQ(isUnimodular(matrix<TypeParam>(M), determinant), expected) << M;
  EXPECT_TRUE(determinant == TypeParam{});
  EXPECT_FALSE(isUnimodular(matrix<TypeParam>("[ [0 3] [1 0] ]"), determinant));
  EXPECT_TRUE(determinant == TypeParam(3));
}

template <typename T>
class NormalForm : public testing::Test {};
TYPED_TEST_SUITE(NormalForm, NumberTypes);

TYPED_TEST(NormalForm, BoundsTheTargetByKnownValues) {
  using T = TypeParam;
  Lattice<T, dbl_t> lattice;
  lattice.program.assign(programOf<T>(
      "[ -inf inf ] = [ 6 5 ] [ [1 2] [2 1] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ 4 4 ]"));
  lattice.prepare(true, false);
  EXPECT_FALSE(lattice.program.tightenTargetBound(vector<T>("[ 6 5 ]"), T(2)));
  EXPECT_TRUE(lattice.program.tightenTargetBound(vector<T>("[ 20 5 ]"), T(-30)));
  EXPECT_EQ(joined(lattice.program.lrtu), "(-31, -31)");
}

TYPED_TEST(NormalForm, RefusesWhatPreparationRulesOut) {
  auto program = programOf<TypeParam>(
      "[ 3 ] [ [1 0] ] [ ] [ ] [ [1 2] ] [ 1 ] [ inf ] [ 0 0 ] [ 0 0 ] [ 1 1 ]");
  EXPECT_EXIT((void)program.targetNorm(program.dt), testing::ExitedWithCode(1),
              "This should not be the case anymore!");
  program.rx.resize(1, false);
  EXPECT_EXIT(program.addSlackVariables(), testing::ExitedWithCode(1),
              "Implement the insert at sdim position case!");
}

TEST(NormalFormGuards, NameTheTargetBoundThatOverflows) {
  struct Case {
    const char* opt;
    dbl_t left, right;
    const char* text;
  };
  const char* const fixed =
      "[ -inf ] [ [1000000000 1] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 3 0 ] [ 3 1 ]";
  const char* const half =
      "[ -inf ] [ [0.5] ] [ ] [ ] [ ] [ ] [ ] [ 0 ] [ -1000000000 ] [ 1000000000 ]";
  const char* const whole =
      "[ -inf ] [ [1] ] [ ] [ ] [ ] [ ] [ ] [ 0 ] [ -1000000000 ] [ 1000000000 ]";
  for (const auto& [opt, left, right, text] : {Case{fixed, 0, INF_F, "ltu overflow"},
                                               {fixed, -INF_F, 5, "rtu overflow"},
                                               {half, -1e9L, 0, "ltu iMFFT overflow"},
                                               {half, 0, 1e9L, "rtu iMFFT overflow"},
                                               {whole, 5, INF_F, "ltu overflow"},
                                               {whole, -INF_F, 5, "rtu overflow"}}) {
    auto program = programOf<dbl_t>(opt);
    program.tu = 1;
    program.lrtu = {left, right};
    EXPECT_EQ(thrown([&] { program.normalForm(false); }), text);
  }
  Vexil<dbl_t> program;
  program.dt = vector<dbl_t>("[ -inf -inf ]");
  const auto tighten = [&](const char* values, dbl_t value) {
    return thrown([&] { program.tightenTargetBound(vector<dbl_t>(values), value); });
  };
  EXPECT_EQ(tighten("[ 1000000000 1 ]", 5), "sum overflow");
  EXPECT_EQ(tighten("[ 1 1 ]", 2e9L), "rt overflow");
}

}  // namespace
}  // namespace vexil
