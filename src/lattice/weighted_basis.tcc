// Vexil - exact integer optimization on lattices.
//
// The basis and its bounds in the weighted form.
#pragma once

#include "lattice/lattice.h"

namespace vexil {

template <typename T, typename U>
Vector<T> Lattice<T, U>::weightedRow(const Vector<T>& row) const {
  return form.weightedRow(row, params.scale, params.translate);
}

template <typename T, typename U>
Vector<T> Lattice<T, U>::unweightedRow(const Vector<T>& row) const {
  return form.unweightedRow(row, params.scale, params.translate);
}

template <typename T, typename U>
Matrix<T> Lattice<T, U>::weightedMatrix(const Matrix<T>& M) const {
  Matrix<T> result = M;
  for (Vector<T>& row : result.elements()) row = weightedRow(row);
  return result;
}

template <typename T, typename U>
Matrix<T> Lattice<T, U>::unweightedMatrix(const Matrix<T>& M) const {
  Matrix<T> result = M;
  for (Vector<T>& row : result.elements()) row = unweightedRow(row);
  return result;
}

template <typename T, typename U>
void Lattice<T, U>::putOnWeights() {
  basis.B = weightedMatrix(basis.B);
  gramSchmidt.clearRowState();
}

template <typename T, typename U>
void Lattice<T, U>::takeOffWeights() {
  basis.B = unweightedMatrix(basis.B);
  gramSchmidt.clearRowState();
}

template <typename T, typename U>
void Lattice<T, U>::recomputeBounds(std::int64_t i) {
  embedding.l0[i] = embedding.l[i] * form.weights[i] + form.translation[i];
  embedding.r0[i] = embedding.r[i] * form.weights[i] + form.translation[i];
}

template <typename T, typename U>
void Lattice<T, U>::resetWeights(bool resetScale, bool resetTranslation) {
  takeOffWeights();
  if (resetScale) form.resetWeights();
  if (resetTranslation) form.resetTranslation(basis.latDim);
  // A lattice without a generated basis has no bounds yet.
  if (embedding.l.MN == basis.latDim) {
    for (std::int64_t i = 1; i <= basis.latDim; ++i) recomputeBounds(i);
  }
  putOnWeights();
}

template <typename T, typename U>
void Lattice<T, U>::setWeight(std::int64_t i, const T& value) {
  if (!(form.weights[i] == value)) {
    takeOffWeights();
    form.weights[i] = value;
    recomputeBounds(i);
    putOnWeights();
    if (i == basis.latDim) form.signReferenceLat = form.signReference * value;
  }
  gramSchmidt.clearRowState();
}

}  // namespace vexil
