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
  for (p = collection.tail; !isLonger(p); p = p->prev) {
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

/// How far x is out of the bounds of coordinate j; 0 for what counts as 0. Variables without a
/// bound of their own do not look at it.
template <typename T, typename U>
T Lattice<T, U>::violation(std::int64_t j, const T& x) const {
  const std::int64_t variable = j - (basis.latDim - 1 - this->lx.MN);
  auto degree = FreedomDegree::BOUNDED;
  if (variable >= 1 && variable <= this->lx.MN) degree = this->freedomDegrees.data[variable];
  const bool leftFree = degree == FreedomDegree::LEFT_FREE || degree == FreedomDegree::FREE;
  const T& l = embedding.l.data[j];
  const T& r = embedding.r.data[j];
  T result{};
  if (!leftFree && l > x) result = l - x;
  if (!isRightFree(degree) && x > r) result = x - r;
  return isZero(result) ? T{} : result;
}

/// visit(j, violation) for the coordinates behind the target, in the order of the list: the last
/// one, the variables, the rows from behind.
template <typename T, typename U>
template <typename Visitor>
void Lattice<T, U>::forEachViolation(const Vector<T>& x, Visitor visit) const {
  const std::int64_t last = basis.latDim;
  const std::int64_t variables = last - this->lx.MN;
  const auto report = [&](std::int64_t j) { visit(j, violation(j, x.data[j])); };
  report(last);
  for (std::int64_t j = variables; j < last; ++j) report(j);
  for (std::int64_t j = variables - 1; j > this->tu; --j) report(j);
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
  HeuristicVector<T, U> result;
  Vector<T>& x = result;
  x = isLatticeVector ? normalised(vector, true) : vector;
  measureViolations(x, result);
  if (result.inBounds) {
    const Vector<T> point = mappedPoint(x);
    T slackNorm;
    result.targetNorm =
        numberAs<U>(program.targetAndSlackNorm(program.At * point, point, slackNorm));
  }
  result.euclidNorm = numberAs<U>(x * x);
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
  if (vector * vector > embedding.maxNorm) return false;
  HeuristicVector<T, U> candidate = computeDeviation(vector, false);
  candidate.time = time ? *time : run.secondsSinceStart();
  return (candidate.kind == 1 ? homogeneous : inhomogeneous).insert(candidate);
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
