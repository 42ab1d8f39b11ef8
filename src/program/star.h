// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/time_vector.h"
#include "numbers/convert.h"

namespace vexil {

/// A solution of an optimization program as the sol file holds it: the elements are the values of
/// the program's variables. A cleared star keeps its target values, norms and texts.
template <typename T>
class Star : public TimeVector<T> {
 public:
  Vector<T> targetValues;  ///< `At` x, one value per target
  T slackNorm{};
  T targetNorm{};
  String paramText;  ///< the options in force when the star was made
  String version;    ///< dotted version of the program that made the star

  Star() = default;
  Star(const Vector<T>& elements, const Vector<T>& values, const T& targetNorm_,
       const T& slackNorm_, std::int64_t time_, const String& paramText_, const String& version_);

  /// Parses one line of a sol file into `star`. Only the elements are emptied first: a field that
  /// the line does not hold keeps the value of the line before. Returns false for a bare line, one
  /// that has no "|" behind the elements. A recoverable exception leaves the star without elements.
  static bool readStar(Star& star, std::istream& in);

  /// Makes `target` this star; the elements are moved, so this one is left without elements and
  /// keeps everything else.
  void handOver(Star& target);
};

/// Compares dotted versions component by component, a missing one counting as 0: 1 if `a` is the
/// greater, -1 if `b` is, else 0.
[[nodiscard]] int compareVersions(const String& a, const String& b);

/// The order of stars, best first: by target norm, slack norm, time (a known one first), newer
/// version, text of the elements, options. Two stars that differ in their versions alone are
/// ordered by the options if the first is the older one, so this is no strict order for them.
template <typename T>
[[nodiscard]] bool operator<(const Star<T>& a, const Star<T>& b);

/// Heap sort (J. W. J. Williams, "Algorithm 232: Heapsort", 1964), best star first. The steps are
/// fixed, since the order of stars is no strict order.
template <typename T>
void sort(Array<Star<T>>& stars);

/// Keeps the first of all stars with equal elements and, with `compareParams`, equal `paramText`.
/// The elements are compared first, within the tolerance of vectors.
template <typename T>
void removeDuplicates(Array<Star<T>>& stars, bool compareParams);

/// Copies across the arithmetics. The norms follow the rule of the vectors: the flags of the target
/// and, with `check`, the round trip within the tolerance.
template <typename S, typename T>
void convert(const Star<S>& source, Star<T>& target, bool check) {
  convert(static_cast<const Vector<S>&>(source), static_cast<Vector<T>&>(target), check);
  const auto convertNorm = [&](const S& from, T& to) {
    convertNumber(from, to, check, target.throwOnLoss, target.tolerateFraction);
  };
  target.time = source.time;
  convert(source.targetValues, target.targetValues, check);
  convertNorm(source.slackNorm, target.slackNorm);
  convertNorm(source.targetNorm, target.targetNorm);
  target.paramText = source.paramText;
  target.version = source.version;
}

extern template class Star<dbl_t>;
extern template class Star<QQ>;
extern template class Array<Star<dbl_t>>;
extern template class Array<Star<QQ>>;
extern template bool operator<(const Star<dbl_t>&, const Star<dbl_t>&);
extern template bool operator<(const Star<QQ>&, const Star<QQ>&);
extern template void sort(Array<Star<dbl_t>>&);
extern template void sort(Array<Star<QQ>>&);
extern template void removeDuplicates(Array<Star<dbl_t>>&, bool);
extern template void removeDuplicates(Array<Star<QQ>>&, bool);

}  // namespace vexil
