// Vexil - exact integer optimization on lattices.
//
// The test of stars against the program as the file gave it, and the two numbers that judge a
// point.
#pragma once

#include "program/vexil.h"
#include "solutions/star_check.h"

namespace vexil {

template <typename T>
bool StarCheck<T>::isValid(Star<T>& star) {
  const Vector<T>& x = star;
  if (!(x >= program_.lx && x <= program_.rx)) return false;
  if (program_.Ag.rowCount > 0 && !(equations_(x) == program_.bg)) return false;
  if (program_.Au.rowCount > 0) {
    const Vector<T> z = inequations_(x);
    if (!(z >= program_.lu && z <= program_.ru)) return false;
  }
  if (program_.At.rowCount > 0) {
    star.targetValues = targets_(x);
    star.targetNorm = program_.targetAndSlackNorm(star.targetValues, x, star.slackNorm);
  }
  return true;
}

template <typename T>
bool Vexil<T>::starIsValid(Star<T>& star) const {
  return StarCheck<T>(*this).isValid(star);
}

template <typename T>
bool Vexil<T>::checkStar(std::int64_t i) {
  const bool valid = starIsValid(solStars[i]);
  if (!valid) solStars.removeElement(i);
  return valid;
}

/// The star behind a removed one takes its place unlooked at. The stars that stay are moved once.
template <typename T>
bool Vexil<T>::checkAllStars() {
  StarCheck<T> check(*this);
  std::int64_t kept = 0;
  bool spared = false;
  bool result = true;
  for (std::int64_t i = 1; i <= solStars.MN; ++i) {
    const bool stays = spared || check.isValid(solStars[i]);
    spared = !stays;
    result = result && stays;
    if (stays && ++kept != i) solStars[kept] = std::move(solStars[i]);
  }
  solStars.resize(kept, false);
  return result;
}

template <typename T>
T Vexil<T>::targetAndSlackNorm(const Vector<T>& values, const Vector<T>& x, T& S) const {
  const T infinity = NumberTraits<T>::infinity();
  const auto magnitude = [](T number) { return number < T{} ? T(-number) : number; };
  const auto residual = [&](std::int64_t i) {
    T value = -bg[i];
    for (std::int64_t j = 1; j <= x.MN - (sdim + tdim); ++j) value += Ag[i][j] * x[j];
    return magnitude(value);
  };
  T norm{};
  S = T{};
  for (std::int64_t i = 1; i <= dt.MN; ++i) {
    T t = dt[i] == infinity ? T(-values[i]) : values[i];
    const bool finite = dt[i] != infinity && dt[i] != -infinity;
    if (starsPrepared) {
      if (finite) fail("preparation inconsistency");
      if (tdim != 0 && i > dt.MN - tdim / 2) S += residual(i);
    } else if (finite) {
      t = magnitude(t - dt[i]);
      S += t;
    }
    norm += t;
  }
  return norm;
}

template <typename T>
T Vexil<T>::combinedValue(const Vector<T>& values) const {
  const T infinity = NumberTraits<T>::infinity();
  T sum{};
  for (std::int64_t i = 1; i <= values.MN; ++i) {
    sum += dt[i] == infinity ? T(-values[i]) : values[i];
  }
  return sum;
}

}  // namespace vexil
