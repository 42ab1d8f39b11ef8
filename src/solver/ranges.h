// Vexil - exact integer optimization on lattices.
#pragma once

#include <optional>

#include "solver/form_system.h"
#include "solver/search_state.h"

namespace vexil::solver {

/// Proved ranges of the coordinates of a system, from d forms that a floating elimination chooses
/// and inverts: with the rounded inverse m and the exact m Y = 2^s (I - E),
///
///     2^s lambda = m (forms - offsets) + 2^s E lambda,
///
/// and where the row sums of |E| are below 1 the second term is bounded through the largest
/// |lambda|, which is finite. Nothing if a row sum is too large, or a range is no number of Z.
template <typename Z>
[[nodiscard]] std::optional<CoordinateRanges<Z>> coordinateRanges(const FormSystem<Z>& system);

extern template std::optional<CoordinateRanges<std::int64_t>> coordinateRanges(
    const FormSystem<std::int64_t>&);
extern template std::optional<CoordinateRanges<ZZ>> coordinateRanges(const FormSystem<ZZ>&);

}  // namespace vexil::solver
