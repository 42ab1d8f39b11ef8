// Vexil - exact integer optimization on lattices.
#pragma once

#include "solver/relaxation.h"
#include "solver/stop.h"

namespace vexil::solver {

/// Narrows the boxes of a relaxation at the root: the linear program, then the least and the
/// greatest value of every coordinate and every form, each proved and rounded inward. Offers the
/// rounded solutions on the way. Throws `Stopped`.
template <typename Z>
[[nodiscard]] NodeState tightenRoot(const FormSystem<Z>& forms, Relaxation<Z>& relaxation,
                                    SearchState<Z>& state, StopToken& stop);

/// Adds cuts to the relaxation as long as they raise the objective of the linear program. Throws
/// `Stopped`.
template <typename Z>
[[nodiscard]] NodeState addRootCuts(Relaxation<Z>& relaxation, StopToken& stop);

extern template NodeState addRootCuts(Relaxation<std::int64_t>&, StopToken&);
extern template NodeState addRootCuts(Relaxation<ZZ>&, StopToken&);

extern template NodeState tightenRoot(const FormSystem<std::int64_t>&, Relaxation<std::int64_t>&,
                                      SearchState<std::int64_t>&, StopToken&);
extern template NodeState tightenRoot(const FormSystem<ZZ>&, Relaxation<ZZ>&, SearchState<ZZ>&,
                                      StopToken&);

/// Has the dictionary minimise the objective, or without one a fixed arbitrary form.
template <typename Z>
void minimizeObjective(Relaxation<Z>& relaxation);

}  // namespace vexil::solver
