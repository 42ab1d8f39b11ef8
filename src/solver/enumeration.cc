// Vexil - exact integer optimization on lattices.
#include "solver/enumeration.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/work_meter.h"
#include "numbers/integer.h"
#include "reduction/bkz.h"
#include "reduction/floating_lll.h"
#include "solver/integers.h"
#include "solver/probe.h"
#include "solver/projection.h"
#include "solver/ranges.h"

namespace vexil::solver {

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();

/// Coordinates up to here and their successors are exact as floating numbers.
constexpr dbl_t GREATEST_COORDINATE = 0x1p52L;

/// Slices at first in the whole range of the objective.
constexpr int FIRST_SLICES = 64;

/// A slice that has found nothing is given up for a narrower one after this many nodes, and as many
/// times those of all slices ahead of it.
constexpr std::int64_t PATIENCE = 1 << 18;
constexpr std::int64_t PATIENCE_FACTOR = 8;

/// The block sizes of the reduction, and the nodes of a slice after which the next one pays.
struct Strength {
  std::size_t blockSize;
  std::int64_t patience;
};
constexpr std::array<Strength, 3> STRENGTHS = {
    {{2, 1 << 15}, {10, 1 << 19}, {20, std::numeric_limits<std::int64_t>::max()}}};

constexpr std::int64_t QUESTION_WORK = std::int64_t{1} << 21;
constexpr std::int64_t NODE_WORK = 12;

/// Levels from the top that tell how far the enumeration is.
constexpr std::size_t PROGRESS_LEVELS = 8;

Integer integer(std::int64_t a) { return a; }
Integer integer(const ZZ& a) { return Integer(a); }

template <typename Z>
Z number(const Integer& a) {
  if constexpr (std::is_same_v<Z, ZZ>) {
    return a.zz();
  } else {
    return a.word();
  }
}

template <typename Z>
Z coordinate(double lambda) {
  return Z(static_cast<long long>(lambda));
}

/// w = above + y b over the plain forms and the others behind them; returns sum |w_f| of the plain
/// ones, in four interleaved parts.
double advance(double* __restrict w, const double* __restrict above, const double* __restrict b,
               double y, std::size_t plain, std::size_t stride) {
  std::array<double, 4> part{};
  for (std::size_t f = 0; f < plain; f += 4) {
    for (std::size_t lane = 0; lane < 4; ++lane) {
      w[f + lane] = above[f + lane] + y * b[f + lane];
      part[lane] += std::fabs(w[f + lane]);
    }
  }
  for (std::size_t f = plain; f < stride; ++f) w[f] = above[f] + y * b[f];
  return (part[0] + part[2]) + (part[1] + part[3]);
}

}  // namespace

template <typename Z>
struct Enumeration<Z>::Implementation {
  /// The values of the objective that a slice covers.
  struct Slice {
    Integer bottom;
    Integer top;
  };

  /// A coordinate on the way: the values next to be tried on both sides of the centre, in the order
  /// of their distance. An infinite one: that side is done.
  struct Level {
    double lambda = 0;
    double center = 0;  ///< y = lambda + center
    double up = INFINITE;
    double down = -INFINITE;
    double norm = 0;  ///< N of projection.h
    double tried = 0;
    std::size_t changed = 0;  ///< the highest coordinate that its sums do not know yet
  };

  Implementation(const FormSystem<Z>& forms, const CoordinateRanges<Z>& coordinateRanges,
                 SearchState<Z>& searchState, StopToken& stopToken)
      : system(forms),
        ranges(coordinateRanges),
        state(searchState),
        stop(stopToken),
        probe(searchState.probe),
        d(forms.dimension) {
    for (std::size_t f = 0; f < system.count; ++f) {
      if (system.kind[f] == FormKind::Goal) goals.push_back(f);
    }
    isLinear = std::any_of(system.objective.begin(), system.objective.end(),
                           [](const Z& c) { return signOf(c) != 0; });
    boundObjective();
    if (probe != nullptr) {
      probe->enumerate(forProbe(system), {inZZ(ranges.lower), inZZ(ranges.upper)});
    }
    done = hasEmptyForm();
  }

  /// A form that is constant is there because it is outside its box.
  [[nodiscard]] bool hasEmptyForm() const {
    for (std::size_t f = 0; f < system.count; ++f) {
      bool isConstant = true;
      for (std::size_t k = 0; k < d; ++k)
        isConstant = isConstant && signOf(system.entry(k, f)) == 0;
      const Z& value = system.offset[f];
      if (isConstant && (value < system.lower[f] || value > system.upper[f])) return true;
    }
    return false;
  }

  // --- slices of the objective ---

  [[nodiscard]] bool hasSlices() const {
    return system.hasObjective && (isLinear || !goals.empty());
  }

  /// What the ranges and boxes say of the linear part and the goals.
  void boundObjective() {
    linearLeast = integer(system.objectiveOffset);
    Integer linearMost = linearLeast;
    for (std::size_t k = 0; k < d; ++k) {
      const Integer c = integer(system.objective[k]);
      const Integer a = c * integer(ranges.lower[k]);
      const Integer b = c * integer(ranges.upper[k]);
      linearLeast += std::min(a, b);
      linearMost += std::max(a, b);
    }
    for (const std::size_t f : goals) {
      goalsMost += std::max(abs(integer(system.lower[f])), abs(integer(system.upper[f])));
    }
    objectiveMost = linearMost + goalsMost;
  }

  [[nodiscard]] Integer bottom() const {
    return state.hasBound ? std::max(linearLeast, integer(state.bound)) : linearLeast;
  }
  [[nodiscard]] Integer top() const {
    return state.hasCut ? std::min(objectiveMost, integer(state.cut)) : objectiveMost;
  }

  /// The next slice; false if none is left.
  bool openSlice() {
    slice.bottom = bottom();
    const Integer last = top();
    if (slice.bottom > last) return false;
    if (width.isZero()) {
      width = std::max(Integer(1), floorQuotient(last - slice.bottom, FIRST_SLICES));
      firstBottom = slice.bottom;
    }
    slice.top = std::min(last, slice.bottom + width);
    return true;
  }

  // --- the basis of a slice ---

  /// The span of a form within which a slice wants it.
  [[nodiscard]] Integer span(std::size_t f) const {
    Integer low = integer(system.lower[f]);
    Integer high = integer(system.upper[f]);
    if (system.kind[f] == FormKind::Goal) {
      low = std::max(low, -cap());
      high = std::min(high, cap());
    }
    return std::max(Integer(1), high - low);
  }

  /// Gives the system a basis that is reduced for the slice, its objective included, and the ranges
  /// of its coordinates. False if it goes beyond the numbers of the system.
  bool reduceSystem() {
    WeightedRows lattice;
    std::vector<Integer> point;
    std::vector<Integer> middle;
    for (std::size_t f = 0; f < system.count; ++f) {
      lattice.weights.push_back(2 / span(f).toReal());
      middle.push_back(floorQuotient(integer(system.lower[f]) + integer(system.upper[f]), 2));
      point.push_back(integer(system.offset[f]) - middle[f]);
    }
    lattice.weights.push_back(hasSlices() ? 2 / objectiveSpan().toReal() : 0);
    middle.push_back(hasSlices() ? slice.top : integer(system.objectiveOffset));
    point.push_back(integer(system.objectiveOffset) - middle.back());
    for (std::size_t k = 0; k < d; ++k) {
      std::vector<Integer>& row = lattice.rows.emplace_back();
      for (std::size_t f = 0; f < system.count; ++f) row.push_back(integer(system.entry(k, f)));
      row.push_back(integer(system.objective[k]));
    }
    WorkMeter meter([this] { throwIfStopped(stop); });
    lllReduce(lattice, {}, meter);
    bkzReduce(lattice, STRENGTHS[strength].blockSize, {}, meter);
    reducePoint(point, lattice, meter);
    state.work += meter.total();
    for (std::size_t f = 0; f < point.size(); ++f) point[f] += middle[f];
    return takeBasis(lattice.rows, point);
  }

  bool takeBasis(const std::vector<std::vector<Integer>>& rows, const std::vector<Integer>& point) {
    const auto fits = [](const std::vector<Integer>& row) {
      return std::is_same_v<Z, ZZ> || std::all_of(row.begin(), row.end(), [](const Integer& entry) {
               return abs(entry) < NARROW_LIMIT;
             });
    };
    if (!fits(point) || !std::all_of(rows.begin(), rows.end(), fits)) return false;
    for (std::size_t f = 0; f < system.count; ++f) system.offset[f] = number<Z>(point[f]);
    system.objectiveOffset = number<Z>(point.back());
    for (std::size_t k = 0; k < d; ++k) {
      for (std::size_t f = 0; f < system.count; ++f) {
        system.matrix[k * system.count + f] = number<Z>(rows[k][f]);
      }
      system.objective[k] = number<Z>(rows[k].back());
    }
    std::optional<CoordinateRanges<Z>> proved = coordinateRanges(system);
    if (proved) ranges = std::move(*proved);
    return proved.has_value();
  }

  /// Floating copies of the ranges; false if they are too wide.
  bool copyRanges() {
    greatest.clear();
    lowest.clear();
    highest.clear();
    for (std::size_t k = 0; k < d; ++k) {
      const dbl_t least = integer(ranges.lower[k]).toReal();
      const dbl_t most = integer(ranges.upper[k]).toReal();
      greatest.push_back(std::max(std::fabs(least), std::fabs(most)));
      lowest.push_back(static_cast<double>(least));
      highest.push_back(static_cast<double>(most));
    }
    return std::all_of(greatest.begin(), greatest.end(),
                       [](dbl_t bound) { return bound <= GREATEST_COORDINATE; });
  }

  /// The least value of the linear part in the slice.
  [[nodiscard]] Integer linearBottom() const {
    return std::max(linearLeast, slice.bottom - goalsMost);
  }
  /// What the slice leaves a goal.
  [[nodiscard]] Integer cap() const { return std::max(Integer(0), slice.top - linearBottom()); }
  [[nodiscard]] Integer objectiveSpan() const {
    return std::max(Integer(1), slice.top - linearBottom());
  }

  // --- the scaled forms ---

  void scaleForms() {
    scaled = {};
    scaled.dimension = d;
    columns.clear();
    for (std::size_t f = 0; f < system.count; ++f) {
      if (system.kind[f] != FormKind::Goal) scalePlain(f);
    }
    scaled.set.plain = columns.size();
    if (hasSlices()) scaleObjective();
    const std::size_t F = scaled.set.count();
    scaled.rows.resize(d * F);
    for (std::size_t f = 0; f < F; ++f) {
      for (std::size_t k = 0; k < d; ++k) scaled.rows[k * F + f] = columns[f][k];
    }
  }

  void scalePlain(std::size_t f) {
    const Integer low = integer(system.lower[f]);
    const Integer high = integer(system.upper[f]);
    const auto scale = static_cast<double>(2 / span(f).toReal());
    const Integer twice = integer(system.offset[f]) * 2 - low - high;
    addColumn(scale, twice.toReal() / 2, [&](std::size_t k) { return system.entry(k, f); });
  }

  template <typename Entry>
  void addColumn(double scale, dbl_t offset, const Entry& entry) {
    const auto factor = static_cast<dbl_t>(scale);
    std::vector<dbl_t>& column = columns.emplace_back();
    for (std::size_t k = 0; k < d; ++k) column.push_back(factor * integer(entry(k)).toReal());
    scaled.offset.push_back(factor * offset);
  }

  /// The goals, each capped by what the slice leaves it, and the linear part between what the slice
  /// and the goals leave it.
  void scaleObjective() {
    objectiveScale = static_cast<double>(2 / objectiveSpan().toReal());
    for (const std::size_t f : goals) {
      const Integer low = std::max(integer(system.lower[f]), -cap());
      const Integer high = std::min(integer(system.upper[f]), cap());
      const auto scale = static_cast<double>(2 / span(f).toReal());
      const auto factor = static_cast<dbl_t>(scale);
      scaled.set.goals.push_back({static_cast<double>(factor * low.toReal()),
                                  static_cast<double>(factor * high.toReal()),
                                  objectiveScale / scale, 1 / scale});
      addColumn(scale, integer(system.offset[f]).toReal(),
                [&](std::size_t k) { return system.entry(k, f); });
    }
    scaled.set.hasObjective = isLinear;
    scaled.set.hasRoom = !isLinear;
    objectiveMiddle = slice.top + linearBottom();
    if (isLinear) {
      const Integer twice = integer(system.objectiveOffset) * 2 - objectiveMiddle;
      addColumn(objectiveScale, twice.toReal() / 2,
                [&](std::size_t k) { return system.objective[k]; });
    }
    setTop(slice.top);
  }

  void lowerTop(const Integer& value) {
    slice.top = value;
    setTop(value);
    if (probe != nullptr) probe->lowerTop(value.zz());
  }

  /// Makes `value` the top of the slice in work.
  void setTop(const Integer& value) {
    scaled.set.up = static_cast<double>(static_cast<dbl_t>(objectiveScale) *
                                        (value * 2 - objectiveMiddle).toReal() / 2);
    scaled.set.room = static_cast<double>((value - integer(system.objectiveOffset)).toReal());
  }

  // --- the enumeration of a slice ---

  /// Prepares the enumeration from its top; false if the floating numbers do not carry it.
  bool open() {
    const bool isGiven = !hasSlices() && strength == 0;
    if (!(isGiven || reduceSystem()) || !copyRanges()) return false;
    scaleForms();
    projection.emplace(scaled);
    if (probe != nullptr) probe->disturb(*projection);
    if (!projection->bound(scaled, greatest)) return false;
    w.assign((d + 1) * projection->stride, 0);
    std::copy(projection->across.begin(), projection->across.end(),
              w.begin() + static_cast<std::ptrdiff_t>(d * projection->stride));
    sums.assign(d * (d + 1), 0);
    levels.assign(d + 1, Level());
    for (std::size_t k = 0; k < d; ++k) {
      sums[k * (d + 1) + d] = projection->tau[k];
      levels[k].changed = d - 1;
    }
    levels[d].norm = projection->squaredAcross;
    levels[d].changed = d - 1;
    at = d;
    descend();
    sliceNodes = 0;
    isOpen = true;
    if (probe != nullptr) {
      probe->openSlice(forProbe(system), {inZZ(ranges.lower), inZZ(ranges.upper)},
                       slice.bottom.zz(), slice.top.zz());
    }
    return true;
  }

  /// Enters level at - 1: its centre is tau + sum over i >= k of lambda_i mu_i, and what is known
  /// of that sum from i on stays.
  void descend() {
    Level& parent = levels[at];
    --at;
    Level& level = levels[at];
    level.changed = std::max(level.changed, parent.changed);
    double* const sum = &sums[at * (d + 1)];
    const double* const mu = &projection->mu[at * d];
    for (std::size_t i = level.changed; i > at; --i) sum[i] = sum[i + 1] + levels[i].lambda * mu[i];
    parent.changed = at + 1 < d ? at + 1 : d - 1;
    level.center = sum[at + 1];
    const double start = -level.center;
    const double nearest = std::rint(start);
    level.up = nearest >= start ? nearest : nearest + 1;
    level.down = level.up - 1;
    if (level.up < lowest[at]) level.up = lowest[at];
    if (level.down > highest[at]) level.down = highest[at];
    if (!(level.up <= highest[at])) level.up = INFINITE;
    if (!(level.down >= lowest[at])) level.down = -INFINITE;
    level.tried = 0;
  }

  /// Goes on for `work` units; true at the end of the slice.
  bool enumerate(std::int64_t work) {
    const Projection& p = *projection;
    const std::size_t stride = p.stride;
    const auto cost = static_cast<std::int64_t>(stride) + NODE_WORK;
    for (std::int64_t spent = 0; spent < work; spent += cost) {
      Level& level = levels[at];
      const double above = level.up + level.center;
      const double below = -(level.down + level.center);
      const bool isUp = above <= below;
      const double distance = isUp ? above : below;
      if (!(distance <= p.reach[at])) {
        if (probe != nullptr) tellReach();
        if (++at == d) {
          isOpen = false;
          state.work += spent;
          return true;
        }
        continue;
      }
      ++nodes;
      ++sliceNodes;
      level.tried += 1;
      const double y = isUp ? above : -below;
      if (isUp) {
        level.lambda = level.up;
        level.up += 1;
        if (level.up > highest[at]) level.up = INFINITE;
      } else {
        level.lambda = level.down;
        level.down -= 1;
        if (level.down < lowest[at]) level.down = -INFINITE;
      }
      if (!admits(y)) {
        const bool hidesSide = distance >= p.least[at];
        if (probe != nullptr) tellCut(y, isUp, hidesSide);
        if (hidesSide) (isUp ? level.up : level.down) = isUp ? INFINITE : -INFINITE;
        continue;
      }
      if (probe != nullptr) probe->descend(at, inZZ(level.lambda));
      if (at > 0) {
        descend();
      } else if (leaf()) {
        state.work += spent + cost;
        return false;
      }
    }
    state.work += work;
    return false;
  }

  /// False: no wanted point has the coordinates from `at` up.
  bool admits(double y) {
    const Projection& p = *projection;
    Level& level = levels[at];
    level.norm = levels[at + 1].norm + y * y * p.squared[at];
    if (!(level.norm <= p.ball[at])) return false;
    double* const here = &w[at * p.stride];
    const double support =
        advance(here, here + p.stride, &p.bStar[at * p.stride], y, p.plain, p.stride);
    const double rest = p.plain == p.stride ? 0 : scaled.set.rest(here + p.plain);
    return level.norm - (support + rest) <= p.error[at];
  }

  // --- what a probe is told ---

  static ZZ inZZ(double lambda) { return Integer::fromReal(lambda).zz(); }
  static std::vector<ZZ> inZZ(const std::vector<Z>& numbers) {
    return {numbers.begin(), numbers.end()};
  }

  /// What is left of a level is beyond its reach.
  void tellReach() {
    const Level& level = levels[at];
    const double* const b = &projection->bStar[at * projection->stride];
    if (level.up < INFINITE) tellExcluded(level.up, highest[at], b, 1);
    if (level.down > -INFINITE) tellExcluded(lowest[at], level.down, b, -1);
    probe->ascend(at);
  }

  /// The value just tried is none, or neither is any behind it.
  void tellCut(double y, bool isUp, bool hidesSide) {
    const Projection& p = *projection;
    double* const here = &w[at * p.stride];
    advance(here, here + p.stride, &p.bStar[at * p.stride], y, p.plain, p.stride);
    const double value = levels[at].lambda;
    tellExcluded(hidesSide && !isUp ? lowest[at] : value, hidesSide && isUp ? highest[at] : value,
                 here, 1);
  }

  void tellExcluded(double from, double to, const double* vector, double sign) {
    std::vector<double> weights(system.count + 1);
    std::size_t plain = 0;
    std::size_t goal = 0;
    for (std::size_t f = 0; f < system.count; ++f) {
      const bool isGoal = system.kind[f] == FormKind::Goal;
      if (isGoal && !hasSlices()) continue;
      weights[f] = isGoal ? vector[projection->plain + goal] / scaled.set.goals[goal].scale
                          : vector[plain] * static_cast<double>(2 / span(f).toReal());
      weights[f] *= sign;
      ++(isGoal ? goal : plain);
    }
    if (scaled.set.hasObjective) {
      weights.back() = sign * vector[projection->plain + goal] * objectiveScale;
    }
    probe->exclude(at, inZZ(from), inZZ(to), weights);
  }

  /// Judges the point of all coordinates in integers; true if the search is to look up.
  bool leaf() {
    values.resize(system.count);
    Wide<Z> objective = widen(system.objectiveOffset);
    for (std::size_t f = 0; f < system.count; ++f) {
      Wide<Z> sum = widen(system.offset[f]);
      for (std::size_t i = 0; i < d; ++i) {
        addProduct(sum, system.entry(i, f), coordinate<Z>(levels[i].lambda));
      }
      if (sum < widen(system.lower[f]) || sum > widen(system.upper[f])) return false;
      values[f] = narrowed(sum);
      if (system.kind[f] == FormKind::Goal) {
        objective = sum < Wide<Z>(0) ? Wide<Z>(objective - sum) : Wide<Z>(objective + sum);
      }
    }
    if (system.hasObjective && state.hasCut) {
      for (std::size_t i = 0; i < d; ++i) {
        addProduct(objective, system.objective[i], coordinate<Z>(levels[i].lambda));
      }
      if (objective > widen(state.cut)) return false;
    }
    if (state.offer(system, values)) found = true;
    if (hasSlices() && state.hasCut && integer(state.cut) < slice.top) {
      lowerTop(integer(state.cut));
      return true;
    }
    return state.finished;
  }

  static Z narrowed(const Wide<Z>& a) {
    if constexpr (std::is_same_v<Z, ZZ>) {
      return a;
    } else {
      return static_cast<std::int64_t>(a);
    }
  }

  // --- the whole run ---

  RunEnd run(std::int64_t work) {
    if (!isUsable) return RunEnd::Unusable;
    const std::int64_t end = state.work + work;
    while (!done && !state.finished) {
      if (state.work >= end) return RunEnd::Budget;
      throwIfStopped(stop);
      if (isOpen) followState();
      if (!isOpen) {
        if (hasSlices() ? !openSlice() : exhausted) break;
        if (d == 0 || !open()) return lastResort();
      }
      if (enumerate(std::min(end - state.work, QUESTION_WORK))) {
        closeSlice();
      } else if (isHopeless()) {
        width = std::max(Integer(1), floorQuotient(slice.top - slice.bottom, 4));
        isOpen = false;
      } else if (sliceNodes > STRENGTHS[strength].patience) {
        ++strength;
        isOpen = false;
      }
    }
    done = true;
    return RunEnd::Exhausted;
  }

  /// A system of one point is looked at as such; any other is left to the tree.
  RunEnd lastResort() {
    isUsable = d == 0;
    if (!isUsable) return RunEnd::Unusable;
    static_cast<void>(leaf());
    done = true;
    return RunEnd::Exhausted;
  }

  /// Takes over what was found and proved elsewhere meanwhile.
  void followState() {
    if (!hasSlices()) return;
    const Integer last = top();
    if (last < slice.top) lowerTop(last);
    if (bottom() > slice.top) isOpen = false;
  }

  void closeSlice() {
    nodesBefore += sliceNodes;
    if (!hasSlices()) {
      exhausted = true;
      return;
    }
    width *= 2;
    const Integer next = slice.top + 1;
    if (next > top()) exhausted = done = true;
    if (next <= objectiveMost) state.raiseBound(number<Z>(next));
  }

  /// Nothing was found for long, and less could be asked for.
  [[nodiscard]] bool isHopeless() const {
    return hasSlices() && !state.hasCut && !found && slice.top > slice.bottom &&
           sliceNodes > PATIENCE + PATIENCE_FACTOR * nodesBefore;
  }

  [[nodiscard]] double progress() const {
    if (done) return 1;
    if (!isOpen) return 0;
    double part = 0;
    double share = 1;
    for (std::size_t j = d; j-- > at && j + PROGRESS_LEVELS >= d;) {
      const double count = std::min(2 * projection->reach[j] + 1, highest[j] - lowest[j] + 1);
      part += share * std::max(0.0, std::min(levels[j].tried - 1, count - 1)) / count;
      share /= std::max(1.0, count);
    }
    if (!hasSlices()) return part;
    const dbl_t whole = (top() - firstBottom + 1).toReal();
    const dbl_t before = (slice.bottom - firstBottom).toReal();
    const dbl_t present = (slice.top - slice.bottom + 1).toReal();
    return static_cast<double>((before + present * static_cast<dbl_t>(part)) / whole);
  }

  FormSystem<Z> system;        ///< in the basis of the slice
  CoordinateRanges<Z> ranges;  ///< of its coordinates
  SearchState<Z>& state;
  StopToken& stop;
  Probe* probe;
  std::size_t d;
  bool isUsable = true;
  bool done = false;
  std::int64_t nodes = 0;

  std::vector<std::size_t> goals;
  std::vector<dbl_t> greatest;  ///< |lambda_k|
  std::vector<double> lowest;   ///< lambda_k
  std::vector<double> highest;
  bool isLinear = false;  ///< the linear part of the objective varies
  Integer linearLeast;    ///< over the ranges; the other bounds likewise
  Integer goalsMost;
  Integer objectiveMost;

  Slice slice;
  Integer width;
  Integer firstBottom;
  bool exhausted = false;
  bool found = false;
  std::int64_t sliceNodes = 0;
  std::int64_t nodesBefore = 0;
  std::size_t strength = 0;
  double objectiveScale = 1;
  Integer objectiveMiddle;  ///< twice the value that becomes 0

  ScaledForms scaled;
  std::vector<std::vector<dbl_t>> columns;
  std::optional<Projection> projection;
  bool isOpen = false;
  std::size_t at = 0;         ///< the level in work
  std::vector<Level> levels;  ///< d, and one above them
  std::vector<double> w;      ///< d + 1 vectors
  std::vector<double> sums;   ///< d x (d + 1)
  std::vector<Z> values;
};

template <typename Z>
Enumeration<Z>::Enumeration(const FormSystem<Z>& system, const CoordinateRanges<Z>& ranges,
                            SearchState<Z>& state, StopToken& stop)
    : m(std::make_unique<Implementation>(system, ranges, state, stop)) {}

template <typename Z>
Enumeration<Z>::~Enumeration() = default;

template <typename Z>
RunEnd Enumeration<Z>::run(std::int64_t work) {
  return m->run(work);
}

template <typename Z>
std::int64_t Enumeration<Z>::nodes() const {
  return m->nodes;
}

template <typename Z>
double Enumeration<Z>::progress() const {
  return m->progress();
}

template class Enumeration<std::int64_t>;
template class Enumeration<ZZ>;

}  // namespace vexil::solver
