// Vexil - exact integer optimization on lattices.
#include "lattice/weighted_form.h"

namespace vexil {

template <typename T>
void WeightedForm<T>::resize(std::int64_t cols) {
  const auto widen = [cols](Vector<T>& perCoordinate, const T& neutral) {
    std::int64_t i = perCoordinate.MN;
    perCoordinate.resize(cols, false);
    while (++i <= cols) perCoordinate.data[i] = neutral;
  };
  widen(weights, T(1));
  widen(translation, T{});
}

template <typename T>
void WeightedForm<T>::dropLeading(std::int64_t count) {
  weights.dropLeading(count);
  translation.dropLeading(count);
}

template <typename T>
void WeightedForm<T>::resetWeights() {
  weights.fill(T(1));
  signReferenceLat = signReference;
}

template <typename T>
void WeightedForm<T>::resetTranslation(std::int64_t cols) {
  translation.resize(cols, false);
  translation.fill(T{});
}

template <typename T>
Vector<T> WeightedForm<T>::weightedRow(const Vector<T>& row, bool scale, bool translate) const {
  Vector<T> result = row;
  if (scale) result *= weights;
  if (translate && row.MN > 0 && !isZero<T>(row[row.MN])) {
    Vector<T> shift = translation;
    shift *= row[row.MN] / signReference;
    result += shift;
  }
  return result;
}

template <typename T>
Vector<T> WeightedForm<T>::unweightedRow(const Vector<T>& row, bool scale, bool translate) const {
  Vector<T> result = row;
  if (translate && row.MN > 0 && !isZero<T>(row[row.MN])) {
    Vector<T> shift = translation;
    shift *= row[row.MN] / (scale ? signReferenceLat : signReference);
    result -= shift;
  }
  if (scale) result /= weights;
  return result;
}

template struct WeightedForm<dbl_t>;
template struct WeightedForm<QQ>;

}  // namespace vexil
