// Vexil - exact integer optimization on lattices.
#include "solver/propagation.h"

namespace vexil::solver {

template <typename Z>
Propagation<Z>::Propagation(const ItemSystem<Z>& itemSystem, const Boxes<Z>& currentBoxes)
    : system(itemSystem), boxes(currentBoxes) {
  adapt();
}

template <typename Z>
void Propagation<Z>::adapt() {
  itemOf.clear();
  entries.clear();
  begin.assign(1, 0);
  rowOfItem.assign(system.count, NONE);
  rowsOf.assign(system.count, {});
  for (std::size_t k = 0; k < system.coordinates; ++k) rowOfItem[system.parameterItem[k]] = k;
  for (std::size_t item = 0; item < system.count; ++item) {
    if (rowOfItem[item] != NONE) {
      rowOfItem[item] = NONE;
      continue;
    }
    const std::size_t row = itemOf.size();
    rowOfItem[item] = row;
    rowsOf[item].push_back(row);
    for (std::size_t k = 0; k < system.parameters; ++k) {
      if (signOf(system.entry(item, k)) == 0) continue;
      entries.push_back({k, system.entry(item, k)});
      if (k < system.coordinates) rowsOf[system.parameterItem[k]].push_back(row);
    }
    itemOf.push_back(item);
    begin.push_back(entries.size());
  }
  isDue.assign(itemOf.size(), true);
  due.clear();
  for (std::size_t row = itemOf.size(); row-- > 0;) due.push_back(row);
}

template <typename Z>
void Propagation<Z>::announce(std::size_t item) {
  for (const std::size_t row : rowsOf[item]) {
    if (isDue[row]) continue;
    isDue[row] = true;
    due.push_back(row);
  }
}

template <typename Z>
void Propagation<Z>::forget() {
  for (const std::size_t row : due) isDue[row] = false;
  due.clear();
}

template <typename Z>
Z Propagation<Z>::lowerOf(std::size_t parameter) const {
  if (parameter >= system.coordinates) return system.ranges.lower[parameter];
  const std::size_t item = system.parameterItem[parameter];
  return boxes.lower[item] - system.offset[item];
}

template <typename Z>
Z Propagation<Z>::upperOf(std::size_t parameter) const {
  if (parameter >= system.coordinates) return system.ranges.upper[parameter];
  const std::size_t item = system.parameterItem[parameter];
  return boxes.upper[item] - system.offset[item];
}

/// With least <= item <= greatest from the parameters: the item itself is within these, and a p has
/// `above` more than at its least value, and `below` less than at its greatest. False: the row
/// cannot keep its bounds.
template <typename Z>
bool Propagation<Z>::look(std::size_t row) {
  findings.clear();
  const std::size_t item = itemOf[row];
  last = item;
  W least = widen(system.offset[item]);
  W greatest = least;
  for (std::size_t e = begin[row]; e < begin[row + 1]; ++e) {
    const auto& [k, a] = entries[e];
    const bool rising = signOf(a) > 0;
    addProduct(least, a, rising ? lowerOf(k) : upperOf(k));
    addProduct(greatest, a, rising ? upperOf(k) : lowerOf(k));
  }
  workDone += static_cast<std::int64_t>(4 * (begin[row + 1] - begin[row]));
  const W above = widen(boxes.upper[item]) - least;
  const W below = greatest - widen(boxes.lower[item]);
  if (above < 0 || below < 0) return false;
  for (std::size_t e = begin[row]; e < begin[row + 1]; ++e) {
    const auto& [k, a] = entries[e];
    if (k >= system.coordinates) continue;
    const Z low = lowerOf(k);
    const Z high = upperOf(k);
    const bool rising = signOf(a) > 0;
    const W size = rising ? W(widen(a)) : W(-widen(a));
    const W room = size * W(widen(high) - widen(low));
    if (!(above < room) && !(below < room)) continue;
    Z fromLow = high - low;
    Z fromHigh = fromLow;
    if (above < room) fromLow = static_cast<Z>(floorDivide<W>(above, size));
    if (below < room) fromHigh = static_cast<Z>(floorDivide<W>(below, size));
    const std::size_t named = system.parameterItem[k];
    findings.push_back({named, boxes.upper[named] - (rising ? fromHigh : fromLow),
                        boxes.lower[named] + (rising ? fromLow : fromHigh)});
  }
  if (item < system.forms &&
      (least > widen(boxes.lower[item]) || greatest < widen(boxes.upper[item]))) {
    findings.push_back(
        {item, least > widen(boxes.lower[item]) ? static_cast<Z>(least) : boxes.lower[item],
         greatest < widen(boxes.upper[item]) ? static_cast<Z>(greatest) : boxes.upper[item]});
  }
  return true;
}

template class Propagation<std::int64_t>;
template class Propagation<ZZ>;

}  // namespace vexil::solver
