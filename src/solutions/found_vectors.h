// Vexil - exact integer optimization on lattices.
#pragma once

#include <tuple>

#include "foundation/members.h"
#include "foundation/set.h"
#include "numbers/qq_vectors.h"
#include "solutions/heuristic_vector.h"
#include "solutions/target_vector.h"

namespace vexil {

/// What the reduction has found so far, in lattice coordinates.
template <typename T, typename U>
struct FoundVectors {
  using Collection = SortedSet<HeuristicVector<T, U>>;

  HeuristicVector<T, U> bestHeuristic;  ///< best candidate that failed a bound
  TargetVector<T> bestTarget;           ///< best feasible candidate by target norm
  Array<TargetVector<T>> stars;         ///< candidates accepted as stars in this run
  Collection homogeneousVectors;        ///< collected vectors without the right-hand side
  Collection inhomogeneousVectors;      ///< collected vectors that carry the right-hand side

  template <typename Self>
  static auto members(Self& self) {
    auto& [bestHeuristic, bestTarget, stars, homogeneousVectors, inhomogeneousVectors] = self;
    return std::tie(bestHeuristic, bestTarget, stars, homogeneousVectors, inhomogeneousVectors);
  }

  /// Forgets all vectors; the collections keep their capacity.
  void clear() { clearMembers(*this); }

  /// visit(vector) for each vector that is not empty, as `TimeVector<T>&`, in the order of a
  /// backup: the best candidate, the best by target, the stars.
  template <typename Visitor>
  void forEachVector(Visitor visit) {
    const auto visitFull = [&](TimeVector<T>& vector) {
      if (vector.notEmpty()) visit(vector);
    };
    visitFull(bestHeuristic);
    visitFull(bestTarget);
    for (TargetVector<T>& star : stars.elements()) visitFull(star);
  }
};

extern template class TargetVector<dbl_t>;
extern template class Array<TargetVector<dbl_t>>;
extern template class TargetVector<QQ>;
extern template class Array<TargetVector<QQ>>;
extern template class HeuristicVector<dbl_t, dbl_t>;
extern template class Set<HeuristicVector<dbl_t, dbl_t>>;
extern template class SortedSet<HeuristicVector<dbl_t, dbl_t>>;
extern template class HeuristicVector<QQ, dbl_t>;
extern template class Set<HeuristicVector<QQ, dbl_t>>;
extern template class SortedSet<HeuristicVector<QQ, dbl_t>>;
extern template class HeuristicVector<dbl_t, QQ>;
extern template class Set<HeuristicVector<dbl_t, QQ>>;
extern template class SortedSet<HeuristicVector<dbl_t, QQ>>;
extern template class HeuristicVector<QQ, QQ>;
extern template class Set<HeuristicVector<QQ, QQ>>;
extern template class SortedSet<HeuristicVector<QQ, QQ>>;

}  // namespace vexil
