// Vexil - exact integer optimization on lattices.
//
// The life of a lattice object: construction, a new basis, sizes, transformations.
#pragma once

#include "lattice/lattice.h"

namespace vexil {

template <typename T, typename U>
Lattice<T, U>::Lattice(const Matrix<T>* base) : params(*this), consistency(*this) {
  intervalLimit = static_cast<std::int64_t>(params.pairLimit.current);
  const auto limit = static_cast<std::int64_t>(params.collectLimit.current);
  homogeneousVectors.setCapacity(limit);
  inhomogeneousVectors.setCapacity(limit);
  installCallbacks();
  setBase(base, true);
}

/// The callbacks act on a change to false that comes with another text than the option's own.
template <typename T, typename U>
void Lattice<T, U>::installCallbacks() {
  const auto onSwitchOff = [](Param<bool>& option, auto action) {
    option.setOnChange([&option, action](const String& text) {
      if (option.value.get() == text || option.current) return;
      action();
    });
  };
  onSwitchOff(params.consistency, [this] {
    resetTransformation(false);
    consistency.transformationPresent = true;
  });
  onSwitchOff(params.scale, [this] { resetWeights(true, false); });
  onSwitchOff(params.translate, [this] { resetWeights(false, true); });
}

template <typename T, typename U>
void Lattice<T, U>::setFileNames(const String& name) {
  const std::size_t dot = name.rfind('.');
  const bool hasEnding = dot != String::npos && name.find('/', dot) == String::npos;
  String base = hasEnding ? String(name.substr(0, dot)) : name;
  if (base.empty()) base = name;
  this->optFile = base + ".opt";
  this->solFile = base + ".sol";
  program.optFile = this->optFile;
  program.solFile = this->solFile;
  latFile = base + ".lat";
}

template <typename T, typename U>
void Lattice<T, U>::setBase(const Matrix<T>* base, bool clearLatFile) {
  if (base == nullptr) {
    B.clear();
  } else if (base != &B) {
    B = *base;
  }
  latRows = B.rowCount;
  latDim = B.columnCount;
  resetTransformation(false);
  resize(latRows, latDim, false);
  if (clearLatFile) latFile.clear();
  stepCounter = 0;
  bestHeuristic.clear();
  bestTarget.clear();
  stars.clear();
  cells[MainMutexVariable::STAR_COUNT].set("0");
  cells[MainMutexVariable::NEWEST_STAR].set("");
  cells[MainMutexVariable::SPARE_5].set("");
  R = T{};
  for (Vector<T>* const bounds : {&l, &l0, &r, &r0, &c}) bounds->clear();
  maxNorm = T{};
  symmetric = false;
  checkMode = 0;
  interval_tt = 100;
  keepDependent = false;
  consistencyForced = false;
  clearRowState();
  for (Array<Matrix<U>>* const storage : {&fullStages, &reducedStages}) storage->clear();
  for (Matrix<U>* const matrix : {&Lfull, &Lreduced, &Q, &mu}) matrix->clear();
  reducedNorms.clear();
  bstar.clear();
  rowNorm.clear();
  blendValue = U{};
  for (Stage<T, U>& stage : stages.elements()) stage = Stage<T, U>();
  resetWeights(true, true);
  B_save = B;
  firstBlock.clear();
  secondBlock.clear();
}

template <typename T, typename U>
void Lattice<T, U>::resize(std::int64_t rows, std::int64_t cols, bool fromGeneration) {
  if (rows < 0 || cols < 0) return;
  if (cols == 0) cols = latDim;
  if (fromGeneration) {
    stars.clear();
    program.solStars.clear();
    homogeneousVectors.clear();
    inhomogeneousVectors.clear();
  }
  B.setSize(rows, cols);
  B_save.setSize(rows, cols);
  firstBlock.clear();
  secondBlock.clear();
  for (Matrix<T>& matrix : TT.elements()) {
    if (matrix.rowCount < rows) matrix.resize(rows, rows, false);
  }
  rowState.resize(rows, false);
  mu.setSize(rows, rows);
  Q.setSize(rows, cols);
  bstar.resize(rows, false);
  rowNorm.resize(rows, false);
  rowWork.resize(rows, false);
  stages.resize(rows + 1, false);
  for (Vector<T>* const bounds : {&l, &l0, &r, &r0, &c}) bounds->resize(cols, false);
  // New coordinates start in the identity form.
  const auto widen = [cols](Vector<T>& perCoordinate, const T& neutral) {
    std::int64_t i = perCoordinate.MN;
    perCoordinate.resize(cols, false);
    while (++i <= cols) perCoordinate.data[i] = neutral;
  };
  widen(weights, T(1));
  widen(translation, T{});
  latRows = rows;
  if (cols > 0) latDim = cols;
}

template <typename T, typename U>
void Lattice<T, U>::resetTransformation(bool append) {
  if (append && TT.MN > 0 && !TT[TT.MN].isIdentity()) {
    if (TT.MN >= T_MAT_NBR) warn("TT.MN > T_MAT_NBR");
    TT.resize(TT.MN + 1, false);
  } else {
    TT.resize(1, false);
  }
  TT[TT.MN].setIdentity(latRows);
}

template <typename T, typename U>
void Lattice<T, U>::clearRowState() {
  for (short& state : rowState.elements()) state = 0;
}

}  // namespace vexil
