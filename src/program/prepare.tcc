// Vexil - exact integer optimization on lattices.
//
// The rows of a program brought into the form that a lattice can hold: equations, inequations with
// two finite bounds, and targets to be minimized or maximized.
#pragma once

#include <algorithm>
#include <iostream>
#include <utility>

#include "foundation/failure.h"
#include "foundation/trace.h"
#include "program/vexil.h"

namespace vexil {

template <typename T>
void Vexil<T>::removeInequation(std::int64_t i) {
  Au.removeRow(i);
  lu.removeComponent(i);
  ru.removeComponent(i);
}

template <typename T>
void Vexil<T>::removeUselessInequations(bool verbose) {
  const T infinity = NumberTraits<T>::infinity();
  for (std::int64_t i = 1; i <= Au.rowCount; ++i) {
    if (lu[i] != -infinity || ru[i] != infinity) continue;
    removeInequation(i--);
    if (verbose) std::cout << traceLine("Useless inequation (-inf <= ... <= inf) detected");
  }
}

template <typename T>
void Vexil<T>::moveFakeInequations(bool verbose) {
  for (std::int64_t i = 1; i <= Au.rowCount; ++i) {
    const bool finite = isFinite<T>(lu[i]) && isFinite<T>(ru[i]);
    if (finite ? !isZero<T>(ru[i] - lu[i]) : lu[i] != ru[i]) continue;
    if (!finite) fail("Unfulfillable infinite inequation detected --> NO SOLUTIONS!");
    Ag.appendRow(Au[i]);
    bg.append(lu[i]);
    if (verbose) std::cout << traceLine("Fake inequation detected and transfered");
    removeInequation(i--);
  }
}

template <typename T>
void Vexil<T>::addVariable(const T& lower, const T& upper, const T& decimals) {
  lx.append(lower);
  rx.append(upper);
  dx.append(decimals);
  freedomDegrees.resize(lx.MN, true);
  freedomDegrees[lx.MN] = freedomDegree(lower, upper);
}

template <typename T>
void Vexil<T>::addSlackVariables() {
  const T infinity = NumberTraits<T>::infinity();
  sdim = 0;
  for (std::int64_t i = 1; i <= Au.rowCount; ++i) {
    if (lu[i] == -infinity) {
      lu[i] = -ru[i];
      Au[i].negate();
      ru[i] = infinity;
    }
    if (ru[i] != infinity) continue;
    Ag.appendRow(Au[i]);
    bg.append(lu[i]);
    const std::int64_t last = Au.rowCount;
    Au.swapRows(i, last);
    lu.swap(i, last);
    ru.swap(i, last);
    if (std::max({Ag.columnCount, Au.columnCount, At.columnCount}) != rx.MN) {
      fail("Implement the insert at sdim position case!");
    }
    removeInequation(last);
    Au.widen(Au.columnCount + 1);
    Ag.widen(Ag.columnCount + 1);
    Ag[Ag.rowCount][Ag.columnCount] = T(-1);
    addVariable(T{}, infinity, T{});
    ++sdim;
    --i;
  }
}

template <typename T>
void Vexil<T>::addDeviationVariables() {
  const T infinity = NumberTraits<T>::infinity();
  tdim = 0;
  for (std::int64_t i = 1; i <= dt.MN; ++i) {
    if (!isFinite<T>(dt[i])) continue;
    Ag.appendRow(At[i]);
    bg.append(dt[i]);
    const std::int64_t n = Ag.columnCount + 2;
    Ag.widen(n);
    Ag[Ag.rowCount][n - 1] = T(1);
    Ag[Ag.rowCount][n] = T(-1);
    At.widen(n);
    dt[i] = -infinity;
    if (hasKnownValue(i)) kt[i] = -infinity;
    At[i].fill(T{});
    At[i][n - 1] = T(1);
    At[i][n] = T(1);
    if (Au.rowCount > 0) Au.widen(n);
    addVariable(T{}, infinity, T{});
    addVariable(T{}, infinity, T{});
    tdim += 2;
    const std::int64_t p = tdim / 2 - 1;
    if (i == p) continue;
    At.swapRows(i, dt.MN - p);
    dt.swap(i, dt.MN - p);
    if (kt.notEmpty()) kt.swap(i, dt.MN - p);
    --i;
  }
}

template <typename T>
bool Vexil<T>::hasKnownValue(std::int64_t i) const {
  return i <= kt.MN && isFinite<T>(kt[i]);
}

template <typename T>
T Vexil<T>::targetSign(std::int64_t i) const {
  return T(dt[i] == NumberTraits<T>::infinity() ? -1 : 1);
}

template <typename T>
T Vexil<T>::targetNorm(const Vector<T>& values) const {
  using N = NumberTraits<T>;
  T sum{};
  for (std::int64_t i = 1; i <= dt.MN; ++i) {
    if (isFinite<T>(dt[i])) fail("This should not be the case anymore!");
    sum += N::abs(values[i]);
    N::guard(sum, "sum overflow");
  }
  return sum;
}

template <typename T>
void Vexil<T>::computeAtu() {
  atu.resize(At.columnCount, false);
  atu.fill(T{});
  for (std::int64_t i = 1; i <= At.rowCount; ++i) atu.subtractMultiple(-targetSign(i), At[i]);
  for (const T& element : atu.elements()) {
    if (!isFinite<T>(element)) throw PrecisionException("atu overflow");
    NumberTraits<T>::guard(element, "atu overflow");
  }
}

template <typename T>
void Vexil<T>::seedTargetBound() {
  if (!kt.notEmpty() || !isFinite(kt)) return;
  T value(1);
  for (std::int64_t i = 1; i <= kt.MN; ++i) value += kt[i] * targetSign(i);
  tightenTargetBound(kt, value);
}

template <typename T>
bool Vexil<T>::lowerTargetBound(const T& norm) {
  T least = -norm;
  if (allTargetsFinite && least < T{}) least = T{};
  if (isFinite<T>(lrtu.left) && !(least < lrtu.left)) return false;
  lrtu.left = std::move(least);
  return true;
}

template <typename T>
bool Vexil<T>::tightenTargetBound(const Vector<T>& values, const T& value) {
  const bool lowered = lowerTargetBound(targetNorm(values));
  const T greatest = value - T(1);
  NumberTraits<T>::guard(greatest, "rt overflow");
  const bool tightened = !isFinite<T>(lrtu.right) || greatest < lrtu.right;
  if (tightened) lrtu.right = greatest;
  if (!lowered && !tightened) return false;
  if (lrtu.left > lrtu.right) lrtu.left = lrtu.right;
  tu = 1;
  return true;
}

template <typename T>
void Vexil<T>::boundTargetFromVariables() {
  if (At.rowCount == 0) return;
  for (const Vector<T>* const x : {&lx, &rx}) {
    if (!isFinite(*x)) continue;
    const T norm = targetNorm(At * *x);
    lowerTargetBound(norm);
    if (tu == 0 && (!isFinite<T>(lrtu.right) || norm > lrtu.right)) lrtu.right = norm;
  }
}

}  // namespace vexil
