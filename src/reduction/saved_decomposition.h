// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/matrix.h"
#include "numbers/qq_vectors.h"

namespace vexil {

/// The factors of a decomposed basis, kept so that a later question about the same basis need not
/// decompose it again. Emptied when the basis is replaced.
template <typename U>
struct SavedDecomposition {
  Matrix<U> L;
  Matrix<U> Q;

  void clear() {
    L.clear();
    Q.clear();
  }
};

}  // namespace vexil
