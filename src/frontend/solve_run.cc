// Vexil - exact integer optimization on lattices.
#include "frontend/solve_run.h"

#include <unistd.h>

#include <iostream>

#include "formats/named_report.h"
#include "foundation/failure.h"
#include "foundation/file_text.h"
#include "frontend/model_program.h"
#include "frontend/solve_watch.h"
#include "frontend/stop_signals.h"
#include "solutions/star_store.h"
#include "solver/answer.h"

namespace vexil {

namespace {

/// Without targets norms limit nothing.
solver::Settings settingsOf(const SolveOptions& options, bool hasTargets) {
  solver::Settings settings;
  settings.enumeration = options.enumeration;
  settings.blockSize = static_cast<int>(options.blockSize);
  settings.deep = options.deep;
  settings.rounds = options.rounds;
  settings.wanted = options.wanted;
  if (hasTargets) {
    settings.targetLimit = options.tnorm;
    settings.slackLimit = options.snorm;
  } else {
    if (options.tnorm) warn("--tnorm has no effect without targets");
    if (options.snorm) warn("--snorm has no effect without targets");
  }
  return settings;
}

/// The report of all points: by the names that the opt file holds, else as the tool prints it.
void printReport(const Vexil<QQ>& program, const formats::OptHead& head, const StarStore& store) {
  Vexil<QQ> shown;
  shown.dt = program.dt;
  shown.solStars.resize(1, false);
  const char* gap = "\n";
  store.forEachPoint([&](const Star<QQ>& star) {
    shown.solStars[1] = star;
    std::cout << gap
              << (head.namesVariables() ? formats::namedReport(program, head, star)
                                        : std::string(shown.starReport(1)));
    gap = "\n---\n\n";
  });
}

int search(const Vexil<QQ>& program, const formats::OptHead& head, const SolveOptions& options,
           const Solver& solve, SolveWatch::Clock::time_point start) {
  StatusLine screen(isatty(STDERR_FILENO) != 0);
  const bool hasTargets = program.dt.MN > 0;
  const solver::Settings settings = settingsOf(options, hasTargets);
  const bool everyPointCounts = !hasTargets || settings.targetLimit || settings.slackLimit;
  StarStore store(program, program.solFile, [&](const String& text) { screen.warnAbove(text); });
  receiveStopSignals();  // until here nothing is lost where one ends the process
  SolveWatch watch(options, store, screen, start, everyPointCounts);
  solver::Outcome outcome;
  try {
    outcome = solve(program, store.points(), settings, watch);
  } catch (...) {
    static_cast<void>(watch.saveAtLast());
    throw;
  }
  const auto fault = watch.saveAtLast();
  screen.clear();
  std::cout << answerText(outcome, settings, hasTargets);
  printReport(program, head, store);
  if (fault)
    std::cout << "\nThe stars, which " << program.solFile << " does not hold:\n" << store.text();
  std::cout << std::flush;
  if (!std::cout) warn("standard output: not everything could be written");
  return fault || !std::cout ? 1 : exitStatus(outcome.status);
}

}  // namespace

int solveRun(const SolveOptions& options, const Solver& solve) {
  const auto start = SolveWatch::Clock::now();
  const Vexil<QQ> program = programOf(options.file, options.reading);
  const std::string text = options.names ? readFileText(program.optFile).value_or("") : "";
  const formats::OptHead head(formats::SourceText(program.optFile, text));
  for (const String& key : options.idle) warn("--", key, " has no effect here");
  outliveFailedWrites();
  return search(program, head, options, solve, start);
}

}  // namespace vexil
