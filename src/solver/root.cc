// Vexil - exact integer optimization on lattices.
#include "solver/root.h"

#include <algorithm>

namespace vexil::solver {
namespace {

constexpr int ROUNDS_OF_THE_ROOT = 10;
constexpr int PIVOTS_OF_A_RANGE = 200;
constexpr int ROUNDS_OF_CUTS = 40;
constexpr int IDLE_ROUNDS = 6;
constexpr double LEAST_PROGRESS = 0.002;

template <typename Z>
class Root {
 public:
  Root(const FormSystem<Z>& formSystem, Relaxation<Z>& rootRelaxation, SearchState<Z>& searchState,
       StopToken& stopToken)
      : forms(formSystem), relaxation(rootRelaxation), state(searchState), stop(stopToken) {}

  NodeState run() {
    minimizeObjective(relaxation);
    if (settle() == NodeState::Empty) return NodeState::Empty;
    relaxation.offerSolution();
    if (forms.ordered && narrowRanges() == NodeState::Empty) return NodeState::Empty;
    minimizeObjective(relaxation);
    return settle();
  }

 private:
  NodeState settle() {
    if (relaxation.followState() == NodeState::Empty) return NodeState::Empty;
    return relaxation.examine(ROUNDS_OF_THE_ROOT);
  }

  NodeState narrowRanges() {
    const ItemSystem<Z>& items = relaxation.items();
    for (std::size_t k = items.coordinates; k-- > 0;) {
      if (narrow(items.parameterItem[k]) == NodeState::Empty) return NodeState::Empty;
    }
    for (std::size_t f = 0; f < items.forms; ++f) {
      if (narrow(f) == NodeState::Empty) return NodeState::Empty;
    }
    return NodeState::Open;
  }

  NodeState narrow(std::size_t item) {
    throwIfStopped(stop);
    for (const double weight : {1.0, -1.0}) {
      if (relaxation.isFixed(item)) return NodeState::Open;
      if (relaxation.followState() == NodeState::Empty) return NodeState::Empty;
      Dictionary& lp = relaxation.linearProgram();
      lp.setCost(item, weight);
      const LpEnd end = lp.solve(PIVOTS_OF_A_RANGE);
      const std::size_t row = end == LpEnd::Infeasible ? lp.failing() : item;
      if (lp.isBasic(row) && relaxation.conclude(row) == NodeState::Empty) return NodeState::Empty;
      if (end == LpEnd::Optimal) relaxation.offerSolution();
      if (state.finished) return NodeState::Empty;
    }
    return NodeState::Open;
  }

  const FormSystem<Z>& forms;
  Relaxation<Z>& relaxation;
  SearchState<Z>& state;
  StopToken& stop;
};

}  // namespace

template <typename Z>
void minimizeObjective(Relaxation<Z>& relaxation) {
  const ItemSystem<Z>& items = relaxation.items();
  Dictionary& lp = relaxation.linearProgram();
  if (items.objective != NONE) {
    lp.setCost(items.objective, 1);
    return;
  }
  // Weights from a fixed linear congruence, each form in units of its width.
  std::vector<double> weights(items.count, 0.0);
  std::uint32_t seed = 1;
  for (std::size_t f = 0; f < items.forms; ++f) {
    seed = seed * 1664525U + 1013904223U;
    const double unit = static_cast<double>(seed >> 8U) / static_cast<double>(1U << 24U);
    weights[f] = (unit + 0.5) / (1 + lp.upper(f) - lp.lower(f));
  }
  lp.setCost(weights);
}

template <typename Z>
NodeState tightenRoot(const FormSystem<Z>& forms, Relaxation<Z>& relaxation, SearchState<Z>& state,
                      StopToken& stop) {
  return Root<Z>(forms, relaxation, state, stop).run();
}

template <typename Z>
RootCuts<Z>::RootCuts(Relaxation<Z>& rootRelaxation, StopToken& stopToken)
    : relaxation(rootRelaxation), stop(stopToken) {
  const std::size_t objective = relaxation.items().objective;
  if (objective == NONE || !relaxation.solved() || std::is_same_v<Z, ZZ>) return;
  start = relaxation.linearProgram().value(objective);
  hasEnded = false;
}

template <typename Z>
NodeState RootCuts<Z>::run(std::int64_t budget) {
  const std::int64_t end = relaxation.work() + budget;
  while (!hasEnded && relaxation.work() < end) {
    throwIfStopped(stop);
    if (addRound() == NodeState::Empty) return NodeState::Empty;
    hasEnded = hasEnded || ++rounds == ROUNDS_OF_CUTS || idle == IDLE_ROUNDS;
  }
  return NodeState::Open;
}

template <typename Z>
NodeState RootCuts<Z>::addRound() {
  const std::size_t objective = relaxation.items().objective;
  const Dictionary& lp = relaxation.linearProgram();
  const double before = lp.value(objective);
  const std::size_t cuts = relaxation.addCuts();
  hasEnded = cuts == 0;
  if (hasEnded) return NodeState::Open;
  if (relaxation.followState() == NodeState::Empty || relaxation.examine(1) == NodeState::Empty) {
    return NodeState::Empty;
  }
  if (!relaxation.solved()) {
    hasEnded = true;
    relaxation.retractCuts(cuts);
    minimizeObjective(relaxation);
    return relaxation.examine(1);
  }
  const double after = lp.value(objective);
  idle = after - before > LEAST_PROGRESS * (after - start) ? 0 : idle + 1;
  relaxation.dropCuts();
  return NodeState::Open;
}

template class RootCuts<std::int64_t>;
template class RootCuts<ZZ>;

template NodeState tightenRoot(const FormSystem<std::int64_t>&, Relaxation<std::int64_t>&,
                               SearchState<std::int64_t>&, StopToken&);
template NodeState tightenRoot(const FormSystem<ZZ>&, Relaxation<ZZ>&, SearchState<ZZ>&,
                               StopToken&);

}  // namespace vexil::solver
