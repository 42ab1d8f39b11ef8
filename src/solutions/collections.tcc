// Vexil - exact integer optimization on lattices.
//
// Candidates that failed a bound: how far they are from the bounds, and the best of them.
#pragma once

#include <algorithm>

#include "lattice/lattice.h"

namespace vexil {

namespace detail {

/// Whether a collection would stay as it is if the vector x with the deviation of `candidate` were
/// inserted: it holds the vector, or it is full of better ones.
template <typename T, typename U>
bool refuses(const SortedSet<HeuristicVector<T, U>>& collection,
             const HeuristicVector<T, U>& candidate, const Vector<T>& x) {
  const auto* p = collection.head;
  for (; p != nullptr && !(p->element < candidate); p = p->next) {
    if (p->element.euclidNorm == candidate.euclidNorm && p->element.equalsExactly(x)) return true;
  }
  return p != nullptr && p == collection.head && collection.count == collection.capacity;
}

/// The same for the homogeneous vector -x of this squared length, by which such vectors are ordered
/// first; the deviation of one that is held need not be computed again.
template <typename T, typename U>
bool refusesNegative(const SortedSet<HeuristicVector<T, U>>& collection, const U& length,
                     const Vector<T>& x) {
  const auto areOpposite = [](const T& a, const T& b) { return a == -b; };
  const U& tolerance = NumberTraits<U>::tolerance();
  const auto* p = collection.head;
  if (p != nullptr && p->element.euclidNorm + tolerance < length) {
    return collection.count == collection.capacity;
  }
  const auto isLonger = [&](const auto* node) {
    return node == nullptr || length + tolerance < node->element.euclidNorm;
  };
  // What a reduction visits again is among the shortest.
  p = collection.tail;
  while (p != nullptr && p->element.euclidNorm < length) p = p->prev;
  for (; !isLonger(p); p = p->prev) {
    const HeuristicVector<T, U>& v = p->element;
    if (v.euclidNorm != length) continue;
    if (!std::equal(v.data + 1, v.data + v.MN + 1, x.data + 1, areOpposite)) continue;
    const auto* q = p->prev;
    while (!isLonger(q) && !(q->element < v)) q = q->prev;
    return isLonger(q);
  }
  return false;
}

}  // namespace detail

/// visit(j, how far x[j] is out of the bounds of coordinate j, 0 for what counts as 0) behind the
/// target, in the order of the list: the last one, the variables, the rows from behind. Variables
/// without a bound of their own do not look at it.
template <typename T, typename U>
template <typename Visitor>
void Lattice<T, U>::forEachViolation(const Vector<T>& vector, Visitor visit) const {
  const T* const x = vector.data;
  const T* const l = embedding.l.data;
  const T* const r = embedding.r.data;
  const auto report = [&](std::int64_t j, bool leftFree, bool rightFree) {
    T violation{};
    if (!leftFree && l[j] > x[j]) violation = l[j] - x[j];
    if (!rightFree && x[j] > r[j]) violation = x[j] - r[j];
    visit(j, isZero(violation) ? T{} : violation);
  };
  const std::int64_t last = basis.latDim;
  const std::int64_t n = this->lx.MN;
  report(last, false, false);
  for (std::int64_t i = 1; i <= n; ++i) {
    const FreedomDegree degree = this->freedomDegrees.data[i];
    report(last - 1 - n + i, isLeftFree(degree), isRightFree(degree));
  }
  for (std::int64_t j = last - n - 1; j > this->tu; --j) report(j, false, false);
}

/// The kind and the violations of a vector.
template <typename T, typename U>
void Lattice<T, U>::measureViolations(const Vector<T>& x, HeuristicVector<T, U>& result) const {
  result.kind = isZero(x[basis.latDim]) ? 1 : 2;
  result.violations = 0;
  result.sumViolation = result.maxViolation = U{};
  forEachViolation(x, [&](std::int64_t j, const T& value) {
    if (value == T{}) return;
    const U violation = numberAs<U>(value);
    ++result.violations;
    result.sumViolation += violation;
    if (!(violation > result.maxViolation)) return;
    result.maxViolation = violation;
    result.maxViolationIndex = j;
  });
  result.inBounds = this->tu != 0 && result.violations == 0;
}

template <typename T, typename U>
SerializableArray<RightOrderPair<long, U>> Lattice<T, U>::violationList(
    const Vector<T>& vector, bool withTargets, bool isLatticeVector) const {
  const Vector<T> x = isLatticeVector ? unweightedRow(vector) : vector;
  SerializableArray<RightOrderPair<long, U>> list;
  const auto add = [&](std::int64_t j, const T& violation) {
    if (violation == T{}) return;
    list.resize(list.MN + 1, true);
    list[list.MN] = {static_cast<long>(j), numberAs<U>(violation)};
  };
  forEachViolation(x, add);
  if (!withTargets && this->tu != 0) {
    const T t = program.combinedValue(program.At * mappedPoint(x));
    const T violation = std::max<T>(program.lrtu.left - t, t - program.lrtu.right);
    if (violation > NumberTraits<T>::tolerance()) add(1, violation);
  }
  const auto entries = list.elements();
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return b < a; });
  return list;
}

/// The point of a vector that carries the right-hand side.
template <typename T, typename U>
Vector<T> Lattice<T, U>::mappedPoint(const Vector<T>& vector) const {
  Vector<T> x;
  if (lat2opt(vector, x, true, true) != 1) fail("is not within lattice2");
  return x;
}

template <typename T, typename U>
HeuristicVector<T, U> Lattice<T, U>::computeDeviation(const Vector<T>& vector,
                                                      bool isLatticeVector) const {
  if (isLatticeVector) return computeDeviation(normalised(vector, true), false);
  return deviationOf(vector, vector * vector);
}

/// Of a vector with this squared length.
template <typename T, typename U>
HeuristicVector<T, U> Lattice<T, U>::deviationOf(const Vector<T>& x, const T& length) const {
  HeuristicVector<T, U> result;
  static_cast<Vector<T>&>(result) = x;
  measureViolations(x, result);
  if (result.inBounds) {
    const Vector<T> point = mappedPoint(x);
    T slackNorm;
    result.targetNorm =
        numberAs<U>(program.targetAndSlackNorm(program.At * point, point, slackNorm));
  }
  result.euclidNorm = numberAs<U>(length);
  return result;
}

template <typename T, typename U>
bool Lattice<T, U>::collect(const TimeVector<T>& vector, Collection* homogeneous,
                            Collection* inhomogeneous) {
  return collectAt(vector, vector.time,
                   homogeneous == nullptr ? found.homogeneousVectors : *homogeneous,
                   inhomogeneous == nullptr ? found.inhomogeneousVectors : *inhomogeneous);
}

/// Most vectors of a reduction are too long, so that comes first.
template <typename T, typename U>
bool Lattice<T, U>::collectAt(const Vector<T>& vector, std::optional<std::int64_t> time,
                              Collection& homogeneous, Collection& inhomogeneous) {
  const T length = vector * vector;
  if (length > embedding.maxNorm) return false;
  HeuristicVector<T, U> candidate = deviationOf(vector, length);
  candidate.time = time ? *time : run.secondsSinceStart();
  return (candidate.kind == 1 ? homogeneous : inhomogeneous).insert(std::move(candidate));
}

/// Whether it is plain that row k is out of bounds, does not come up to `bestHeuristic` and goes
/// into no collection. False where it would take more to tell.
template <typename T, typename U>
bool Lattice<T, U>::isOfNoUse(std::int64_t k) {
  if (params.scale || params.translate) return false;
  if (embedding.checkMode == 0 || !membership.isBuilt()) return false;
  const Vector<T>& row = basis.B[k];
  const bool turned = !hasRightSign(row, true);
  const T& last = row[basis.latDim];
  const T& l = embedding.l[basis.latDim];
  const T& r = embedding.r[basis.latDim];
  const bool isOutside = turned ? -last < l || -last > r : last < l || last > r;
  const bool collects = params.pair || params.sieve;
  if (isOutside && !collects) return true;
  const T length = gramSchmidt.squaredLength(basis.B, k);
  const bool isCollected = collects && !(length > embedding.maxNorm);
  if (isOutside && !isCollected) return true;
  if (isOutside && turned && isZero(last)) {
    return detail::refusesNegative(found.homogeneousVectors, numberAs<U>(length), row);
  }
  const HeuristicVector<T, U>& best = found.bestHeuristic;
  if (isZero(last) || (!isOutside && best.kind != 2)) return false;

  static Vector<T> negative;  // its storage is used again
  if (turned) {
    negative = row;
    negative.negate();
  }
  const Vector<T>& x = turned ? negative : row;
  HeuristicVector<T, U> candidate;
  measureViolations(x, candidate);
  candidate.euclidNorm = numberAs<U>(length);
  if (candidate.violations == 0) return false;
  if (!isOutside && !isBetter(best, candidate)) return false;
  return !isCollected || detail::refuses(found.inhomogeneousVectors, candidate, x);
}

}  // namespace vexil
