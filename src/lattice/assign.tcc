// Vexil - exact integer optimization on lattices.
//
// Whole-state copies between lattices of the same or of another instantiation.
#pragma once

#include "lattice/lattice.h"

namespace vexil {

template <typename T, typename U>
template <typename S, typename V>
void Lattice<T, U>::assignFrom(const Lattice<S, V>& source, bool keepParams) {
  if constexpr (std::is_same_v<Lattice<S, V>, Lattice>) {
    if (&source == this) return;
  }
  Vexil<T>::assign(static_cast<const Vexil<S>&>(source));
  program.assign(source.program);
  latFile = source.latFile;
  if (!keepParams) params.assign(source.params);
  cells = source.cells;
  stepCounter = source.stepCounter;
  consistency.assign(source.consistency);
  convert(source.blendValue, blendValue);
  convert(source.basis, basis);
  convert(source.form, form);
  convert(source.embedding, embedding);
  convert(source.gramSchmidt, gramSchmidt);
  convert(source.found, found);
  convert(source.firstBlock, firstBlock);
  convert(source.secondBlock, secondBlock);
  membership.clear();
}

template <typename T, typename U>
void Lattice<T, U>::assign(const Lattice<dbl_t, dbl_t>& source, bool keepParams) {
  assignFrom(source, keepParams);
}

template <typename T, typename U>
void Lattice<T, U>::assign(const Lattice<QQ, dbl_t>& source, bool keepParams) {
  assignFrom(source, keepParams);
}

template <typename T, typename U>
void Lattice<T, U>::assign(const Lattice<dbl_t, QQ>& source, bool keepParams) {
  assignFrom(source, keepParams);
}

template <typename T, typename U>
void Lattice<T, U>::assign(const Lattice<QQ, QQ>& source, bool keepParams) {
  assignFrom(source, keepParams);
}

}  // namespace vexil
