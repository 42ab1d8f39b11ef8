// Vexil - exact integer optimization on lattices.
//
// Whole-state copies between lattices of the same or of another instantiation.
#pragma once

#include "lattice/lattice.h"
#include "numbers/narrowing.h"
#include "program/vexil.tcc"

namespace vexil {

namespace detail {

/// Copies the collected vectors in their order, which need not be looked at again.
template <typename S, typename T>
void copySet(const SortedSet<S>& source, SortedSet<T>& target) {
  target.clear();
  target.setCapacity(source.capacity);
  for (const auto* p = source.head; p != nullptr; p = p->next) {
    convert(p->element, target.append(T())->element, true);
  }
}

}  // namespace detail

template <typename T, typename U>
template <typename S, typename V>
void Lattice<T, U>::assignFrom(const Lattice<S, V>& source, bool keepParams) {
  if constexpr (std::is_same_v<Lattice<S, V>, Lattice>) {
    if (&source == this) return;
  }
  const auto copy = [](const auto& from, auto& to) { convert(from, to, narrows<S, T>); };
  const auto copyU = [](const auto& from, auto& to) { convert(from, to, narrows<V, U>); };
  const auto copyNumber = [](const S& from, T& to) {
    convertNumber(from, to, narrows<S, T>, false, false);
  };
  const auto copyBlock = [&](const SavedDecomposition<V>& from, SavedDecomposition<U>& to) {
    copyU(from.L, to.L);
    copyU(from.Q, to.Q);
  };

  Vexil<T>::assign(static_cast<const Vexil<S>&>(source));
  program.assign(source.program);
  latFile = source.latFile;
  if (!keepParams) params.assign(source.params);

  stepCounter = source.stepCounter;
  convert(source.bestHeuristic, bestHeuristic, true);
  copy(source.bestTarget, bestTarget);
  copy(source.stars, stars);
  copy(source.TT, TT);
  copy(source.B, B);
  latRows = source.latRows;
  latDim = source.latDim;
  copy(source.B_save, B_save);
  consistency.assign(source.consistency);
  copyBlock(source.firstBlock, firstBlock);
  copyBlock(source.secondBlock, secondBlock);
  cells = source.cells;

  symmetric = source.symmetric;
  checkMode = source.checkMode;
  copy(source.l, l);
  copy(source.l0, l0);
  copy(source.r, r);
  copy(source.r0, r0);
  copyNumber(source.maxNorm, maxNorm);
  copy(source.c, c);
  copyNumber(source.R, R);
  copyNumber(source.signReferenceLat, signReferenceLat);
  rowState = source.rowState;
  consistencyForced = source.consistencyForced;
  keepDependent = source.keepDependent;
  copyU(source.fullStages, fullStages);
  copyU(source.reducedNorms, reducedNorms);
  copyU(source.Lfull, Lfull);
  copyU(source.reducedStages, reducedStages);
  copyU(source.Lreduced, Lreduced);
  copyU(source.mu, mu);
  copyU(source.Q, Q);
  copyU(source.bstar, bstar);
  copy(source.rowNorm, rowNorm);
  copy(source.rowWork, rowWork);
  convertNumber(source.blendValue, blendValue, narrows<V, U>, false, false);
  stages.resize(source.stages.MN, false);
  for (std::int64_t i = 1; i <= stages.MN; ++i) convert(source.stages[i], stages[i], true);
  detail::copySet(source.homogeneousVectors, homogeneousVectors);
  detail::copySet(source.inhomogeneousVectors, inhomogeneousVectors);
  copy(source.weights, weights);
  copy(source.translation, translation);
}

}  // namespace vexil
