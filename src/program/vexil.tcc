// Vexil - exact integer optimization on lattices.
#pragma once

#include "program/vexil.h"

namespace vexil {

template <typename T>
Vexil<T>::Vexil() {
  constexpr std::int64_t FIRST_ALLOCATION = 100;
  swappedVariables.resize(FIRST_ALLOCATION - 1, false);
  reset(false);
}

template <typename T>
Vexil<T>::Vexil(const Vexil&) = default;

template <typename T>
Vexil<T>& Vexil<T>::operator=(const Vexil&) = default;

template <typename T>
Vexil<T>::~Vexil() = default;

template <typename T>
void Vexil<T>::reset(bool keepFileNames) {
  if (!keepFileNames) {
    optFile.clear();
    solFile.clear();
  }
  for (Matrix<T>* const matrix : {&At, &Ag, &Au}) matrix->clear();
  for (Vector<T>* const vector : {&atu, &dt, &kt, &bg, &lu, &ru, &dx, &lx, &rx}) vector->clear();
  solStars.clear();
  fixedVariables.clear();
  freedomDegrees.clear();
  swappedVariables.clear();
  lrtu.left = -NumberTraits<T>::infinity();
  lrtu.right = NumberTraits<T>::infinity();
  tu = 0;
  sdim = 0;
  tdim = 0;
  writeEnabled = false;
  reportEnabled = false;
  starsPrepared = false;
}

template <typename T>
void Vexil<T>::assign(const Vexil<dbl_t>& source) {
  convert(source, *this);
}

template <typename T>
void Vexil<T>::assign(const Vexil<QQ>& source) {
  convert(source, *this);
}

}  // namespace vexil
