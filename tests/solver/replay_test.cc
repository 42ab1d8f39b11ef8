// Vexil - exact integer optimization on lattices.
//
// Replays whole searches in numbers of its own: every conclusion from its multipliers, every branch
// until nothing is left, every cut from what it was rounded from, every value that the enumeration
// leaves out; with the floating numbers as they are and with garbage among them.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <random>

#include "solver/dictionary.h"
#include "solver/probe.h"
#include "solver/projection.h"
#include "solver/search.h"
#include "support/random_program.h"

namespace vexil::solver {
namespace {

struct Interval {
  ZZ low, high;
  [[nodiscard]] bool isEmpty() const { return low > high; }
};

Interval operator*(const ZZ& a, const Interval& x) {
  return signOf(a) < 0 ? Interval{a * x.high, a * x.low} : Interval{a * x.low, a * x.high};
}
Interval& operator+=(Interval& x, const Interval& y) {
  x = {x.low + y.low, x.high + y.high};
  return x;
}

ZZ least(const ZZ& a, const ZZ& b) { return a < b ? a : b; }
ZZ most(const ZZ& a, const ZZ& b) { return a < b ? b : a; }

/// Numbers of doubles in a common power of two: what they say of forms does not depend on it.
std::vector<ZZ> inUnits(const std::vector<double>& numbers) {
  double greatest = 0;
  for (const double x : numbers) greatest = std::max(greatest, std::fabs(x));
  double scale = 1;
  for (; greatest > 0 && greatest * scale < 0x1p200; scale *= 2) {
  }
  std::vector<ZZ> result;
  result.reserve(numbers.size());
  for (const double x : numbers) result.push_back(nearestInteger<ZZ>(x * scale));
  return result;
}

class Replay : public Probe, public Listener {
 public:
  explicit Replay(std::uint64_t garbage) : generator(garbage), isDisturbed(garbage != 0) {}

  void point(const Vector<QQ>& /*x*/) override { ++points; }
  void progress(const Progress& /*progress*/) override {}
  bool stopRequested() override { return false; }

  void disturb(Dictionary& solved) override {
    if (!isDisturbed || generator() % 4 != 0) return;
    solved.disturb([this](double& number) { spoil(number, 200); });
  }
  void disturb(Projection& made) override {
    if (!isDisturbed) return;
    for (auto* const numbers : {&made.bStar, &made.mu, &made.tau, &made.across, &made.squared}) {
      for (double& number : *numbers) spoil(number, 2000);
    }
  }

  void takeCoset(const ZZ& unit, const ZZ& rest) override {
    step = unit;
    residue = rest;
    proved = linearLeast = -ZZ(NARROW_LIMIT) * ZZ(NARROW_LIMIT);
    boxes.clear();
    frames.assign(1, {});
    cuts.clear();
  }

  void takeItems(const ItemSystem<ZZ>& system) override {
    std::map<std::vector<ZZ>, Interval> known;
    for (std::size_t i = 0; i < boxes.size(); ++i) known.insert({rowOf(i), boxes[i]});
    const bool isFirst = boxes.empty();
    items = system;
    boxes.resize(items.count);
    for (std::size_t i = 0; i < items.count; ++i) {
      boxes[i] = {items.lower[i], items.upper[i]};
      const auto cut = cuts.find(rowOf(i));
      const auto place = known.find(rowOf(i));
      if (place != known.end()) {
        boxes[i] = {most(boxes[i].low, place->second.low),
                    least(boxes[i].high, place->second.high)};
      } else {
        EXPECT_TRUE(isFirst || (cut != cuts.end() && cut->second <= items.upper[i]));
      }
    }
    for (const Interval& box : boxes)
      frames.back().isEmpty = frames.back().isEmpty || box.isEmpty();
    if (isFirst) checkCoset();
    trail.clear();
  }

  void takeBest(const ZZ& value) override { best = value; }
  void takeCut(const ZZ& cut) override {
    EXPECT_GE(cut + step, best);
    narrow(items.objective, {boxes[items.objective].low, cut});
  }
  void takeBound(const ZZ& bound) override {
    EXPECT_LE(bound, most(proved, boxes[items.objective].low));
    narrow(items.objective, {bound, boxes[items.objective].high});
  }

  void combine(const std::vector<Multiple>& parts) override { combination = parts; }
  void conclude(std::size_t item, const ZZ& lower, const ZZ& upper) override {
    // factor * item = constant + residues - the other parts, so it is within `room`.
    Interval room = side();
    ZZ factor = 0;
    for (const auto& [part, m] : combination) {
      if (part == item)
        factor = factor + m;
      else
        room += (-m) * boxes[part];
    }
    for (const bool isLower : {true, false}) {
      const ZZ bound = isLower ? lower : upper;
      if (isLower ? bound <= boxes[item].low : bound >= boxes[item].high) continue;
      // The nearest value beyond the bound contradicts the room.
      const ZZ beyond = factor * (isLower ? bound - ZZ(1) : bound + ZZ(1));
      EXPECT_TRUE((signOf(factor) > 0) == isLower ? beyond < room.low : beyond > room.high);
      ++counts.bounds;
    }
    narrow(item, {lower, upper});
  }
  void concludeEmpty() override {
    Interval room = side();
    for (const auto& [part, m] : combination) room += (-m) * boxes[part];
    EXPECT_TRUE(signOf(room.low) > 0 || signOf(room.high) < 0 || frames.back().isEmpty);
    ++counts.empties;
    frames.back().isEmpty = true;
  }

  void suppose(std::size_t mark, std::size_t item, const ZZ& lower, const ZZ& upper) override {
    frames.push_back({mark, item, {lower, upper}, trail.size(), {}, frames.back().isEmpty});
    narrow(item, {lower, upper});
  }
  /// What was found empty is taken from the ends of the range of the item in the frame before.
  void undo(std::size_t mark) override {
    while (frames.size() > 1 && frames.back().mark >= mark) {
      const Frame old = frames.back();
      frames.pop_back();
      for (; trail.size() > old.trail; trail.pop_back())
        boxes[trail.back().first] = trail.back().second;
      if (!old.isEmpty) continue;
      auto& gone = frames.back().gone[old.item];
      gone.push_back(old.values);
      for (bool again = true; again;) {
        again = false;
        for (const Interval& values : gone) {
          Interval box = boxes[old.item];
          if (values.low <= box.low && values.high >= box.low) box.low = values.high + ZZ(1);
          if (values.high >= box.high && values.low <= box.high) box.high = values.low - ZZ(1);
          again = narrow(old.item, box) || again;
        }
      }
    }
  }
  void judge() override {
    for (std::size_t k = 0; k < items.coordinates; ++k) {
      const Interval& box = boxes[items.parameterItem[k]];
      EXPECT_TRUE(box.low == box.high || frames.back().isEmpty);
    }
    frames.back().isEmpty = true;
  }
  void exhaust() override {
    ++counts.ends;
    const bool isAtBest = best && items.objective != NONE &&
                          (signOf(step) == 0 || most(most(proved, linearLeast),
                                                     boxes[items.objective].low) > *best - step);
    EXPECT_TRUE(!frames.empty() && (frames.front().isEmpty || isAtBest));
  }

  void round(const std::vector<Term>& terms, const ZZ& r, const ZZ& divisor) override {
    fromRow = NONE;
    // sum c q - r is 0 whatever the parameters are.
    std::vector<ZZ> sum = linear(terms, [](const ZZ& c) { return c; });
    EXPECT_EQ(sum.back(), -r);
    for (std::size_t k = 0; k < items.parameters; ++k) EXPECT_EQ(sum[k], 0);
    const ZZ rho = r - floorDivide<ZZ>(r, divisor) * divisor;
    const auto rounded = [&](const ZZ& c) {
      const ZZ whole = floorDivide<ZZ>(c, divisor);
      return (divisor - rho) * whole + most(0, c - whole * divisor - rho);
    };
    EXPECT_GT(rho, 0);
    base = linear(terms, rounded);
    base.back() = base.back() + rounded(r);
  }
  void cover(std::size_t item, bool upward) override {
    fromRow = item;
    fromAbove = upward;
  }
  void cut(const std::vector<std::int64_t>& a, std::int64_t bound, const ZZ& divisor) override {
    ++counts.cuts;
    std::vector<ZZ> row(a.begin(), a.end());
    if (fromRow != NONE) {
      EXPECT_LE(greatestInRow(row), bound);
    } else {
      ZZ rest = base.back();
      ZZ shift = 0;
      for (std::size_t k = 0; k < row.size(); ++k) {
        const Interval range = rangeOf(k);
        const ZZ origin = row[k] * divisor <= base[k] ? range.low : range.high;
        rest = rest - base[k] * origin;
        shift = shift + row[k] * origin;
      }
      EXPECT_GE(ZZ(bound), floorDivide<ZZ>(rest, divisor) + shift);
    }
    row.emplace_back(0);
    const auto known = cuts.find(row);
    if (known == cuts.end() || ZZ(bound) < known->second) cuts[row] = bound;
  }

  void enumerate(const FormSystem<ZZ>& system, const CoordinateRanges<ZZ>& ranges) override {
    Interval linear{system.objectiveOffset, system.objectiveOffset};
    for (std::size_t k = 0; k < system.dimension; ++k) {
      linear += system.objective[k] * Interval{ranges.lower[k], ranges.upper[k]};
    }
    linearLeast = linear.low;
    goalsMost = 0;
    for (std::size_t f = 0; f < system.count; ++f) {
      if (system.kind[f] == FormKind::Goal)
        goalsMost = goalsMost + most(system.upper[f], -system.lower[f]);
    }
  }
  void openSlice(const FormSystem<ZZ>& system, const CoordinateRanges<ZZ>& ranges, const ZZ& bottom,
                 const ZZ& top) override {
    forms = system;
    last = top;
    first = most(linearLeast, bottom - goalsMost);
    if (forms.hasObjective) {
      EXPECT_LE(bottom, most(proved, most(linearLeast, boxes[items.objective].low)));
    }
    levels.assign(forms.dimension, {});
    for (std::size_t k = 0; k < forms.dimension; ++k)
      levels[k].range = {ranges.lower[k], ranges.upper[k]};
  }
  void lowerTop(const ZZ& top) override {
    if (!best) return;
    EXPECT_GE(top + step, *best);
    last = least(last, top);
  }
  void descend(std::size_t level, const ZZ& value) override {
    levels[level].value = value;
    levels[level].gone.push_back({value, value});
    if (level > 0) levels[level - 1].gone.clear();
  }
  void exclude(std::size_t level, const ZZ& from, const ZZ& to,
               const std::vector<double>& weights) override {
    ++counts.excluded;
    levels[level].gone.push_back({from, to});
    const std::vector<ZZ> w = inUnits(weights);
    ZZ constant = w.back() * forms.objectiveOffset;
    for (std::size_t f = 0; f < forms.count; ++f) constant = constant + w[f] * forms.offset[f];
    Interval value{constant, constant};
    for (std::size_t k = 0; k < forms.dimension; ++k) {
      ZZ slope = forms.hasObjective ? w.back() * forms.objective[k] : ZZ(0);
      for (std::size_t f = 0; f < forms.count; ++f) slope = slope + w[f] * forms.entry(k, f);
      const Level& at = levels[k];
      value += slope * (k > level    ? Interval{at.value, at.value}
                        : k == level ? Interval{from, to}
                                     : at.range);
    }
    EXPECT_GT(value.low, support(w));
  }
  void ascend(std::size_t level) override {
    auto& gone = levels[level].gone;
    std::sort(gone.begin(), gone.end(),
              [](const Interval& x, const Interval& y) { return x.low < y.low; });
    ZZ next = levels[level].range.low;
    for (const Interval& interval : gone) {
      if (interval.low <= next) next = most(next, interval.high + ZZ(1));
    }
    EXPECT_GT(next, levels[level].range.high) << "values were left out";
    if (level + 1 < forms.dimension) return;
    if (!forms.hasObjective) frames.front().isEmpty = true;
    proved = last + ZZ(1);
  }

  struct Counts {
    int bounds = 0, empties = 0, cuts = 0, excluded = 0, ends = 0;
    void operator+=(const Counts& c) {
      bounds += c.bounds, empties += c.empties, cuts += c.cuts, excluded += c.excluded,
          ends += c.ends;
    }
  };
  Counts counts;
  std::size_t points = 0;

 private:
  struct Frame {
    std::size_t mark = 0;
    std::size_t item = NONE;
    Interval values;
    std::size_t trail = 0;
    std::map<std::size_t, std::vector<Interval>> gone;  ///< values that were proved empty, by item
    bool isEmpty = false;
  };
  struct Level {
    Interval range;
    ZZ value;
    std::vector<Interval> gone;
  };

  void spoil(double& number, std::uint64_t rarity) {
    constexpr double STRANGE[] = {std::numeric_limits<double>::quiet_NaN(),
                                  std::numeric_limits<double>::infinity(), 1e200, -1e15, 0};
    if (generator() % rarity != 0) return;
    const std::uint64_t kind = generator() % 12;
    number = kind < 5 ? STRANGE[kind] : number * (1 + (kind % 2 == 0 ? 1e-9 : 0.5)) + 1e-7;
  }

  /// True if the box of the item changed. An empty one empties the frame.
  bool narrow(std::size_t item, const Interval& wanted) {
    const Interval old = boxes[item];
    boxes[item] = {most(old.low, wanted.low), least(old.high, wanted.high)};
    if (item == items.objective && signOf(step) > 0) {
      boxes[item].low = residue + ceilDivide<ZZ>(boxes[item].low - residue, step) * step;
    }
    if (boxes[item].low == old.low && boxes[item].high == old.high) return false;
    trail.emplace_back(item, old);
    if (boxes[item].isEmpty()) frames.back().isEmpty = true;
    for (std::size_t g = 0; g < items.goalForm.size(); ++g) {
      if (items.goalForm[g] != item) continue;
      const std::size_t below = items.goalSide[g];  // |t| - t, and behind it |t| + t
      narrow(below, {0, most(0, ZZ(-2) * boxes[item].low)});
      narrow(below + 1, {0, most(0, ZZ(2) * boxes[item].high)});
    }
    return true;
  }

  [[nodiscard]] Interval rangeOf(std::size_t k) const {
    if (k >= items.coordinates) return {items.ranges.lower[k], items.ranges.upper[k]};
    const std::size_t item = items.parameterItem[k];
    return {boxes[item].low - items.offset[item], boxes[item].high - items.offset[item]};
  }

  [[nodiscard]] std::vector<ZZ> rowOf(std::size_t item) const {
    std::vector<ZZ> row;
    for (std::size_t k = 0; k < items.parameters; ++k) row.push_back(items.entry(item, k));
    row.push_back(items.offset[item]);
    return row;
  }

  /// What the combination is, by the parameters.
  [[nodiscard]] Interval side() const {
    Interval value{0, 0};
    std::vector<ZZ> residues(items.parameters);
    for (const auto& [item, m] : combination) {
      value += m * Interval{items.offset[item], items.offset[item]};
      for (std::size_t k = 0; k < residues.size(); ++k)
        residues[k] = residues[k] + m * items.entry(item, k);
    }
    for (std::size_t k = 0; k < residues.size(); ++k) value += residues[k] * rangeOf(k);
    return value;
  }

  /// sum F(c) q = `row` parameters - (last element).
  template <typename F>
  [[nodiscard]] std::vector<ZZ> linear(const std::vector<Term>& terms, const F& function) const {
    std::vector<ZZ> row(items.parameters + 1);
    for (const Term& term : terms) {
      const ZZ c = term.fromUpper ? -function(term.c) : function(term.c);
      const Interval range = term.isItem ? boxes[term.index] : rangeOf(term.index);
      row.back() = row.back() + c * (term.fromUpper ? range.high : range.low);
      if (!term.isItem) {
        row[term.index] = row[term.index] + c;
        continue;
      }
      row.back() = row.back() - c * items.offset[term.index];
      for (std::size_t k = 0; k < items.parameters; ++k) {
        row[k] = row[k] + c * items.entry(term.index, k);
      }
    }
    return row;
  }

  /// The greatest a p over the parameters, two values each, that the row admits: the least weight
  /// for each sum.
  [[nodiscard]] ZZ greatestInRow(const std::vector<ZZ>& a) const {
    const ZZ sign = fromAbove ? 1 : -1;
    std::map<ZZ, ZZ> weightOf{{0, sign * items.offset[fromRow]}};
    for (std::size_t k = 0; k < a.size(); ++k) {
      std::map<ZZ, ZZ> next;
      const Interval range = rangeOf(k);
      for (const auto& [sum, weight] : weightOf) {
        for (ZZ p = range.low; p <= range.high; p = p + ZZ(1)) {
          const ZZ total = weight + sign * items.entry(fromRow, k) * p;
          const auto [place, isNew] = next.insert({sum + a[k] * p, total});
          if (!isNew) place->second = least(place->second, total);
        }
      }
      weightOf = std::move(next);
    }
    const ZZ room = fromAbove ? boxes[fromRow].high : -boxes[fromRow].low;
    auto place = weightOf.rbegin();
    while (place != weightOf.rend() && place->second > room) ++place;
    return place == weightOf.rend() ? -ZZ(NARROW_LIMIT) : place->first;
  }

  /// The greatest value of these weights of forms within their boxes and the slice.
  [[nodiscard]] ZZ support(const std::vector<ZZ>& w) const {
    const ZZ& v = w.back();
    const bool isCapped = signOf(v) > 0;
    ZZ sum = isCapped ? v * last : v * first;
    ZZ goals = 0;
    ZZ steepest = 0;
    bool isLinear = false;
    for (const ZZ& c : forms.objective) isLinear = isLinear || signOf(c) != 0;
    const ZZ cap = most(0, last - first);
    for (std::size_t f = 0; f < forms.count; ++f) {
      if (forms.kind[f] != FormKind::Goal) {
        sum = sum + (w[f] * Interval{forms.lower[f], forms.upper[f]}).high;
        continue;
      }
      const ZZ low = most(forms.lower[f], -cap);
      const ZZ high = least(forms.upper[f], cap);
      const auto at = [&](const ZZ& t) { return w[f] * t - (isCapped ? v * abs(t) : ZZ(0)); };
      ZZ greatest = most(at(low), at(high));
      if (signOf(low) < 0 && signOf(high) > 0) greatest = most(greatest, 0);
      goals = goals + greatest;
      steepest = most(steepest, abs(w[f]));
    }
    if (forms.hasObjective && !isLinear)
      goals = least(goals, steepest * (last - forms.objectiveOffset));
    return sum + goals;
  }

  /// On random points.
  void checkCoset() {
    if (items.objective == NONE) return;
    for (int trial = 0; trial < 8; ++trial) {
      std::vector<ZZ> p;
      for (std::size_t k = 0; k < items.coordinates; ++k)
        p.emplace_back(int(generator() % 21) - 10);
      const auto value = [&](std::size_t item) {
        ZZ sum = items.offset[item];
        for (std::size_t k = 0; k < p.size(); ++k) sum = sum + items.entry(item, k) * p[k];
        return sum;
      };
      ZZ sum = value(items.objective);
      for (const std::size_t form : items.goalForm) sum = sum + abs(value(form));
      const ZZ rest = sum - residue;
      EXPECT_EQ(signOf(step) == 0 ? rest : rest - floorDivide<ZZ>(rest, step) * step, 0);
    }
  }

  std::mt19937_64 generator;
  bool isDisturbed;
  std::optional<ZZ> best;
  ZZ step, residue, proved, linearLeast, goalsMost, first, last;
  ItemSystem<ZZ> items;
  std::vector<Interval> boxes;
  std::vector<std::pair<std::size_t, Interval>> trail;
  std::vector<Frame> frames{1};
  std::vector<Multiple> combination;
  std::map<std::vector<ZZ>, ZZ> cuts;  ///< upper bounds of rows that cuts proved
  std::vector<ZZ> base;                ///< the rounded equation
  std::size_t fromRow = NONE;
  bool fromAbove = false;
  FormSystem<ZZ> forms;
  std::vector<Level> levels;
};

/// Everything wanted, by one of the searches.
Outcome replayed(const Vexil<QQ>& program, Replay& probe, bool enumerates) {
  Settings settings;
  settings.wanted = 0;
  settings.tree = !enumerates;
  settings.enumeration = enumerates;
  settings.probe = &probe;
  return solve(program, {}, settings, probe);
}

struct Way {
  const char* name;
  bool enumerates;
  bool isDisturbed;
  bool isLong;  ///< targets with long numbers
};

class ReplayTest : public testing::TestWithParam<Way> {};

TEST_P(ReplayTest, ComesToTheRightEndByValidSteps) {
  const auto [name, enumerates, isDisturbed, isLong] = GetParam();
  const QQ factor = isLong ? QQ("1e30") : QQ(1);
  Replay::Counts counts;
  for (std::uint64_t seed = 20000; seed < 20000 + 500 * support::rounds() && !HasFailure();
       ++seed) {
    const support::RandomProgram random(seed);
    SCOPED_TRACE(seed);
    Vexil<QQ> program = random.program();
    for (std::int64_t t = 1; t <= program.dt.MN; ++t) {
      for (std::int64_t i = 1; i <= program.lx.MN; ++i)
        program.At[t][i] = program.At[t][i] * factor;
      if (!program.dt[t].isInf) program.dt[t] = program.dt[t] * factor;
    }
    Replay probe(isDisturbed ? seed : 0);
    const Outcome outcome = replayed(program, probe, enumerates);
    const std::vector<support::Point> points = random.points();
    std::optional<QQ> best;
    for (const support::Point& X : points) {
      const QQ norm = QQ(ZZ(random.norm(X)), ZZ(random.VALUE_UNIT)) * factor;
      if (!best || norm < *best) best = norm;
    }
    if (program.dt.MN > 0) {
      EXPECT_EQ(outcome.best, best);
    } else {
      EXPECT_EQ(probe.points, points.size());
    }
    EXPECT_TRUE(outcome.complete || outcome.status == Status::Optimal);
    counts += probe.counts;
  }
  EXPECT_GT(counts.bounds, enumerates ? 300 : 3000);
  EXPECT_GT(counts.empties, enumerates ? 10 : 50);
  EXPECT_GT(counts.excluded, enumerates ? 300 : -1);
  EXPECT_GT(counts.cuts, enumerates && !isLong ? 300 : -1);
  EXPECT_GT(counts.ends, 100);
}

INSTANTIATE_TEST_SUITE_P(Ways, ReplayTest,
                         testing::Values(Way{"Tree", false, false, false},
                                         Way{"TreeOnGarbage", false, true, false},
                                         Way{"TreeOfLongNumbers", false, true, true},
                                         Way{"Enumeration", true, false, false},
                                         Way{"EnumerationOnGarbage", true, true, false},
                                         Way{"EnumerationOfLongNumbers", true, true, true}),
                         [](const auto& chosen) { return chosen.param.name; });

TEST(Replay, FindsTheStepsOfLargerSearchesValid) {
  for (const char* const name : {"mixed10_1", "goals10_2", "mknap5x20_1", "subset30_2"}) {
    SCOPED_TRACE(name);
    Vexil<QQ> program;
    program.optFile = std::string(VEXIL_SOURCE_DIR) + "/bench/instances/" + name + ".opt";
    program.readOptFile();
    Replay probe(0);
    static_cast<void>(replayed(program, probe, name[0] == 's'));
    EXPECT_EQ(probe.counts.ends, 1);
  }
}

}  // namespace
}  // namespace vexil::solver
