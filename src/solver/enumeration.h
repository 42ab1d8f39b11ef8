// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <memory>

#include "solver/form_system.h"
#include "solver/search_state.h"
#include "solver/stop.h"

namespace vexil::solver {

/// Enumeration of the lattice points within the boxes (Schnorr and Euchner 1994, with the cuts of
/// Hoelder's inequality, Ritter 1990, Wassermann 2002), an explicit stack that resumes. The cuts
/// are exact: the errors of all floating numbers are bounded beforehand (projection.h), points are
/// judged in integers.
///
/// With an objective the values from the bound up are searched in slices, each twice as wide as the
/// one before: an exhausted slice raises the bound. Each has a basis of its own, reduced with the
/// objective among the forms. A slice that takes long starts anew in a basis that is reduced more
/// (BKZ 10, then 20).
template <typename Z>
class Enumeration {
 public:
  /// `ranges` are proved ranges of the coordinates of `system`.
  Enumeration(const FormSystem<Z>& system, const CoordinateRanges<Z>& ranges, SearchState<Z>& state,
              StopToken& stop);
  ~Enumeration();
  Enumeration(const Enumeration&) = delete;
  Enumeration& operator=(const Enumeration&) = delete;

  /// Goes on for `work` units (a node costs about its forms), which it adds to `state.work`.
  /// Exhausted: every wanted point was offered. Throws `Stopped`.
  [[nodiscard]] RunEnd run(std::int64_t work);

  [[nodiscard]] std::int64_t nodes() const;
  /// An estimate of the part of the whole that is done, 0 to 1.
  [[nodiscard]] double progress() const;

 private:
  struct Implementation;
  std::unique_ptr<Implementation> m;
};

extern template class Enumeration<std::int64_t>;
extern template class Enumeration<ZZ>;

}  // namespace vexil::solver
