// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/members.h"
#include "numbers/qq_vectors.h"

namespace vexil {

/// The factors of a decomposed basis, kept so that a later question about the same basis need not
/// decompose it again. Emptied when the basis is replaced.
template <typename U>
struct SavedDecomposition {
  Matrix<U> L;
  Matrix<U> Q;

  template <typename Self>
  static auto members(Self& self) {
    auto& [L, Q] = self;
    return std::tie(L, Q);
  }

  /// Becomes a copy of `source` if both of its matrices have rows, else empty.
  void takeIfWhole(const SavedDecomposition& source) {
    if (source.L.rowCount > 0 && source.Q.rowCount > 0) {
      *this = source;
    } else {
      clear();
    }
  }

  void clear() { clearMembers(*this); }
};

}  // namespace vexil
