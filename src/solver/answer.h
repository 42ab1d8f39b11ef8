// Vexil - exact integer optimization on lattices.
//
// What is said of the end of a search.
#pragma once

#include <string>

#include "solver/search.h"

namespace vexil::solver {

/// The answer in words: the status word, a colon and what it is about, such as "optimal: target
/// norm -381"; on lines of their own what the claim is limited to, the ray and the proof, where
/// there are such. `settings` are those of the search, `hasTargets` tells whether the program has
/// something to optimize.
[[nodiscard]] std::string answerText(const Outcome& outcome, const Settings& settings,
                                     bool hasTargets);

/// The exit status of a program that ends with the answer: 0, or 2 for a search that was stopped.
[[nodiscard]] int exitStatus(Status status);

/// "target norm T, bound B, gap G", with "bound -inf, gap inf" where nothing is proved and without
/// the norm where there is no point.
[[nodiscard]] std::string normsText(const std::optional<QQ>& best, const std::optional<QQ>& bound);

}  // namespace vexil::solver
