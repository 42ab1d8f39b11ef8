// Vexil - exact integer optimization on lattices.
//
// The normal form of a program: whole numbers, independent equations, no variable that is fixed or
// bounded on the right alone, tight inequations, variables from 0 on. What a step does to the
// variables can be undone by the trace that it leaves.
#pragma once

#include <iostream>

#include "foundation/failure.h"
#include "foundation/trace.h"
#include "program/elimination.h"
#include "program/vexil.h"

namespace vexil {

namespace detail {

/// x *= factor, guarded.
template <typename T>
void scale(T& x, const T& factor, const char* overflow) {
  x *= factor;
  NumberTraits<T>::guard(x, overflow);
}

template <typename T>
void scale(Vector<T>& row, const T& factor, const char* overflow) {
  for (T& element : row.elements()) scale(element, factor, overflow);
}

/// x -= y, guarded.
template <typename T>
void lower(T& x, const T& y, const char* overflow) {
  x -= y;
  NumberTraits<T>::guard(x, overflow);
}

/// f becomes its least common multiple with the denominators of `numbers`.
template <typename T>
void takeDenominator(T& f, const T& number, const char* overflow) {
  using N = NumberTraits<T>;
  f = N::lcm(f, N::den(number));
  N::guard(f, overflow);
}

template <typename T>
void takeDenominators(T& f, const Vector<T>& row, const char* overflow) {
  for (const T& element : row.elements()) takeDenominator(f, element, overflow);
}

/// The least value of row.x for `atPositive` <= x <= `atNegative`; the greatest with the bounds
/// exchanged.
template <typename T>
T extremeProduct(const Vector<T>& row, const Vector<T>& atPositive, const Vector<T>& atNegative) {
  T sum{};
  for (std::int64_t j = 1; j <= row.MN; ++j) {
    if (row[j] == T{}) continue;
    sum += row[j] * (row[j] > T{} ? atPositive : atNegative)[j];
    NumberTraits<T>::guard(sum, "llu overflow");
  }
  return sum;
}

}  // namespace detail

template <typename T>
void Vexil<T>::normalForm(bool verbose) {
  removeFixedVariables();
  applyDecimals();
  makeTargetsIntegral();
  makeEquationsIntegral();
  makeInequationsIntegral();
  if (Ag.rowCount > 0) removeDependentEquations(verbose);
  swapHalfFreeVariables(verbose);
  tightenInequations();
  checkEquations();
  computeAtu();
  shiftToZero();
}

template <typename T>
void Vexil<T>::removeFixedVariables() {
  fixedVariables.clear();
  const std::int64_t n = rx.MN;
  for (std::int64_t j = 1; j <= n; ++j) {
    const std::int64_t k = j - fixedVariables.MN;
    if (rx[k] != lx[k] || freedomDegrees[k] != FreedomDegree::BOUNDED) continue;
    const T value = rx[k];
    fixedVariables.resize(fixedVariables.MN + 1, true);
    fixedVariables[fixedVariables.MN] = Pair<long, T>(j, value);
    removeVariable(k, value);
  }
}

/// Takes variable k out of the program, whose value moves to the right-hand sides.
template <typename T>
void Vexil<T>::removeVariable(std::int64_t k, const T& value) {
  for (std::int64_t i = 1; i <= Ag.rowCount; ++i) {
    detail::lower(bg[i], value * Ag[i][k], "bg overflow");
  }
  for (std::int64_t i = 1; i <= Au.rowCount; ++i) {
    const T share = value * Au[i][k];
    detail::lower(lu[i], share, "lu overflow");
    detail::lower(ru[i], share, "ru overflow");
  }
  for (std::int64_t i = 1; i <= At.rowCount; ++i) {
    const T share = value * At[i][k] * targetSign(i);
    detail::lower(lrtu.left, share, "ltu overflow");
    detail::lower(lrtu.right, share, "rtu overflow");
  }
  for (Matrix<T>* const matrix : {&Ag, &Au, &At}) matrix->removeColumn(k);
  if (atu.notEmpty()) atu.removeComponent(k);
  for (Vector<T>* const vector : {&dx, &lx, &rx}) vector->removeComponent(k);
  freedomDegrees.removeElement(k);
}

template <typename T>
void Vexil<T>::applyDecimals() {
  using N = NumberTraits<T>;
  for (std::int64_t i = 1; i <= dx.MN; ++i) {
    if (dx[i] > T{}) {
      const T factor = N::powerOfTen(dx[i]);
      if (!isFinite<T>(factor)) throw PrecisionException("data overflow");
      N::guard(factor, "data overflow");
      if (isFinite<T>(rx[i])) detail::scale(rx[i], factor, "rx overflow");
      if (isFinite<T>(lx[i])) detail::scale(lx[i], factor, "lx overflow");
      for (Matrix<T>* const matrix : {&At, &Ag, &Au}) matrix->divideColumn(i, factor);
    }
    rx[i] = N::floor(rx[i]);
    lx[i] = N::ceil(lx[i]);
  }
}

template <typename T>
void Vexil<T>::makeTargetsIntegral() {
  using N = NumberTraits<T>;
  T factor(1);
  for (std::int64_t i = 1; i <= At.rowCount; ++i) {
    if (isFinite<T>(dt[i])) {
      detail::takeDenominator(factor, dt[i], "iMFFT overflow");
      if (hasKnownValue(i)) detail::takeDenominator(factor, kt[i], "iMFFT overflow");
    }
    detail::takeDenominators(factor, At[i], "iMFFT overflow");
  }
  if (!(factor > T(1))) return;
  for (std::int64_t i = 1; i <= At.rowCount; ++i) {
    detail::scale(At[i], factor, "At iMFFT overflow");
    const bool wished = isFinite<T>(dt[i]);
    if (wished) detail::scale(dt[i], factor, "dt iMFFT overflow");
    if (!hasKnownValue(i)) continue;
    detail::scale(kt[i], factor, "kt iMFFT overflow");
    if (!wished) kt[i] = dt[i] < T{} ? N::ceil(kt[i]) : N::floor(kt[i]);
  }
  if (tu != 0) {
    detail::scale(lrtu.left, factor, "ltu iMFFT overflow");
    detail::scale(lrtu.right, factor, "rtu iMFFT overflow");
  }
}

template <typename T>
void Vexil<T>::makeEquationsIntegral() {
  for (std::int64_t i = 1; i <= Ag.rowCount; ++i) {
    T factor = NumberTraits<T>::den(bg[i]);
    detail::takeDenominators(factor, Ag[i], "iMF overflow2");
    if (!(factor > T(1))) continue;
    detail::scale(Ag[i], factor, "Ag iMF overflow");
    detail::scale(bg[i], factor, "bg iMF overflow");
  }
}

template <typename T>
void Vexil<T>::makeInequationsIntegral() {
  using N = NumberTraits<T>;
  for (std::int64_t i = 1; i <= Au.rowCount; ++i) {
    T factor(1);
    detail::takeDenominators(factor, Au[i], "iMF overflow3");
    if (factor > T(1)) {
      detail::scale(Au[i], factor, "Au iMF overflow");
      detail::scale(lu[i], factor, "lu iMF overflow");
      detail::scale(ru[i], factor, "ru iMF overflow");
    }
    lu[i] = N::ceil(lu[i]);
    ru[i] = N::floor(ru[i]);
  }
}

template <typename T>
void Vexil<T>::removeDependentEquations(bool verbose) {
  Matrix<T> system;
  for (std::int64_t i = 1; i <= Ag.rowCount; ++i) {
    Vector<T> row = Ag[i];
    row.insertComponent(1, bg[i]);
    system.appendRow(row);
  }
  removeDependentRows(system);
  if (verbose && system.rowCount < Ag.rowCount) {
    std::cout << traceLine("Linear dependencies detected and removed");
  }
  const std::int64_t n = Ag.columnCount;
  Ag.setSize(system.rowCount, n);
  bg.resize(system.rowCount, false);
  for (std::int64_t i = 1; i <= system.rowCount; ++i) {
    bg[i] = system[i][1];
    Ag[i] = system[i];
    Ag[i].removeComponent(1);
  }
}

template <typename T>
void Vexil<T>::swapHalfFreeVariables(bool verbose) {
  const T infinity = NumberTraits<T>::infinity();
  swappedVariables.clear();
  for (std::int64_t i = 1; i <= lx.MN; ++i) {
    if (lx[i] != -infinity || rx[i] == infinity) continue;
    for (Matrix<T>* const matrix : {&At, &Ag, &Au}) matrix->negateColumn(i);
    lx[i] = -rx[i];
    rx[i] = infinity;
    freedomDegrees[i] = FreedomDegree::RIGHT_FREE;
    swappedVariables.resize(swappedVariables.MN + 1, true);
    swappedVariables[swappedVariables.MN] = i;
    if (verbose) std::cout << traceLine("Swapped half-free variable detected");
  }
}

template <typename T>
void Vexil<T>::tightenInequations() {
  for (std::int64_t i = 1; i <= Au.rowCount; ++i) {
    lu[i] = std::max(lu[i], detail::extremeProduct(Au[i], lx, rx));
    ru[i] = std::min(ru[i], detail::extremeProduct(Au[i], rx, lx));
    if (!(ru[i] < lu[i])) continue;
    std::cerr << optFile << ": Inequality #" << i << ", this->lu = " << lu[i]
              << ", this->ru = " << ru[i];
    fail("Unfulfillable inequality detected --> NO SOLUTIONS!");
  }
}

template <typename T>
void Vexil<T>::checkEquations() const {
  for (std::int64_t i = 1; i <= Ag.rowCount; ++i) {
    const T least = detail::extremeProduct(Ag[i], lx, rx);
    const T greatest = detail::extremeProduct(Ag[i], rx, lx);
    if (!(least > bg[i]) && !(bg[i] > greatest)) continue;
    std::cerr << optFile << ": Equality #" << i << ", lg = " << least << ", this->bg = " << bg[i]
              << ", rg = " << greatest;
    fail("Unfulfillable equality detected --> NO SOLUTIONS!");
  }
}

template <typename T>
void Vexil<T>::shiftToZero() {
  Vector<T> offset = lx;
  for (T& element : offset.elements()) {
    if (element == -NumberTraits<T>::infinity()) element = T{};
  }
  rx -= offset;
  if (tu != 0) {
    const T share = atu * offset;
    detail::lower(lrtu.left, share, "ltu overflow");
    detail::lower(lrtu.right, share, "rtu overflow");
  }
  for (std::int64_t i = 1; i <= Ag.rowCount; ++i) {
    detail::lower(bg[i], Ag[i] * offset, "this->bg overflow");
  }
  for (std::int64_t i = 1; i <= Au.rowCount; ++i) {
    const T share = Au[i] * offset;
    detail::lower(lu[i], share, "this->lu overflow");
    detail::lower(ru[i], share, "this->ru overflow");
  }
}

}  // namespace vexil
