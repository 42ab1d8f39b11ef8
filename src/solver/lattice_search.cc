// Vexil - exact integer optimization on lattices.
#include "solver/lattice_search.h"

#include <algorithm>

#include "solver/coset.h"
#include "solver/probe.h"
#include "solver/ranges.h"

namespace vexil::solver {
namespace {

constexpr std::int64_t FIRST_BUDGET = std::int64_t{1} << 22;
constexpr std::int64_t LAST_RESTART = 6;
constexpr double HARDLY_BEGUN = 0.02;
constexpr std::int64_t FIRST_TRIAL = std::int64_t{1} << 20;
constexpr int TURNS_OF_A_TRIAL = 6;
constexpr std::int64_t TRIAL_OF_ROOT = 64;  ///< times the work of the root

/// The side at a proved bound of an item, and whether it is further in than the one before.
bool narrowSide(Side& side, const ZZ& value, bool isLower, bool artificial) {
  if (side.finite && (isLower ? value <= side.value : value >= side.value)) return false;
  side = {true, artificial, value};
  return true;
}

bool anyArtificial(const Model& model) {
  const auto artificial = [](const Side& side) { return side.artificial; };
  const auto ofRow = [&](const ModelRow& row) {
    return artificial(row.lower) || artificial(row.upper);
  };
  return std::any_of(model.lower.begin(), model.lower.end(), artificial) ||
         std::any_of(model.upper.begin(), model.upper.end(), artificial) ||
         std::any_of(model.rows.begin(), model.rows.end(), ofRow);
}

/// What is left to do, judged by what was done.
double restOf(std::int64_t work, double progress) {
  constexpr double LEAST_PROGRESS = 1e-15;
  const double done = std::max(progress, LEAST_PROGRESS);
  return static_cast<double>(work) * (1 - done) / done;
}

}  // namespace

template <typename Z>
LatticeSearch<Z>::LatticeSearch(Model& searched, const LatticeBasis& latticeBasis,
                                const Settings& searchSettings, Incumbent& points,
                                StopToken& searchStop, Progress& searchProgress,
                                Listener& searchListener)
    : model(searched),
      basis(latticeBasis),
      settings(searchSettings),
      incumbent(points),
      outerStop(searchStop),
      progress(searchProgress),
      listener(searchListener),
      forms(formSystem<Z>(searched, latticeBasis)),
      isBounded(!anyArtificial(searched)),
      earlierWork(searchProgress.work) {
  this->probe = searchSettings.probe;
  if (forms.hasObjective) {
    const auto [divisor, constant] = objectiveCoset(forms);
    this->step = divisor;
    this->residue = constant;
  }
  lowerCut();
}

/// The cut below the best norm, or at the limit of wanted norms.
template <typename Z>
void LatticeSearch<Z>::lowerCut() {
  if (incumbent.enough()) this->finished = true;
  if (!forms.hasObjective) return;
  ZZ greatest;
  if (incumbent.collects()) {
    if (!settings.targetLimit) return;
    const QQ scaled = *settings.targetLimit * QQ(model.scale);
    greatest = scaled.positive || isZero(scaled.zaehler) ? wholeSigned(scaled)
                                                         : wholeSigned(scaled) - ZZ(1);
  } else {
    if (!incumbent.best()) return;
    greatest = wholeSigned(*incumbent.best() * QQ(model.scale)) - ZZ(1);
    if (this->probe != nullptr) this->probe->takeBest(greatest + ZZ(1));
  }
  const ZZ offset = greatest - toZZ(this->residue);
  if (signOf(this->step) == 0) {
    if (signOf(offset) < 0) this->finished = true;
    return;
  }
  const ZZ unit = toZZ(this->step);
  greatest = toZZ(this->residue) + floorDivide<ZZ>(offset, unit) * unit;
  if constexpr (!std::is_same_v<Z, ZZ>) {
    if (!isNarrow(greatest)) {
      // All objective values are narrow: either each of them is below the cut or none is.
      if (!greatest.positive) this->finished = true;
      return;
    }
  }
  const Z value = fromZZ<Z>(greatest);
  if (!this->hasCut || value < this->cut) {
    this->hasCut = true;
    this->cut = value;
  }
  if (this->hasBound && this->bound > this->cut) this->finished = true;
}

template <typename Z>
bool LatticeSearch<Z>::offer(const FormSystem<Z>& system, const std::vector<Z>& values) {
  std::vector<ZZ> X = basis.x0;
  for (std::size_t f = 0; f < system.count; ++f) {
    if (system.kind[f] == FormKind::Variable) X[system.source[f]] = toZZ(values[f]);
  }
  if (!incumbent.take(programPoint(model, X))) return false;
  lowerCut();
  report();
  return true;
}

/// Writes the root's bounds into the model; true if something became one point wide.
template <typename Z>
bool LatticeSearch<Z>::exportSides(const Relaxation<Z>& relaxation) {
  const bool artificial = anyArtificial(model);
  bool fixed = false;
  for (std::size_t f = 0; f < forms.count; ++f) {
    if (forms.kind[f] == FormKind::Goal) continue;
    const bool isVariable = forms.kind[f] == FormKind::Variable;
    const std::size_t source = forms.source[f];
    Side& lower = isVariable ? model.lower[source] : model.rows[source].lower;
    Side& upper = isVariable ? model.upper[source] : model.rows[source].upper;
    const bool low = narrowSide(lower, toZZ(relaxation.lower(f)), true, artificial);
    const bool high = narrowSide(upper, toZZ(relaxation.upper(f)), false, artificial);
    fixed = fixed || ((low || high) && lower.value == upper.value);
  }
  return fixed;
}

/// Brings the progress up to date and passes it on.
template <typename Z>
void LatticeSearch<Z>::report() {
  progress.best = incumbent.best();
  progress.points = incumbent.points();
  progress.work = earlierWork + rootWork + this->work;
  if (tree) progress.treeNodes = trialNodes + tree->nodes();
  if (enumerator) progress.enumerationNodes = enumerator->search->nodes();
  if (isBounded && !incumbent.collects() && this->hasBound) {
    const QQ norm = QQ(toZZ(this->bound), model.scale);
    if (!progress.bound || norm > *progress.bound) progress.bound = norm;
  }
  listener.progress(progress);
}

template <typename Z>
void LatticeSearch<Z>::enter(const char* phase) {
  progress.phase = phase;
  report();
}

template <typename Z>
bool LatticeSearch<Z>::stopRequested() {
  report();
  return outerStop.stopRequested();
}

template <typename Z>
LatticeEnd LatticeSearch<Z>::run(bool mayNarrow) {
  if (this->finished) return LatticeEnd::Exhausted;
  for (std::size_t f = 0; f < forms.count; ++f) {
    if (forms.lower[f] > forms.upper[f]) return LatticeEnd::Exhausted;
  }
  throwIfStopped(*this);  // of a large program each of these steps takes its time
  const std::optional<CoordinateRanges<Z>> ranges = coordinateRanges(forms);
  if (!ranges) return LatticeEnd::Unusable;
  ItemSystem<Z> items = itemSystem(forms, *ranges);
  throwIfStopped(*this);
  Relaxation<Z> relaxation(forms, items, *this);
  throwIfStopped(*this);
  relaxation.linearProgram().heed(*this);
  const LatticeEnd end = search(relaxation, mayNarrow);
  if (this->probe != nullptr && end == LatticeEnd::Exhausted) this->probe->exhaust();
  return end;
}

template <typename Z>
LatticeEnd LatticeSearch<Z>::search(Relaxation<Z>& relaxation, bool mayNarrow) {
  enter("root");
  const NodeState root = tightenRoot(forms, relaxation, *this, *this);
  rootWork = relaxation.work();
  if (root == NodeState::Empty) return LatticeEnd::Exhausted;
  if (mayNarrow && exportSides(relaxation)) return LatticeEnd::Narrowed;
  if (!forms.ordered && cutRoot(relaxation) == NodeState::Empty) return LatticeEnd::Exhausted;
  rootWork = relaxation.work() - this->work;
  const std::size_t objective = relaxation.items().objective;
  if (objective != NONE) this->raiseBound(relaxation.lower(objective));
  plant(relaxation);
  const LatticeEnd end = searchRounds(relaxation);
  report();
  return end;
}

/// A new tree, which knows what the one before learned.
template <typename Z>
void LatticeSearch<Z>::plant(Relaxation<Z>& relaxation) {
  auto next = std::make_unique<Tree<Z>>(forms, relaxation, *this, *this);
  if (tree) {
    next->learnFrom(*tree);
    trialNodes += tree->nodes();
  }
  tree = std::move(next);
}

/// Depth first, a wrong choice near the root costs most: behind some rounds a tree that is hardly
/// begun starts anew, with what it has learned.
template <typename Z>
bool LatticeSearch<Z>::isStuck(std::int64_t round) const {
  return !forms.ordered && round % 2 == 0 && round > 0 && round <= LAST_RESTART &&
         tree->progress() < HARDLY_BEGUN;
}

template <typename Z>
NodeState LatticeSearch<Z>::replant(Relaxation<Z>& relaxation) {
  tree->abandon();
  if (relaxation.followState() == NodeState::Empty || relaxation.examine(1) == NodeState::Empty) {
    return NodeState::Empty;
  }
  plant(relaxation);
  return NodeState::Open;
}

/// Cuts, and between them trees that are given up: each gets as much work as all cuts before it,
/// and some times that where it seems to end so.
template <typename Z>
NodeState LatticeSearch<Z>::cutRoot(Relaxation<Z>& relaxation) {
  RootCuts<Z> cuts(relaxation, *this);
  const std::size_t objective = relaxation.items().objective;
  const std::int64_t first = std::max(FIRST_TRIAL, TRIAL_OF_ROOT * relaxation.work());
  for (std::int64_t budget = first; !cuts.ended(); budget *= 2) {
    if (budget > first && cuts.run(budget) == NodeState::Empty) return NodeState::Empty;
    this->raiseBound(relaxation.lower(objective));
    rootWork = relaxation.work() - this->work;
    if (cuts.ended() || !settings.tree) continue;
    plant(relaxation);
    enter("tree");
    for (int turn = 0; turn == 0 || (turn < TURNS_OF_A_TRIAL &&
                                     tree->progress() * (TURNS_OF_A_TRIAL - turn) > turn);
         ++turn) {
      if (tree->run(budget) == RunEnd::Exhausted) return NodeState::Empty;
    }
    tree->abandon();
    enter("root");
    if (relaxation.followState() == NodeState::Empty || relaxation.examine(1) == NodeState::Empty) {
      return NodeState::Empty;
    }
    if (!relaxation.solved()) break;
  }
  return NodeState::Open;
}

template <typename Z>
std::unique_ptr<typename LatticeSearch<Z>::Enumerator> LatticeSearch<Z>::makeEnumerator() {
  LatticeBasis reduced = basis;
  enter("reduction");
  reduce(reduced, model, settings.blockSize, settings.deep, *this);
  if (isNarrowSystem(model, reduced) != !std::is_same_v<Z, ZZ>) return nullptr;
  auto made = std::make_unique<Enumerator>();
  made->forms = formSystem<Z>(model, reduced);
  std::optional<CoordinateRanges<Z>> ranges = coordinateRanges(made->forms);
  if (!ranges) return nullptr;
  made->ranges = std::move(*ranges);
  made->search = std::make_unique<Enumeration<Z>>(made->forms, made->ranges, *this, *this);
  return made;
}

/// Rounds of doubled budgets. Each search resumes; the one that seems to have more than four times
/// as much before it gets an eighth.
template <typename Z>
LatticeEnd LatticeSearch<Z>::searchRounds(Relaxation<Z>& relaxation) {
  bool enumerates = settings.enumeration && (forms.ordered || !settings.tree);
  std::int64_t treeWork = 0;
  std::int64_t budget = FIRST_BUDGET;
  for (std::int64_t round = 0; settings.rounds < 0 || round < settings.rounds; ++round) {
    std::int64_t treeBudget = settings.tree || !enumerates ? budget : 0;
    std::int64_t enumerationBudget = enumerates ? budget : 0;
    if (enumerator && treeBudget > 0) {
      const double treeRest = restOf(treeWork, tree->progress());
      const double enumerationRest = restOf(enumerator->work, enumerator->search->progress());
      if (treeRest > 4 * enumerationRest) treeBudget /= 8;
      if (enumerationRest > 4 * treeRest) enumerationBudget /= 8;
    }
    if (treeBudget > 0) {
      enter("tree");
      const std::int64_t before = this->work;
      const RunEnd end = tree->run(treeBudget);
      treeWork += this->work - before;
      if (end == RunEnd::Exhausted) return LatticeEnd::Exhausted;
      if (isStuck(round) && replant(relaxation) == NodeState::Empty) return LatticeEnd::Exhausted;
    }
    if (enumerationBudget > 0) {
      if (!enumerator) enumerator = makeEnumerator();
      enumerates = enumerator != nullptr;
      if (!enumerates) continue;
      enter("enumeration");
      const std::int64_t before = this->work;
      const RunEnd end = enumerator->search->run(enumerationBudget);
      enumerator->work += this->work - before;
      if (end == RunEnd::Exhausted) return LatticeEnd::Exhausted;
      enumerates = end != RunEnd::Unusable;
      if (!enumerates) enumerator.reset();
    }
    budget *= 2;
  }
  return LatticeEnd::OutOfRounds;
}

template class LatticeSearch<std::int64_t>;
template class LatticeSearch<ZZ>;

}  // namespace vexil::solver
