// Vexil - exact integer optimization on lattices.
#pragma once

#include <tuple>

#include "numbers/qq_vectors.h"

namespace vexil {

/// The form in which the rows of a basis are held: each coordinate times its weight, plus a
/// multiple of a translation for rows that carry the right-hand side. The two parts are switched on
/// by the options `scale` and `translate`; with both off the form is the identity.
template <typename T>
struct WeightedForm {
  Vector<T> weights;      ///< weight of each coordinate
  Vector<T> translation;  ///< shift of each coordinate, for a row that ends in `signReference`
  T signReference{1};     ///< what the last coordinate of the inhomogeneous vector carries
  T signReferenceLat{};   ///< `signReference` times the weight of the last coordinate

  template <typename Self>
  static auto members(Self& self) {
    auto& [weights, translation, signReference, signReferenceLat] = self;
    return std::tie(weights, translation, signReference, signReferenceLat);
  }

  /// New coordinates start in the identity form.
  void resize(std::int64_t cols);

  /// Takes out the first `count` coordinates.
  void dropLeading(std::int64_t count);

  /// Back to weights of 1.
  void resetWeights();
  /// Back to no translation, for `cols` coordinates.
  void resetTranslation(std::int64_t cols);

  /// A row brought into the form: times `weights` with `scale`, then plus the translation with
  /// `translate` where its last coordinate is not zero. "Vector: dimension mismatch3", "Vector:
  /// dimension mismatch1".
  [[nodiscard]] Vector<T> weightedRow(const Vector<T>& row, bool scale, bool translate) const;

  /// A row taken out of the form. "Vector: dimension mismatch2", "Vector: dimension mismatch4".
  [[nodiscard]] Vector<T> unweightedRow(const Vector<T>& row, bool scale, bool translate) const;
};

extern template struct WeightedForm<dbl_t>;
extern template struct WeightedForm<QQ>;

}  // namespace vexil
