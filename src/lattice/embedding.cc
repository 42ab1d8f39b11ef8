// Vexil - exact integer optimization on lattices.
#include "lattice/embedding.h"

#include <algorithm>

namespace vexil {

template <typename T>
void Embedding<T>::resize(std::int64_t cols) {
  for (Vector<T>* const perCoordinate : {&c, &l, &l0, &r, &r0}) perCoordinate->resize(cols, false);
}

template <typename T>
void Embedding<T>::dropLeading(std::int64_t count) {
  for (Vector<T>* const perCoordinate : {&c, &l, &l0, &r, &r0}) perCoordinate->dropLeading(count);
}

template <typename T>
void Embedding<T>::computeMaxNorm() {
  maxNorm = T(3) * std::max<T>(l * l, r * r);
}

template struct Embedding<dbl_t>;
template struct Embedding<QQ>;

}  // namespace vexil
