// Vexil - exact integer optimization on lattices.
//
// The weighted form of the basis: each coordinate times its weight, plus a multiple of a
// translation vector for rows that carry the right-hand side. With both options off it is the
// identity.
#pragma once

#include "lattice/lattice.h"

namespace vexil {

template <typename T, typename U>
Vector<T> Lattice<T, U>::weightedRow(const Vector<T>& row) const {
  Vector<T> result = row;
  if (params.scale.current) result *= weights;
  if (params.translate.current && row.MN > 0 && !isZero<T>(row[row.MN])) {
    Vector<T> shift = translation;
    shift *= row[row.MN] / signReference;
    result += shift;
  }
  return result;
}

template <typename T, typename U>
Vector<T> Lattice<T, U>::unweightedRow(const Vector<T>& row) const {
  Vector<T> result = row;
  if (params.translate.current && row.MN > 0 && !isZero<T>(row[row.MN])) {
    Vector<T> shift = translation;
    shift *= row[row.MN] / (params.scale.current ? signReferenceLat : signReference);
    result -= shift;
  }
  if (params.scale.current) result /= weights;
  return result;
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
  B = weightedMatrix(B);
  clearRowState();
}

template <typename T, typename U>
void Lattice<T, U>::takeOffWeights() {
  B = unweightedMatrix(B);
  clearRowState();
}

template <typename T, typename U>
void Lattice<T, U>::recomputeBounds(std::int64_t i) {
  l0[i] = l[i] * weights[i] + translation[i];
  r0[i] = r[i] * weights[i] + translation[i];
}

template <typename T, typename U>
void Lattice<T, U>::resetWeights(bool resetScale, bool resetTranslation) {
  takeOffWeights();
  if (resetScale) {
    weights.fill(T(1));
    weightAux.resize(weights.MN, false);
    weightAux.fill(T{});
    weightCount.resize(weights.MN, false);
    for (long& count : weightCount.elements()) count = 0;
    signReferenceLat = signReference;
  }
  if (resetTranslation) {
    translation.resize(latDim, false);
    translation.fill(T{});
  }
  // A lattice without a generated basis has no bounds yet.
  if (l.MN == latDim) {
    for (std::int64_t i = 1; i <= latDim; ++i) recomputeBounds(i);
  }
  putOnWeights();
}

}  // namespace vexil
