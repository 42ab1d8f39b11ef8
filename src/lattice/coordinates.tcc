// Vexil - exact integer optimization on lattices.
//
// The maps between points of the program and lattice vectors. lat2opt undoes each step of the
// normal form in the opposite order, opt2lat goes through the steps again.
#pragma once

#include "lattice/lattice.h"

namespace vexil {

template <typename T, typename U>
int Lattice<T, U>::lat2opt(const Vector<T>& lat_vec, Vector<T>& opt_vec, bool withFixed,
                           bool withExtra) const {
  using Traits = NumberTraits<T>;
  const std::int64_t N = basis.latDim;
  const std::int64_t n = this->lx.MN;
  if (embedding.checkMode == 0) fail("lat2opt called with uninitialized check vectors!");
  if (lat_vec.MN == 0) fail("lat_vec == 0");
  if (lat_vec.MN != N) fail("lat_vec doesn't match lattice dimension");

  // A vector and its negative stand for the same point.
  const bool turned = form.signReference > T{0} ? !(lat_vec[N] > T{0}) : !(lat_vec[N] < T{0});
  const auto coordinate = [&](std::int64_t q) { return turned ? -lat_vec[q] : lat_vec[q]; };
  const bool carriesReference = isZero(T(form.signReference - coordinate(N)));
  for (const T& x : lat_vec.elements()) Traits::guard(x, "lat_vec overflow");

  opt_vec.resize(withExtra ? n : n - (this->sdim + this->tdim), false);
  for (std::int64_t i = 1; i <= opt_vec.MN; ++i) {
    const std::int64_t q = N - n + i - 1;
    opt_vec[i] = (embedding.R + coordinate(q)) / (T{2} * embedding.c[q]);
    if (this->lx[i] != -Traits::infinity()) opt_vec[i] += this->lx[i];
    Traits::guard(opt_vec[i], "opt_vec overflow1");
  }
  for (const long i : this->swappedVariables.elements()) opt_vec[i] = T{} - opt_vec[i];  // no -0
  for (std::int64_t i = 1; i <= opt_vec.MN; ++i) {
    if (this->dx[i] > T{0}) opt_vec[i] /= Traits::powerOfTen(this->dx[i]);
  }
  if (withFixed) {
    for (const auto& [index, value] : this->fixedVariables.elements()) {
      opt_vec.insertComponent(index, value);
    }
  }
  return carriesReference ? 1 : -1;
}

template <typename T, typename U>
void Lattice<T, U>::opt2lat(const Vector<T>& opt_vec, Vector<T>& lat_vec, bool weighted) const {
  if (embedding.checkMode == 0) fail("opt2lat called with uninitialized check vectors!");
  const Vector<T> w = normalFormPoint(opt_vec);
  const std::int64_t N = basis.latDim;
  lat_vec.resize(N, false);
  if (embedding.checkMode == 1) {
    if (N - this->lx.MN - 1 > 0) {
      const Vector<T> residual = this->Ag * w - this->bg;
      for (std::int64_t j = 1; j <= residual.MN; ++j) lat_vec[j] = residual[j];
    }
  } else {
    if (program.tu != 0) {
      const T bounds = this->lrtu.right + this->lrtu.left;
      lat_vec[1] = (T{2} * (this->atu * w) - bounds) * embedding.c[1];
    }
    if (this->Au.rowCount > 0) {
      Vector<T> u = this->Au * w;
      u *= T{2};
      u -= this->lu + this->ru;
      for (std::int64_t j = 1; j <= u.MN; ++j) {
        lat_vec[program.tu + j] = embedding.c[program.tu + j] * u[j];
      }
    }
  }
  for (std::int64_t i = 1; i <= w.MN; ++i) {
    const std::int64_t q = N - w.MN + i - 1;
    lat_vec[q] = T{2} * w[i] * embedding.c[q] - embedding.R;
  }
  lat_vec[N] = form.signReference;
  if (weighted) lat_vec = weightedRow(lat_vec);
}

/// The variables of the normal form at a point of the program: fixed ones taken out, the extra ones
/// worked out from their equations. The place of an extra variable is counted behind the dimension
/// of the point as it came in, fixed variables included.
template <typename T, typename U>
Vector<T> Lattice<T, U>::normalFormPoint(const Vector<T>& opt_vec) const {
  using Traits = NumberTraits<T>;
  Vector<T> w = opt_vec;
  for (std::int64_t f = this->fixedVariables.MN; f >= 1; --f) {
    w.removeComponent(this->fixedVariables[f].left);
  }
  const std::int64_t m = w.MN;
  for (std::int64_t i = 1; i <= m; ++i) {
    if (this->dx[i] > T{0}) w[i] *= Traits::powerOfTen(this->dx[i]);
  }
  for (const long i : this->swappedVariables.elements()) w[i] = -w[i];
  for (std::int64_t i = 1; i <= m; ++i) {
    if (this->lx[i] != -Traits::infinity()) w[i] -= this->lx[i];
  }

  const std::int64_t extra = this->sdim + this->tdim;
  w.resize(m + extra, false);
  for (std::int64_t i = m + 1; i <= w.MN; ++i) w[i] = T{0};
  const std::int64_t d = opt_vec.MN;
  std::int64_t j = this->Ag.rowCount - (this->tdim / 2 + this->sdim);
  for (std::int64_t p = 1; p <= extra;) {
    const T v = slackValue(++j, w, m);
    const bool negative = v < T{0};
    if (p <= this->sdim) {
      if (negative) fail("slack variable insonsistency, s should be >= 0");
      w[d + p] = v;
      p += 1;
    } else {
      w[d + p] = negative ? T(-v) : T{0};
      w[d + p + 1] = negative ? T{0} : v;
      p += 2;
    }
  }
  return w;
}

template <typename T, typename U>
T Lattice<T, U>::slackValue(std::int64_t j, const Vector<T>& x, std::int64_t count) const {
  T value = -this->bg[j];
  for (std::int64_t q = 1; q <= count; ++q) {
    NumberTraits<T>::addProduct(value, this->Ag[j][q], x[q]);
  }
  return value;
}

}  // namespace vexil
