// Vexil - exact integer optimization on lattices.
//
// The end of a run, and the lattice built anew with all that was found.
#pragma once

#include <algorithm>
#include <csignal>
#include <iostream>

#include "foundation/trace.h"
#include "lattice/lattice.h"
#include "program/elimination.h"
#include "solutions/backup_mode.h"
#include "solutions/write_time.h"

namespace vexil {

namespace detail {

/// While it lives, candidates are replayed; the counters of hits stand still.
class Replay {
 public:
  explicit Replay(RunState& run) : run_(run) { run_.restoring = true; }
  Replay(const Replay&) = delete;
  Replay& operator=(const Replay&) = delete;
  ~Replay() { run_.restoring = false; }

 private:
  RunState& run_;
};

}  // namespace detail

template <typename T, typename U>
void Lattice<T, U>::handleRestart(bool terminate) {
  const bool isVerbose = params.verb == 2;
  const auto endLine = [&] {
    if (isVerbose) std::cout << traceEnd(true);
  };
  const auto save = [&] {
    if (!this->writeEnabled) return;
    writeSolFile(false);
    checkConsistency(false, false);
  };
  if (isVerbose) {
    std::cout << traceBegin() << " Restart / termination handling ..." << traceNewline();
  }
  save();
  if (!this->reportEnabled) return endLine();
  if (isVerbose || terminate) {
    std::cout << traceBegin() << ' ';
    writeTime(std::cout, run.secondsSinceStart());
    std::cout << traceEnd(false) << statistics();
  }
  if (!terminate && run.iterations != params.iters) {
    regenerate();
    ++run.iterations;
    save();
    endLine();
    throw RestartException("Lattice was regenerated");
  }
  endLine();
  if (params.cellsEnabled) {
    (*cells)[MainMutexVariable::RUN_STATE].set("stopped");
  } else {
    std::cout.flush();
    std::raise(SIGTERM);
  }
}

/// Neither files nor reports come out of the rebuilding and of the replay.
template <typename T, typename U>
void Lattice<T, U>::regenerate() {
  if (params.verb == 2) {
    std::cout << traceBegin() << " Regenerating lattice ..." << traceEnd(false);
  }
  Array<Star<T>> stars;
  Array<TimeVector<T>> vectors;
  Collection homogeneous;
  Collection inhomogeneous;
  backupState(BackupMode::POINTS, stars, vectors, homogeneous, inhomogeneous, 0);
  const bool writes = this->writeEnabled;
  const bool reports = this->reportEnabled;
  prepare(false, false);
  this->writeEnabled = false;
  this->reportEnabled = false;
  generate();
  restoreState(stars, vectors, homogeneous, inhomogeneous, BackupMode::POINTS);
  this->writeEnabled = writes;
  this->reportEnabled = reports;
  writeLatFile();
}

/// Brings a vector into the form in which it is saved; false if it has none. The first vector to be
/// saved by its coordinates decomposes the basis.
template <typename T, typename U>
bool Lattice<T, U>::toBackup(Vector<T>& vector, std::int8_t mode, std::int64_t cut,
                             std::optional<RowCoordinates<T>>& coordinates) const {
  const Vector<T> source = vector;
  switch (mode) {
    case BackupMode::AS_THEY_ARE:
      vector.resize(basis.latDim, false);
      return true;
    case BackupMode::WITHOUT_HEAD:
      for (std::int64_t j = 1; j <= std::min(vector.MN, cut); ++j) {
        if (vector[j] != T{}) return false;
      }
      for (std::int64_t j = std::min(vector.MN, cut); j > 0; --j) vector.removeComponent(1);
      return true;
    case BackupMode::COORDINATES:
      if (!coordinates) coordinates.emplace(unweightedMatrix(basis.B));
      return coordinates->solve(source, vector, true);
    default:
      return lat2opt(source, vector, true, false) == 1;
  }
}

/// The vector in lattice coordinates again.
template <typename T, typename U>
void Lattice<T, U>::fromBackup(Vector<T>& vector, std::int8_t mode) const {
  const Vector<T> source = vector;
  if (mode == BackupMode::POINTS) {
    opt2lat(source, vector, false);
  } else if (mode == BackupMode::COORDINATES) {
    vector.resize(basis.latRows, false);
    vector = vector * unweightedMatrix(basis.B);
  }
}

template <typename T, typename U>
void Lattice<T, U>::backupState(std::int8_t mode, Array<Star<T>>& stars,
                                Array<TimeVector<T>>& vectors, Collection& homogeneous,
                                Collection& inhomogeneous, std::int64_t cut) {
  for (const Star<T>& star : program.solStars.elements()) stars.append(star);
  program.solStars.clear();
  std::optional<RowCoordinates<T>> coordinates;
  found.forEachVector([&](TimeVector<T>& source) {
    TimeVector<T> saved = source;
    if (toBackup(saved, mode, cut, coordinates)) vectors.append(saved);
    source.clear();
  });
  found.stars.clear();
  const auto save = [&](Collection& from, Collection& to) {
    for (auto* node = from.head; node != nullptr; node = node->next) {
      HeuristicVector<T, U> saved = node->element;
      if (toBackup(saved, mode, cut, coordinates)) to.append(saved);
    }
    from.clear();
  };
  if (mode == BackupMode::POINTS) {
    found.homogeneousVectors.clear();
  } else {
    save(found.homogeneousVectors, homogeneous);
  }
  save(found.inhomogeneousVectors, inhomogeneous);
}

template <typename T, typename U>
void Lattice<T, U>::restoreState(Array<Star<T>>& stars, Array<TimeVector<T>>& vectors,
                                 Collection& homogeneous, Collection& inhomogeneous,
                                 std::int8_t mode) {
  for (const Star<T>& star : stars.elements()) program.solStars.append(star);
  if (vectors.MN + homogeneous.count + inhomogeneous.count == 0) return;
  const detail::Replay replay(run);
  for (TimeVector<T>& vector : vectors.elements()) {
    fromBackup(vector, mode);
    checkSolution(vector, false, vector.time, true);
  }
  for (const Collection* const saved : {&homogeneous, &inhomogeneous}) {
    for (auto* node = saved->head; node != nullptr; node = node->next) {
      TimeVector<T> vector = node->element;
      fromBackup(vector, mode);
      if (mode == BackupMode::COORDINATES || isLatticeMember(vector)) collect(vector);
    }
  }
}

}  // namespace vexil
