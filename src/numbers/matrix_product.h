// Vexil - exact integer optimization on lattices.
//
// Many products of one matrix with vectors.
#pragma once

#include <optional>
#include <vector>

#include "foundation/matrix.h"
#include "numbers/qq_vectors.h"

namespace vexil {

/// The products A x of a matrix that does not change as long as this object lives.
template <typename T>
class MatrixProduct {
 public:
  explicit MatrixProduct(const Matrix<T>& A) : A_(A) {}

  /// A x, with the failures of that product.
  [[nodiscard]] Vector<T> operator()(const Vector<T>& x) { return A_ * x; }

 private:
  const Matrix<T>& A_;
};

/// With exact rationals, a row and a vector of whole numbers are multiplied as machine integers where no
/// sum can leave their range. The integers are collected once, at the first product.
template <>
class MatrixProduct<QQ> {
 public:
  explicit MatrixProduct(const Matrix<QQ>& A) : A_(A) {}

  [[nodiscard]] Vector<QQ> operator()(const Vector<QQ>& x);

 private:
  /// Whole numbers of up to 18 digits with their greatest magnitude.
  struct Integers {
    std::vector<long> values;
    long bound = 0;
  };

  static std::optional<Integers> integersOf(const Vector<QQ>& x);
  static bool sumFits(const Integers& a, const Integers& b);

  const Matrix<QQ>& A_;
  std::vector<std::optional<Integers>> rows_;
};

}  // namespace vexil
