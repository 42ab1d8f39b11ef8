// Vexil - exact integer optimization on lattices.
#include "program/star.h"

#include <gtest/gtest.h>

#include <sstream>

#include "program/vexil.h"
#include "solutions/heuristic_vector.h"
#include "solutions/target_vector.h"
#include "support/pairs.h"
#include "support/parsed.h"

namespace vexil {
namespace {

/// A star from its elements and what orders stars.
template <typename T>
Star<T> star(const std::string& elements, long targetNorm = 0, long slackNorm = 0,
             std::int64_t time = -1, const std::string& version = "",
             const std::string& params = "") {
  auto result = parsed<Star<T>>(elements);
  result.targetNorm = T(targetNorm);
  result.slackNorm = T(slackNorm);
  result.time = time;
  result.version = version;
  result.paramText = params;
  return result;
}

TEST(Stars, CompareVersionsByComponent) {
  for (const auto& [a, b, order] : {std::tuple("2.10.0", "2.9.1", 1),
                                    {"2.2", "2.2.0", 0},
                                    {"", "0.0", 0},
                                    {"2", "3", -1},
                                    {"1.x", "1.72", 0},
                                    {".1", "0.1", 0}}) {
    EXPECT_EQ(compareVersions(a, b), order) << a << " " << b;
    EXPECT_EQ(compareVersions(b, a), -order) << b << " " << a;
  }
}

template <typename T>
class StarOrder : public testing::Test {};
TYPED_TEST_SUITE(StarOrder, NumberTypes);

TYPED_TEST(StarOrder, GoesByTheFirstDifference) {
  using T = TypeParam;
  const std::vector<std::pair<Star<T>, Star<T>>> ordered = {
      {star<T>("[ 9 ]", -2, 5), star<T>("[ 1 ]", -1, 0)},
      {star<T>("[ 9 ]", 1, 0), star<T>("[ 1 ]", 1, 1)},
      {star<T>("[ 9 ]", 0, 0, 5), star<T>("[ 1 ]", 0, 0, -1)},
      {star<T>("[ 9 ]", 0, 0, 5), star<T>("[ 1 ]", 0, 0, 6)},
      {star<T>("[ 9 ]", 0, 0, 5, "2.10"), star<T>("[ 1 ]", 0, 0, 5, "2.9")},
      {star<T>("[ 10 ]"), star<T>("[ 9 ]")},
      {star<T>("[ 5 7 ]"), star<T>("[ 57 ]")},
      {star<T>("[ 5 7 ]"), star<T>("[ 5 ]")},
      {star<T>("[ 5 ]"), star<T>("[ 5 inf ]")},
      {star<T>("[ -5 ]"), star<T>("[ 5 ]")},
      {star<T>("[ 5 ]", 0, 0, -1, "", "a"), star<T>("[ 5 ]", 0, 0, -1, "", "b")},
  };
  for (const auto& [a, b] : ordered) {
    EXPECT_TRUE(a < b) << a << b;
    EXPECT_FALSE(b < a) << a << b;
  }
  const auto same = star<T>("[ 5 ]", 0, 0, -1, "", "a");
  EXPECT_FALSE(same < same);
  // The greater text with the smaller options still comes first, from both sides.
  EXPECT_TRUE(star<T>("[ 9 ]", 0, 0, -1, "", "a") < star<T>("[ 1 ]", 0, 0, -1, "", "b"));
  EXPECT_TRUE(star<T>("[ 1 ]", 0, 0, -1, "", "b") < star<T>("[ 9 ]", 0, 0, -1, "", "a"));
  // An older version is followed by the options alone.
  EXPECT_TRUE(star<T>("[ 9 ]", 0, 0, -1, "1", "a") < star<T>("[ 1 ]", 0, 0, -1, "2", "b"));
  EXPECT_TRUE(star<T>("[ 1 ]", 0, 0, -1, "2", "b") < star<T>("[ 9 ]", 0, 0, -1, "1", "a"));
}

TEST(Stars, ConvertByTheRuleOfVectors) {
  Star<QQ> exact = star<QQ>("[ 1/3 2 ]", 1, 0, 7, "2.2.3", "--verb=0");
  exact.targetNorm = QQ("7:1/3");
  Star<dbl_t> rounded;
  convert(exact, rounded, true);
  EXPECT_EQ(joined(rounded.time, rounded.version, rounded.paramText), "72.2.3--verb=0");
  EXPECT_NEAR(static_cast<double>(rounded.targetNorm), 22.0 / 3, 1e-12);
  exact.slackNorm = QQ("123456789012345678");
  EXPECT_THROW(convert(exact, rounded, true), PrecisionException);
  TargetVector<QQ> target;
  target.resize(1, false);
  target[1] = QQ("1/3");
  TargetVector<dbl_t> refused;
  EXPECT_THROW(convert(target, refused, true), PostCommaPrecisionException);
}

TEST(Records, ClearLeavesWhatTheyKeep) {
  Star<dbl_t> kept = star<dbl_t>("[ 1 ]", 3, 2, 5, "2.2.3", "p");
  kept.clear();
  EXPECT_EQ(words(kept.MN, kept.time, kept.targetNorm, kept.version), "0 -1 3 2.2.3");
  TargetVector<QQ> target;
  target.targetNorm = target.slackNorm = QQ(4);
  target.throwOnLoss = false;
  target.clear();
  EXPECT_EQ(words(target.targetNorm, target.slackNorm), "inf -1");
  EXPECT_TRUE(TargetVector<QQ>(target).throwOnLoss);
}

TEST(Deviations, AreOrdered) {
  // kind, within bounds, target norm, violations, the greatest one, their sum, length
  const std::vector<std::array<int, 7>> bestFirst = {
      {2, 1, 1, 0, 0, 0, 9}, {2, 1, 2, 0, 0, 0, 1}, {2, 0, 0, 1, 9, 9, 9},
      {2, 0, 0, 2, 3, 5, 9}, {2, 0, 0, 2, 4, 4, 1}, {2, 0, 0, 2, 4, 5, 1},
      {2, 0, 0, 2, 4, 5, 2}, {1, 1, 0, 0, 0, 0, 3}, {1, 1, 0, 0, 0, 0, 4}};
  std::vector<HeuristicVector<dbl_t, dbl_t>> candidates(bestFirst.size());
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    auto& c = candidates[i];
    c.kind = static_cast<std::int8_t>(bestFirst[i][0]);
    c.inBounds = bestFirst[i][1] != 0;
    c.targetNorm = bestFirst[i][2];
    c.violations = bestFirst[i][3];
    c.maxViolation = bestFirst[i][4];
    c.sumViolation = bestFirst[i][5];
    c.euclidNorm = bestFirst[i][6];
    for (std::size_t j = 0; j <= i; ++j) {
      EXPECT_FALSE(c < candidates[j]) << i << " " << j;
      EXPECT_EQ(candidates[j] < c, j < i) << i << " " << j;
    }
  }
  HeuristicVector<dbl_t, dbl_t> near = candidates[6];
  near.euclidNorm += 5e-10L;
  EXPECT_FALSE(candidates[6] < near);
  near.euclidNorm += 2e-9L;
  EXPECT_TRUE(candidates[6] < near);
  const HeuristicVector<dbl_t, dbl_t> fresh;
  EXPECT_EXIT(static_cast<void>(fresh < candidates[0]), testing::ExitedWithCode(1),
              "Heuristic deviation is not initialized!");
}

TEST(Norms, OfAPreparedProgram) {
  Vexil<QQ> program;
  program.starsPrepared = true;
  program.tdim = 2;
  program.dt = vector<QQ>("[ -inf ]");
  program.Ag = matrix<QQ>("[ [ 2 1 -1 ] ]");
  program.bg = vector<QQ>("[ 7 ]");
  QQ S;
  const auto x = vector<QQ>("[ 2 3 0 ]");
  EXPECT_EQ(program.targetAndSlackNorm(vector<QQ>("[ 4 ]"), x, S), QQ(4));
  EXPECT_EQ(S, QQ(3));
  program.dt[1] = QQ(4);
  EXPECT_EXIT(static_cast<void>(program.targetAndSlackNorm(vector<QQ>("[ 4 ]"), x, S)),
              testing::ExitedWithCode(1), "preparation inconsistency");
}

}  // namespace
}  // namespace vexil
