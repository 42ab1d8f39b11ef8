// Vexil - exact integer optimization on lattices.
#include "solver/tree.h"

#include <algorithm>
#include <cmath>

#include "solver/dive.h"
#include "solver/probe.h"

namespace vexil::solver {
namespace {

constexpr int ROUNDS_OF_A_NODE = 3;
constexpr std::int64_t WORK_BETWEEN_STOPS = std::int64_t{1} << 22;
constexpr double LEAST_GAIN = 1e-6;
constexpr int RELIABLE = 4;
constexpr int MOST_KEPT = 6;
constexpr int MOST_TRIED = 8;
constexpr int PIVOTS_OF_A_TRIAL = 20;

}  // namespace

template <typename Z>
Tree<Z>::Tree(const FormSystem<Z>& formSystem, Relaxation<Z>& rootRelaxation,
              SearchState<Z>& searchState, StopToken& stopToken)
    : forms(formSystem),
      relaxation(rootRelaxation),
      state(searchState),
      stop(stopToken),
      pseudoCosts(rootRelaxation.items().count) {
  const ItemSystem<Z>& items = relaxation.items();
  if (forms.ordered) {
    candidates = items.parameterItem;
    candidates.resize(forms.dimension);
    return;
  }
  for (std::size_t f = 0; f < items.forms; ++f) {
    if (forms.kind[f] == FormKind::Variable) candidates.push_back(f);
  }
}

template <typename Z>
RunEnd Tree<Z>::run(std::int64_t budget) {
  const std::int64_t start = relaxation.work();
  std::int64_t counted = start;
  std::int64_t askedAt = start;
  diveWork = 0;
  while (!ended && !state.finished && relaxation.work() - start - diveWork < budget) {
    processNode();
    state.work += relaxation.work() - counted;
    counted = relaxation.work();
    if (counted - askedAt > WORK_BETWEEN_STOPS) {
      askedAt = counted;
      throwIfStopped(stop);
    }
  }
  return ended || state.finished ? RunEnd::Exhausted : RunEnd::Budget;
}

template <typename Z>
void Tree<Z>::learnFrom(const Tree& other) {
  std::copy_n(other.pseudoCosts.begin(), forms.count, pseudoCosts.begin());
}

template <typename Z>
void Tree<Z>::abandon() {
  if (!frames.empty()) relaxation.undo(frames.front().trail);
  frames.clear();
}

/// Ends the present node and enters the next one that is left.
template <typename Z>
void Tree<Z>::close() {
  done += share;
  if (!frames.empty()) relaxation.undo(frames.back().trail);
  descend();
}

/// Enters the next child of the last frame, or of one below it.
template <typename Z>
void Tree<Z>::descend() {
  while (!frames.empty()) {
    if (enterNextChild()) return;
    frames.pop_back();
    if (!frames.empty()) relaxation.undo(frames.back().trail);
  }
  ended = true;
}

template <typename Z>
bool Tree<Z>::enterNextChild() {
  Frame& frame = frames.back();
  const std::size_t item = frame.item;
  while (frame.next < frame.count) {
    const Child& child = frame.children[frame.next++];
    share = frame.share;
    if (relaxation.branch(item, child.lower, child.upper)) return true;
    relaxation.undo(frame.trail);
    done += share;
  }
  return false;
}

template <typename Z>
void Tree<Z>::processNode() {
  ++nodeCount;
  if (relaxation.followState() == NodeState::Empty ||
      relaxation.examine(ROUNDS_OF_A_NODE) == NodeState::Empty) {
    close();
    return;
  }
  if (!frames.empty() && frames.back().learns) learn(frames.back());
  if (dives() && !dive()) {
    close();
    return;
  }
  const std::size_t unfixed = lastUnfixed();
  if (unfixed == NONE) {
    relaxation.offerSolution();
    if (state.probe != nullptr) state.probe->judge();
    close();
    return;
  }
  branch();
}

template <typename Z>
bool Tree<Z>::dives() const {
  return !forms.ordered && relaxation.items().objective != NONE && nodeCount >= nextDive;
}

/// Dives from the present node. False: nothing is left of the node.
template <typename Z>
bool Tree<Z>::dive() {
  nextDive = 4 * nodeCount;
  const std::int64_t before = relaxation.work();
  for (const auto kind : {Dive<Z>::Kind::Nearest, Dive<Z>::Kind::Locks}) {
    Dive<Z>(forms, candidates, relaxation, state, stop).run(kind);
  }
  // A better point is a better one to look around.
  Z last = state.cut;
  for (int turn = 0; turn < MOST_KEPT && state.hasCut && !state.finished; ++turn) {
    Dive<Z>(forms, candidates, relaxation, state, stop).run(Dive<Z>::Kind::Kept);
    if (!(state.cut < last)) break;
    last = state.cut;
  }
  diveWork += relaxation.work() - before;
  return relaxation.followState() != NodeState::Empty &&
         relaxation.examine(ROUNDS_OF_A_NODE) != NodeState::Empty;
}

template <typename Z>
void Tree<Z>::branch() {
  if (!relaxation.solved()) {
    const std::size_t item = lastUnfixed();
    const Z width = relaxation.upper(item) - relaxation.lower(item);
    split({item, relaxation.linearProgram().value(item)},
          relaxation.lower(item) + floorDivide<Z>(width, Z(2)));
    return;
  }
  const Choice choice = forms.ordered ? chooseOrdered() : chooseLearned();
  if (choice.isNarrowed) return;
  if (choice.item != NONE) {
    split(choice, relaxation.roundedDown(choice.item));
    return;
  }
  const bool lowered = relaxation.offerSolution();
  if (state.finished) return;
  // A better point lowers the cut, and the same node is looked at again.
  if (lowered && relaxation.items().objective != NONE &&
      state.cut < relaxation.upper(relaxation.items().objective)) {
    return;
  }
  const std::size_t last = lastUnfixed();
  splitAround(last, relaxation.rounded(last));
}

template <typename Z>
std::size_t Tree<Z>::lastUnfixed() const {
  for (std::size_t i = candidates.size(); i-- > 0;) {
    if (!relaxation.isFixed(candidates[i])) return candidates[i];
  }
  return NONE;
}

/// The distance of an item from the integers.
template <typename Z>
double Tree<Z>::fraction(std::size_t item) const {
  const double value = relaxation.linearProgram().value(item);
  return std::fabs(value - std::rint(value));
}

template <typename Z>
typename Tree<Z>::Choice Tree<Z>::chooseOrdered() const {
  for (std::size_t i = candidates.size(); i-- > 0;) {
    const std::size_t item = candidates[i];
    if (relaxation.isFixed(item) || fraction(item) <= INTEGRAL) continue;
    return {item, relaxation.linearProgram().value(item)};
  }
  return {};
}

template <typename Z>
double Tree<Z>::pseudoCost(std::size_t item, int side) const {
  const PseudoCost& own = pseudoCosts[item];
  if (own.count[side] > 0) return own.sum[side] / own.count[side];
  double sum = 0;
  int count = 0;
  for (const PseudoCost& other : pseudoCosts) {
    if (other.count[side] == 0) continue;
    sum += other.sum[side] / other.count[side];
    ++count;
  }
  return count == 0 ? 1 : sum / count;
}

/// What is known of the rise on both sides, as one number.
template <typename Z>
double Tree<Z>::score(const Choice& choice) const {
  const double below = choice.value - roundedDown(choice.value);
  const double gainBelow = std::max(LEAST_GAIN, pseudoCost(choice.item, 0) * below);
  const double gainAbove = std::max(LEAST_GAIN, pseudoCost(choice.item, 1) * (1 - below));
  return gainBelow * gainAbove;
}

/// The variable of the greatest score, the best of which are tried for a few pivots as long as
/// little is known of them (reliability branching, Achterberg, Koch and Martin 2005).
template <typename Z>
typename Tree<Z>::Choice Tree<Z>::chooseLearned() {
  std::vector<Choice> choices;
  for (std::size_t i = candidates.size(); i-- > 0;) {
    const std::size_t item = candidates[i];
    if (relaxation.isFixed(item) || fraction(item) <= INTEGRAL) continue;
    choices.push_back({item, relaxation.linearProgram().value(item)});
    choices.back().score = score(choices.back());
  }
  if (choices.empty()) return {};
  const auto before = [](const Choice& x, const Choice& y) { return x.score > y.score; };
  std::stable_sort(choices.begin(), choices.end(), before);
  const std::size_t objective = relaxation.items().objective;
  if (objective == NONE || choices.size() == 1) return choices.front();
  const double value = relaxation.linearProgram().value(objective);
  int tried = 0;
  for (std::size_t i = 0; i < choices.size() && tried < MOST_TRIED; ++i) {
    const PseudoCost& known = pseudoCosts[choices[i].item];
    if (std::min(known.count[0], known.count[1]) >= RELIABLE) continue;
    ++tried;
    if (!tryChildren(choices[i], value)) {
      Choice narrowed;
      narrowed.isNarrowed = true;
      return narrowed;
    }
    choices[i].score = score(choices[i]);
  }
  if (tried == 0) return choices.front();
  if (!relaxation.resolve()) return choices.front();
  return *std::min_element(choices.begin(), choices.end(), before);
}

/// Learns from a few pivots in both children. False: one of them is empty, and the node has been
/// narrowed to the other.
template <typename Z>
bool Tree<Z>::tryChildren(const Choice& choice, double objective) {
  const std::size_t item = choice.item;
  const Z below = relaxation.roundedDown(item);
  const double distance = choice.value - roundedDown(choice.value);
  for (const int side : {0, 1}) {
    const std::size_t mark = relaxation.mark();
    const bool isOpen = side == 0 ? relaxation.branch(item, relaxation.lower(item), below)
                                  : relaxation.branch(item, below + Z(1), relaxation.upper(item));
    const std::optional<double> estimate =
        isOpen ? relaxation.estimate(PIVOTS_OF_A_TRIAL) : std::nullopt;
    relaxation.undo(mark);
    if (!estimate) {
      // If this fails too, the next look at the node will tell.
      static_cast<void>(side == 0 ? relaxation.raiseLower(item, below + Z(1))
                                  : relaxation.dropUpper(item, below));
      return false;
    }
    PseudoCost& cost = pseudoCosts[item];
    cost.sum[side] += std::max(0.0, *estimate - objective) / (side == 0 ? distance : 1 - distance);
    ++cost.count[side];
  }
  return true;
}

/// The rise of the objective from the parent to this child.
template <typename Z>
void Tree<Z>::learn(const Frame& frame) {
  const std::size_t objective = relaxation.items().objective;
  if (!relaxation.solved() || objective == NONE) return;
  const int side = frame.children[frame.next - 1].upward ? 1 : 0;
  const double rise = std::max(0.0, relaxation.linearProgram().value(objective) - frame.objective);
  PseudoCost& cost = pseudoCosts[frame.item];
  cost.sum[side] += rise / frame.distance[side];
  ++cost.count[side];
  frames.back().learns = frame.next < frame.count;
}

/// Children with the item up to `below` and above it, the nearer one first.
template <typename Z>
void Tree<Z>::split(const Choice& choice, const Z& below) {
  const ItemSystem<Z>& items = relaxation.items();
  const std::size_t item = choice.item;
  const double distance = std::clamp(choice.value - toDouble(below), 0.0, 1.0);
  Frame frame{};
  frame.trail = relaxation.mark();
  frame.item = item;
  frame.share = share / 2;
  frame.learns = relaxation.solved() && !forms.ordered && items.objective != NONE;
  if (frame.learns) frame.objective = relaxation.linearProgram().value(items.objective);
  frame.distance[0] = std::max(distance, INTEGRAL);
  frame.distance[1] = std::max(1 - distance, INTEGRAL);
  frame.count = 2;
  const Child down{relaxation.lower(item), below, false};
  const Child up{below + Z(1), relaxation.upper(item), true};
  frame.children[0] = distance <= 0.5 ? down : up;
  frame.children[1] = distance <= 0.5 ? up : down;
  frames.push_back(std::move(frame));
  descend();
}

/// Children with `item` at `middle`, above and below it.
template <typename Z>
void Tree<Z>::splitAround(std::size_t item, const Z& middle) {
  Frame frame{};
  frame.trail = relaxation.mark();
  frame.item = item;
  frame.children[frame.count++] = {middle, middle, true};
  if (relaxation.upper(item) > middle) {
    frame.children[frame.count++] = {middle + Z(1), relaxation.upper(item), true};
  }
  if (relaxation.lower(item) < middle) {
    frame.children[frame.count++] = {relaxation.lower(item), middle - Z(1), false};
  }
  frame.share = share / frame.count;
  frames.push_back(std::move(frame));
  descend();
}

template class Tree<std::int64_t>;
template class Tree<ZZ>;

}  // namespace vexil::solver
