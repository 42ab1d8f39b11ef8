// Vexil - exact integer optimization on lattices.
//
// Candidates that failed a bound: how far they are from the bounds, and the best of them.
#pragma once

#include <algorithm>

#include "lattice/lattice.h"

namespace vexil {

namespace detail {

/// Whether v has exactly the coordinates x(j).
template <typename T, typename Coordinate>
bool equals(const Vector<T>& v, Coordinate x) {
  for (std::int64_t j = 1; j <= v.MN; ++j) {
    if (!(v.data[j] == x(j))) return false;
  }
  return true;
}

/// Whether a collection would stay as it is if the vector with the coordinates x(j) and the
/// deviation of `candidate` were inserted: it holds the vector, or it is full of better ones.
template <typename T, typename U, typename Coordinate>
bool refuses(const SortedSet<HeuristicVector<T, U>>& collection,
             const HeuristicVector<T, U>& candidate, Coordinate x) {
  const auto* p = collection.head;
  for (; p != nullptr && !(p->element < candidate); p = p->next) {
    if (p->element.euclidNorm == candidate.euclidNorm && equals(p->element, x)) return true;
  }
  return p != nullptr && p == collection.head && collection.count == collection.capacity;
}

/// The same for a homogeneous vector of this squared length, by which such vectors are ordered
/// first; the deviation of one that is held need not be computed again.
template <typename T, typename U, typename Coordinate>
bool refusesHomogeneous(const SortedSet<HeuristicVector<T, U>>& collection, const U& length,
                        Coordinate x) {
  const U& tolerance = NumberTraits<U>::tolerance();
  const auto* firstAsLong = collection.head;
  while (firstAsLong != nullptr && length + tolerance < firstAsLong->element.euclidNorm) {
    firstAsLong = firstAsLong->next;
  }
  for (const auto* p = firstAsLong; p != nullptr; p = p->next) {
    const HeuristicVector<T, U>& v = p->element;
    if (v.euclidNorm + tolerance < length) {
      return p == collection.head && collection.count == collection.capacity;
    }
    if (v.euclidNorm != length || !equals(v, x)) continue;
    for (const auto* q = firstAsLong; q != p; q = q->next) {
      if (q->element < v) return false;
    }
    return true;
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

/// visit(j, violation) for the coordinates x(j) behind the target, in the order of the list: the
/// last one, the variables, the rows from behind.
template <typename T, typename U>
template <typename Coordinate, typename Visitor>
void Lattice<T, U>::forEachViolation(Coordinate x, Visitor visit) const {
  const std::int64_t last = basis.latDim;
  const std::int64_t variables = last - this->lx.MN;
  const auto report = [&](std::int64_t j) { visit(j, violation(j, x(j))); };
  report(last);
  for (std::int64_t j = variables; j < last; ++j) report(j);
  for (std::int64_t j = variables - 1; j > this->tu; --j) report(j);
}

/// The kind and the violations of a vector with the coordinates x(j).
template <typename T, typename U>
template <typename Coordinate>
void Lattice<T, U>::measureViolations(Coordinate x, HeuristicVector<T, U>& result) const {
  result.kind = isZero<T>(x(basis.latDim)) ? 1 : 2;
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
  forEachViolation([&](std::int64_t j) -> const T& { return x.data[j]; }, add);
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
  measureViolations([&](std::int64_t j) -> const T& { return x.data[j]; }, result);
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

/// Whether it is plain that a row is out of bounds, does not come up to `bestHeuristic` and goes
/// into no collection. False where it would take more to tell.
template <typename T, typename U>
bool Lattice<T, U>::isOfNoUse(const Vector<T>& row) const {
  if (params.scale || params.translate) return false;
  if (embedding.checkMode == 0 || !membership.isBuilt()) return false;
  const std::int64_t last = basis.latDim;
  const bool turned = !hasRightSign(row, true);
  const auto x = [&](std::int64_t j) { return turned ? T(-row.data[j]) : row.data[j]; };
  const T carried = x(last);
  const bool isOutside = carried < embedding.l[last] || carried > embedding.r[last];
  const T length = params.pair || params.sieve || !isOutside ? row * row : T{};
  const bool isCollected = (params.pair || params.sieve) && !(length > embedding.maxNorm);
  if (isOutside && !isCollected) return true;
  if (isOutside && isZero(carried)) {
    return detail::refusesHomogeneous(found.homogeneousVectors, numberAs<U>(length), x);
  }
  const HeuristicVector<T, U>& best = found.bestHeuristic;
  if (!isOutside && (best.kind != 2 || isZero(carried))) return false;
  HeuristicVector<T, U> candidate;
  measureViolations(x, candidate);
  candidate.euclidNorm = numberAs<U>(length);
  if (candidate.violations == 0) return false;
  if (!isOutside && !isBetter(best, candidate)) return false;
  return !isCollected || detail::refuses(found.inhomogeneousVectors, candidate, x);
}

}  // namespace vexil
