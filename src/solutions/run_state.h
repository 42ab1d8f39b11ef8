// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <ctime>

#include "params/mutex_type.h"

namespace vexil {

/// What all lattices of one instantiation share in a process. Nothing reads the counters of hits
/// and deep insertions; they are there for a debugger.
struct RunState {
  MutexType<long> startTime;        ///< wall-clock second at which the program began
  bool restoring = false;           ///< saved vectors are being replayed; the hits stand still
  std::int64_t iterations = 0;      ///< regenerations so far
  std::int64_t heuristicHits = 0;   ///< improvements of the best candidate that failed a bound
  std::int64_t targetHits = 0;      ///< improvements of the best target norm
  std::int64_t starHits = 0;        ///< stars
  std::int64_t deepInsertions = 0;  ///< rows moved up further than their neighbour

  RunState() { startTime.set(std::time(nullptr)); }

  /// Whole seconds since the program began.
  [[nodiscard]] std::int64_t secondsSinceStart() const {
    return std::time(nullptr) - startTime.get();
  }
};

}  // namespace vexil
