// Vexil - exact integer optimization on lattices.
#include "solver/relaxation.h"

#include <algorithm>
#include <cmath>

#include "solver/cuts.h"
#include "solver/probe.h"

namespace vexil::solver {
namespace {

constexpr int PIVOTS_PER_COLUMN = 4;
constexpr int PIVOTS_AT_LEAST = 100;

}  // namespace

template <typename Z>
Relaxation<Z>::Relaxation(const FormSystem<Z>& formSystem, ItemSystem<Z>& itemSystem,
                          SearchState<Z>& searchState)
    : forms(formSystem),
      system(itemSystem),
      state(searchState),
      boxes{itemSystem.lower, itemSystem.upper},
      prover(system, boxes),
      propagation(system, boxes),
      dictionary(itemSystem),
      firstCut(itemSystem.count),
      goalOf(itemSystem.count, NONE),
      formValues(formSystem.count) {
  for (std::size_t g = 0; g < system.goalForm.size(); ++g) goalOf[system.goalForm[g]] = g;
  if (system.objective != NONE) dictionary.keepBasic(system.objective);
  if (state.probe == nullptr) return;
  state.probe->takeCoset(toZZ(state.step), toZZ(state.residue));
  tellItems();
}

template <typename Z>
void Relaxation<Z>::tellItems() {
  if (state.probe != nullptr) state.probe->takeItems(forProbe(system));
}

/// What the prover has loaded.
template <typename Z>
void Relaxation<Z>::tellLoaded() {
  std::vector<Probe::Multiple> parts;
  for (std::size_t i = 0; i < prover.size(); ++i) {
    parts.push_back({prover.item(i), toZZ(prover.multiplier(i))});
  }
  state.probe->combine(parts);
}

/// An item less the coordinates that it is made of.
template <typename Z>
void Relaxation<Z>::tellRow(std::size_t item) {
  std::vector<Probe::Multiple> parts{{item, 1}};
  for (std::size_t k = 0; k < system.coordinates; ++k) {
    parts.push_back({system.parameterItem[k], -toZZ(system.entry(item, k))});
  }
  state.probe->combine(parts);
}

template <typename Z>
std::size_t Relaxation<Z>::addCuts() {
  if constexpr (std::is_same_v<Z, std::int64_t>) {
    CutFinder finder(system, boxes, dictionary, state.probe);
    const std::vector<Cut> cuts = finder.find();
    dictionary.addWork(finder.work());
    for (const Cut& cut : cuts) {
      system.addCut(cut.a, cut.bound);
      boxes.lower.push_back(system.lower.back());
      boxes.upper.push_back(system.upper.back());
      goalOf.push_back(NONE);
    }
    dictionary.append(system);
    prover.adapt();
    propagation.adapt();
    trail.clear();
    tellItems();
    return cuts.size();
  } else {
    return 0;
  }
}

template <typename Z>
void Relaxation<Z>::retractCuts(std::size_t cuts) {
  std::vector<bool> gone(system.count, false);
  std::fill(gone.end() - static_cast<std::ptrdiff_t>(cuts), gone.end(), true);
  system.removeCuts(gone);
  boxes.lower.resize(system.count);
  boxes.upper.resize(system.count);
  goalOf.resize(system.count);
  propagation.adapt();
  trail.clear();
  Dictionary fresh(system);
  fresh.addWork(dictionary.work());
  dictionary = std::move(fresh);
  dictionary.keepBasic(system.objective);
  for (std::size_t item = 0; item < system.count; ++item) {
    setBound(item, true, boxes.lower[item]);
    setBound(item, false, boxes.upper[item]);
  }
  tellItems();
}

template <typename Z>
void Relaxation<Z>::dropCuts() {
  std::vector<bool> gone(system.count, false);
  for (std::size_t item = firstCut; item < system.count; ++item) {
    gone[item] = dictionary.isBasic(item);
  }
  std::size_t kept = firstCut;
  for (std::size_t item = firstCut; item < system.count; ++item) {
    if (gone[item]) continue;
    boxes.lower[kept] = boxes.lower[item];
    boxes.upper[kept] = boxes.upper[item];
    ++kept;
  }
  boxes.lower.resize(kept);
  boxes.upper.resize(kept);
  goalOf.resize(kept);
  dictionary.remove(gone);
  system.removeCuts(gone);
  propagation.adapt();
  trail.clear();
  tellItems();
}

template <typename Z>
bool Relaxation<Z>::branch(std::size_t item, const Z& lower, const Z& upper) {
  if (state.probe != nullptr) {
    state.probe->suppose(trail.size(), item, toZZ(lower), toZZ(upper));
  }
  return raiseLower(item, lower) && dropUpper(item, upper);
}

template <typename Z>
void Relaxation<Z>::setBound(std::size_t item, bool isLower, const Z& value) {
  if (isLower) {
    boxes.lower[item] = value;
    dictionary.setLower(item, toDouble(value));
  } else {
    boxes.upper[item] = value;
    dictionary.setUpper(item, toDouble(value));
  }
}

/// The least value of the objective on its coset that is not below `value`.
template <typename Z>
Z Relaxation<Z>::onCosetUpward(const Z& value) const {
  if (signOf(state.step) == 0) return value;
  const auto steps =
      ceilDivide<Wide<Z>>(Wide<Z>(widen(value) - widen(state.residue)), Wide<Z>(state.step));
  return static_cast<Z>(widen(state.residue) + steps * Wide<Z>(state.step));
}

template <typename Z>
bool Relaxation<Z>::raiseLower(std::size_t item, const Z& value) {
  const Z bound = item == system.objective ? onCosetUpward(value) : value;
  if (!(bound > boxes.lower[item])) return true;
  if (bound > boxes.upper[item]) return false;
  trail.push_back({item, true, boxes.lower[item]});
  propagation.announce(item);
  setBound(item, true, bound);
  return moveGoalSides(item);
}

template <typename Z>
bool Relaxation<Z>::dropUpper(std::size_t item, const Z& value) {
  if (!(value < boxes.upper[item])) return true;
  if (value < boxes.lower[item]) return false;
  trail.push_back({item, false, boxes.upper[item]});
  propagation.announce(item);
  setBound(item, false, value);
  return moveGoalSides(item);
}

/// |t| - t is at most -2 t where t may be negative, and 0 where it may not; |t| + t alike.
template <typename Z>
bool Relaxation<Z>::moveGoalSides(std::size_t item) {
  const std::size_t g = goalOf[item];
  if (g == NONE) return true;
  const std::size_t side = system.goalSide[g];
  const Z low = boxes.lower[item];
  const Z high = boxes.upper[item];
  return dropUpper(side, signOf(low) < 0 ? Z(-low - low) : Z(0)) &&
         dropUpper(side + 1, signOf(high) > 0 ? Z(high + high) : Z(0));
}

template <typename Z>
void Relaxation<Z>::undo(std::size_t mark) {
  if (state.probe != nullptr) state.probe->undo(mark);
  propagation.forget();
  for (; trail.size() > mark; trail.pop_back()) {
    Move& move = trail.back();
    setBound(move.item, move.isLower, move.old);
  }
}

template <typename Z>
NodeState Relaxation<Z>::followState() {
  const std::size_t item = system.objective;
  if (state.finished) return NodeState::Empty;
  if (item == NONE) return NodeState::Open;
  if (state.probe != nullptr) {
    if (state.hasCut) state.probe->takeCut(toZZ(state.cut));
    if (state.hasBound) state.probe->takeBound(toZZ(state.bound));
  }
  if (state.hasCut && !dropUpper(item, state.cut)) return NodeState::Empty;
  if (state.hasBound && !raiseLower(item, state.bound)) return NodeState::Empty;
  return NodeState::Open;
}

/// In doubles: the row of this item moves an integral bound, or contradicts one.
template <typename Z>
bool Relaxation<Z>::promises(std::size_t item) const {
  const double* a = dictionary.row(item);
  const std::vector<std::size_t>& others = dictionary.columnItems();
  double least = 0;
  double greatest = 0;
  dictionary.reach(item, least, greatest);
  const double low = dictionary.lower(item);
  const double high = dictionary.upper(item);
  const double above = high - least;
  const double below = greatest - low;
  const double width = high - low;
  if (above < 0 || below < 0) return true;
  double widest = width - INTEGRAL;
  for (std::size_t j = 0; j < others.size(); ++j) {
    const double room = dictionary.upper(others[j]) - dictionary.lower(others[j]);
    widest = std::max(widest, std::fabs(a[j]) * (room - INTEGRAL));
  }
  return above < widest || below < widest;
}

template <typename Z>
NodeState Relaxation<Z>::conclude(std::size_t item) {
  const std::vector<std::size_t>& others = dictionary.columnItems();
  ++proofCount;
  proofWork += static_cast<std::int64_t>(others.size() * others.size());
  if (!prover.load(item, dictionary.row(item), others.data(), others.size())) {
    return NodeState::Open;
  }
  if (state.probe != nullptr) tellLoaded();
  if (prover.contradicts()) {
    if (state.probe != nullptr) state.probe->concludeEmpty();
    return NodeState::Empty;
  }
  // The bounds follow from the boxes as they were; where one of them moves on the way, those of the
  // others come out weaker, not wrong.
  NodeState result = NodeState::Open;
  for (std::size_t i = 0; i < prover.size(); ++i) {
    const std::size_t moved = prover.item(i);
    const Z low = prover.provedLower(i);
    const Z high = prover.provedUpper(i);
    if (!(low > boxes.lower[moved]) && !(high < boxes.upper[moved])) continue;
    result = NodeState::Moved;
    if (state.probe != nullptr) state.probe->conclude(moved, toZZ(low), toZZ(high));
    if (!raiseLower(moved, low) || !dropUpper(moved, high)) return NodeState::Empty;
  }
  return result;
}

template <typename Z>
NodeState Relaxation<Z>::tighten() {
  NodeState result = NodeState::Open;
  dictionary.addWork(static_cast<std::int64_t>(dictionary.columns() * dictionary.itemCount()));
  for (std::size_t item = 0; item < system.count; ++item) {
    if (!dictionary.isBasic(item) || !promises(item)) continue;
    const NodeState found = conclude(item);
    if (found == NodeState::Empty) return found;
    if (found == NodeState::Moved) result = found;
  }
  return result;
}

template <typename Z>
bool Relaxation<Z>::propagate() {
  if (state.probe == nullptr) {
    return propagation.run([&](std::size_t item, const Z& low, const Z& high) {
      return raiseLower(item, low) && dropUpper(item, high);
    });
  }
  bool isKept = true;
  const bool result = propagation.run([&](std::size_t item, const Z& low, const Z& high) {
    tellRow(propagation.lastItem());
    state.probe->conclude(item, toZZ(low), toZZ(high));
    isKept = raiseLower(item, low) && dropUpper(item, high);
    return isKept;
  });
  if (!result && isKept) {
    tellRow(propagation.lastItem());
    state.probe->concludeEmpty();
  }
  return result;
}

template <typename Z>
LpEnd Relaxation<Z>::solve(int limit) {
  const LpEnd end = dictionary.solve(limit);
  if (state.probe != nullptr) state.probe->disturb(dictionary);
  return end;
}

template <typename Z>
NodeState Relaxation<Z>::examine(int rounds) {
  const int limit = PIVOTS_PER_COLUMN * static_cast<int>(dictionary.columns()) + PIVOTS_AT_LEAST;
  hasSolution = false;
  for (int round = 0;; ++round) {
    if (!forms.ordered && !propagate()) return NodeState::Empty;
    const LpEnd end = solve(limit);
    if (end == LpEnd::Infeasible) {
      // What cannot be proved empty stays open, without a solution.
      const NodeState found = conclude(dictionary.failing());
      if (found != NodeState::Moved || round >= rounds) return found;
      continue;
    }
    hasSolution = end == LpEnd::Optimal;
    if (round >= rounds) return NodeState::Open;
    const NodeState found = drawConclusions();
    if (found != NodeState::Moved) return found;
    hasSolution = false;
  }
}

template <typename Z>
std::optional<double> Relaxation<Z>::estimate(int pivots) {
  if (!propagate()) return std::nullopt;
  const LpEnd end = solve(pivots);
  const std::size_t objective = system.objective;
  const double value = dictionary.value(objective);
  const std::size_t row = end == LpEnd::Infeasible ? dictionary.failing() : objective;
  const bool looksEmpty = end == LpEnd::Infeasible || value > dictionary.upper(objective);
  if (looksEmpty && dictionary.isBasic(row) && conclude(row) == NodeState::Empty) {
    return std::nullopt;
  }
  return value;
}

template <typename Z>
bool Relaxation<Z>::resolve() {
  const int limit = PIVOTS_PER_COLUMN * static_cast<int>(dictionary.columns()) + PIVOTS_AT_LEAST;
  hasSolution = solve(limit) == LpEnd::Optimal;
  return hasSolution;
}

/// Moved: the solution does not belong to the present bounds any more.
template <typename Z>
NodeState Relaxation<Z>::drawConclusions() {
  if (forms.ordered) return tighten();
  if (system.objective == NONE || !hasSolution || !dictionary.isBasic(system.objective)) {
    return NodeState::Open;
  }
  dictionary.addWork(static_cast<std::int64_t>(2 * dictionary.columns()));
  if (!promises(system.objective)) return NodeState::Open;
  const NodeState found = conclude(system.objective);
  if (found != NodeState::Moved) return found;
  if (!propagate()) return NodeState::Empty;
  return holdsSolution() ? NodeState::Open : NodeState::Moved;
}

template <typename Z>
bool Relaxation<Z>::holdsSolution() const {
  for (std::size_t item = 0; item < system.count; ++item) {
    const double value = dictionary.value(item);
    const double tolerance = dictionary.tolerance(item);
    if (value < dictionary.lower(item) - tolerance || value > dictionary.upper(item) + tolerance) {
      return false;
    }
  }
  return true;
}

template <typename Z>
double Relaxation<Z>::coordinate(std::size_t k) const {
  const std::size_t item = system.parameterItem[k];
  return dictionary.value(item) - toDouble(system.offset[item]);
}

template <typename Z>
bool Relaxation<Z>::offer(const std::vector<Z>& coordinates) {
  std::vector<Wide<Z>> sums;
  for (const Z& value : forms.offset) sums.push_back(widen(value));
  Wide<Z> objective = widen(forms.objectiveOffset);
  for (std::size_t k = 0; k < forms.dimension; ++k) {
    if (signOf(coordinates[k]) == 0) continue;
    for (std::size_t f = 0; f < forms.count; ++f) {
      addProduct(sums[f], coordinates[k], forms.entry(k, f));
    }
    if (forms.hasObjective) addProduct(objective, coordinates[k], forms.objective[k]);
  }
  for (std::size_t f = 0; f < forms.count; ++f) {
    if (sums[f] < widen(forms.lower[f]) || sums[f] > widen(forms.upper[f])) return false;
    formValues[f] = static_cast<Z>(sums[f]);
    if (forms.kind[f] == FormKind::Goal) objective = objective + (sums[f] < 0 ? -sums[f] : sums[f]);
  }
  if (state.hasCut && objective > widen(state.cut)) return false;
  if (!state.offer(forms, formValues)) return false;
  keptValues = formValues;
  return true;
}

template <typename Z>
Z Relaxation<Z>::rounded(std::size_t item) const {
  const double value = dictionary.value(item);
  if (!(value > toDouble(lower(item)))) return lower(item);
  if (!(value < toDouble(upper(item)))) return upper(item);
  return std::clamp(nearestInteger<Z>(value), lower(item), upper(item));
}

template <typename Z>
Z Relaxation<Z>::roundedDown(std::size_t item) const {
  const double value = dictionary.value(item);
  Z high = upper(item) - Z(1);
  if (!(value > toDouble(lower(item)))) return lower(item);
  if (!(value < toDouble(high))) return high;
  return std::clamp(nearestInteger<Z>(vexil::solver::roundedDown(value)), lower(item), high);
}

template <typename Z>
bool Relaxation<Z>::offerSolution() {
  std::vector<Z> point(forms.dimension);
  for (std::size_t k = 0; k < forms.dimension; ++k) {
    const std::size_t item = system.parameterItem[k];
    point[k] = rounded(item) - system.offset[item];
  }
  return offer(point);
}

template class Relaxation<std::int64_t>;
template class Relaxation<ZZ>;

}  // namespace vexil::solver
