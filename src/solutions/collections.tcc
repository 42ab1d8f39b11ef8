// Vexil - exact integer optimization on lattices.
//
// Candidates that failed a bound: how far they are from the bounds, and the best of them.
#pragma once

#include <algorithm>

#include "lattice/lattice.h"

namespace vexil {

/// visit(j, violation) for the coordinates from `first` on, in the order of the list: the last one,
/// the variables, the rows from behind. A violation that counts as 0 is handed on as 0.
template <typename T, typename U>
template <typename Visitor>
void Lattice<T, U>::forEachViolation(const Vector<T>& x, std::int64_t first, Visitor visit) const {
  const Vector<T>& l = embedding.l;
  const Vector<T>& r = embedding.r;
  const std::int64_t last = basis.latDim;
  const std::int64_t n = this->lx.MN;
  const auto report = [&](std::int64_t j, bool left, bool right) {
    T violation{};
    if (left && l.data[j] > x.data[j]) violation = l.data[j] - x.data[j];
    if (right && x.data[j] > r.data[j]) violation = x.data[j] - r.data[j];
    if (isZero(violation)) violation = T{};
    visit(j, violation);
  };
  report(last, true, true);
  for (std::int64_t i = 1; i <= n; ++i) {
    const FreedomDegree degree = this->freedomDegrees[i];
    const bool free = degree == FreedomDegree::FREE;
    report(last - n + i - 1, !free && degree != FreedomDegree::LEFT_FREE,
           !free && degree != FreedomDegree::RIGHT_FREE);
  }
  for (std::int64_t j = last - n - 1; j >= first; --j) report(j, true, true);
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
  forEachViolation(x, this->tu + 1, add);
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
  result.kind = isZero(x[basis.latDim]) ? 1 : 2;
  result.violations = 0;
  result.sumViolation = result.maxViolation = U{};
  forEachViolation(x, this->tu + 1, [&](std::int64_t j, const T& value) {
    if (value == T{}) return;
    const U violation = numberAs<U>(value);
    ++result.violations;
    result.sumViolation += violation;
    if (!(violation > result.maxViolation)) return;
    result.maxViolation = violation;
    result.maxViolationIndex = j;
  });
  result.inBounds = this->tu != 0 && result.violations == 0;
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

}  // namespace vexil
