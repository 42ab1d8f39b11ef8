// Vexil - exact integer optimization on lattices.
//
// The lattice of a program in two phases: the equations are reduced away, and the transformation
// that leaves their kernel is applied to the basis of the inequations [AHL].
#pragma once

#include <iostream>

#include "foundation/failure.h"
#include "foundation/trace.h"
#include "lattice/lattice.h"
#include "solutions/backup_mode.h"

namespace vexil {

template <typename T, typename U>
void Lattice<T, U>::generate() {
  if (params.verb.current == 2) printProgramSizes();
  SerializableArray<Matrix<T>> saved;
  if (this->Ag.rowCount > 0) {
    buildBase(true);
    saved = reduce();
    dropEquationCoordinates(-1);
    const bool known =
        found.stars.notEmpty() || found.bestTarget.notEmpty() || found.bestHeuristic.notEmpty();
    if (!known && !extractInhomogeneous().notEmpty()) {
      fail("The equation system has no integer solution :(");
    }
  }
  keepFound(COORDINATES, 0, [&] {
    buildBase(false);
    if (saved.notEmpty()) restrictToKernel(saved);
    resetTransformation(false);
  });
}

/// Runs `change`, which replaces the basis, between a backup and a replay of what was found.
template <typename T, typename U>
template <typename Change>
void Lattice<T, U>::keepFound(std::int8_t mode, std::int64_t cut, Change change) {
  Array<Star<T>> stars;
  Array<TimeVector<T>> vectors;
  Collection homogeneous;
  Collection inhomogeneous;
  homogeneous.setCapacity(found.homogeneousVectors.capacity);
  inhomogeneous.setCapacity(found.inhomogeneousVectors.capacity);
  backupState(mode, stars, vectors, homogeneous, inhomogeneous, cut);
  change();
  membership.clear();
  restoreState(stars, vectors, homogeneous, inhomogeneous, mode);
}

/// Leaves those rows of the full basis, transformed by `transformations`, that solve the equations.
template <typename T, typename U>
void Lattice<T, U>::restrictToKernel(const SerializableArray<Matrix<T>>& transformations) {
  basis.TT = transformations;
  basis.B_save = applyTransformations(basis.B_save);
  if (basis.latRows > 0) gramSchmidt.clearRowState();
  secondBlock.clear();
  resize(basis.latRows - this->Ag.rowCount, 0, false);
  basis.B = weightedMatrix(basis.B_save);
  firstBlock.clear();
}

template <typename T, typename U>
void Lattice<T, U>::printProgramSizes() const {
  std::cout << traceBegin() << " Optimization program: Targets = " << this->At.rowCount
            << ", Equations = " << this->Ag.rowCount - this->sdim - this->tdim / 2
            << ", Inequations = " << this->sdim + this->Au.rowCount
            << ", Variables = " << this->rx.MN - this->sdim + this->tdim << traceEnd(false);
}

template <typename T, typename U>
Matrix<T> Lattice<T, U>::applyTransformations(const Matrix<T>& M) const {
  Matrix<T> result = M;
  for (const Matrix<T>& transformation : basis.TT.elements()) {
    result = transformation * result;
    for (const Vector<T>& row : result.elements()) {
      for (const T& element : row.elements()) {
        NumberTraits<T>::guard(element, "Overflow when applying transformation");
      }
    }
  }
  result.copyTextSettings(M);
  return result;
}

template <typename T, typename U>
void Lattice<T, U>::dropEquationCoordinates(std::int64_t count) {
  if (count == -1) {
    count = this->Ag.rowCount;
    basis.latRows -= count;
    resetTransformation(false);
    basis.B.setSize(basis.latRows, basis.latDim);
    basis.B_save = basis.B;
  }
  keepFound(WITHOUT_HEAD, count, [&] {
    embedding.dropLeading(count);
    form.dropLeading(count);
    for (Matrix<T>* const rows : {&basis.B, &basis.B_save}) {
      for (Vector<T>& row : rows->elements()) row.dropLeading(count);
      rows->columnCount -= count;
    }
    basis.latDim -= count;
    embedding.computeMaxNorm();
  });
}

/// Euclid's algorithm on the last column.
template <typename T, typename U>
Vector<T> Lattice<T, U>::extractInhomogeneous() {
  using N = NumberTraits<T>;
  const bool verbose = params.verb.current >= 2;
  if (verbose) std::cout << traceBegin() << " Extracting current inhomogenous vector ...";
  Matrix<T> W = unweightedMatrix(basis.B_save);
  const std::int64_t last = basis.latDim;
  Vector<T> result;
  for (bool changed = true; changed;) {
    std::int64_t p = 0;
    for (std::int64_t i = 1; i <= W.rowCount; ++i) {
      if (isZero<T>(W[i][last])) continue;
      if (p == 0 || N::abs(W[i][last]) < N::abs(W[p][last])) p = i;
    }
    if (p == 0) break;
    const T pivot = W[p][last];
    if (N::abs(pivot) == N::abs(form.signReference)) {
      result = W[p];
      break;
    }
    changed = false;
    for (std::int64_t t = 1; t <= W.rowCount; ++t) {
      if (t == p || isZero<T>(W[t][last])) continue;
      W[t].subtractMultiple(N::floor(W[t][last] / pivot), W[p]);
      changed = true;
    }
  }
  std::int64_t zeros = 0;
  while (zeros < result.MN && isZero<T>(result[zeros + 1])) ++zeros;
  result.dropLeading(zeros);
  if (verbose) std::cout << traceEnd(false);
  return result;
}

}  // namespace vexil
