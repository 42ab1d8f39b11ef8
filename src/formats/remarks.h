// Vexil - exact integer optimization on lattices.
//
// Comments in LP and MPS files, by which the project knows its own constructions again:
//
//   vexil: goal P Q         P and Q are the deviations, above and below, of the goal in their row
//   vexil: decimals X k     X stands for 10^k times a multiple of 10^-k
//   vexil: constant X       X is fixed to 1 and carries the constant of the objective
//   vexil: scaled OBJ D     the objective is D times what it was
//   vexil: maximize OBJ     the objective is the negative of what is to be maximized
//   vexil: target OBJ       the objective is a target although it has no coefficient
//   vexil: range A B        row B holds the upper side of row A
//   vexil: model TITLE      the name of the model; a title or an old name ends with its line
//   vexil: name NEW OLD     the variable called OLD is written NEW
//   vexil: row NEW OLD      the same of a row or the objective
#pragma once

#include <optional>
#include <string_view>

#include "formats/named_model.h"

namespace vexil::formats {

/// What a comment says behind " vexil: "; nothing for any other comment.
[[nodiscard]] std::optional<std::string_view> remarkIn(std::string_view comment);

/// Undoes what the remarks of a model tell of, and clears them. A remark that does not fit the
/// model, as after a change by hand, is left alone with a warning that begins with `path`. An
/// objective without coefficients, no remark keeping it, is no target afterwards.
void applyRemarks(NamedModel& model, std::string_view path);

}  // namespace vexil::formats
