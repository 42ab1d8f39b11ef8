// Vexil - exact integer optimization on lattices.
#pragma once

#include <string_view>

#include "formats/named_model.h"

namespace vexil::formats {

/// What a file format can hold.
struct PlainSettings {
  bool (*isLegalName)(std::string_view name) = nullptr;  ///< as the name of a variable or row
  bool ranges = false;                                   ///< rows with two different finite sides
  bool maximize = false;                                 ///< an objective to be maximized
};

/// A model that other solvers read as well, with the same points and norms: one objective, no
/// goals, no constants and decimal numbers only. Its remarks tell `applyRemarks` the way back.
///
///   several targets    become the objective "the norm": minimized values, negated maximized ones
///   a goal             becomes an equation with two deviations, whose sum joins the objective
///   decimal places     x is written as the whole number 10^k x
///   fractions          a row is multiplied by their denominator, and so is the objective; a bound
///                      of an integer variable gives way to the next whole number inside, or to a
///                      row where there is none
///   no rows            gives way to one without a term
///   a constant         is the factor of a variable that is fixed to 1
///   illegal names      those with more than 100 characters or others than printable ASCII, and
///                      those that occur twice give way to x1, x2, ..., c1, c2, ...
[[nodiscard]] NamedModel plainModel(const NamedModel& model, const PlainSettings& settings);

}  // namespace vexil::formats
