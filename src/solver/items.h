// Vexil - exact integer optimization on lattices.
//
// What linear programming and proofs work on: everything that has bounds, as affine functions of
// one list of integral parameters.
#pragma once

#include <cstddef>
#include <vector>

#include "solver/form_system.h"
#include "solver/search_state.h"

namespace vexil::solver {

/// No item, no column.
inline constexpr std::size_t NONE = static_cast<std::size_t>(-1);

/// D integral parameters with proved ranges, the d coordinates lambda first, then delta_g = |t_g|
/// for every goal form t_g, and R items that are affine in them:
///
///     forms                 as in the system, items 0 to F - 1
///     coordinates           lambda_k where no form is lambda_k plus a constant
///     goal sides            delta_g - t_g and delta_g + t_g, both of them >= 0
///     objective             linear part + sum of delta_g, if there is an objective
///     cuts                  what the root adds: rows that follow from the others for integers
///
/// The items have boxes as the forms have; that of the objective is wide until a cut narrows it.
template <typename Z>
struct ItemSystem {
  std::size_t parameters = 0;   ///< D
  std::size_t coordinates = 0;  ///< d
  std::size_t forms = 0;        ///< F
  std::size_t count = 0;        ///< R
  std::vector<Z> coefficient;   ///< R x D
  std::vector<Z> offset;        ///< R
  std::vector<Z> lower;         ///< R
  std::vector<Z> upper;         ///< R
  CoordinateRanges<Z> ranges;   ///< D

  /// D: for each coordinate the item that is it plus a constant, for each delta_g the item
  /// delta_g - t_g. These D items determine the parameters.
  std::vector<std::size_t> parameterItem;
  std::vector<std::size_t> goalForm;  ///< the items t_g
  std::vector<std::size_t> goalSide;  ///< the items delta_g - t_g; behind each delta_g + t_g
  std::size_t objective = NONE;       ///< the item of the objective

  /// Adds the item sum a_k parameter_k, of which `high` is a proved upper bound.
  void addCut(const std::vector<Z>& a, const Z& high);
  /// Forgets the items with gone[item], all of them cuts.
  void removeCuts(const std::vector<bool>& gone);

  [[nodiscard]] const Z& entry(std::size_t item, std::size_t parameter) const {
    return coefficient[item * parameters + parameter];
  }
};

extern template struct ItemSystem<std::int64_t>;
extern template struct ItemSystem<ZZ>;

/// The items of `system`, `ranges` being proved ranges of its coordinates.
template <typename Z>
[[nodiscard]] ItemSystem<Z> itemSystem(const FormSystem<Z>& system,
                                       const CoordinateRanges<Z>& ranges);

extern template ItemSystem<std::int64_t> itemSystem(const FormSystem<std::int64_t>&,
                                                    const CoordinateRanges<std::int64_t>&);
extern template ItemSystem<ZZ> itemSystem(const FormSystem<ZZ>&, const CoordinateRanges<ZZ>&);

}  // namespace vexil::solver
