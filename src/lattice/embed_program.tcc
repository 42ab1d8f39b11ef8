// Vexil - exact integer optimization on lattices.
//
// The program embedded in a lattice whose vectors are its points: each row and each variable
// becomes a coordinate, scaled so that its feasible values reach from -R to R, and the last
// coordinate marks the right-hand side [AHL].
#pragma once

#include <algorithm>

#include "foundation/failure.h"
#include "lattice/lattice.h"
#include "numbers/divisors.h"

namespace vexil {

template <typename T, typename U>
void Lattice<T, U>::prepare(bool force1, bool force2) {
  const bool verbose = params.verb.current == 2;
  if (force1 || force2 || (this->tu != 0 && !this->atu.notEmpty())) {
    program.removeUselessInequations(verbose);
    program.moveFakeInequations(verbose);
    program.addSlackVariables();
    program.addDeviationVariables();
    program.computeAtu();
    if (force1) {
      program.seedTargetBound();
      program.boundTargetFromVariables();
    }
    program.starsPrepared = true;
  }
  Vexil<T>::assign(program);
  this->normalForm(verbose);
}

template <typename T, typename U>
T Lattice<T, U>::minimizeLcm(const T& R, const T& right, T& left) {
  using N = NumberTraits<T>;
  T width = right - left;
  const auto widenTo = [&](const T& wider) {
    width = wider;
    left = right - width;
  };
  if (N::ceil(width) != width) widenTo(N::ceil(width));
  if (!(width > T{}) || !isFinite<T>(width)) return width;
  const T divisor = N::gcd(R, width);
  if (divisor == width || divisor == R) return width;
  // The next width that divides R or is a multiple of it has a smaller multiple in common with R
  // than any before it.
  if (width > R) {
    widenTo(N::ceil(width / R) * R);
  } else {
    const QQ next = nextDivisor(numberAs<QQ>(R).ganze, numberAs<QQ>(width).ganze);
    widenTo(numberAs<T>(next));
  }
  return width;
}

template <typename T, typename U>
T Lattice<T, U>::computeR(bool equationsOnly) {
  using N = NumberTraits<T>;
  T radius(1);
  const auto take = [&radius](const T& width) {
    if (width == T{}) return;
    radius = N::lcm(radius, width);
    N::guard(radius, "R overflow");
  };
  for (std::int64_t i = 1; i <= this->rx.MN; ++i) {
    T& right = this->rx[i];
    if (this->lx[i] == -N::infinity() || right == N::infinity()) continue;
    if (isRightFree(this->freedomDegrees[i])) {
      T left{};
      right = minimizeLcm(radius, right, left);
    }
    take(right);
  }
  if (equationsOnly) return radius;
  for (std::int64_t j = 1; j <= this->Au.rowCount; ++j) {
    const bool finite = isFinite<T>(this->lu[j]) && isFinite<T>(this->ru[j]);
    if (!finite || isZero<T>(this->ru[j] - this->lu[j])) fail("ineq bounds error1");
    take(this->ru[j] - this->lu[j]);
  }
  if (this->tu != 0) take(minimizeLcm(radius, this->lrtu.right, this->lrtu.left));
  return radius;
}

template <typename T, typename U>
void Lattice<T, U>::buildBase(bool equationsOnly) {
  const std::int64_t n = this->rx.MN;
  embedding.R = computeR(equationsOnly);
  const std::int64_t k = equationsOnly ? this->Ag.rowCount : program.tu + this->Au.rowCount;
  if (basis.latRows != 0) resetWeights(true, true);
  resize(n + 1, n + k + 1, true);
  for (Vector<T>& row : basis.B.elements()) row.fill(T{});
  if (equationsOnly) {
    embedEquations();
  } else {
    if (program.tu != 0) embedTarget();
    embedInequations();
  }
  embedVariables(k);
  embedding.c[basis.latDim] = T{};
  setBounds(basis.latDim, form.signReference, form.signReference);
  basis.B[1][basis.latDim] = form.signReference;
  for (const Vector<T>& row : basis.B.elements()) {
    for (const T& element : row.elements()) NumberTraits<T>::guard(element, "B_save overflow2");
  }
  embedding.l0 = embedding.l;
  embedding.r0 = embedding.r;
  embedding.symmetric = embedding.l == -embedding.r;
  embedding.checkMode = equationsOnly ? 1 : 2;
  embedding.computeMaxNorm();
  gramSchmidt.clearRowState();
  resetTransformation(false);
  basis.B_save = basis.B;
  firstBlock.clear();
  secondBlock.clear();
  membership.clear();
  interval_tt = SWAP_BUDGET;
}

template <typename T, typename U>
void Lattice<T, U>::setBounds(std::int64_t q, const T& left, const T& right) {
  embedding.l[q] = left;
  embedding.r[q] = right;
}

/// Coordinate q of the basis for a row of the program, as 2 a x - (left + right) times `scale`.
template <typename T, typename U>
void Lattice<T, U>::embedRow(std::int64_t q, const Vector<T>& row, const T& sum, const T& scale) {
  embedding.c[q] = scale;
  basis.B[1][q] = -sum * scale;
  const T twice = T(2) * scale;
  for (std::int64_t i = 1; i <= row.MN; ++i) basis.B[i + 1][q] = twice * row[i];
}

/// The coordinates of the equations are not scaled and have to be 0.
template <typename T, typename U>
void Lattice<T, U>::embedEquations() {
  for (std::int64_t j = 1; j <= this->Ag.rowCount; ++j) {
    embedding.c[j] = T{};
    setBounds(j, T{}, T{});
    basis.B[1][j] = -this->bg[j];
    for (std::int64_t i = 1; i <= this->rx.MN; ++i) basis.B[i + 1][j] = this->Ag[j][i];
  }
}

template <typename T, typename U>
void Lattice<T, U>::embedTarget() {
  const T width = this->lrtu.right - this->lrtu.left;
  setBounds(1, T{}, T{});
  embedRow(1, this->atu, this->lrtu.right + this->lrtu.left,
           isZero<T>(width) ? embedding.R : T(embedding.R / width));
}

template <typename T, typename U>
void Lattice<T, U>::embedInequations() {
  for (std::int64_t j = 1; j <= this->Au.rowCount; ++j) {
    const std::int64_t q = program.tu + j;
    const T width = this->ru[j] - this->lu[j];
    if (isZero<T>(width)) fail("ineq bounds error2");
    setBounds(q, -embedding.R, embedding.R);
    embedRow(q, this->Au[j], this->lu[j] + this->ru[j], embedding.R / width);
  }
}

/// The coordinates behind the first k.
template <typename T, typename U>
void Lattice<T, U>::embedVariables(std::int64_t k) {
  const T infinity = NumberTraits<T>::infinity();
  const std::int64_t n = this->rx.MN;
  for (std::int64_t i = 1; i <= n; ++i) {
    const std::int64_t q = k + i;
    const FreedomDegree degree = this->freedomDegrees[i];
    const bool deviation = i > n - this->tdim;
    T right = infinity;
    T scale = deviation ? embedding.R : T(1);
    if (!deviation && !isRightFree(degree)) {
      const T& width = this->rx[i];
      if (isZero<T>(width - this->lx[i]) || !(width > T{})) fail("sol bounds error");
      right = embedding.R;
      scale = embedding.R / width;
    }
    setBounds(q, degree == FreedomDegree::FREE ? T(-infinity) : T(-embedding.R), right);
    embedding.c[q] = scale;
    basis.B[1][q] = -embedding.R;
    basis.B[i + 1][q] = T(2) * scale;
  }
}

}  // namespace vexil
