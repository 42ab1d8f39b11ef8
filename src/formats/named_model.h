// Vexil - exact integer optimization on lattices.
//
// A linear model the way modelling languages state it: names, sparse rows, exact numbers. Every
// model file is read into one and written from one. Its vectors count from 0, as do the indices of
// variables in it; only names and files for people count from 1.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/coefficient.h"

namespace vexil::formats {

/// factor * variable.
struct Term {
  std::int32_t variable = 0;  ///< index into `NamedModel::variables`
  Coefficient factor;
};

using Form = std::vector<Term>;  ///< a sum with at most one term for a variable

inline void multiply(Form& form, const Coefficient& factor) {
  for (Term& term : form) term.factor = term.factor * factor;
}

struct NamedVariable {
  std::string name;
  Bound lower = Coefficient(0);
  Bound upper = {};
  bool integer = false;
  std::int32_t decimals = 0;  ///< an integer variable is a multiple of 10^-decimals
};

/// lower <= form <= upper.
struct NamedRow {
  std::string name = {};
  Form form = {};
  Bound lower = {};
  Bound upper = {};

  [[nodiscard]] bool isEquation() const { return lower && upper && *lower == *upper; }
};

enum class Wish { MINIMIZE, MAXIMIZE, GOAL };

/// What form + constant should become. A goal has no constant.
struct NamedTarget {
  std::string name;
  Form form = {};
  Coefficient constant = {};
  Wish wish = Wish::MINIMIZE;
  Coefficient goal = {};  ///< the value to come near to, for `GOAL`
};

struct NamedModel {
  std::string name;
  std::vector<NamedVariable> variables;
  std::vector<NamedTarget> targets;
  std::vector<NamedRow> rows;
  std::vector<std::string> remarks;  ///< what the project's own comments say, see remarks.h
};

/// How a file is to be read.
struct ReadSettings {
  bool furtherTargets = false;                ///< keep the target rows behind the first one
  std::optional<std::int32_t> decimals = {};  ///< decimal places for variables that are not integer
};

}  // namespace vexil::formats
