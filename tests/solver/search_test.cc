// Vexil - exact integer optimization on lattices.
//
// The answers of the solver: against brute force, and where they are known otherwise.
#include "solver/search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <random>
#include <sstream>
#include <string>

#include "support/random_program.h"
#include "support/tool_run.h"

namespace vexil::solver {
namespace {

using support::Point;
using support::RandomProgram;

/// Keeps all points.
struct Collector : Listener {
  void point(const Vector<QQ>& x) override { points.push_back(x); }
  void progress(const Progress& progress) override {
    std::ostringstream line;
    line << progress.phase << ' ' << progress.treeNodes << ' ' << progress.enumerationNodes << ' '
         << progress.work << '\n';
    log += line.str();
    if (progress.phase == phase && progress.treeNodes > nodes) ++renewals;
    phase = progress.phase;
    nodes = progress.treeNodes;
  }
  bool stopRequested() override { return false; }

  std::vector<Vector<QQ>> points;
  std::string log;
  std::string phase;
  std::int64_t nodes = 0;
  int renewals = 0;  ///< of the count of nodes within a phase
};

QQ inUnits(std::int64_t value) {
  return {ZZ(static_cast<long long>(value)), ZZ(static_cast<long long>(RandomProgram::VALUE_UNIT))};
}

struct Engines {
  const char* name;
  bool tree;
  bool enumeration;
};
void PrintTo(const Engines& engines, std::ostream* out) { *out << engines.name; }

constexpr Engines BOTH{"Both", true, true};
constexpr Engines TREE{"Tree", true, false};
constexpr Engines ENUMERATION{"Enumeration", false, true};

/// All points of a random program, and the number of those with the least norm.
struct Truth {
  explicit Truth(const RandomProgram& random) : points(random.points()) {
    for (const Point& X : points) {
      const std::int64_t norm = random.norm(X);
      if (bestCount == 0 || norm < best) bestCount = 0;
      if (bestCount == 0) best = norm;
      if (norm == best) ++bestCount;
    }
  }
  std::vector<Point> points;
  std::int64_t best = 0;
  std::int64_t bestCount = 0;
};

class BruteForce : public testing::TestWithParam<Engines> {
 protected:
  static Outcome answer(const Vexil<QQ>& program, Settings settings, Collector& collector) {
    settings.tree = GetParam().tree;
    settings.enumeration = GetParam().enumeration;
    return solve(program, {}, settings, collector);
  }

  /// The best norm, every point, or none.
  static void expectTruth(std::uint64_t first, std::uint64_t last) {
    for (std::uint64_t seed = first; seed <= last; ++seed) {
      SCOPED_TRACE(seed);
      const RandomProgram random(seed);
      const Vexil<QQ> program = random.program();
      const Truth truth(random);
      Settings settings;
      settings.wanted = 0;
      Collector collector;
      const Outcome outcome = answer(program, settings, collector);
      if (truth.points.empty()) {
        EXPECT_EQ(outcome.status, Status::Infeasible);
      } else if (program.dt.MN == 0) {
        EXPECT_EQ(outcome.status, Status::Feasible);
        EXPECT_EQ(collector.points.size(), truth.points.size());
        EXPECT_TRUE(outcome.complete);
      } else {
        EXPECT_EQ(outcome.status, Status::Optimal);
        EXPECT_EQ(outcome.best, inUnits(truth.best));
      }
      EXPECT_EQ(outcome.limitation, "");
    }
  }
};

TEST_P(BruteForce, FindsTheBestNormOrEveryPointOrNone) { expectTruth(1, 1500 * support::rounds()); }

TEST_P(BruteForce, ReachesTheBestNormAndNothingBelowIt) {
  for (std::uint64_t seed = 1; seed <= 600 * support::rounds(); ++seed) {
    SCOPED_TRACE(seed);
    const RandomProgram random(seed);
    const Vexil<QQ> program = random.program();
    const Truth truth(random);
    if (truth.points.empty() || program.dt.MN == 0) continue;
    Settings settings;
    settings.wanted = 0;
    settings.targetLimit = inUnits(truth.best);
    Collector at;
    const Outcome reached = answer(program, settings, at);
    EXPECT_EQ(reached.status, Status::Reached);
    EXPECT_EQ(reached.points, truth.bestCount);
    settings.targetLimit = inUnits(truth.best - 1);
    Collector below;
    EXPECT_EQ(answer(program, settings, below).status, Status::Infeasible);
  }
}

TEST_P(BruteForce, IsRightInEveryRoundingMode) {
  for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    std::fesetround(mode);
    expectTruth(4000, 4000 + 100 * support::rounds());
    std::fesetround(FE_TONEAREST);
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, BruteForce, testing::Values(BOTH, TREE, ENUMERATION),
                         [](const auto& chosen) { return chosen.param.name; });

/// The program of an opt text.
Vexil<QQ> programOf(const std::string& text) {
  const support::TemporaryFolder folder;
  Vexil<QQ> program;
  const auto file = folder / "program.opt";
  support::writeFile(file, text);
  program.optFile = file.string();
  program.readOptFile();
  return program;
}

std::int64_t drawn(std::mt19937_64& generator, std::uint64_t count) {
  return static_cast<std::int64_t>(generator() % count);
}

/// A knapsack, a covering row and an assignment over 10 variables 0/1, the variables in this order,
/// counted from 0 or down from 1 as `negated` says, the norm times `factor`.
std::string transformed(std::uint64_t seed, const std::vector<std::size_t>& order,
                        std::uint64_t negated, std::int64_t factor) {
  std::mt19937_64 generator(seed);
  constexpr std::size_t N = 10;
  std::int64_t shift = 0;
  const auto row = [&](std::int64_t least, std::uint64_t width, std::int64_t times) {
    std::vector<std::int64_t> a;
    for (std::size_t i = 0; i < N; ++i) a.push_back(times * (least + drawn(generator, width)));
    shift = 0;
    std::string text = "[ ";
    for (const std::size_t i : order) {
      const bool isNegated = (negated >> i & 1) != 0;
      if (isNegated) shift += a[i];
      text += std::to_string(isNegated ? -a[i] : a[i]) + ' ';
    }
    return text + "] ";
  };
  const auto side = [&](std::int64_t value) { return std::to_string(value - shift) + ' '; };
  std::string text = "[ 0 ] [ " + row(-40, 50, factor) + "] ";
  text.replace(0, 5, "[ " + std::to_string(-1000 * factor - shift) + " ]");
  text += "[ " + row(1, 1, 1) + "] [ ";
  text += side(5) + "] ";
  std::string left;
  text += "[ " + row(3, 30, 1);
  left += "-inf ";
  std::string right = side(75);
  text += row(1, 9, 1) + "] ";
  left += side(20);
  right += "inf ";
  text += "[ " + left + "] [ " + right + "] [ ";
  for (const char* bound : {"0 ", "0 ", "1 "}) {
    for (std::size_t i = 0; i < N; ++i) text += bound;
    text += *bound == '1' ? "]" : "] [ ";
  }
  return text;
}

TEST(Search, FindsTheSameNormForTheSameProgramInOtherWords) {
  std::vector<std::size_t> order = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  std::mt19937_64 generator(5);
  int optima = 0;
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    Collector collector;
    const Outcome plain = solve(programOf(transformed(seed, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 0, 1)),
                                {}, {}, collector);
    std::shuffle(order.begin(), order.end(), generator);
    const Outcome other =
        solve(programOf(transformed(seed, order, generator(), 7)), {}, {}, collector);
    ASSERT_EQ(other.status, plain.status) << seed;
    if (plain.status != Status::Optimal) continue;
    ++optima;
    EXPECT_EQ(*other.best, QQ(7) * *plain.best) << seed;
  }
  EXPECT_GT(optima, 30);
}

struct Case {
  const char* name;
  const char* text;
  std::int64_t wanted;
  Status status;
  const char* best;  ///< empty: no targets, or none
  const char* ray;
};
void PrintTo(const Case& chosen, std::ostream* out) { *out << chosen.name; }

class WithoutBounds : public testing::TestWithParam<Case> {};

TEST_P(WithoutBounds, ClaimsWhatHoldsBeyondTheBox) {
  const Vexil<QQ> program = programOf(GetParam().text);
  Settings settings;
  settings.wanted = GetParam().wanted;
  settings.rounds = 6;
  Collector collector;
  const Outcome outcome = solve(program, {}, settings, collector);
  EXPECT_EQ(outcome.status, GetParam().status);
  if (*GetParam().best != 0) {
    EXPECT_EQ(outcome.best, QQ(GetParam().best));
  }
  EXPECT_EQ(outcome.bound.has_value(), outcome.status == Status::Optimal);
  EXPECT_EQ(outcome.ray.MN > 0 ? joined(outcome.ray) : "", GetParam().ray);
  EXPECT_EQ(outcome.limitation.empty(),
            outcome.status != Status::Unknown && outcome.status != Status::BestSoFar);
  settings.rounds = 0;
  const Outcome early = solve(program, {}, settings, collector);
  EXPECT_EQ(early.bound && early.best, early.status == Status::Optimal);
}

const Case CASES[] = {
    {"Falls", "[ -inf ][ [ 1 1 ] ][ [ 3 5 ] ][ 7 ][ ][ ][ ][ 0 0 ][ -inf -inf ][ inf inf ]", 1,
     Status::Unbounded, "", "[ -5 3 ]"},
    {"FallsButHasNoPoint",
     "[ -inf ][ [ 1 1 ] ][ [ 4 6 ] ][ 7 ][ ][ ][ ][ 0 0 ][ -inf -inf ][ inf inf ]", 1,
     Status::Infeasible, "", ""},
    {"FallsButHasNoPointInTwoEquations",
     "[ -inf ][ [ 1 0 0 ] ][ [ 1 1 1 ] [ 1 -1 1 ] ][ 1 0 ][ ][ ][ ][ 0 0 0 ][ -inf -inf -inf ]"
     "[ inf inf inf ]",
     1, Status::Infeasible, "", ""},
    {"EveryNormIsTheSame",
     "[ -inf ][ [ 1 1 ] ][ [ 1 1 ] ][ 5 ][ ][ ][ ][ 0 0 ][ -inf -inf ][ inf inf ]", 1,
     Status::Optimal, "5", ""},
    {"OddGoal", "[ 3 ][ [ 2 4 ] ][ ][ ][ ][ ][ ][ 0 0 ][ -inf -inf ][ inf inf ]", 1,
     Status::Optimal, "1", ""},
    {"LineOfOptima", "[ -inf 3 ][ [ 1 0 ] [ 1 0 ] ][ ][ ][ ][ ][ ][ 0 0 ][ -inf -inf ][ inf inf ]",
     1, Status::Optimal, "3", ""},
    {"NoRealPoint",
     "[ ][ ][ ][ ][ [ 3 -2 0 ] [ -3 0 2 ] [ 0 2 -2 ] ][ 1 1 -1 ][ inf inf inf ][ 0 0 0 ]"
     "[ -inf -inf -inf ][ inf inf inf ]",
     0, Status::Infeasible, "", ""},
    {"FallsBelowTheBox",
     "[ -inf ][ [ 1 0 -5 -7 -9 ] ][ ][ ][ [ 1048582 1048583 0 0 0 ] [ 0 0 14 19 24 ] ][ 0 0 ]"
     "[ 10 40 ][ 0 0 0 0 0 ][ -inf -inf 0 0 0 ][ inf inf 1 1 1 ]",
     1, Status::BestSoFar, "-24", ""},
    {"FallsBeyondTheBox",
     "[ -inf ][ [ -1 0 -5 -7 -9 ] ][ ][ ][ [ 1048582 1048583 0 0 0 ] [ 0 0 14 19 24 ] ][ 0 0 ]"
     "[ 10 40 ][ 0 0 0 0 0 ][ -inf -inf 0 0 0 ][ inf inf 1 1 1 ]",
     1, Status::BestSoFar, "-1048590", ""},
    {"Goal", "[ 10 ][ [ 1 1 ] ][ [ 3 -5 ] ][ 7 ][ ][ ][ ][ 0 0 ][ -inf -inf ][ inf inf ]", 1,
     Status::Optimal, "3", ""},
    {"Cone",
     "[ -inf ][ [ 3 -1 ] ][ ][ ][ [ 2 -1 ] [ 1 -3 ] ][ 0 -inf ][ inf 12 ][ 0 0 ][ -inf -inf ][ inf "
     "inf ]",
     1, Status::Optimal, "-2", ""},
    {"Strip", "[ ][ ][ ][ ][ [ 1048582 1048583 ] ][ 0 ][ 10 ][ 0 0 ][ 1 -inf ][ inf inf ]", 0,
     Status::Feasible, "", "[ 1048583 -1048582 ]"},
    {"FarAwayButAlone",
     "[ -inf ][ [ 1 1 ] ][ ][ ][ [ 1 -2 ] [ 1 -3 ] ][ 5000000 0 ][ 5000000 0 ][ 0 0 ][ -inf -inf ]"
     "[ inf inf ]",
     1, Status::Optimal, "20000000", ""},
    {"FarAway",
     "[ ][ ][ ][ ][ [ 1 -2 ] [ 1 -3 ] ][ 5000000 0 ][ 5000000 1 ][ 0 0 ][ -inf -inf ][ "
     "inf inf ]",
     1, Status::Feasible, "", ""},
    {"FarAwayForEver",
     "[ ][ ][ ][ ][ [ 1 -1 ] [ 1 1 ] ][ 5000000 0 ][ inf 1 ][ 0 0 ][ -inf -inf ][ inf inf ]", 0,
     Status::Feasible, "", "[ 1 -1 ]"},
    {"FarAwayBest",
     "[ -inf ][ [ 1 0 ] ][ ][ ][ [ 1 -1 ] [ 1 1 ] ][ 5000001 0 ][ inf 1 ][ 0 1 ][ -inf -inf ]"
     "[ inf inf ]",
     1, Status::Optimal, "2500001", ""},
};
INSTANTIATE_TEST_SUITE_P(Cases, WithoutBounds, testing::ValuesIn(CASES),
                         [](const auto& chosen) { return chosen.param.name; });

/// One equation with coefficients of 40 digits over 0/1 variables, made from a hidden point.
TEST(Search, SolvesEquationsOfFortyDigits) {
  std::mt19937_64 generator(7);
  std::string row;
  ZZ sum = 0;
  std::string zeros;
  std::string ones;
  for (int i = 0; i < 40; ++i) {
    std::string digits = "1";
    while (digits.size() < 40) digits += static_cast<char>('0' + generator() % 10);
    ZZ number;
    fromString(number, digits);
    if (generator() % 2 == 0) sum = sum + number;
    row += digits + ' ';
    zeros += "0 ";
    ones += "1 ";
  }
  Collector collector;
  const std::string variables = "[ ][ ][ ][ " + zeros + "][ " + zeros + "][ " + ones + "]";
  const Vexil<QQ> program =
      programOf("[ ][ ][ [ " + row + "] ][ " + toString(sum) + " ]" + variables);
  EXPECT_EQ(solve(program, {}, {}, collector).status, Status::Feasible);
  const Vexil<QQ> shifted =
      programOf("[ ][ ][ [ " + row + "] ][ " + toString(sum + ZZ(1)) + " ]" + variables);
  EXPECT_EQ(solve(shifted, {}, {}, collector).status, Status::Infeasible);
}

TEST(Search, RepeatsItselfToTheLastCount) {
  for (std::uint64_t seed = 1; seed <= 50; ++seed) {
    const Vexil<QQ> program = RandomProgram(seed).program();
    Collector first;
    Collector second;
    static_cast<void>(solve(program, {}, {}, first));
    static_cast<void>(solve(program, {}, {}, second));
    EXPECT_EQ(first.log, second.log) << seed;
  }
}

TEST(Search, CountsKnownPointsAndReportsOnlyBetterOnes) {
  const Vexil<QQ> program =
      programOf("[ inf ][ [ 1 2 ] ][ ][ ][ [ 1 1 ] ][ 0 ][ 3 ][ 0 0 ][ 0 0 ][ 2 2 ]");
  Vector<QQ> best;
  best.resize(2, false);
  best[1] = 1;
  best[2] = 2;
  Collector collector;
  const Outcome outcome = solve(program, {best}, {}, collector);
  EXPECT_EQ(outcome.status, Status::Optimal);
  EXPECT_EQ(outcome.best, QQ(-5));
  EXPECT_EQ(collector.points.size(), 0U);
}

/// Points that were found narrow this program, until its new equations leave one.
TEST(Search, NamesNoEquationsAsTheProofOfAProgramWithoutThem) {
  const Vexil<QQ> program = programOf(
      "[ inf ][ [ 30 80 50 ] ][ ][ ][ [ 2 5 3 ][ 3 8 6 ][ 1 1 1 ] ][ -inf -inf 6 ]"
      "[ 30 42 12 ][ 0 0 0 ][ 0 0 0 ][ inf inf inf ]");
  Collector collector;
  EXPECT_TRUE(solve(program, {}, {}, collector).proof.starts_with("search"));
}

}  // namespace
}  // namespace vexil::solver
