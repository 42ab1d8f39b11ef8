// Vexil - exact integer optimization on lattices.
#include "solver/items.h"

#include <algorithm>

namespace vexil::solver {
namespace {

/// The product of the ranges may reach further than the objective does within the boxes, which is
/// all that counts.
std::int64_t clamped(Int128 a) {
  return static_cast<std::int64_t>(std::clamp(a, -Int128{NARROW_LIMIT}, Int128{NARROW_LIMIT}));
}
const ZZ& clamped(const ZZ& a) { return a; }

template <typename Z>
class Assembly {
 public:
  Assembly(const FormSystem<Z>& forms, const CoordinateRanges<Z>& coordinateRanges)
      : system(forms) {
    items.coordinates = system.dimension;
    items.forms = system.count;
    items.ranges = coordinateRanges;
    for (std::size_t f = 0; f < system.count; ++f) {
      if (system.kind[f] == FormKind::Goal) items.goalForm.push_back(f);
    }
    items.parameters = system.dimension + items.goalForm.size();
  }

  ItemSystem<Z> result() && {
    for (std::size_t f = 0; f < system.count; ++f) addForm(f);
    for (std::size_t k = 0; k < system.dimension; ++k) nameCoordinate(k);
    for (std::size_t g = 0; g < items.goalForm.size(); ++g) addGoal(g);
    if (system.hasObjective) addObjective();
    return std::move(items);
  }

 private:
  /// A new item, all coefficients 0.
  std::size_t addItem(Z offset, Z lower, Z upper) {
    items.coefficient.resize(items.coefficient.size() + items.parameters, Z(0));
    items.offset.push_back(std::move(offset));
    items.lower.push_back(std::move(lower));
    items.upper.push_back(std::move(upper));
    return items.count++;
  }

  Z& entry(std::size_t item, std::size_t parameter) {
    return items.coefficient[item * items.parameters + parameter];
  }

  void addForm(std::size_t f) {
    const std::size_t item = addItem(system.offset[f], system.lower[f], system.upper[f]);
    for (std::size_t k = 0; k < system.dimension; ++k) entry(item, k) = system.entry(k, f);
  }

  /// Form f is lambda_k plus a constant.
  bool isCoordinate(std::size_t f, std::size_t k) const {
    if (!(system.entry(k, f) == Z(1))) return false;
    for (std::size_t j = 0; j < system.dimension; ++j) {
      if (j != k && signOf(system.entry(j, f)) != 0) return false;
    }
    return true;
  }

  void nameCoordinate(std::size_t k) {
    std::size_t item = 0;
    while (item < system.count && !isCoordinate(item, k)) ++item;
    if (item == system.count) {
      item = addItem(Z(0), items.ranges.lower[k], items.ranges.upper[k]);
      entry(item, k) = 1;
    }
    items.parameterItem.push_back(item);
  }

  void addGoal(std::size_t g) {
    const std::size_t form = items.goalForm[g];
    const Z& low = system.lower[form];
    const Z& high = system.upper[form];
    items.ranges.lower.push_back(0);
    items.ranges.upper.push_back(std::max<Z>(high, -low));
    const Z none = 0;
    const Z above = signOf(low) < 0 ? Z(-low - low) : none;
    const Z below = signOf(high) > 0 ? Z(high + high) : none;
    items.goalSide.push_back(addSide(g, above, true));
    items.parameterItem.push_back(items.goalSide.back());
    addSide(g, below, false);
  }

  /// delta_g - t_g or delta_g + t_g.
  std::size_t addSide(std::size_t g, const Z& upper, bool negated) {
    const std::size_t form = items.goalForm[g];
    const std::size_t item =
        addItem(negated ? -system.offset[form] : system.offset[form], 0, upper);
    for (std::size_t k = 0; k < system.dimension; ++k) {
      const Z& y = system.entry(k, form);
      entry(item, k) = negated ? -y : y;
    }
    entry(item, system.dimension + g) = 1;
    return item;
  }

  void addObjective() {
    Wide<Z> low = widen(system.objectiveOffset);
    Wide<Z> high = low;
    for (std::size_t k = 0; k < items.parameters; ++k) {
      const Z c = k < system.dimension ? system.objective[k] : Z(1);
      const bool rising = signOf(c) >= 0;
      addProduct(low, c, rising ? items.ranges.lower[k] : items.ranges.upper[k]);
      addProduct(high, c, rising ? items.ranges.upper[k] : items.ranges.lower[k]);
    }
    items.objective = addItem(system.objectiveOffset, clamped(low), clamped(high));
    for (std::size_t k = 0; k < items.parameters; ++k) {
      entry(items.objective, k) = k < system.dimension ? system.objective[k] : Z(1);
    }
  }

  const FormSystem<Z>& system;
  ItemSystem<Z> items;
};

}  // namespace

template <typename Z>
void ItemSystem<Z>::addCut(const std::vector<Z>& a, const Z& high) {
  Wide<Z> low = 0;
  for (std::size_t k = 0; k < parameters; ++k) {
    addProduct(low, a[k], signOf(a[k]) > 0 ? ranges.lower[k] : ranges.upper[k]);
  }
  coefficient.insert(coefficient.end(), a.begin(), a.end());
  offset.push_back(0);
  lower.push_back(std::min(high, Z(clamped(low))));
  upper.push_back(high);
  ++count;
}

template <typename Z>
void ItemSystem<Z>::removeCuts(const std::vector<bool>& gone) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (gone[i]) continue;
    std::move(coefficient.begin() + static_cast<std::ptrdiff_t>(i * parameters),
              coefficient.begin() + static_cast<std::ptrdiff_t>((i + 1) * parameters),
              coefficient.begin() + static_cast<std::ptrdiff_t>(kept * parameters));
    for (auto* const numbers : {&offset, &lower, &upper}) (*numbers)[kept] = (*numbers)[i];
    ++kept;
  }
  count = kept;
  coefficient.resize(count * parameters);
  for (auto* const numbers : {&offset, &lower, &upper}) numbers->resize(count);
}

template struct ItemSystem<std::int64_t>;
template struct ItemSystem<ZZ>;

template <typename Z>
ItemSystem<Z> itemSystem(const FormSystem<Z>& system, const CoordinateRanges<Z>& ranges) {
  return Assembly<Z>(system, ranges).result();
}

template ItemSystem<std::int64_t> itemSystem(const FormSystem<std::int64_t>&,
                                             const CoordinateRanges<std::int64_t>&);
template ItemSystem<ZZ> itemSystem(const FormSystem<ZZ>&, const CoordinateRanges<ZZ>&);

}  // namespace vexil::solver
