// Vexil - exact integer optimization on lattices.
#include "lattice/lattice.h"

#include <gtest/gtest.h>

#include "support/parsed.h"

namespace vexil {
namespace {

template <typename First, typename Second>
struct Numbers {
  using T = First;
  using U = Second;
};
using Pairs =
    testing::Types<Numbers<dbl_t, dbl_t>, Numbers<QQ, dbl_t>, Numbers<dbl_t, QQ>, Numbers<QQ, QQ>>;

/// A lattice on two vectors of three coordinates.
template <typename Pair>
class Lattices : public testing::Test {
 protected:
  const Matrix<typename Pair::T> base = matrix<typename Pair::T>("[ [1 2 0] [4 5 2] ]");
  Lattice<typename Pair::T, typename Pair::U> subject{&base};
};
TYPED_TEST_SUITE(Lattices, Pairs);

TYPED_TEST(Lattices, TakeABasisAndResize) {
  auto& lattice = this->subject;
  EXPECT_TRUE(lattice.B == this->base && lattice.B_save == this->base);
  EXPECT_EQ(joined(lattice.weights, lattice.translation), "[ 1 1 1 ][ 0 0 0 ]");
  EXPECT_TRUE(lattice.latRows == 2 && lattice.latDim == 3 && lattice.TT[1].rowCount == 2);
  lattice.resize(-1, 5, false);
  EXPECT_EQ(lattice.latRows, 2);
  lattice.resize(3, 0, false);
  EXPECT_TRUE(lattice.latDim == 3 && lattice.TT[1].rowCount == 3 && lattice.Q.rowCount == 3);
  EXPECT_TRUE(lattice.mu.columnCount == 3 && lattice.stages.MN == 4 && lattice.rowWork.MN == 3);
  lattice.resize(3, 4, false);
  EXPECT_EQ(joined(lattice.weights, lattice.translation), "[ 1 1 1 1 ][ 0 0 0 0 ]");
  lattice.stars.resize(2, false);
  lattice.program.solStars.resize(2, false);
  lattice.keepDependent = lattice.consistencyForced = true;
  lattice.resize(1, 2, true);
  EXPECT_EQ(joined(lattice.B), "[\n[ 1 2 ]\n]");
  EXPECT_EQ(lattice.stars.MN + lattice.program.solStars.MN, 0);
  lattice.setBase(nullptr, false);
  EXPECT_EQ(lattice.latRows + lattice.latDim, 0);
  EXPECT_FALSE(lattice.keepDependent || lattice.consistencyForced);
}

TYPED_TEST(Lattices, StackTransformations) {
  auto& lattice = this->subject;
  const auto append = [&] {
    lattice.TT[lattice.TT.MN][1][2] = typename TypeParam::T(3);
    testing::internal::CaptureStderr();
    lattice.resetTransformation(true);
    return testing::internal::GetCapturedStderr();
  };
  lattice.TT.resize(3, false);
  lattice.TT[3].setIdentity(2);
  lattice.resetTransformation(true);
  EXPECT_EQ(lattice.TT.MN, 1);
  for (int i = 2; i <= 20; ++i) EXPECT_EQ(append(), "");
  EXPECT_EQ(append(), "\n*** TT.MN > T_MAT_NBR\n");
  EXPECT_TRUE(lattice.TT.MN == 21 && lattice.TT[21].isIdentity());
}

TYPED_TEST(Lattices, GoInAndOutOfTheWeightedForm) {
  using T = typename TypeParam::T;
  auto& lattice = this->subject;
  lattice.weights = vector<T>("[ 10 1 2 ]");
  lattice.translation = vector<T>("[ 1 0 3 ]");
  lattice.signReferenceLat = T(2);
  lattice.putOnWeights();
  EXPECT_TRUE(lattice.B == this->base);
  lattice.params.scale.set(true);
  lattice.params.translate.set(true);
  lattice.rowState[2] = 64;
  lattice.putOnWeights();
  EXPECT_EQ(lattice.rowState[2], 0);
  EXPECT_EQ(joined(lattice.B), "[\n[ 10 2 0 ]\n[ 42 5 10 ]\n]");
  // A shift of the last coordinate would have to be undone with what it was before.
  lattice.translation = vector<T>("[ 1 0 0 ]");
  for (const char* const row : {"[ 1 2 0 ]", "[ 4 5 2 ]", "[ 0 0 -3 ]"}) {
    EXPECT_EQ(joined(lattice.unweightedRow(lattice.weightedRow(vector<T>(row)))), row);
  }
  const auto shortRow = vector<T>("[ 1 2 ]");
  EXPECT_EXIT(static_cast<void>(lattice.weightedRow(shortRow)), testing::ExitedWithCode(1),
              "Vector: dimension mismatch3");
  EXPECT_EXIT(static_cast<void>(lattice.unweightedRow(shortRow)), testing::ExitedWithCode(1),
              "Vector: dimension mismatch2");
}

TYPED_TEST(Lattices, ResetTheWeights) {
  using T = typename TypeParam::T;
  auto& lattice = this->subject;
  lattice.l = lattice.l0 = vector<T>("[ -inf -3 0 ]");
  lattice.r = lattice.r0 = vector<T>("[ 2 inf 0 ]");
  lattice.weights = vector<T>("[ 10 5 1 ]");
  lattice.translation = vector<T>("[ 1 1 1 ]");
  lattice.resetWeights(false, true);
  EXPECT_EQ(joined(lattice.l0, lattice.r0), "[ -inf -15 0 ][ 20 inf 0 ]");
  lattice.resetWeights(true, false);
  EXPECT_TRUE(lattice.l0 == lattice.l && lattice.r0 == lattice.r);
}

TYPED_TEST(Lattices, AreAssignedAcrossTheArithmetics) {
  using T = typename TypeParam::T;
  auto& source = this->subject;
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
  source.stages[3].values[2] = typename TypeParam::U(8);
  const auto check = [&](auto& target) {
    target.assign(source, false);
    EXPECT_EQ(target.latFile + target.program.solFile + target.optFile,
              "run.1/x.y.latrun.1/x.y.solrun.1/x.y.opt");
    EXPECT_EQ(target.program.solStars[2].time, 17);
    EXPECT_EQ(joined(target.program.dt, target.B[2], target.lrtu), "[ inf 7 ][ 4 5 2 ](-5, inf)");
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
}

}  // namespace
}  // namespace vexil
