// Vexil - exact integer optimization on lattices.
#pragma once

#include "solver/form_system.h"
#include "solver/kernel.h"
#include "solver/model.h"
#include "solver/stop.h"

namespace vexil::solver {

/// Reduces the rows of `basis` and x0 against them, towards the middle of the boxes, in the metric
/// of the forms (weight 2 / width of the box): LLL with 0.99 for blockSize 2, BKZ for more, deep
/// insertions with `deep`. Without equations, and without a row that one step of a variable can
/// leap over, there is nothing to reduce: the basis stays as it is, with `ordered` false. Throws
/// `Stopped`.
void reduce(LatticeBasis& basis, const Model& model, int blockSize, bool deep, StopToken& stop);

/// True if the system of this basis is narrow: `formSystem<std::int64_t>` may be made.
[[nodiscard]] bool isNarrowSystem(const Model& model, const LatticeBasis& basis);

/// The forms of all variables, of all rows that are no equation, and, as the last ones, of all
/// goals. A form that is constant on the lattice is left out, unless it is outside its box. A row
/// or goal without a side gets what the variables imply, artificial if one of their sides is.
template <typename Z>
[[nodiscard]] FormSystem<Z> formSystem(const Model& model, const LatticeBasis& basis);

extern template FormSystem<std::int64_t> formSystem(const Model&, const LatticeBasis&);
extern template FormSystem<ZZ> formSystem(const Model&, const LatticeBasis&);

}  // namespace vexil::solver
