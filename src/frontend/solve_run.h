// Vexil - exact integer optimization on lattices.
#pragma once

#include <functional>

#include "frontend/solve_options.h"
#include "solver/search.h"

namespace vexil {

/// `solver::solve`, or what stands in for it.
using Solver = std::function<solver::Outcome(const Vexil<QQ>&, const std::vector<Vector<QQ>>&,
                                             const solver::Settings&, solver::Listener&)>;

/// A whole run of `vexil-solve`: reads the program and its stars, searches, keeps the stars in the
/// sol file and prints answer and report. Returns the exit status: 0 for an answer, 2 for a search
/// that was stopped, 1 where the stars could not be written, which then stand on standard output,
/// or standard output itself. Failures ahead of the search end the process with their text.
[[nodiscard]] int solveRun(const SolveOptions& options, const Solver& solve);

}  // namespace vexil
