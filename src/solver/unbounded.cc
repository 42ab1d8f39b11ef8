// Vexil - exact integer optimization on lattices.
#include "solver/unbounded.h"

#include <algorithm>
#include <utility>

#include "solver/basis.h"
#include "solver/dictionary.h"
#include "solver/kernel.h"
#include "solver/proof.h"
#include "solver/ranges.h"

namespace vexil::solver {
namespace {

constexpr int PIVOTS_OF_A_SIDE = 1000;

void toZero(Vector<QQ>& bounds) {
  for (std::int64_t i = 1; i <= bounds.MN; ++i) {
    if (!bounds[i].isInf) bounds[i] = QQ();
  }
}

/// Proves that no real point of a system reaches an artificial side.
template <typename Z>
class BoxProof {
 public:
  explicit BoxProof(FormSystem<Z> system) : forms(std::move(system)) {}

  bool run(const std::optional<ZZ>& greatest, StopToken& stop) {
    std::optional<CoordinateRanges<Z>> ranges = coordinateRanges(forms);
    if (!ranges) return false;
    // The ranges were rounded inward to integers; a step further out they hold for all real points.
    for (Z& low : ranges->lower) low = low - Z(1);
    for (Z& high : ranges->upper) high = high + Z(1);
    ItemSystem<Z> items = itemSystem(forms, *ranges);
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

 private:
  FormSystem<Z> forms;
};

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

bool staysInBox(const Model& model, const std::optional<ZZ>& greatest, StopToken& stop) {
  LatticeBasis basis = kernel(model, stop);
  if (basis.contradiction != nullptr) return false;
  reduce(basis, model, 2, false, stop);
  if (isNarrowSystem(model, basis)) {
    return BoxProof<std::int64_t>(formSystem<std::int64_t>(model, basis)).run(greatest, stop);
  }
  return BoxProof<ZZ>(formSystem<ZZ>(model, basis)).run(greatest, stop);
}

}  // namespace vexil::solver
