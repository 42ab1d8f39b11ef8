// Vexil - exact integer optimization on lattices.
#include "solver/dive.h"

#include <algorithm>
#include <cmath>

namespace vexil::solver {
namespace {

constexpr int MOST_TURNS = 6;

}  // namespace

template <typename Z>
Dive<Z>::Dive(const FormSystem<Z>& formSystem, const std::vector<std::size_t>& variables,
              Relaxation<Z>& nodeRelaxation, SearchState<Z>& searchState, StopToken& stopToken)
    : forms(formSystem),
      items(variables),
      relaxation(nodeRelaxation),
      state(searchState),
      stop(stopToken) {
  countLocks();
}

/// Of the coordinates; other variables have one lock in each direction.
template <typename Z>
void Dive<Z>::countLocks() {
  const ItemSystem<Z>& system = relaxation.items();
  for (std::vector<int>& side : locks) side.assign(system.count, 1);
  for (std::size_t k = 0; k < system.coordinates; ++k) {
    for (std::vector<int>& side : locks) side[system.parameterItem[k]] = 0;
  }
  for (std::size_t f = 0; f < system.forms; ++f) {
    Wide<Z> least = widen(system.offset[f]);
    Wide<Z> greatest = least;
    for (std::size_t k = 0; k < system.coordinates; ++k) {
      const std::size_t named = system.parameterItem[k];
      const Z& c = system.entry(f, k);
      if (signOf(c) == 0) continue;
      const bool rising = signOf(c) > 0;
      const Z low = relaxation.lower(named) - system.offset[named];
      const Z high = relaxation.upper(named) - system.offset[named];
      addProduct(least, c, rising ? low : high);
      addProduct(greatest, c, rising ? high : low);
    }
    const bool canExceed = widen(relaxation.upper(f)) < greatest;
    const bool canFallBelow = widen(relaxation.lower(f)) > least;
    for (std::size_t k = 0; k < system.coordinates; ++k) {
      const std::size_t named = system.parameterItem[k];
      const int sign = named == f ? 0 : signOf(system.entry(f, k));
      if (sign != 0 && canExceed) ++locks[sign > 0 ? 1 : 0][named];
      if (sign != 0 && canFallBelow) ++locks[sign > 0 ? 0 : 1][named];
    }
  }
}

template <typename Z>
void Dive<Z>::run(Kind kind) {
  const std::size_t start = relaxation.mark();
  int turns = 0;
  bool isOpen = arrive();
  if (isOpen && kind == Kind::Kept) isOpen = takeKept() && arrive();
  while (isOpen && !state.finished) {
    throwIfStopped(stop);
    Step step = choose(kind);
    if (step.item == NONE) break;
    const std::size_t before = relaxation.mark();
    isOpen = take(step) && arrive();
    if (isOpen || ++turns > MOST_TURNS) continue;
    relaxation.undo(before);
    step.upward = !step.upward;
    isOpen = take(step) && arrive();
  }
  relaxation.undo(start);
}

/// Fixes the variables in which the best point and the linear program agree (compare Danna,
/// Rothberg and Le Pape 2005).
template <typename Z>
bool Dive<Z>::takeKept() {
  const std::vector<Z> kept = relaxation.kept();
  if (kept.empty()) return false;
  for (const std::size_t item : items) {
    const double value = relaxation.linearProgram().value(item);
    if (std::fabs(value - toDouble(kept[item])) > INTEGRAL || relaxation.isFixed(item)) continue;
    if (!relaxation.branch(item, kept[item], kept[item])) return false;
  }
  return true;
}

/// Rounds an item beyond its value; both ways narrow its bounds, wherever the value is.
template <typename Z>
bool Dive<Z>::take(const Step& step) {
  const Z below = relaxation.roundedDown(step.item);
  return step.upward ? relaxation.branch(step.item, below + Z(1), relaxation.upper(step.item))
                     : relaxation.branch(step.item, relaxation.lower(step.item), below);
}

/// True if the present bounds leave something, and the linear program is solved.
template <typename Z>
bool Dive<Z>::arrive() {
  return relaxation.followState() != NodeState::Empty &&
         relaxation.examine(1) != NodeState::Empty && relaxation.solved();
}

/// The next variable; nothing if all are integral, which is offered.
template <typename Z>
typename Dive<Z>::Step Dive<Z>::choose(Kind kind) const {
  Step best;
  double least = 0;
  for (const std::size_t item : items) {
    if (relaxation.isFixed(item)) continue;
    const double value = relaxation.linearProgram().value(item);
    const double nearest = std::rint(value);
    const double distance = std::fabs(value - nearest);
    if (distance <= INTEGRAL) continue;
    bool upward = nearest > value;
    double merit = distance;
    if (kind == Kind::Locks) {
      const int down = locks[0][item];
      const int up = locks[1][item];
      if (up != down) upward = up < down;
      const double way = upward == (nearest > value) ? distance : 1 - distance;
      merit = std::min(up, down) + way;
    }
    if (best.item != NONE && merit >= least) continue;
    best = {item, upward};
    least = merit;
  }
  if (best.item == NONE) relaxation.offerSolution();
  return best;
}

template class Dive<std::int64_t>;
template class Dive<ZZ>;

}  // namespace vexil::solver
