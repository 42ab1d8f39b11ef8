// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/time_vector.h"
#include "numbers/convert.h"
#include "solutions/write_time.h"

namespace vexil {

/// A feasible vector of the running engine, in lattice coordinates. Its conversion to standard
/// precision refuses to lose digits.
template <typename T>
class TargetVector : public TimeVector<T> {
 public:
  T slackNorm{-1};  ///< -1: not evaluated
  T targetNorm{NumberTraits<T>::infinity()};
  T targetValue{NumberTraits<T>::infinity()};  ///< value of the combined target row

  TargetVector() { this->throwOnLoss = true; }
  TargetVector(const TargetVector& other) : TargetVector() { *this = other; }
  TargetVector(TargetVector&& other) noexcept : TargetVector() { *this = std::move(other); }
  TargetVector& operator=(const TargetVector&) = default;
  TargetVector& operator=(TargetVector&&) noexcept = default;
  ~TargetVector() override = default;

  void clear() override {
    TimeVector<T>::clear();
    slackNorm = T(-1);
    targetNorm = NumberTraits<T>::infinity();
    targetValue = NumberTraits<T>::infinity();
    this->throwOnLoss = true;
  }

  /// Writes "T(bestTarget) = ", the target norm, ", S(bestTarget) = ", the slack norm and, once a
  /// target norm is known, the time of the discovery.
  void writeBestTarget(std::ostream& out) const {
    out << "T(bestTarget) = " << targetNorm << ", S(bestTarget) = " << slackNorm;
    if (targetNorm != NumberTraits<T>::infinity()) {
      out << " -- { ";
      writeTime(out, this->time);
      out << " }";
    }
  }
};

/// Copies across the arithmetics; elements and numbers go by the flags of the target.
template <typename S, typename T>
void convert(const TargetVector<S>& source, TargetVector<T>& target, bool check) {
  const auto convertField = [&](const S& from, T& to) {
    convertNumber(from, to, check, target.throwOnLoss, target.tolerateFraction);
  };
  convert(static_cast<const Vector<S>&>(source), static_cast<Vector<T>&>(target), check);
  target.time = source.time;
  convertField(source.slackNorm, target.slackNorm);
  convertField(source.targetNorm, target.targetNorm);
  convertField(source.targetValue, target.targetValue);
}

}  // namespace vexil
