// Vexil - exact integer optimization on lattices.
//
// The judgement of a candidate: every vector that the reduction visits and every saved vector that
// is replayed passes here.
#pragma once

#include "lattice/lattice.h"
#include "solutions/check_bits.h"

namespace vexil {

template <typename T, typename U>
int Lattice<T, U>::checkSolution(const Vector<T>& vector, bool isLatticeVector, std::int64_t time,
                                 bool replay) {
  if (embedding.checkMode == 0) fail("checkSolution: You should set the check vectors!");
  if (vector.MN == 0) return 0;
  const Vector<T> candidate = normalised(vector, isLatticeVector);
  if (!isLatticeMember(candidate)) return OUTSIDE_LATTICE;
  if (params.pair || params.sieve) {
    collectAt(candidate, std::nullopt, found.homogeneousVectors, found.inhomogeneousVectors);
  }
  if (!isWithinBounds(candidate)) {
    rememberHeuristic(candidate, time);
    return 0;
  }
  TargetVector<T> target;
  bool widened = false;
  int word = evaluateTarget(candidate, target, time, replay, widened);
  const bool isStar = (word & EVALUATED) != 0 && isAcceptedStar(target);
  if (isStar) {
    acceptStar(target, time);
    word |= STAR;
    if (params.sol > 0 && found.stars.MN >= params.sol) {
      word ^= STAR | LAST_STAR;
      handleRestart(true);
    }
  }
  if (widened) {
    if (!replay) handleRestart(false);
  } else if (this->writeEnabled) {
    writeSolFile(false);
    if (isStar) checkConsistency(false, false);
  }
  return word;
}

template <typename T, typename U>
bool Lattice<T, U>::checkRow(std::int64_t k) {
  return isOfNoUse(k) || checkSolution(basis.B[k], true, 0, false) == 0;
}

/// The candidate with the sign of the reference and out of the weighted form.
template <typename T, typename U>
Vector<T> Lattice<T, U>::normalised(const Vector<T>& vector, bool isLatticeVector) const {
  Vector<T> result = vector;
  if (!hasRightSign(result, isLatticeVector)) result.negate();
  if (isLatticeVector && (params.scale || params.translate)) return unweightedRow(result);
  return result;
}

template <typename T, typename U>
bool Lattice<T, U>::hasRightSign(const Vector<T>& vector, bool isLatticeVector) const {
  const T& reference = isLatticeVector ? form.signReferenceLat : form.signReference;
  const T& last = vector[vector.MN];
  return reference > T{} ? last > T{} : last < T{};
}

template <typename T, typename U>
bool Lattice<T, U>::isLatticeMember(const Vector<T>& vector) {
  if (!membership.isBuilt()) membership.build(unweightedMatrix(basis.B));
  return membership.contains(vector);
}

/// The last coordinate first, which fails most often, then the variables, then the rows.
template <typename T, typename U>
bool Lattice<T, U>::isWithinBounds(const Vector<T>& x) const {
  const Vector<T>& l = embedding.l;
  const Vector<T>& r = embedding.r;
  const auto holds = [&](std::int64_t j) { return l[j] <= x[j] && x[j] <= r[j]; };
  const std::int64_t last = basis.latDim;
  const std::int64_t n = this->lx.MN;
  if (!holds(last)) return false;
  for (std::int64_t i = 1; i <= n; ++i) {
    const std::int64_t j = last - n + i - 1;
    const FreedomDegree degree = this->freedomDegrees[i];
    if (degree == FreedomDegree::FREE) continue;
    if (degree != FreedomDegree::LEFT_FREE && x[j] < l[j]) return false;
    if (degree != FreedomDegree::RIGHT_FREE && x[j] > r[j]) return false;
  }
  const std::int64_t first = embedding.checkMode == 1 ? 1 : this->tu + 1;
  for (std::int64_t j = last - n - 1; j >= first; --j) {
    if (!holds(j)) return false;
  }
  return true;
}

template <typename T, typename U>
bool Lattice<T, U>::rememberHeuristic(const Vector<T>& vector, std::int64_t time) {
  HeuristicVector<T, U>& best = found.bestHeuristic;
  if (best.notEmpty() && vector == best) return true;
  const std::int64_t last = basis.latDim;
  if (isZero(vector[last])) return false;
  if (vector[last] < embedding.l[last] || vector[last] > embedding.r[last]) return false;
  HeuristicVector<T, U> candidate = computeDeviation(vector, false);
  const bool improves = !best.notEmpty() || isBetter(candidate, best);
  if (improves) {
    if (!run.restoring) ++run.heuristicHits;
    candidate.time = discoveryTime(time);
    best = candidate;
  } else if (isEqual(candidate, best)) {
    static_cast<Vector<T>&>(best) = vector;
  } else {
    return false;
  }
  if (params.sieve) found.inhomogeneousVectors.insert(best);
  return true;
}

template <typename T, typename U>
int Lattice<T, U>::evaluateTarget(const Vector<T>& vector, TargetVector<T>& targetVector,
                                  std::int64_t time, bool replay, bool& widened) {
  Vector<T> x;
  widened = false;
  const auto take = [&] {
    static_cast<Vector<T>&>(targetVector) = vector;
    targetVector.time = discoveryTime(time);
  };
  if (embedding.checkMode == 1 || program.At.rowCount == 0) {
    widened = lat2opt(vector, x, true, false) == 1 && widenObservedRange(x);
    const int word = WITHIN_BOUNDS | (widened ? IMPROVED : 0);
    if (embedding.checkMode == 1) return word;
    take();
    return word | EVALUATED;
  }

  TargetVector<T>& best = found.bestTarget;
  if (best.notEmpty() && vector == best) return WITHIN_BOUNDS;
  if (lat2opt(vector, x, true, true) != 1) fail("is not within lattice1");
  const Vector<T> values = program.At * x;
  targetVector.targetNorm = program.targetAndSlackNorm(values, x, targetVector.slackNorm);
  if (best.notEmpty() && targetVector.targetNorm > best.targetNorm) return WITHIN_BOUNDS;
  take();
  widened = widenObservedRange(x);
  const bool improves = targetVector.targetNorm < best.targetNorm;
  if (improves) {
    if (!run.restoring) ++run.targetHits;
    targetVector.targetValue = program.combinedValue(values);
    best = targetVector;
    program.tightenTargetBound(values, best.targetValue);
  }
  if (replay && !(best.targetValue > program.lrtu.right)) {
    fail("This case should not happen between a backup / restore!");
  }
  return WITHIN_BOUNDS | EVALUATED | (!replay && (improves || widened) ? IMPROVED : 0);
}

template <typename T, typename U>
bool Lattice<T, U>::widenObservedRange(const Vector<T>& x) {
  const T infinity = NumberTraits<T>::infinity();
  bool widened = false;
  for (std::int64_t i = 1; i <= x.MN; ++i) {
    T& left = program.lx[i];
    T& right = program.rx[i];
    const FreedomDegree degree = program.freedomDegrees[i];
    const bool free = degree == FreedomDegree::FREE;
    if ((x[i] < left || left == -infinity) && (free || degree == FreedomDegree::LEFT_FREE)) {
      left = x[i];
      widened = true;
    }
    if ((x[i] > right || right == infinity) && (free || degree == FreedomDegree::RIGHT_FREE)) {
      right = x[i];
      widened = true;
    }
  }
  if (widened) program.boundTargetFromVariables();
  return widened;
}

template <typename T, typename U>
bool Lattice<T, U>::isAcceptedStar(const TargetVector<T>& targetVector) const {
  const T off = -NumberTraits<T>::infinity();
  const T& tnorm = params.tnorm;
  const T& snorm = params.snorm;
  if (program.At.rowCount == 0) return true;
  if (program.allTargetsFinite && targetVector.slackNorm == T{}) return true;
  if (tnorm == off) return targetVector.slackNorm <= snorm;
  if (snorm == off) return targetVector.targetNorm <= tnorm;
  return targetVector.targetNorm <= tnorm && targetVector.slackNorm <= snorm;
}

template <typename T, typename U>
void Lattice<T, U>::acceptStar(const TargetVector<T>& targetVector, std::int64_t time) {
  Array<TargetVector<T>>& stars = found.stars;
  for (const TargetVector<T>& star : stars.elements()) {
    if (star == targetVector) return;
  }
  stars.resize(stars.MN + 1, true);
  stars[stars.MN] = targetVector;
  stars[stars.MN].time = discoveryTime(time);
  if (!run.restoring) ++run.starHits;
  if (params.cellsEnabled) {
    (*cells)[MainMutexVariable::STAR_COUNT].set(std::to_string(stars.MN));
    (*cells)[MainMutexVariable::NEWEST_STAR].set(joined(stars[stars.MN]));
  }
  writeSolFile(false);
  checkConsistency(false, false);
}

/// The time to record: the given one, or now.
template <typename T, typename U>
std::int64_t Lattice<T, U>::discoveryTime(std::int64_t time) {
  return time == 0 ? run.secondsSinceStart() : time;
}

}  // namespace vexil
