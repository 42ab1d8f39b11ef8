// Vexil - exact integer optimization on lattices.
#pragma once

#include "solver/form_system.h"

namespace vexil::solver {

/// The objective of every point of a lattice is congruent `residue` modulo `step`; step 0: every
/// point has the value `residue`.
template <typename Z>
struct Coset {
  Z step{};
  Z residue{};
};

/// The coset of an objective; with goals the step is the gcd over the linear part and the goals.
template <typename Z>
[[nodiscard]] Coset<Z> objectiveCoset(const FormSystem<Z>& forms);

extern template Coset<std::int64_t> objectiveCoset(const FormSystem<std::int64_t>&);
extern template Coset<ZZ> objectiveCoset(const FormSystem<ZZ>&);

}  // namespace vexil::solver
