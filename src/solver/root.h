// Vexil - exact integer optimization on lattices.
#pragma once

#include "solver/relaxation.h"
#include "solver/stop.h"

namespace vexil::solver {

/// Narrows the boxes of a relaxation at the root: the linear program, then the least and the
/// greatest value of every coordinate and every form, each proved and rounded inward. Offers the
/// rounded solutions on the way. Throws `Stopped`.
template <typename Z>
[[nodiscard]] NodeState tightenRoot(const FormSystem<Z>& forms, Relaxation<Z>& relaxation,
                                    SearchState<Z>& state, StopToken& stop);

/// Adds cuts to a relaxation at its root as long as they raise the objective of the linear program.
template <typename Z>
class RootCuts {
 public:
  /// All are kept by reference.
  RootCuts(Relaxation<Z>& rootRelaxation, StopToken& stopToken);

  /// Goes on until about `budget` more work is counted. Throws `Stopped`.
  [[nodiscard]] NodeState run(std::int64_t budget);
  /// No more cuts pay.
  [[nodiscard]] bool ended() const { return hasEnded; }

 private:
  [[nodiscard]] NodeState addRound();

  Relaxation<Z>& relaxation;
  StopToken& stop;
  double start = 0;  ///< the objective without cuts
  int rounds = 0;
  int idle = 0;
  bool hasEnded = true;
};

extern template class RootCuts<std::int64_t>;
extern template class RootCuts<ZZ>;

extern template NodeState tightenRoot(const FormSystem<std::int64_t>&, Relaxation<std::int64_t>&,
                                      SearchState<std::int64_t>&, StopToken&);
extern template NodeState tightenRoot(const FormSystem<ZZ>&, Relaxation<ZZ>&, SearchState<ZZ>&,
                                      StopToken&);

/// Has the dictionary minimise the objective, or without one a fixed arbitrary form.
template <typename Z>
void minimizeObjective(Relaxation<Z>& relaxation);

}  // namespace vexil::solver
