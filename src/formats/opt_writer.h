// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>
#include <string_view>

#include "formats/named_model.h"

namespace vexil::formats {

/// Makes every variable a multiple of a power of ten, as the opt file wants it: one that is not
/// integer becomes a multiple of 10^-`decimals`. Fatal without `decimals`: "path: variable NAME is
/// not integer (--decimals=k makes it a multiple of 10^-k)".
void makeDiscrete(NamedModel& model, std::optional<std::int32_t> decimals, std::string_view path);

/// Fatal where the dense matrices of the model as a program in memory would be larger than the
/// memory of this machine or the limit of this process; the text names the sizes.
void checkDenseSize(const NamedModel& model, std::string_view path);

/// The opt file of a model, all of whose variables are integer. Comments at its head, each of one
/// line, hold what the format has no place for, so that `readOpt` finds it again:
///
///   // model: NAME             // target[1]: NAME         // equation[1]: NAME
///   // x[3]: NAME              // constant[1]: NUMBER     // inequation[2]: NAME
///
/// Rows with equal sides are the equations. A program with neither targets nor rows gets the row
/// 0 <= 0 x, from which its dimension is read; there is a variable.
[[nodiscard]] std::string optText(const NamedModel& model);

}  // namespace vexil::formats
