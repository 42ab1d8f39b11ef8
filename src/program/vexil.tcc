// Vexil - exact integer optimization on lattices.
#pragma once

#include "numbers/narrowing.h"
#include "program/vexil.h"
#include "solutions/star.tcc"

namespace vexil {

template <typename T>
Vexil<T>::Vexil() {
  constexpr std::int64_t FIRST_ALLOCATION = 100;
  swappedVariables.resize(FIRST_ALLOCATION - 1, false);
  reset(false);
}

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
template <typename S>
void Vexil<T>::assign(const Vexil<S>& source) {
  if constexpr (std::is_same_v<S, T>) {
    *this = source;
  } else {
    const auto copy = [](const auto& from, auto& to) { convert(from, to, narrows<S, T>); };
    optFile = source.optFile;
    solFile = source.solFile;
    copy(source.dt, dt);
    copy(source.kt, kt);
    copy(source.lrtu, lrtu);
    copy(source.At, At);
    tu = source.tu;
    copy(source.atu, atu);
    copy(source.bg, bg);
    copy(source.lu, lu);
    copy(source.ru, ru);
    copy(source.Ag, Ag);
    copy(source.Au, Au);
    copy(source.dx, dx);
    copy(source.lx, lx);
    copy(source.rx, rx);
    freedomDegrees = source.freedomDegrees;
    copy(source.solStars, solStars);
    copy(source.fixedVariables, fixedVariables);
    swappedVariables = source.swappedVariables;
    allTargetsFinite = source.allTargetsFinite;
    sdim = source.sdim;
    tdim = source.tdim;
    writeEnabled = source.writeEnabled;
    reportEnabled = source.reportEnabled;
    starsPrepared = source.starsPrepared;
  }
}

}  // namespace vexil
