// Vexil - exact integer optimization on lattices.
#pragma once

#include "solver/model.h"
#include "solver/stop.h"

namespace vexil::solver {

/// Tightens `model` without touching its set of points, in exact integers and from proved sides
/// alone; artificial ones count as missing. For each row in turn, while anything changes, but at
/// most 30 rounds (x = y creeps):
///
/// - fixed variables are substituted: their coefficients become 0 in rows, c and goals, their part
///   goes into sides, constant and wish; the variables keep their places;
/// - the row is divided by the gcd of its coefficients, its sides rounded inward;
/// - a side that the variables imply is dropped, and the row with both; equations keep theirs;
/// - every variable is tightened by what the row leaves it, the others at their best. A missing
///   side is no obstacle to the side of the variable that lacks it, if it is the only one.
///
/// A goal whose sign is settled becomes a part of c. Afterwards every variable has two finite
/// sides: artificial ones stay, and those that are missing are put in, 2^20 beyond the other side
/// or +-2^20, and marked artificial.
///
/// Returns nullptr, or in words why the model has no point: "no multiple of the gcd of a row is
/// within its bounds", "a row cannot come within its bounds", "no value is left for a variable".
/// Then the model is of no further use. Throws `Stopped`.
[[nodiscard]] const char* presolve(Model& model, StopToken& stop);

}  // namespace vexil::solver
