// Vexil - exact integer optimization on lattices.
//
// Decompositions of the rows of a matrix: B = L Q with a lower triangular L and orthogonal rows in
// Q. Both can be taken up again at row kk as long as the rows before it have not changed since, and
// both reach from there to row `end`, 0 meaning the last one. B has m rows and n columns.
#pragma once

#include "foundation/matrix.h"
#include "numbers/convert.h"

namespace vexil {

/// By Householder reflections [Householder]. L gets `end` rows of n columns and Q, orthonormal, n
/// rows. stages[i] is the product of the first i reflections, up to min(n - 1, end).
///
/// Square roots are all that is not exact in `QQ`. They and what comes of them keep so many
/// decimals that the diagonal element of a dependent row of whole numbers stays far below 10^-9,
/// however great the numbers are.
///
/// Fatal: "lq_full: kk is invalid (< 1)", "lq_full: end index overflow", "lq_full: dimension
/// mismatch" for kk > end.
template <Number T, Number U>
void lq_full(const Matrix<T>& B, Matrix<U>& L, Matrix<U>& Q, Array<Matrix<U>>& stages,
             std::int64_t kk, std::int64_t end);

/// By modified Gram-Schmidt [MGS]: no roots, so L has the diagonal 1 and the rows of Q their
/// lengths, whose squares stand in `norms`. stages[j] holds the rows j to `end` without their parts
/// along the first j - 1 rows of Q.
///
/// Returns the first row, kk or later, whose squared length is at most 10^-9, and stops there; 0 if
/// there is none. Fatal: "lq_reduced: kk is invalid (< 1)", "lq_reduced: dimension mismatch" for
/// kk > end.
template <Number T, Number U>
[[nodiscard]] std::int64_t lq_reduced(const Matrix<T>& B, Matrix<U>& L, Matrix<U>& Q,
                                      Array<Matrix<U>>& stages, Vector<U>& norms, std::int64_t kk,
                                      std::int64_t end);

}  // namespace vexil
