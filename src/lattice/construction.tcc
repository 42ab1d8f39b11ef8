// Vexil - exact integer optimization on lattices.
//
// The life of a lattice object: construction, a new basis, sizes, transformations.
#pragma once

#include "lattice/lattice.h"
#include "program/file_names.h"
#include "solutions/backup_mode.h"

namespace vexil {

template <typename T, typename U>
Lattice<T, U>::Lattice(const Matrix<T>* base) : Lattice(std::make_shared<MainMutexVars>()) {
  setBase(base, true);
}

template <typename T, typename U>
Lattice<T, U>::Lattice(const Lattice& source) : Lattice(source.cells) {
  assign(source, false);
}

template <typename T, typename U>
Lattice<T, U>& Lattice<T, U>::operator=(const Lattice& source) {
  if (this != &source) assign(source, false);
  return *this;
}

template <typename T, typename U>
Lattice<T, U>::~Lattice() = default;

template <typename T, typename U>
Lattice<T, U>::Lattice(std::shared_ptr<MainMutexVars> sharedCells)
    : cells(std::move(sharedCells)),
      intervalLimit(static_cast<std::int64_t>(params.pairLimit.current)) {
  const auto limit = static_cast<std::int64_t>(params.collectLimit.current);
  found.homogeneousVectors.setCapacity(limit);
  found.inhomogeneousVectors.setCapacity(limit);
  installCallbacks();
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
  const String base = baseOfFileName(name);
  this->optFile = base + ".opt";
  this->solFile = base + ".sol";
  program.optFile = this->optFile;
  program.solFile = this->solFile;
  latFile = base + ".lat";
}

template <typename T, typename U>
void Lattice<T, U>::setBase(const Matrix<T>* base, bool clearLatFile) {
  if (base == nullptr) {
    basis.B.clear();
  } else if (base != &basis.B) {
    basis.B = *base;
  }
  basis.latRows = basis.B.rowCount;
  basis.latDim = basis.B.columnCount;
  found.clear();  // nothing is carried over into another lattice
  resetTransformation(false);
  resize(basis.latRows, basis.latDim, false);
  if (clearLatFile) latFile.clear();
  stepCounter = 0;
  (*cells)[MainMutexVariable::STAR_COUNT].set("0");
  (*cells)[MainMutexVariable::NEWEST_STAR].set("");
  (*cells)[MainMutexVariable::SPARE_5].set("");
  clearMembers(embedding);
  interval_tt = SWAP_BUDGET;
  gramSchmidt.clear();
  consistency.consistencyForced = false;
  blendValue = U{};
  resetWeights(true, true);
  basis.B_save = basis.B;
  firstBlock.clear();
  secondBlock.clear();
}

template <typename T, typename U>
void Lattice<T, U>::resize(std::int64_t rows, std::int64_t cols, bool fromGeneration) {
  if (rows < 0 || cols < 0) return;
  if (cols == 0) cols = basis.latDim;
  Array<Star<T>> stars;
  Array<TimeVector<T>> vectors;
  Collection homogeneous;
  Collection inhomogeneous;
  basis.latDim = cols;
  if (fromGeneration) {
    found.stars.clear();
    program.solStars.clear();
    found.homogeneousVectors.clear();
    found.inhomogeneousVectors.clear();
  } else {
    backupState(AS_THEY_ARE, stars, vectors, homogeneous, inhomogeneous, 0);
  }
  basis.resize(rows, cols);
  gramSchmidt.resize(rows, cols);
  embedding.resize(cols);
  form.resize(cols);
  firstBlock.clear();
  secondBlock.clear();
  membership.clear();
  if (!fromGeneration) restoreState(stars, vectors, homogeneous, inhomogeneous, AS_THEY_ARE);
}

}  // namespace vexil
