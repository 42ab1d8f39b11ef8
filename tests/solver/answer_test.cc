// Vexil - exact integer optimization on lattices.
#include "solver/answer.h"

#include <gtest/gtest.h>

#include "support/parsed.h"

namespace vexil::solver {
namespace {

TEST(Answer, SaysTheStatusAndWhatItIsAbout) {
  const std::optional<QQ> none;
  struct Case {
    Status status;
    std::optional<QQ> best, bound;
    std::int64_t points, wanted;
    bool complete;
    std::optional<QQ> tnorm, snorm;
    bool hasTargets;
    int exit;
    const char* text;
  };
  const Case cases[] = {
      {Status::Optimal, -381, -381, 1, 1, false, none, none, true, 0, "optimal: target norm -381"},
      {Status::Feasible, none, none, 1, 1, false, none, none, false, 0, "feasible: 1 point"},
      {Status::Feasible, none, none, 2, 2, false, none, none, false, 0, "feasible: 2 points"},
      {Status::Feasible, none, none, 2, 5, true, none, none, false, 0, "feasible: all 2 points"},
      {Status::Infeasible, none, none, 0, 1, true, none, none, true, 0,
       "infeasible: there is no point"},
      {Status::Infeasible, none, none, 0, 1, true, 2, 0, true, 0,
       "infeasible: there is no point within target norm 2 and slack norm 0"},
      {Status::Reached, 7, none, 3, 3, false, 9, none, true, 0,
       "reached: 3 stars within target norm 9"},
      {Status::Reached, 7, 7, 1, 0, true, QQ("1/2"), 4, true, 0,
       "reached: all 1 star within target norm 1/2 and slack norm 4"},
      {Status::Reached, 7, none, 4, 4, false, none, 0, true, 0,
       "reached: 4 stars within slack norm 0"},
      {Status::Unbounded, 7, none, 1, 1, false, none, none, true, 0,
       "unbounded: the target norm falls for ever"},
      {Status::BestSoFar, QQ("7:1/2"), -3, 1, 1, false, none, none, true, 2,
       "best so far: target norm 7:1/2, bound -3, gap 10:1/2"},
      {Status::BestSoFar, 7, none, 1, 3, false, 9, none, true, 2,
       "best so far: target norm 7, bound -inf, gap inf, 1 of 3 stars within target norm 9"},
      {Status::BestSoFar, none, none, 2, 5, false, none, none, false, 2,
       "best so far: 2 of 5 points"},
      {Status::BestSoFar, none, none, 2, 0, false, none, none, false, 2, "best so far: 2 points"},
      {Status::Unknown, none, QQ(4), 0, 1, false, none, none, true, 2,
       "unknown: no point found, bound 4"},
      {Status::Unknown, none, none, 0, 1, false, none, none, false, 2, "unknown: no point found"},
  };
  for (const Case& c : cases) {
    Outcome outcome;
    outcome.status = c.status;
    outcome.best = c.best;
    outcome.bound = c.bound;
    outcome.points = c.points;
    outcome.complete = c.complete;
    Settings settings;
    settings.wanted = c.wanted;
    settings.targetLimit = c.tnorm;
    settings.slackLimit = c.snorm;
    EXPECT_EQ(answerText(outcome, settings, c.hasTargets), joined(c.text, "\n"));
    EXPECT_EQ(exitStatus(c.status), c.exit) << c.text;
  }
}

TEST(Answer, NamesRayLimitationAndProof) {
  Outcome outcome;
  outcome.status = Status::Feasible;
  outcome.ray = vector<QQ>("[ 1 -1 ]");
  outcome.limitation = "nothing";
  outcome.proof = "gcd of a row";
  EXPECT_EQ(
      answerText(outcome, Settings(), false),
      "feasible: infinitely many points\nlimited: nothing\nray: [ 1 -1 ]\nproof: gcd of a row\n");
}

}  // namespace
}  // namespace vexil::solver
