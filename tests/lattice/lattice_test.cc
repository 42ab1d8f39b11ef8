// Vexil - exact integer optimization on lattices.
#include "lattice/lattice.h"

#include <gtest/gtest.h>

#include "support/parsed.h"

namespace vexil {
namespace {

template <typename Pair>
class Lattices : public testing::Test {};

template <typename First, typename Second>
struct Numbers {
  using T = First;
  using U = Second;
};
using Pairs =
    testing::Types<Numbers<dbl_t, dbl_t>, Numbers<QQ, dbl_t>, Numbers<dbl_t, QQ>, Numbers<QQ, QQ>>;
TYPED_TEST_SUITE(Lattices, Pairs);

TYPED_TEST(Lattices, StartEmpty) {
  using T = typename TypeParam::T;
  Lattice<T, typename TypeParam::U> lattice;
  EXPECT_EQ(lattice.latRows + lattice.latDim + lattice.checkMode, 0);
  EXPECT_EQ(lattice.TT.MN, 1);
  EXPECT_TRUE(lattice.TT[1].isIdentity());
  EXPECT_TRUE(lattice.signReference == T(1) && lattice.signReferenceLat == T(1));
  EXPECT_EQ(lattice.cells[MainMutexVariable::RUN_STATE].get(), "waiting");
  EXPECT_EQ(lattice.interval_tt, 100);
  EXPECT_EQ(lattice.intervalLimit, 10);
  EXPECT_EQ(lattice.homogeneousVectors.capacity, 100);
  EXPECT_EQ(lattice.stages.MN, 1);
}

TYPED_TEST(Lattices, TakeABasisAndResize) {
  using T = typename TypeParam::T;
  using U = typename TypeParam::U;
  const auto base = matrix<T>("[ [1 2 3] [4 5 6] ]");
  Lattice<T, U> lattice(&base);
  EXPECT_EQ(lattice.latRows, 2);
  EXPECT_EQ(lattice.latDim, 3);
  EXPECT_TRUE(lattice.B == base && lattice.B_save == base);
  EXPECT_TRUE(lattice.weights == vector<T>("[ 1 1 1 ]"));
  EXPECT_TRUE(lattice.translation == vector<T>("[ 0 0 0 ]"));
  EXPECT_EQ(lattice.TT[1].rowCount, 2);
  lattice.resize(-1, 5, false);
  EXPECT_EQ(lattice.latRows, 2);
  lattice.resize(3, 0, false);
  EXPECT_EQ(lattice.latDim, 3);
  EXPECT_TRUE(lattice.TT[1].rowCount == 3 && lattice.mu.columnCount == 3 &&
              lattice.Q.rowCount == 3);
  EXPECT_TRUE(lattice.stages.MN == 4 && lattice.rowWork.MN == 3);
  lattice.stars.resize(2, false);
  lattice.program.solStars.resize(2, false);
  lattice.resize(1, 2, true);
  EXPECT_TRUE(lattice.B == matrix<T>("[ [1 2] ]"));
  EXPECT_EQ(lattice.stars.MN + lattice.program.solStars.MN, 0);
  lattice.setBase(nullptr, false);
  EXPECT_EQ(lattice.latRows + lattice.latDim, 0);
}

TYPED_TEST(Lattices, StackTransformations) {
  using T = typename TypeParam::T;
  const auto base = matrix<T>("[ [1 2] [4 5] ]");
  Lattice<T, typename TypeParam::U> lattice(&base);
  const auto touch = [&] { lattice.TT[lattice.TT.MN][1][2] = T(3); };
  lattice.TT.resize(3, false);
  lattice.TT[3].setIdentity(2);
  lattice.resetTransformation(true);
  EXPECT_EQ(lattice.TT.MN, 1);
  testing::internal::CaptureStderr();
  for (int i = 2; i <= 20; ++i) {
    touch();
    lattice.resetTransformation(true);
  }
  EXPECT_EQ(lattice.TT.MN, 20);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  touch();
  testing::internal::CaptureStderr();
  lattice.resetTransformation(true);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "\n*** TT.MN > T_MAT_NBR\n");
  EXPECT_EQ(lattice.TT.MN, 21);
  EXPECT_TRUE(lattice.TT[21].isIdentity());
}

TYPED_TEST(Lattices, GoInAndOutOfTheWeightedForm) {
  using T = typename TypeParam::T;
  const auto base = matrix<T>("[ [1 2 0] [4 5 2] ]");
  Lattice<T, typename TypeParam::U> lattice(&base);
  lattice.weights = vector<T>("[ 10 1 2 ]");
  lattice.translation = vector<T>("[ 1 0 3 ]");
  lattice.signReferenceLat = T(2);
  lattice.putOnWeights();
  EXPECT_TRUE(lattice.B == base);
  lattice.params.scale.set(true);
  lattice.params.translate.set(true);
  lattice.rowState[2] = 64;
  lattice.putOnWeights();
  EXPECT_EQ(lattice.rowState[2], 0);
  EXPECT_TRUE(lattice.B == matrix<T>("[ [10 2 0] [42 5 10] ]"));
  // A shift of the last coordinate would have to be undone with what it was before.
  lattice.translation = vector<T>("[ 1 0 0 ]");
  for (const char* const row : {"[ 1 2 0 ]", "[ 4 5 2 ]", "[ 0 0 -3 ]"}) {
    const auto v = vector<T>(row);
    EXPECT_TRUE(lattice.unweightedRow(lattice.weightedRow(v)) == v) << row;
  }
  const auto shortRow = vector<T>("[ 1 2 ]");
  EXPECT_EXIT(static_cast<void>(lattice.weightedRow(shortRow)), testing::ExitedWithCode(1),
              "Vector: dimension mismatch3");
  EXPECT_EXIT(static_cast<void>(lattice.unweightedRow(shortRow)), testing::ExitedWithCode(1),
              "Vector: dimension mismatch2");
}

TYPED_TEST(Lattices, ResetTheWeights) {
  using T = typename TypeParam::T;
  const auto base = matrix<T>("[ [1 2] ]");
  Lattice<T, typename TypeParam::U> lattice(&base);
  for (auto* const bounds : {&lattice.l, &lattice.r, &lattice.l0, &lattice.r0})
    bounds->resize(2, false);
  lattice.l = vector<T>("[ -inf -3 ]");
  lattice.r = vector<T>("[ 2 inf ]");
  lattice.weights = vector<T>("[ 10 5 ]");
  lattice.translation = vector<T>("[ 1 1 ]");
  lattice.resetWeights(false, true);
  EXPECT_TRUE(lattice.l0 == vector<T>("[ -inf -15 ]") && lattice.r0 == vector<T>("[ 20 inf ]"));
  lattice.resetWeights(true, false);
  EXPECT_TRUE(lattice.l0 == lattice.l && lattice.r0 == lattice.r);
}

TYPED_TEST(Lattices, AreAssignedAcrossTheArithmetics) {
  using T = typename TypeParam::T;
  using U = typename TypeParam::U;
  const auto base = matrix<T>("[ [1 2 3] [4 5 6] ]");
  Lattice<T, U> source(&base);
  source.setFileNames("run.1/x.y.sol");
  source.program.solStars.resize(2, false);
  source.program.solStars[2].time = 17;
  source.program.dt = vector<T>("[ inf 7 ]");
  source.writeEnabled = true;
  source.params.verb.set(1);
  source.cells[MainMutexVariable::RUN_STATE].set("stopped");
  source.lrtu.left = T(-5);
  source.maxNorm = T(42);
  source.homogeneousVectors.insert({});
  source.stages[3].values[2] = U(8);
  const auto check = [&](auto& target) {
    target.assign(source, false);
    EXPECT_EQ(target.latFile + target.program.solFile + target.optFile,
              "run.1/x.y.latrun.1/x.y.solrun.1/x.y.opt");
    EXPECT_EQ(target.program.solStars[2].time, 17);
    EXPECT_EQ(joined(target.program.dt, target.B[2], target.lrtu), "[ inf 7 ][ 4 5 6 ](-5, inf)");
    EXPECT_TRUE(target.writeEnabled && !target.program.writeEnabled);
    EXPECT_EQ(target.params.verb.current, 1);
    EXPECT_EQ(target.cells[MainMutexVariable::RUN_STATE].get(), "stopped");
    EXPECT_EQ(joined(target.maxNorm, ' ', target.stages[3].values[2]), "42 8");
    EXPECT_TRUE(target.latRows == 2 && target.latDim == 3 && target.TT[1].isIdentity());
    EXPECT_EQ(target.homogeneousVectors.count, 1);
    EXPECT_EQ(target.consistency.lattice, &target);
    target.params.verb.set(0);
    target.assign(source, true);
    EXPECT_EQ(target.params.verb.current, 0);
  };
  Lattice<dbl_t, dbl_t> first;
  Lattice<QQ, dbl_t> second;
  Lattice<dbl_t, QQ> third;
  Lattice<QQ, QQ> fourth;
  check(first);
  check(second);
  check(third);
  check(fourth);
}

TEST(LatticeCopies, RefuseWhatStandardPrecisionCannotHold) {
  Lattice<QQ, dbl_t> source;
  Lattice<dbl_t, dbl_t> target;
  source.program.bg = vector<QQ>("[ 1/3 99999999999999999 ]");
  EXPECT_NO_THROW(target.assign(source, false));
  for (const char* const refused : {"[ 123456789012345678 ]", "[ 12345678901234567890 ]"}) {
    source.program.bg = vector<QQ>(refused);
    EXPECT_THROW(target.assign(source, false), PrecisionException) << refused;
  }
  source.program.bg.clear();
  source.R = QQ("123456789012345678");
  EXPECT_THROW(target.assign(source, false), PrecisionException);
  source.R = QQ("1/3");
  EXPECT_NO_THROW(target.assign(source, false));
  source.lrtu.left = QQ("1/3");
  EXPECT_THROW(target.assign(source, false), PrecisionException);
}

TEST(LatticeNames, FollowTheSolFile) {
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"x.sol", "x"},           {"run.1/x.y.sol", "run.1/x.y"}, {".sol", ".sol"},
      {"dir.d/.sol", "dir.d/"}, {"dir.d/x", "dir.d/x"},         {"../x.sol", "../x"}};
  for (const auto& [name, base] : cases) {
    Lattice<dbl_t, dbl_t> lattice;
    lattice.setFileNames(name);
    EXPECT_EQ(lattice.solFile, String(base) + ".sol");
    EXPECT_EQ(lattice.program.optFile, String(base) + ".opt");
    EXPECT_EQ(lattice.latFile, String(base) + ".lat");
  }
}

TEST(LatticeStatistics, TellOfTheFirstSolutions) {
  Lattice<QQ, dbl_t> lattice;
  EXPECT_EQ(lattice.statistics(), "");
  lattice.stars.resize(4, false);
  for (long i = 1; i <= 4; ++i) lattice.stars[i].time = 60 * i - 59;
  lattice.program.tu = 1;
  EXPECT_EQ(lattice.statistics(),
            "\nT(bestTarget) = inf, S(bestTarget) = -1\n\nSolutions found: 4\n"
            "\n{ The first solution/s was/were found after: 1 sec(s) 1:01 min(s):sec(s) == 61 secs "
            "2:01 min(s):sec(s) == 121 secs }\n");
  lattice.program.tu = 0;
  lattice.stars.resize(1, false);
  lattice.params.bench.set(2);
  EXPECT_EQ(lattice.statistics(), "\n{ The first solution/s was/were found after: 1 sec(s) }\n");
}

}  // namespace
}  // namespace vexil
