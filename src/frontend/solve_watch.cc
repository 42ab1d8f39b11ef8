// Vexil - exact integer optimization on lattices.
#include "frontend/solve_watch.h"

#include <algorithm>
#include <string_view>
#include <thread>

#include "foundation/version.h"
#include "frontend/stop_signals.h"
#include "solver/answer.h"

namespace vexil {

std::int64_t SolveWatch::secondsSinceStart() const {
  return std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start_).count();
}

void SolveWatch::point(const Vector<QQ>& x) {
  if (!store_.add(x, {secondsSinceStart(), options_.line, VERSION})) return;
  ++found_;
  if (!everyPointCounts_ || found_ >= nextSave_) {
    nextSave_ = 2 * found_;
    save();
  }
}

void SolveWatch::progress(const solver::Progress& progress) {
  const bool newPhase = std::string_view(progress.phase) != latest_.phase;
  const bool improved = progress.best != latest_.best || progress.points >= nextPoints_;
  const bool doubled = progress.work >= nextWork_;
  latest_ = progress;
  if (improved) nextPoints_ = 2 * std::max<std::int64_t>(progress.points, 1);
  if (doubled) nextWork_ = 2 * progress.work;
  const bool isWanted = improved || doubled || (newPhase && options_.verbosity >= 2);
  if (isWanted && options_.verbosity >= 1) screen_.printAbove(progressLine());
}

bool SolveWatch::stopRequested() {
  screen_.renew([this] { return progressLine(); });
  return stopSignalled() || (options_.seconds > 0 && secondsSinceStart() >= options_.seconds);
}

/// A reason is said once.
std::optional<String> SolveWatch::save() {
  try {
    store_.save();
    lastFault_.clear();
    return std::nullopt;
  } catch (const GeneralException& fault) {
    if (fault.message != lastFault_) screen_.warnAbove(fault.message);
    lastFault_ = fault.message;
  }
  return lastFault_;
}

std::optional<String> SolveWatch::saveAtLast() {
  using namespace std::chrono_literals;
  constexpr int ATTEMPTS = 3;
  std::optional<String> fault = save();
  for (int i = 1; fault && i < ATTEMPTS; ++i) {
    std::this_thread::sleep_for(250ms);
    fault = save();
  }
  return fault;
}

String SolveWatch::progressLine() const {
  const auto& p = latest_;
  String line = joined(secondsSinceStart(), " s: ");
  line += everyPointCounts_   ? joined(p.points, " points")
          : p.best || p.bound ? solver::normsText(p.best, p.bound)
                              : "no point";
  line += joined(", ", p.treeNodes + p.enumerationNodes, " nodes, ", p.phase);
  if (options_.verbosity >= 2) {
    line += joined(", tree ", p.treeNodes, ", enumeration ", p.enumerationNodes, ", work ", p.work);
  }
  return line;
}

}  // namespace vexil
