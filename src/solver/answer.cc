// Vexil - exact integer optimization on lattices.
#include "solver/answer.h"

#include "foundation/failure.h"

namespace vexil::solver {

namespace {

/// "1 point", "2 points".
std::string counted(std::int64_t count, const char* thing) {
  return joined(count, " ", thing, count == 1 ? "" : "s");
}

std::string withinText(const Settings& settings) {
  std::string text;
  if (settings.targetLimit) text += joined(" within target norm ", *settings.targetLimit);
  if (settings.slackLimit) {
    text += joined(text.empty() ? " within" : " and", " slack norm ", *settings.slackLimit);
  }
  return text;
}

/// What was found of what is counted: "all 3 points", "3 points", "3 of 5 points".
std::string countText(const Outcome& outcome, const Settings& settings, const char* thing) {
  const bool enough = settings.wanted > 0 && outcome.points >= settings.wanted;
  if (outcome.complete) return "all " + counted(outcome.points, thing);
  if (enough || settings.wanted == 0) return counted(outcome.points, thing);
  return joined(outcome.points, " of ", counted(settings.wanted, thing));
}

std::string soFarText(const Outcome& outcome, const Settings& settings, bool hasTargets) {
  if (!hasTargets) return countText(outcome, settings, "point");
  std::string text = normsText(outcome.best, outcome.bound);
  const std::string within = withinText(settings);
  if (!within.empty()) text += ", " + countText(outcome, settings, "star") + within;
  return text;
}

std::string firstLine(const Outcome& outcome, const Settings& settings, bool hasTargets) {
  switch (outcome.status) {
    case Status::Optimal:
      return joined("optimal: target norm ", *outcome.best);
    case Status::Feasible:
      return "feasible: " + (outcome.ray.MN > 0 ? "infinitely many points"
                                                : countText(outcome, settings, "point"));
    case Status::Infeasible:
      return "infeasible: there is no point" + withinText(settings);
    case Status::Reached:
      return "reached: " + countText(outcome, settings, "star") + withinText(settings);
    case Status::Unbounded:
      return "unbounded: the target norm falls for ever";
    case Status::BestSoFar:
      return "best so far: " + soFarText(outcome, settings, hasTargets);
    case Status::Unknown:
      break;
  }
  return "unknown: no point found" +
         (hasTargets ? ", " + normsText(std::nullopt, outcome.bound) : std::string());
}

}  // namespace

std::string normsText(const std::optional<QQ>& best, const std::optional<QQ>& bound) {
  const std::string low = bound ? toString(*bound) : "-inf";
  if (!best) return "bound " + low;
  return joined("target norm ", *best, ", bound ", low, ", gap ",
                bound ? *best - *bound : QQ::INF());
}

std::string answerText(const Outcome& outcome, const Settings& settings, bool hasTargets) {
  std::string text = firstLine(outcome, settings, hasTargets) + "\n";
  if (!outcome.limitation.empty()) text += "limited: " + outcome.limitation + "\n";
  if (outcome.ray.MN > 0) text += joined("ray: ", outcome.ray, "\n");
  if (!outcome.proof.empty()) text += "proof: " + outcome.proof + "\n";
  return text;
}

int exitStatus(Status status) {
  return status == Status::BestSoFar || status == Status::Unknown ? 2 : 0;
}

}  // namespace vexil::solver
