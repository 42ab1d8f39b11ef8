// Vexil - exact integer optimization on lattices.
//
// Linear systems and integer row operations on matrices. A number counts as zero where an
// elimination cannot divide by it: up to 10^-9 in `dbl_t`, at 0 itself in `QQ`.
#pragma once

#include "foundation/matrix.h"
#include "numbers/convert.h"

namespace vexil {

/// Leaves independent rows that span the same lattice of integer combinations, for whole numbers.
///
/// The first row whose diagonal element in the full decomposition (reduction/lq.h) is up to 10^-9
/// depends on the rows before it. An integer combination of them drops off; otherwise Euclid's
/// algorithm runs on this row and those that it depends on, until one of them is zero. The last row
/// takes the place of the one that goes. Fatal: "Coordinates of dependent row could not be
/// computed!", where rounding or nearly parallel rows have misled the test, "Coordinate
/// inconsistency - index is too big!", "Dependent row could not be eliminated!".
template <Number T>
void removeDependentRows(Matrix<T>& M);

/// Coordinates in the rows of a matrix, which are meant to be independent; it is decomposed once.
template <Number T>
class RowCoordinates {
 public:
  explicit RowCoordinates(const Matrix<T>& G);

  /// Solves x G = row; true if there is a solution, with `integral` a whole one. `x` holds nothing
  /// useful otherwise.
  [[nodiscard]] bool solve(const Vector<T>& row, Vector<T>& x, bool integral) const;

 private:
  Matrix<T> Lo_;
  Matrix<T> Up_;
  Array<long> p_;
};

/// The same for one row.
template <Number T>
[[nodiscard]] bool solveRowCoordinates(const Matrix<T>& G, const Vector<T>& row, Vector<T>& x,
                                       bool integral);

/// Row i of `Lo` `Up` is row p[i] of A, with `Lo` of the shape of A, unit lower triangular, and
/// `Up` square and upper triangular; pivots are the greatest of their column. Fatal: "gauss: rang
/// too big".
template <Number T>
void gaussLU(const Matrix<T>& A, Matrix<T>& Lo, Matrix<T>& Up, Array<long>& p);

/// Solves A x = b by the decomposition of A. Returns 1 for a solution, 0 for one that is not unique
/// where `unique` asks for it, -1 if there is none, with `integral` no whole one.
template <Number T>
[[nodiscard]] int gaussSolve(const Matrix<T>& Lo, const Matrix<T>& Up, const Array<long>& p,
                             const Vector<T>& b, Vector<T>& x, bool unique, bool integral);

/// Euclid's algorithm on column `j` of the rows 1 to `i`: integer row operations, which the rows of
/// `transformation` follow unless it is null, leave at most one element that is not zero. Returns
/// its row, or 0 if there is none. Throws `PrecisionException` "factor overflow", "row overflow",
/// "T->row overflow".
template <Number T>
std::int64_t euclidColumnStep(Matrix<T>& M, std::int64_t i, std::int64_t j,
                              Matrix<T>* transformation);

/// True if the magnitude of the determinant, which goes to `determinant`, is 1, give or take a
/// tenth for the rounding of its computation; a second one has the rows in ascending length.
template <Number T>
[[nodiscard]] bool isUnimodular(const Matrix<T>& M, T& determinant);

}  // namespace vexil
