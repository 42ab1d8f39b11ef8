// Vexil - exact integer optimization on lattices.
//
// Floating row operations drift. Each of them stands for an integer operation, so the basis must
// equal an integer unimodular matrix times the basis at generation; that product takes its place.
#pragma once

#include <iostream>

#include "foundation/trace.h"
#include "lattice/lattice.h"
#include "program/elimination.h"

namespace vexil {

namespace detail {

template <typename T>
void clearTinyElements(Matrix<T>& matrix) {
  for (Vector<T>& row : matrix.elements()) {
    for (T& element : row.elements()) {
      if (isZero<T>(element)) element = T{};
    }
  }
}

template <typename T>
void guardElements(const Matrix<T>& matrix, const char* text) {
  for (const Vector<T>& row : matrix.elements()) {
    for (const T& element : row.elements()) NumberTraits<T>::guard(element, text);
  }
}

/// M with M B = W, or false where a row of W is no integer combination of the rows of B.
template <typename T>
bool solveTransformation(const Matrix<T>& B, const Matrix<T>& W, Matrix<T>& M) {
  const RowCoordinates<T> coordinates(B);
  for (std::int64_t i = 1; i <= W.rowCount; ++i) {
    if (!coordinates.solve(W[i], M[i], true)) return false;
  }
  return true;
}

}  // namespace detail

template <typename T, typename U>
bool Lattice<T, U>::checkConsistency(bool aardal, bool silent) {
  if (params.verb.current == 2) {
    std::cout << traceBegin() << " Lattice consistency checking / fixing ..." << traceEnd(false);
  }
  if (!aardal && basis.TT.MN != 1) fail("In the non-aardal case TT.MN should always be == 1");
  detail::guardElements(basis.B, "base matrix overflow");
  const Matrix<T> present = unweightedMatrix(basis.B);
  if (!findTransformation(present)) {
    startOver();
    return false;
  }
  if (consistency.consistencyForced) {
    consistency.consistencyForced = false;
    params.consistency.set(false);
  }
  Matrix<T> exact = applyTransformations(basis.B_save);
  detail::clearTinyElements(exact);
  const bool unchanged = exact == present;
  if (!unchanged) {
    gramSchmidt.clearRowState();
    secondBlock.clear();
    membership.clear();
  }
  if (aardal) {
    startLevelIfGreat();
  } else {
    resetTransformation(false);
    basis.B_save = exact;
    firstBlock.takeIfWhole(secondBlock);
  }
  basis.B = weightedMatrix(exact);
  if (!silent) writeLatFile();
  return unchanged;
}

/// Makes the last matrix of `TT` the transformation that led to the basis `present`. False where it
/// was not remembered and there is none.
template <typename T, typename U>
bool Lattice<T, U>::findTransformation(const Matrix<T>& present) {
  T determinant;
  if (params.consistency) {
    detail::clearTinyElements(basis.transformation());
    if (!isUnimodular(basis.transformation(), determinant)) {
      throw PrecisionException("unimodular error");
    }
    return true;
  }
  resetTransformation(false);
  try {
    return detail::solveTransformation(basis.B_save, present, basis.transformation()) &&
           isUnimodular(basis.transformation(), determinant);
  } catch (const PrecisionException&) {
    return false;
  }
}

/// Goes back to the basis at generation and remembers the transformations until the next check.
template <typename T, typename U>
void Lattice<T, U>::startOver() {
  basis.B = weightedMatrix(basis.B_save);
  gramSchmidt.clearRowState();
  membership.clear();
  secondBlock.takeIfWhole(firstBlock);
  basis.transformation().setIdentity(basis.latRows);
  consistency.consistencyForced = true;
  params.consistency.set(true);
}

/// Further row operations go into a new matrix of `TT` where the last one has become too great.
template <typename T, typename U>
void Lattice<T, U>::startLevelIfGreat() {
  try {
    detail::guardElements(basis.transformation(), "");
  } catch (const FatalPrecisionException&) {
    throw PrecisionException("transformation overflow");
  } catch (const PrecisionException&) {
    resetTransformation(true);
  }
}

}  // namespace vexil
