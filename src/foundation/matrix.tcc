// Vexil - exact integer optimization on lattices.
#pragma once

#include <algorithm>

#include "foundation/matrix.h"
#include "foundation/row_block.h"
#include "foundation/text_streams.h"

namespace vexil {

template <typename T>
Matrix<T>& Matrix<T>::operator=(const Matrix& other) {
  if (this == &other) return *this;
  ConversionArray<Vector<T>>::operator=(other);
  copyTextSettings(other);
  columnCount = other.columnCount;
  rows = this->data;
  return *this;
}

template <typename T>
Matrix<T>& Matrix<T>::operator=(Matrix&& other) noexcept {
  if (this == &other) return *this;
  std::swap(columnCount, other.columnCount);
  copyTextSettings(other);
  ConversionArray<Vector<T>>::operator=(static_cast<ConversionArray<Vector<T>>&&>(other));
  rows = this->data;
  other.rows = other.data;
  return *this;
}

template <typename T>
void Matrix<T>::resize(std::int64_t m, std::int64_t n, bool reserveMore) {
  if (m < 0 || n < 0) fail("Matrix: invalid size");
  if (rowCount < m) {
    Array<Vector<T>>::resize(m, reserveMore);
    rows = this->data;
  }
  if (m > 0) {
    for (std::int64_t i = 0; i <= rowCount; ++i) rows[i].resize(n, reserveMore);
  }
  columnCount = n;
}

template <typename T>
void Matrix<T>::setSize(std::int64_t m, std::int64_t n) {
  if (m < rowCount) rowCount = m;
  resize(m, n, false);
}

template <typename T>
void Matrix<T>::clear() {
  rowCount = 0;
  columnCount = 0;
}

template <typename T>
void Matrix<T>::appendRow(const Vector<T>& row) {
  if (columnCount == 0) widen(row.MN);
  if (row.MN > columnCount) fail("Matrix row dimension mismatch");
  Vector<T> copy = row;  // it may be a row of this matrix
  Array<Vector<T>>::resize(rowCount + 1, true);
  rows = this->data;
  rows[rowCount] = std::move(copy);
  widen(columnCount);
}

template <typename T>
void Matrix<T>::removeRow(std::int64_t i) {
  if (i < 1 || i > rowCount) fail("Invalid row index!");
  this->removeElement(i);
}

template <typename T>
void Matrix<T>::removeColumn(std::int64_t j) {
  for (Vector<T>& row : this->elements()) row.removeComponent(j);
  if (columnCount > 0) --columnCount;
}

template <typename T>
void Matrix<T>::widen(std::int64_t n) {
  for (Vector<T>& row : this->elements()) {
    const std::int64_t width = row.MN;
    row.resize(n, false);
    for (std::int64_t j = width + 1; j <= n; ++j) row.data[j] = T{};
  }
  columnCount = n;
}

template <typename T>
void Matrix<T>::negateColumn(std::int64_t j) {
  for (Vector<T>& row : this->elements()) row[j] = -row[j];
}

template <typename T>
void Matrix<T>::divideColumn(std::int64_t j, const T& divisor) {
  for (Vector<T>& row : this->elements()) row[j] /= divisor;
}

template <typename T>
Matrix<T> Matrix<T>::transposed() const {
  Matrix result;
  result.setSize(columnCount, rowCount);
  for (std::int64_t i = 1; i <= rowCount; ++i) {
    for (std::int64_t j = 1; j <= columnCount; ++j) result.rows[j].data[i] = rows[i].data[j];
  }
  return result;
}

template <typename T>
bool Matrix<T>::equalsExactly(const Matrix& B) const {
  const auto equal = [](const Vector<T>& a, const Vector<T>& b) { return a.equalsExactly(b); };
  const auto left = this->elements();
  const auto right = B.elements();
  return columnCount == B.columnCount &&
         std::equal(left.begin(), left.end(), right.begin(), right.end(), equal);
}

template <typename T>
Vector<T> Matrix<T>::operator*(const Vector<T>& v) const {
  if (columnCount != v.MN) fail("Matrix: mat-vec multiplication dimension mismatch");
  Vector<T> result;
  result.resize(rowCount, true);
  std::int64_t i = 1;
  if constexpr (std::is_floating_point_v<T>) {
    const auto isWhole = [&v](const Vector<T>& row) { return row.MN == v.MN; };
    const auto blockIsWhole = [&] {
      return i + ROW_BLOCK <= rowCount + 1 && std::all_of(rows + i, rows + i + ROW_BLOCK, isWhole);
    };
    for (; blockIsWhole(); i += ROW_BLOCK) {
      multiplyRowBlock(rows + i, v.data, v.MN, result.data + i);
    }
  }
  for (; i <= rowCount; ++i) result.data[i] = rows[i] * v;
  return result;
}

template <typename T>
Vector<T> operator*(const Vector<T>& v, const Matrix<T>& A) {
  if (v.MN != A.rowCount) fail("vector-matrix dimension mismatch");
  Vector<T> result;
  result.resize(A.columnCount, false);
  result.fill(T{});
  for (std::int64_t i = 1; i <= v.MN; ++i) {
    if (v.data[i] == T{}) continue;
    Vector<T> weighted = A.rows[i];
    weighted *= v.data[i];
    result += weighted;
  }
  return result;
}

template <typename T>
bool Matrix<T>::isRectangular() const {
  const auto all = this->elements();
  return std::all_of(all.begin(), all.end(),
                     [this](const Vector<T>& row) { return row.MN == columnCount; });
}

template <typename T>
Matrix<T> Matrix<T>::product(const Matrix& B) const {
  Matrix C;
  C.resize(rowCount, B.columnCount, true);
  for (std::int64_t i = 1; i <= rowCount; ++i) {
    const T* const row = rows[i].data;
    for (std::int64_t j = 1; j <= B.columnCount; ++j) {
      T sum{};
      for (std::int64_t k = 1; k <= columnCount; ++k) {
        NumberTraits<T>::addProduct(sum, B.rows[k].data[j], row[k]);
      }
      C.rows[i].data[j] = std::move(sum);
    }
  }
  return C;
}

template <typename T>
Matrix<T> Matrix<T>::operator*(const Matrix& B) const {
  if (columnCount != B.rowCount || !isRectangular() || !B.isRectangular()) {
    fail("Matrix: dimension mismatch6");
  }
  return product(B);
}

template <typename T>
Matrix<T>& Matrix<T>::operator*=(const Matrix& B) {
  if (columnCount != B.rowCount || !isRectangular() || !B.isRectangular()) {
    fail("Matrix: dimension mismatch3");
  }
  return *this = product(B);
}

template <typename T>
bool Matrix<T>::operator==(const Matrix& B) const {
  if (rowCount != B.rowCount || columnCount != B.columnCount) return false;
  for (std::int64_t i = 1; i <= rowCount; ++i) {
    if (!(rows[i] == B.rows[i])) return false;
  }
  return true;
}

template <typename T>
void Matrix<T>::setIdentity(std::int64_t n) {
  setSize(n, n);
  for (std::int64_t i = 1; i <= n; ++i) {
    rows[i].fill(T{});
    rows[i].data[i] = T(1);
  }
}

template <typename T>
bool Matrix<T>::isIdentity() const {
  if (rowCount != columnCount || !isRectangular()) return false;
  for (std::int64_t i = 1; i <= rowCount; ++i) {
    for (std::int64_t j = 1; j <= columnCount; ++j) {
      if (!(rows[i].data[j] == T(i == j ? 1 : 0))) return false;
    }
  }
  return true;
}

template <typename T>
void Matrix<T>::swapRows(std::int64_t i, std::int64_t j) {
  if (i < 0 || i > rowCount || j < 0 || j > rowCount) {
    fail("Matrix: row swap index out of range");
  }
  if (i != j) std::swap(rows[i], rows[j]);
}

/// Brings the matrix to upper triangular form; 0 for a singular one, else the sign of the
/// exchanges.
template <typename T>
int Matrix<T>::eliminate() {
  int sign = 1;
  for (std::int64_t j = 1; j <= columnCount; ++j) {
    const auto magnitude = [&](std::int64_t i) {
      const T& x = rows[i].data[j];
      return x < T{} ? T(-x) : x;
    };
    std::int64_t pivot = j;
    for (std::int64_t i = j + 1; i <= rowCount; ++i) {
      if (magnitude(pivot) < magnitude(i)) pivot = i;
    }
    if (NumberTraits<T>::isNoPivot(rows[pivot].data[j])) return 0;
    if (pivot != j) {
      swapRows(pivot, j);
      sign = -sign;
    }
    for (std::int64_t i = j + 1; i <= rowCount; ++i) {
      const T factor = rows[i].data[j] / rows[j].data[j];
      for (std::int64_t k = j; k <= columnCount; ++k) {
        rows[i].data[k] -= factor * rows[j].data[k];
      }
    }
  }
  return sign;
}

template <typename T>
T Matrix<T>::determinant() const {
  if (rowCount != columnCount || !isRectangular()) {
    fail("Matrix: a non-quadratic matrix determinant is not defined");
  }
  Matrix work = *this;
  const int sign = work.eliminate();
  if (sign == 0) return T{};
  T result(sign);
  for (std::int64_t i = 1; i <= rowCount; ++i) result *= work.rows[i].data[i];
  return result;
}

template <typename T>
std::ostream& Matrix<T>::write(std::ostream& out) const {
  std::string text = "[\n";
  for (const Vector<T>& row : this->elements()) {
    row.appendTo(text, out);
    text += '\n';
  }
  return out << text << ']' << std::flush;
}

/// Grows by one row of the present width and stretches the row before it, which may be short.
template <typename T>
void Matrix<T>::appendTextRow() {
  Array<Vector<T>>::resize(rowCount + 1, true);
  rows = this->data;
  rows[rowCount - 1].resize(columnCount, true);
  rows[rowCount].resize(columnCount, true);
}

template <typename T>
void Matrix<T>::read(std::istream& in) {
  clear();
  if (in.fail()) fail("Matrix: bad stream");
  skipBlanks(in);
  if (!nextIs(in, '[')) return;
  in.get();
  skipBlanks(in);
  while (!nextIs(in, ']')) {
    if (in.good() && !nextIs(in, '[')) fail("Matrix: bad input");
    appendTextRow();
    Vector<T>& row = rows[rowCount];
    row.read(in);
    if (in.fail()) fail("Matrix: bad input");
    if (row.MN > columnCount) {
      if (columnCount != 0) fail("Matrix row dimension mismatch");
      resize(rowCount, row.MN, true);
    }
    skipBlanks(in);
  }
  in.get();
  if (columnCount == 0) rowCount = 0;
}

}  // namespace vexil
