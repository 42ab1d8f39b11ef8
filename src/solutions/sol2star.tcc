// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/failure.h"
#include "foundation/version.h"
#include "lattice/lattice.h"

namespace vexil {

/// A program without targets keeps its slack and deviation variables in its stars.
template <typename T, typename U>
void Lattice<T, U>::sol2star() {
  Array<Star<T>>& collected = program.solStars;
  const std::int64_t oldSize = collected.MN;
  const auto add = [&](const TimeVector<T>& source) {
    Star<T> star;
    if (lat2opt(source, star, true, true) != 1) fail("sol2star: lat2opt can not compute x_opt");
    if (program.At.rowCount > 0) {
      star.targetValues = program.At * star;
      star.targetNorm = program.targetAndSlackNorm(star.targetValues, star, star.slackNorm);
      star.resize(star.MN - this->sdim - this->tdim, false);
    }
    star.time = source.time;
    star.paramText = joined(params);
    star.version = VERSION;
    collected.append(star);
  };
  if (found.bestTarget.notEmpty()) add(found.bestTarget);
  for (const TargetVector<T>& source : found.stars.elements()) add(source);
  if (collected.MN == oldSize) return;
  sort(collected);
  removeDuplicates(collected, params.bench > 0);
}

}  // namespace vexil
