// Vexil - exact integer optimization on lattices.
#pragma once

#include <vector>

#include "solver/model.h"
#include "solver/stop.h"

namespace vexil::solver {

/// The integral points of the equations: X = x0 + sum lambda_k K_k, lambda in Z^d, each exactly
/// once.
struct LatticeBasis {
  const char* contradiction = nullptr;  ///< why there is none; nullptr: there is
  std::vector<ZZ> x0;                   ///< n
  std::vector<std::vector<ZZ>> K;       ///< d rows of n
  bool ordered = false;                 ///< see `FormSystem`
};

/// All integral points of the equations and fixed variables of `model`, one equation after the
/// other; the rows reduced on the way. Contradictions: "equations contradict each other", "the
/// equations have no integral point". Throws `Stopped`.
[[nodiscard]] LatticeBasis kernel(const Model& model, StopToken& stop);

}  // namespace vexil::solver
