// Vexil - exact integer optimization on lattices.
#pragma once

#include <vector>

#include "foundation/matrix.h"
#include "numbers/integer_row.h"
#include "numbers/qq_vectors.h"

namespace vexil {

/// Many products of one matrix, which must not change in the meantime, with vectors.
///
/// Where a row and a vector hold whole numbers and no sum of products can leave the range of a
/// machine integer, the scalar product is formed in integers: neither arithmetic rounds there, so
/// the result is the same. The integers of the matrix are collected once, at the first product.
template <typename T>
class MatrixProduct {
 public:
  explicit MatrixProduct(const Matrix<T>& A) : A_(A) {}

  /// A x, with the failures of that product.
  [[nodiscard]] Vector<T> operator()(const Vector<T>& x);

 private:
  const Matrix<T>& A_;
  std::vector<IntegerRow> rows_;
  IntegerRow integers_;
};

extern template class MatrixProduct<dbl_t>;
extern template class MatrixProduct<QQ>;

}  // namespace vexil
