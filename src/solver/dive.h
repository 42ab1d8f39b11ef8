// Vexil - exact integer optimization on lattices.
#pragma once

#include <vector>

#include "solver/relaxation.h"
#include "solver/stop.h"

namespace vexil::solver {

/// Looks for a good point without a proof: rounds one variable of the linear program after the
/// other, each time following it up by propagation and another linear program, and turns back once
/// where nothing is left (diving, compare Berthold 2006).
template <typename Z>
class Dive {
 public:
  /// How a variable is chosen.
  enum class Kind : std::uint8_t {
    Nearest,  ///< the one that is nearest to an integer
    Kept,     ///< after all that the best point and the linear program agree in, the nearest
    Locks     ///< the one that fewest rows hinder in one direction, in that direction
  };

  /// All are kept by reference; `variables` are items.
  Dive(const FormSystem<Z>& formSystem, const std::vector<std::size_t>& variables,
       Relaxation<Z>& relaxation, SearchState<Z>& searchState, StopToken& stop);

  /// Starts at the node of the relaxation, which gets its bounds back, but no solution.
  void run(Kind kind);

 private:
  struct Step {
    std::size_t item = NONE;
    bool upward = false;
  };

  [[nodiscard]] Step choose(Kind kind) const;
  [[nodiscard]] bool take(const Step& step);
  [[nodiscard]] bool arrive();
  void countLocks();
  [[nodiscard]] bool takeKept();

  const FormSystem<Z>& forms;
  const std::vector<std::size_t>& items;
  Relaxation<Z>& relaxation;
  SearchState<Z>& state;
  StopToken& stop;
  std::vector<int> locks[2];  ///< by item: rows that hinder its fall (0) and its rise (1)
};

extern template class Dive<std::int64_t>;
extern template class Dive<ZZ>;

}  // namespace vexil::solver
