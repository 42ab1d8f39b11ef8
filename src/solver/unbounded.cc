// Vexil - exact integer optimization on lattices.
#include "solver/unbounded.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "program/elimination.h"
#include "solver/basis.h"
#include "solver/coset.h"
#include "solver/dictionary.h"
#include "solver/kernel.h"
#include "solver/proof.h"
#include "solver/ranges.h"

namespace vexil::solver {
namespace {

constexpr int PIVOTS_OF_A_SIDE = 1000;
constexpr std::int64_t LARGE_WIDTH = std::int64_t{1} << 40;

/// A proved side of a variable.
struct ProvedSide {
  std::size_t variable;
  bool isLower;
  ZZ value;
};

ZZ ceiling(const QQ& x) {
  const ZZ whole = wholeSigned(x);
  return x > QQ(whole) ? whole + ZZ(1) : whole;
}

void toZero(Vector<QQ>& bounds) {
  for (std::int64_t i = 1; i <= bounds.MN; ++i) {
    if (!bounds[i].isInf) bounds[i] = QQ();
  }
}

/// The linear program of a system over its box, and what exact numbers prove from its dictionaries.
template <typename Z>
class BoxProof {
 public:
  /// `ranges` are those of all real points of the box.
  BoxProof(const FormSystem<Z>& system, const CoordinateRanges<Z>& ranges, StopToken& stopToken)
      : forms(system), items(itemSystem(system, ranges)), stop(stopToken) {}

  /// No real point of the box with an objective up to `greatest` reaches an artificial side.
  [[nodiscard]] bool staysInside(const std::optional<ZZ>& greatest) {
    if (greatest && items.objective != NONE) {
      if constexpr (!std::is_same_v<Z, ZZ>) {
        if (!isNarrow(*greatest)) return false;
      }
      Z& upper = items.upper[items.objective];
      upper = std::min(upper, fromZZ<Z>(*greatest));
    }
    const Boxes<Z> boxes{items.lower, items.upper};
    Prover<Z> prover(items, boxes);
    Dictionary dictionary(items);
    dictionary.heed(stop);
    for (std::size_t f = 0; f < forms.count; ++f) {
      if (forms.kind[f] != FormKind::Variable) continue;
      for (const bool isLower : {true, false}) {
        if ((isLower ? forms.artificialLower : forms.artificialUpper)[f] == 0) continue;
        throwIfStopped(stop);
        dictionary.setCost(f, isLower ? 1 : -1);
        if (dictionary.solve(PIVOTS_OF_A_SIDE) != LpEnd::Optimal || !dictionary.isBasic(f) ||
            !prover.load(f, dictionary.row(f), dictionary.columnItems().data(),
                         dictionary.columns()) ||
            prover.contradicts()) {
          return false;
        }
        const bool inside = isLower ? prover.provedLower(0) > boxes.lower[f]
                                    : prover.provedUpper(0) < boxes.upper[f];
        if (!inside) return false;
      }
    }
    return true;
  }

  [[nodiscard]] WithoutBox withoutBox() const {
    WithoutBox proved;
    Dictionary dictionary(items);
    dictionary.heed(stop);
    if (items.objective != NONE) {
      dictionary.setCost(items.objective, 1);
      dictionary.keepBasic(items.objective);
    }
    const LpEnd end = dictionary.solve(PIVOTS_OF_A_SIDE);
    if (end == LpEnd::Infeasible) {
      const std::size_t item = dictionary.failing();
      const auto [low, high] = provedRange(dictionary, item);
      proved.empty = (low && hasUpper(item) && *low > numberOf(items.upper[item])) ||
                     (high && hasLower(item) && *high < numberOf(items.lower[item]));
    } else if (items.objective != NONE) {
      proved.bound = onCoset(provedRange(dictionary, items.objective).low);
    }
    return proved;
  }

  /// What is proved in place of artificial sides.
  [[nodiscard]] std::vector<ProvedSide> provedSides() const {
    std::vector<ProvedSide> sides;
    Dictionary dictionary(items);
    dictionary.heed(stop);
    for (std::size_t f = 0; f < forms.count; ++f) {
      if (forms.kind[f] != FormKind::Variable) continue;
      for (const bool isLower : {true, false}) {
        if (isLower ? hasLower(f) : hasUpper(f)) continue;
        throwIfStopped(stop);
        dictionary.setCost(f, isLower ? 1 : -1);
        if (dictionary.solve(PIVOTS_OF_A_SIDE) != LpEnd::Optimal) continue;
        const Range range = provedRange(dictionary, f);
        const std::optional<QQ>& bound = isLower ? range.low : range.high;
        if (!bound) continue;
        sides.push_back({forms.source[f], isLower, isLower ? ceiling(*bound) : -ceiling(-*bound)});
      }
    }
    return sides;
  }

 private:
  static constexpr double LEAST_MULTIPLIER = 1e-9;
  static constexpr std::size_t MOST_MULTIPLIERS = 60;  // fractions become long

  struct Range {
    std::optional<QQ> low;
    std::optional<QQ> high;
  };

  static QQ numberOf(const Z& a) { return QQ(toZZ(a)); }

  [[nodiscard]] bool hasLower(std::size_t item) const {
    if (item < forms.count) return forms.artificialLower[item] == 0;
    return std::any_of(items.goalSide.begin(), items.goalSide.end(),
                       [&](std::size_t side) { return item == side || item == side + 1; });
  }
  [[nodiscard]] bool hasUpper(std::size_t item) const {
    return item < forms.count && forms.artificialUpper[item] == 0;
  }

  [[nodiscard]] Vector<QQ> rowOf(std::size_t item) const {
    Vector<QQ> row;
    row.resize(static_cast<std::int64_t>(items.parameters), false);
    for (std::size_t k = 0; k < items.parameters; ++k)
      row.data[k + 1] = numberOf(items.entry(item, k));
    return row;
  }

  /// What the row of a basic item proves of it, as far as no artificial side is weighed. The
  /// multipliers are worked out anew, as fractions.
  [[nodiscard]] Range provedRange(const Dictionary& dictionary, std::size_t item) const {
    if (!dictionary.isBasic(item)) return {};
    std::vector<std::size_t> others;
    Matrix<QQ> rows;
    for (std::size_t j = 0; j < dictionary.columns(); ++j) {
      if (std::fabs(dictionary.row(item)[j]) < LEAST_MULTIPLIER) continue;
      others.push_back(dictionary.columnItems()[j]);
      rows.appendRow(rowOf(others.back()));
    }
    Vector<QQ> a;
    if (others.empty() || others.size() > MOST_MULTIPLIERS ||
        !solveRowCoordinates(rows, rowOf(item), a, false)) {
      return {};
    }
    QQ constant = numberOf(items.offset[item]);
    Range range{QQ(), QQ()};
    for (std::size_t j = 0; j < others.size(); ++j) {
      constant -= a.data[j + 1] * numberOf(items.offset[others[j]]);
      addSides(range, a.data[j + 1], others[j]);
    }
    if (range.low) *range.low += constant;
    if (range.high) *range.high += constant;
    return range;
  }

  void addSides(Range& range, const QQ& a, std::size_t item) const {
    const bool rising = a > QQ();
    const QQ atLower = a * numberOf(items.lower[item]);
    const QQ atUpper = a * numberOf(items.upper[item]);
    const auto add = [](std::optional<QQ>& sum, bool isThere, const QQ& part) {
      if (!isThere) sum.reset();
      if (sum) *sum += part;
    };
    add(range.low, rising ? hasLower(item) : hasUpper(item), rising ? atLower : atUpper);
    add(range.high, rising ? hasUpper(item) : hasLower(item), rising ? atUpper : atLower);
  }

  /// The least value of the objective that is not below `low`.
  [[nodiscard]] std::optional<ZZ> onCoset(const std::optional<QQ>& low) const {
    const auto [step, residue] = objectiveCoset(forms);
    if (signOf(step) == 0) return toZZ(residue);
    if (!low) return std::nullopt;
    const ZZ unit = toZZ(step);
    const QQ steps = (*low - numberOf(residue)) / QQ(unit);
    return toZZ(residue) + unit * ceiling(steps);
  }

  const FormSystem<Z>& forms;
  ItemSystem<Z> items;
  StopToken& stop;
};

template <typename Z, typename Result, typename Proof>
Result prove(const Model& model, const LatticeBasis& basis, StopToken& stop, const Proof& proof) {
  const FormSystem<Z> forms = formSystem<Z>(model, basis);
  std::optional<CoordinateRanges<Z>> ranges = coordinateRanges(forms);
  if (!ranges) return {};
  // The ranges were rounded inward to integers; a step further out they hold for all real points.
  for (Z& low : ranges->lower) low = low - Z(1);
  for (Z& high : ranges->upper) high = high + Z(1);
  BoxProof<Z> box(forms, *ranges, stop);
  return proof(box);
}

/// What `proof` says of the box of a model; nothing where the lattice is of no use.
template <typename Result, typename Proof>
Result prove(const Model& model, StopToken& stop, const Proof& proof) {
  LatticeBasis basis = kernel(model, stop);
  if (basis.contradiction != nullptr) return {};
  reduce(basis, model, 2, false, stop);
  if (isNarrowSystem(model, basis)) {
    return prove<std::int64_t, Result>(model, basis, stop, proof);
  }
  return prove<ZZ, Result>(model, basis, stop, proof);
}

}  // namespace

bool hasArtificialSides(const Model& model) {
  const auto artificial = [](const Side& side) { return side.artificial; };
  return std::any_of(model.lower.begin(), model.lower.end(), artificial) ||
         std::any_of(model.upper.begin(), model.upper.end(), artificial);
}

Vexil<QQ> directionsOf(const Vexil<QQ>& program) {
  Vexil<QQ> directions = program;
  toZero(directions.dt);
  toZero(directions.bg);
  toZero(directions.lu);
  toZero(directions.ru);
  toZero(directions.lx);
  toZero(directions.rx);
  return directions;
}

Vector<QQ> primitive(const Model& model, Vector<QQ> ray) {
  ZZ divisor = 0;
  const auto unit = [&](std::int64_t i) {
    ZZ power;
    powerOfTen(model.decimals[static_cast<std::size_t>(i) - 1], power);
    return QQ(power);
  };
  for (std::int64_t i = 1; i <= ray.MN; ++i) divisor = gcd(divisor, wholeSigned(ray[i] * unit(i)));
  for (std::int64_t i = 1; i <= ray.MN; ++i) ray[i] = ray[i] / QQ(divisor);
  return ray;
}

WithoutBox provedWithoutBox(const Model& model, StopToken& stop) {
  return prove<WithoutBox>(model, stop, [](const auto& box) { return box.withoutBox(); });
}

bool boundByPrograms(Model& model, StopToken& stop) {
  Model large = model;
  for (std::size_t i = 0; i < model.n; ++i) {
    if (large.lower[i].artificial) large.lower[i].value = large.lower[i].value - ZZ(LARGE_WIDTH);
    if (large.upper[i].artificial) large.upper[i].value = large.upper[i].value + ZZ(LARGE_WIDTH);
  }
  const auto sides = prove<std::vector<ProvedSide>>(
      large, stop, [](const auto& box) { return box.provedSides(); });
  if (sides.empty()) return false;
  for (auto* const all : {&model.lower, &model.upper}) {
    for (Side& side : *all) {
      if (side.artificial) side = {};
    }
  }
  for (const ProvedSide& side : sides) {
    (side.isLower ? model.lower : model.upper)[side.variable] = {true, false, side.value};
  }
  return true;
}

bool staysInBox(const Model& model, const std::optional<ZZ>& greatest, StopToken& stop) {
  return prove<bool>(model, stop, [&](auto& box) { return box.staysInside(greatest); });
}

}  // namespace vexil::solver
