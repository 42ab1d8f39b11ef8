// Vexil - exact integer optimization on lattices.
#include "lattice/lattice.h"

#include <gtest/gtest.h>

#include "support/pairs.h"
#include "support/parsed.h"
#include "support/state_text.h"

namespace vexil {
namespace {

/// f(part) for everything that a copy takes along but options, cells and the consistency state.
template <typename L, typename F>
void forEachPart(L& lattice, F f) {
  using Program = std::conditional_t<std::is_const_v<L>, const Vexil<decltype(lattice.embedding.R)>,
                                     Vexil<decltype(lattice.embedding.R)>>;
  f(static_cast<Program&>(lattice));
  f(lattice.program);
  f(lattice.basis);
  f(lattice.form);
  f(lattice.embedding);
  f(lattice.gramSchmidt);
  f(lattice.found);
  f(lattice.latFile);
  f(lattice.stepCounter);
  f(lattice.blendValue);
  f(lattice.firstBlock);
  f(lattice.secondBlock);
}

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
  auto& [B, B_save, TT, latRows, latDim] = lattice.basis;
  EXPECT_TRUE(B == this->base);
  EXPECT_TRUE(B_save == this->base);
  EXPECT_EQ(joined(lattice.form.weights, lattice.form.translation), "[ 1 1 1 ][ 0 0 0 ]");
  EXPECT_EQ(joined(latRows, latDim, TT.MN, TT[1]), "231[\n[ 1 0 ]\n[ 0 1 ]\n]");
  lattice.resize(-1, 5, false);
  EXPECT_EQ(latRows, 2);
  lattice.gramSchmidt.rowState[2] = PASSED;
  lattice.firstBlock.L.setIdentity(1);
  lattice.membership.build(lattice.basis.B);
  lattice.resize(3, 0, false);
  EXPECT_EQ(joined(latRows, latDim, TT[1].rowCount), "333");
  EXPECT_EQ(joined(lattice.gramSchmidt.mu.columnCount, lattice.gramSchmidt.Q.rowCount), "33");
  EXPECT_EQ(stateText(lattice.gramSchmidt.rowState), "[ 0 64 0]");
  EXPECT_EQ(lattice.firstBlock.L.rowCount, 0);
  EXPECT_FALSE(lattice.membership.isBuilt());
  lattice.resize(3, 4, false);
  EXPECT_EQ(joined(lattice.form.weights, lattice.form.translation), "[ 1 1 1 1 ][ 0 0 0 0 ]");
  EXPECT_EQ(lattice.embedding.c.MN, 4);
  lattice.found.stars.resize(2, false);
  lattice.found.homogeneousVectors.insert({});
  lattice.program.solStars.resize(2, false);
  lattice.resize(1, 2, true);
  EXPECT_EQ(joined(B), "[\n[ 1 2 ]\n]");
  EXPECT_EQ(lattice.found.stars.MN + lattice.program.solStars.MN, 0);
  EXPECT_EQ(lattice.found.homogeneousVectors.count, 0);
}

TYPED_TEST(Lattices, ForgetEverythingWithANewBasis) {
  auto& lattice = this->subject;
  const auto stateOf = [](const auto& lat) {
    return stateText(lat.basis) + stateText(lat.embedding) + stateText(lat.found) +
           stateText(lat.gramSchmidt) + stateText(lat.firstBlock) + stateText(lat.secondBlock) +
           joined(lat.blendValue, lat.stepCounter, lat.interval_tt, lat.latFile,
                  lat.consistency.consistencyForced, lat.form.weights);
  };
  const String fresh = stateOf(Lattice<typename TypeParam::T, typename TypeParam::U>());
  long n = 0;
  forEachPart(lattice, [&](auto& part) { fill(part, n); });
  lattice.consistency.consistencyForced = true;
  lattice.found.homogeneousVectors.setCapacity(100);
  lattice.found.inhomogeneousVectors.setCapacity(100);
  (*lattice.cells)[MainMutexVariable::STAR_COUNT].set("3");
  lattice.setBase(nullptr, false);
  EXPECT_NE(lattice.latFile, "");
  lattice.setBase(nullptr, true);
  EXPECT_EQ(stateOf(lattice), fresh);
  EXPECT_EQ((*lattice.cells)[MainMutexVariable::STAR_COUNT].get(), "0");
}

TYPED_TEST(Lattices, StackTransformations) {
  auto& lattice = this->subject;
  auto& TT = lattice.basis.TT;
  const auto append = [&] {
    TT[TT.MN][1][2] = typename TypeParam::T(3);
    testing::internal::CaptureStderr();
    lattice.resetTransformation(true);
    return testing::internal::GetCapturedStderr();
  };
  TT.resize(3, false);
  TT[3].setIdentity(2);
  lattice.resetTransformation(true);
  EXPECT_EQ(TT.MN, 1);
  for (int i = 2; i <= 20; ++i) EXPECT_EQ(append(), "");
  EXPECT_EQ(append(), "\n*** TT.MN > T_MAT_NBR\n");
  EXPECT_EQ(TT.MN, 21);
  EXPECT_TRUE(TT[21].isIdentity());
}

TYPED_TEST(Lattices, GoInAndOutOfTheWeightedForm) {
  using T = typename TypeParam::T;
  auto& lattice = this->subject;
  lattice.form.weights = vector<T>("[ 10 1 2 ]");
  lattice.form.translation = vector<T>("[ 1 0 3 ]");
  lattice.form.signReferenceLat = T(2);
  lattice.putOnWeights();
  EXPECT_TRUE(lattice.basis.B == this->base);
  lattice.params.scale.set(true);
  lattice.params.translate.set(true);
  lattice.gramSchmidt.rowState[2] = 64;
  lattice.putOnWeights();
  EXPECT_EQ(lattice.gramSchmidt.rowState[2], 0);
  EXPECT_EQ(joined(lattice.basis.B), "[\n[ 10 2 0 ]\n[ 42 5 10 ]\n]");
  // A shift of the last coordinate would have to be undone with what it was before.
  lattice.form.translation = vector<T>("[ 1 0 0 ]");
  for (const char* const row : {"[ 1 2 0 ]", "[ 4 5 2 ]", "[ 0 0 -3 ]"})
    EXPECT_EQ(joined(lattice.unweightedRow(lattice.weightedRow(vector<T>(row)))), row);
  const auto shortRow = vector<T>("[ 1 2 ]");
  EXPECT_EXIT(static_cast<void>(lattice.weightedRow(shortRow)), testing::ExitedWithCode(1),
              "Vector: dimension mismatch3");
  EXPECT_EXIT(static_cast<void>(lattice.unweightedRow(shortRow)), testing::ExitedWithCode(1),
              "Vector: dimension mismatch2");
}

TYPED_TEST(Lattices, ResetTheWeights) {
  using T = typename TypeParam::T;
  auto& lattice = this->subject;
  lattice.embedding.l = lattice.embedding.l0 = vector<T>("[ -inf -3 0 ]");
  lattice.embedding.r = lattice.embedding.r0 = vector<T>("[ 2 inf 0 ]");
  lattice.form.weights = vector<T>("[ 10 5 1 ]");
  lattice.form.translation = vector<T>("[ 1 1 1 ]");
  lattice.resetWeights(false, true);
  EXPECT_EQ(joined(lattice.embedding.l0, lattice.embedding.r0), "[ -inf -15 0 ][ 20 inf 0 ]");
  lattice.resetWeights(true, false);
  EXPECT_TRUE(lattice.embedding.l0 == lattice.embedding.l &&
              lattice.embedding.r0 == lattice.embedding.r);
}

TYPED_TEST(Lattices, SetOneWeight) {
  using T = typename TypeParam::T;
  auto& lattice = this->subject;
  lattice.embedding.resize(3);
  lattice.embedding.r.fill(T(4));
  lattice.params.scale.set(true);
  lattice.setWeight(3, T(5));
  EXPECT_EQ(joined(lattice.basis.B), "[\n[ 1 2 0 ]\n[ 4 5 10 ]\n]");
  EXPECT_EQ(joined(lattice.embedding.r0[3], ' ', lattice.form.signReferenceLat), "20 5");
  lattice.gramSchmidt.rowState[1] = PASSED;
  lattice.setWeight(3, T(5));
  EXPECT_EQ(lattice.gramSchmidt.rowState[1], 0);
  lattice.setWeight(1, T(3));
  EXPECT_EQ(joined(lattice.basis.B[2], ' ', lattice.form.signReferenceLat), "[ 12 5 10 ] 5");
  lattice.resetWeights(true, false);
  EXPECT_EQ(lattice.form.signReferenceLat, T(1));
}

TYPED_TEST(Lattices, AreAssignedAcrossTheArithmetics) {
  auto& source = this->subject;
  long n = 0;
  forEachPart(source, [&](auto& part) { fill(part, n); });
  source.consistency.transformationPresent = source.consistency.consistencyForced = true;
  source.params.verb.set(1);
  const auto stateOf = [](auto& lattice) {
    String text;
    forEachPart(lattice, [&](const auto& part) { text += stateText(part) + '\n'; });
    return text;
  };
  const auto check = [&](auto& target) {
    target.interval_tt = 17;
    target.membership.build(target.basis.B);
    target.assign(source, false);
    EXPECT_EQ(stateOf(target), stateOf(source));
    EXPECT_TRUE(target.consistency.transformationPresent);
    EXPECT_TRUE(target.consistency.consistencyForced);
    EXPECT_EQ(target.consistency.lattice, &target);
    EXPECT_EQ(target.params.verb.current, 1);
    EXPECT_EQ(target.interval_tt, 17);
    EXPECT_FALSE(target.membership.isBuilt());
    EXPECT_EQ(target.cells, source.cells);
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
  auto copy = source;
  EXPECT_EQ(stateOf(copy), stateOf(source));
  EXPECT_EQ(copy.cells, source.cells);
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
  source.embedding.R = QQ("123456789012345678");
  EXPECT_THROW(target.assign(source, false), PrecisionException);
  source.embedding.R = QQ("1/3");
  EXPECT_NO_THROW(target.assign(source, false));
  source.lrtu.left = QQ("1/3");
  EXPECT_THROW(target.assign(source, false), PrecisionException);
}

TEST(LatticeStatistics, TellOfTheFirstSolutions) {
  Lattice<QQ, dbl_t> lattice;
  EXPECT_EQ(lattice.statistics(), "");
  lattice.found.stars.resize(4, false);
  for (long i = 1; i <= 4; ++i) lattice.found.stars[i].time = 60 * i - 59;
  lattice.program.tu = 1;
  EXPECT_EQ(lattice.statistics(),
            "\nT(bestTarget) = inf, S(bestTarget) = -1\n\nSolutions found: 4\n"
            "\n{ The first solution/s was/were found after: 1 sec(s) 1:01 min(s):sec(s) == 61 secs "
            "2:01 min(s):sec(s) == 121 secs }\n");
}

}  // namespace
}  // namespace vexil
