// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/vector.h"

namespace vexil {

/// Mathematical matrix of `rowCount` rows, each a whole vector, and `columnCount` columns; A[i][j]
/// counts from 1. The text form is "[", a line for each row, "]".
///
/// Dimension failures are fatal with the text named beside the operation, before anything is
/// changed.
template <typename T>
class Matrix : public ConversionArray<Vector<T>>, public Serializable {
 public:
  std::int64_t& rowCount = this->MN;
  std::int64_t columnCount = 0;
  Vector<T>* rows = nullptr;  ///< the block of the array: rows[1] to rows[rowCount]

  Matrix() : Serializable(",", false, false) {}
  Matrix(const Matrix& other)
      : ConversionArray<Vector<T>>(other),
        Serializable(other),
        columnCount(other.columnCount),
        rows(this->data) {}
  Matrix(Matrix&& other) noexcept : Matrix() { *this = std::move(other); }
  Matrix& operator=(const Matrix& other);
  Matrix& operator=(Matrix&& other) noexcept;
  ~Matrix() override = default;

  /// Keeps the number of columns.
  void resize(std::int64_t m, bool reserveMore) override { resize(m, columnCount, reserveMore); }

  /// Makes room for at least `m` rows and gives every row `n` columns; rows are never removed.
  /// Fatal: "Matrix: invalid size".
  void resize(std::int64_t m, std::int64_t n, bool reserveMore);

  /// Gives the matrix exactly `m` rows and `n` columns; rows behind the `m`-th drop off.
  void setSize(std::int64_t m, std::int64_t n);

  /// Takes a copy of `row` as a new last row, with 0 in the columns that it lacks; a matrix without
  /// columns takes its width. Fatal: "Matrix row dimension mismatch" for a row that is too long.
  void appendRow(const Vector<T>& row);

  /// Drops row `i`; the later ones move up. Fatal: "Invalid row index!".
  void removeRow(std::int64_t i);

  /// Drops column `j`; an empty matrix stays so. Fatal: "removeComponent: invalid index".
  void removeColumn(std::int64_t j);

  /// Gives every row `n` columns, the new ones holding 0.
  void widen(std::int64_t n);

  /// Changes the sign of column `j`, and divides column `j` by `divisor`.
  void negateColumn(std::int64_t j);
  void divideColumn(std::int64_t j, const T& divisor);

  [[nodiscard]] Matrix transposed() const;

  /// Equal shapes and equal elements, without a tolerance.
  [[nodiscard]] bool equalsExactly(const Matrix& B) const;

  /// Leaves no rows and no columns; the storage stays.
  void clear() override;

  /// True if there are rows and columns.
  [[nodiscard]] bool notEmpty() const override { return columnCount > 0 && rowCount > 0; }

  /// A v. "Matrix: mat-vec multiplication dimension mismatch"
  [[nodiscard]] Vector<T> operator*(const Vector<T>& v) const;

  /// A B. "Matrix: dimension mismatch6"
  [[nodiscard]] Matrix operator*(const Matrix& B) const;

  /// A := A B. "Matrix: dimension mismatch3"
  Matrix& operator*=(const Matrix& B);

  /// Equal shapes and rows equal within the tolerance of vectors.
  [[nodiscard]] bool operator==(const Matrix& B) const;

  /// Becomes the identity of order `n`.
  void setIdentity(std::int64_t n);

  /// True for a square matrix that equals the identity exactly.
  [[nodiscard]] bool isIdentity() const;

  /// Exchanges two rows as whole objects, 0 <= i, j <= rowCount. "Matrix: row swap index out of
  /// range"
  void swapRows(std::int64_t i, std::int64_t j);

  /// The determinant, by Gaussian elimination with row pivots of greatest magnitude. "Matrix: a
  /// non-quadratic matrix determinant is not defined"
  [[nodiscard]] T determinant() const;

  /// Reads the text form. A text that does not start with "[" leaves the matrix empty and is not
  /// consumed. A row shorter than the first is stretched when the next row comes. Fatal: "Matrix:
  /// bad stream" on a stream that has already failed, "Matrix: bad input" for what is no row,
  /// "Matrix row dimension mismatch" for a row longer than the first.
  void read(std::istream& in) override;

  std::ostream& write(std::ostream& out) const override;

 private:
  /// No row is shorter than the others, as the last one of a text may be.
  [[nodiscard]] bool isRectangular() const;
  [[nodiscard]] Matrix product(const Matrix& B) const;
  void appendTextRow();
  int eliminate();
};

/// No element is an infinity.
template <typename T>
[[nodiscard]] bool isFinite(const Matrix<T>& A) {
  for (const Vector<T>& row : A.elements()) {
    if (!isFinite<T>(row)) return false;
  }
  return true;
}

/// v A, the rows of A weighted by v; a row whose factor is exactly 0 is not looked at.
/// "vector-matrix dimension mismatch"
template <typename T>
[[nodiscard]] Vector<T> operator*(const Vector<T>& v, const Matrix<T>& A);

extern template class Array<Vector<dbl_t>>;
extern template class ConversionArray<Vector<dbl_t>>;
extern template class Matrix<dbl_t>;
extern template class Array<Matrix<dbl_t>>;
extern template class ConversionArray<Matrix<dbl_t>>;
extern template class SerializableArray<Matrix<dbl_t>>;
extern template Vector<dbl_t> operator*(const Vector<dbl_t>&, const Matrix<dbl_t>&);

}  // namespace vexil
