// Vexil - exact integer optimization on lattices.
#include "numbers/matrix_product.h"

namespace vexil {

template <typename T>
Vector<T> MatrixProduct<T>::operator()(const Vector<T>& x) {
  if (x.MN != A_.columnCount || !integers_.take(x)) return A_ * x;
  if (rows_.empty()) {
    for (const Vector<T>& row : A_.elements()) rows_.emplace_back().take(row);
  }
  Vector<T> result;
  result.resize(A_.rowCount, false);
  for (std::int64_t i = 1; i <= A_.rowCount; ++i) {
    const auto product = rows_[static_cast<std::size_t>(i - 1)] * integers_;
    result.data[i] = product ? static_cast<T>(*product) : A_.rows[i] * x;
  }
  return result;
}

template class MatrixProduct<dbl_t>;
template class MatrixProduct<QQ>;

}  // namespace vexil
