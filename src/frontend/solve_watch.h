// Vexil - exact integer optimization on lattices.
#pragma once

#include <chrono>

#include "frontend/solve_options.h"
#include "frontend/status_line.h"
#include "solutions/star_store.h"
#include "solver/search.h"

namespace vexil {

/// What a running search meets: it keeps the points, shows the progress and passes on the wish to
/// stop.
class SolveWatch : public solver::Listener {
 public:
  using Clock = std::chrono::steady_clock;

  /// Time is counted from `start`. With `everyPointCounts` points come one by one, without each one
  /// is better than all before.
  SolveWatch(const SolveOptions& options, StarStore& store, StatusLine& screen,
             Clock::time_point start, bool everyPointCounts)
      : options_(options),
        store_(store),
        screen_(screen),
        start_(start),
        everyPointCounts_(everyPointCounts) {}

  /// An improvement is written at once; of points that come one by one the first, second, fourth
  /// and so on. A write that fails is said and tried again with the next one.
  void point(const Vector<QQ>& x) override;
  /// A line, at verbosity 1 for each improvement and each doubling of the points or the work, at 2
  /// for each phase as well.
  void progress(const solver::Progress& progress) override;
  bool stopRequested() override;

  /// The last write, which is tried a few times. Nothing on success, or else the reason.
  [[nodiscard]] std::optional<String> saveAtLast();

 private:
  [[nodiscard]] std::int64_t secondsSinceStart() const;
  std::optional<String> save();
  [[nodiscard]] String progressLine() const;

  const SolveOptions& options_;
  StarStore& store_;
  StatusLine& screen_;
  Clock::time_point start_;
  bool everyPointCounts_;
  solver::Progress latest_;
  std::int64_t found_ = 0;
  std::int64_t nextSave_ = 1;    ///< number of found points with which the file is written next
  std::int64_t nextPoints_ = 1;  ///< number of points with which a line is printed next
  std::int64_t nextWork_ = 1;    ///< the same for the work
  String lastFault_;
};

}  // namespace vexil
