// Vexil - exact integer optimization on lattices.
#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

#include "foundation/time_vector.h"
#include "numbers/convert.h"

namespace vexil {

/// A candidate that failed a bound, in lattice coordinates, with its deviation from the bounds. T
/// is the type of the elements, U that of the deviation. Its conversion to standard precision
/// refuses to lose digits.
template <typename T, typename U>
class HeuristicVector : public TimeVector<T> {
 public:
  bool inBounds = false;                        ///< nothing is violated, and there is a target row
  U targetNorm{NumberTraits<U>::infinity()};    ///< of a vector within bounds, else +inf
  U maxViolation{NumberTraits<U>::infinity()};  ///< greatest violation of a coordinate
  std::int64_t violations = std::numeric_limits<std::int64_t>::max();  ///< violating coordinates
  /// Sum of all violations.
  U sumViolation{NumberTraits<U>::infinity()};
  std::int64_t maxViolationIndex = 0;  ///< coordinate of the greatest violation
  U euclidNorm{};                      ///< squared Euclidean length
  std::int8_t kind = 0;  ///< 0: not computed; 1: last coordinate is zero; 2: it is not

  HeuristicVector() { this->throwOnLoss = true; }
  HeuristicVector(const HeuristicVector& other) : HeuristicVector() { *this = other; }
  HeuristicVector(HeuristicVector&& other) noexcept : HeuristicVector() {
    *this = std::move(other);
  }
  HeuristicVector& operator=(const HeuristicVector&) = default;
  HeuristicVector& operator=(HeuristicVector&&) noexcept = default;
  ~HeuristicVector() override = default;

  /// Forgets the vector; of the deviation only `kind` goes back to its default.
  void clear() override {
    TimeVector<T>::clear();
    kind = 0;
  }

  /// Equality of the vectors. Those whose lengths lie further apart than the tolerance of their
  /// elements can bring about are told apart by them.
  bool operator==(const HeuristicVector& other) const {
    if constexpr (std::is_floating_point_v<U>) {
      const U reach = TOLERANCE * (euclidNorm + static_cast<U>(this->MN + 1));
      const bool areMeasured = kind != 0 && other.kind != 0;
      if (areMeasured && std::fabs(euclidNorm - other.euclidNorm) > reach) return false;
    }
    return Vector<T>::operator==(other);
  }

  /// The better deviation comes first: `isBetter` of this one and `other`.
  virtual bool operator<(const HeuristicVector& other) const { return isBetter(*this, other); }
};

/// Strict order of deviations, where less means less by more than 10^-9: a computed vector that
/// carries the right-hand side is better than one that does not, those by length; then vectors
/// within bounds by target norm; then by count, maximum and sum of the violations and by length.
/// Fatal: "Heuristic deviation is not initialized!" where one of two different kinds is 0.
template <typename T, typename U>
[[nodiscard]] bool isBetter(const HeuristicVector<T, U>& a, const HeuristicVector<T, U>& b) {
  const auto less = [](const U& x, const U& y) {
    static const U tolerance = U(1) / U(1000000000);
    return x + tolerance < y;
  };
  const auto differ = [&](const U& x, const U& y) { return less(x, y) || less(y, x); };
  if (&a == &b) return false;
  if (a.kind != b.kind) {
    if (a.kind == 0 || b.kind == 0) fail("Heuristic deviation is not initialized!");
    return a.kind == 2;
  }
  if (a.kind == 1 && less(b.euclidNorm, a.euclidNorm)) return false;  // as in most comparisons
  if (a.kind == 1 && less(a.euclidNorm, b.euclidNorm)) return true;
  if (a.inBounds) return !b.inBounds || less(a.targetNorm, b.targetNorm);
  if (b.inBounds) return false;
  if (a.violations != b.violations) return a.violations < b.violations;
  if (differ(a.maxViolation, b.maxViolation)) return less(a.maxViolation, b.maxViolation);
  if (differ(a.sumViolation, b.sumViolation)) return less(a.sumViolation, b.sumViolation);
  return less(a.euclidNorm, b.euclidNorm);
}

/// Neither is better than the other, with the failure of `isBetter`.
template <typename T, typename U>
[[nodiscard]] bool isEqual(const HeuristicVector<T, U>& a, const HeuristicVector<T, U>& b) {
  return !isBetter(a, b) && !isBetter(b, a);
}

/// Copies across the arithmetics; elements and numbers go by the flags of the target. With `check`
/// the round trip is tested where digits can be lost.
template <typename S, typename V, typename T, typename U>
void convert(const HeuristicVector<S, V>& source, HeuristicVector<T, U>& target, bool check) {
  const auto convertField = [&](const V& from, U& to) {
    convertNumber(from, to, check && narrows<V, U>, target.throwOnLoss, target.tolerateFraction);
  };
  convert(static_cast<const Vector<S>&>(source), static_cast<Vector<T>&>(target),
          check && narrows<S, T>);
  target.time = source.time;
  target.inBounds = source.inBounds;
  convertField(source.targetNorm, target.targetNorm);
  convertField(source.maxViolation, target.maxViolation);
  target.violations = source.violations;
  convertField(source.sumViolation, target.sumViolation);
  target.maxViolationIndex = source.maxViolationIndex;
  convertField(source.euclidNorm, target.euclidNorm);
  target.kind = source.kind;
}

}  // namespace vexil
