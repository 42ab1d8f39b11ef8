// Vexil - exact integer optimization on lattices.
#include "solver/proof.h"

#include <algorithm>
#include <cmath>

namespace vexil::solver {
namespace {

constexpr int MULTIPLIER_BITS = 45;
constexpr int LEAST_MULTIPLIER_BITS = 30;
constexpr int SUM_BITS = 62;

/// The least b with |a| < 2^b.
int bitLength(double a) {
  int bits = 0;
  for (double power = 1; power <= std::fabs(a); power *= 2) ++bits;
  return bits;
}

double realPowerOfTwo(int exponent) {
  double power = 1;
  for (; exponent > 0; --exponent) power *= 2;
  return power;
}

/// How many bits the multipliers get: as many as let all sums fit, if these are enough.
template <typename Z>
int multiplierBits(const ItemSystem<Z>& system) {
  if constexpr (std::is_same_v<Z, ZZ>) {
    return MULTIPLIER_BITS;
  } else {
    std::int64_t greatest = 1;
    for (const std::int64_t c : system.coefficient) greatest = std::max(greatest, c < 0 ? -c : c);
    const int rest = SUM_BITS - bitLength(static_cast<double>(greatest)) -
                     bitLength(static_cast<double>(system.parameters + 1));
    return rest < LEAST_MULTIPLIER_BITS ? MULTIPLIER_BITS : std::min(rest, MULTIPLIER_BITS);
  }
}

template <typename Z>
bool allSumsFit(const ItemSystem<Z>& system, int bits) {
  if constexpr (std::is_same_v<Z, ZZ>) {
    return false;
  } else {
    std::int64_t greatest = 1;
    for (const std::int64_t c : system.coefficient) greatest = std::max(greatest, c < 0 ? -c : c);
    return bits + bitLength(static_cast<double>(greatest)) +
               bitLength(static_cast<double>(system.parameters + 1)) <=
           SUM_BITS;
  }
}

/// Residues that products with the ranges may be made of.
bool isSmall(Int128 r) {
  constexpr Int128 LIMIT = Int128{1} << 50;
  return -LIMIT < r && r < LIMIT;
}
bool isSmall(const ZZ& /*r*/) { return true; }

}  // namespace

template <typename Z>
Prover<Z>::Prover(const ItemSystem<Z>& itemSystem, const Boxes<Z>& currentBoxes)
    : system(itemSystem),
      boxes(currentBoxes),
      narrowResidues(itemSystem.parameters),
      wideResidues(itemSystem.parameters) {
  items.reserve(system.parameters + 1);
  multipliers.reserve(system.parameters + 1);
  adapt();
}

template <typename Z>
void Prover<Z>::adapt() {
  const int bits = multiplierBits(system);
  greatestMultiplier = realPowerOfTwo(bits);
  sumsFit = allSumsFit(system, bits);
}

template <typename Z>
bool Prover<Z>::load(std::size_t item, const double* a, const std::size_t* other,
                     std::size_t size) {
  double greatest = 1;
  for (std::size_t j = 0; j < size; ++j) {
    if (!(std::fabs(a[j]) < 1e300)) return false;
    greatest = std::max(greatest, std::fabs(a[j]));
  }
  double scale = greatestMultiplier;
  if constexpr (!std::is_same_v<Z, ZZ>) {
    while (scale * greatest > greatestMultiplier) scale *= 0.5;
    if (scale < 1) return false;
  }
  items.assign(1, item);
  multipliers.assign(1, nearestInteger<Z>(scale));
  for (std::size_t j = 0; j < size; ++j) {
    if (a[j] == 0) continue;
    Z m = nearestInteger<Z>(-a[j] * scale);
    if (signOf(m) == 0) continue;
    items.push_back(other[j]);
    multipliers.push_back(std::move(m));
  }
  return combine();
}

template <typename Z>
void Prover<Z>::addReach(const Z& m, const Z& low, const Z& high, W& least, W& greatest) const {
  const bool rising = signOf(m) > 0;
  addProduct(least, m, rising ? low : high);
  addProduct(greatest, m, rising ? high : low);
}

template <typename Z>
bool Prover<Z>::combine() {
  const std::size_t D = system.parameters;
  W constant = 0;
  W least = 0;
  W greatest = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    addProduct(constant, multipliers[i], system.offset[items[i]]);
    addReach(multipliers[i], boxes.lower[items[i]], boxes.upper[items[i]], least, greatest);
  }
  W residueLeast = 0;
  W residueGreatest = 0;
  bool useful = true;
  const auto addResidue = [&](std::size_t k, const W& r) {
    if (signOf(r) == 0) return;
    if (!isSmall(r)) {
      useful = false;
      return;
    }
    const std::size_t named = system.parameterItem[k];
    const bool rising = signOf(r) > 0;
    Z low = system.ranges.lower[k];
    Z high = system.ranges.upper[k];
    if (k < system.coordinates) {
      low = boxes.lower[named] - system.offset[named];
      high = boxes.upper[named] - system.offset[named];
    }
    residueLeast = residueLeast + r * W(rising ? low : high);
    residueGreatest = residueGreatest + r * W(rising ? high : low);
  };
  if (sumsFit) {
    std::fill(narrowResidues.begin(), narrowResidues.end(), Z(0));
    for (std::size_t i = 0; i < items.size(); ++i) {
      const Z* row = system.coefficient.data() + (items[i] * D);
      const Z m = multipliers[i];
      for (std::size_t k = 0; k < D; ++k) narrowResidues[k] = narrowResidues[k] + m * row[k];
    }
    for (std::size_t k = 0; k < D; ++k) addResidue(k, W(narrowResidues[k]));
  } else {
    std::fill(wideResidues.begin(), wideResidues.end(), W(0));
    for (std::size_t i = 0; i < items.size(); ++i) {
      const Z* row = system.coefficient.data() + (items[i] * D);
      for (std::size_t k = 0; k < D; ++k) addProduct(wideResidues[k], multipliers[i], row[k]);
    }
    for (std::size_t k = 0; k < D; ++k) addResidue(k, wideResidues[k]);
  }
  slackBelow = constant + residueGreatest - least;
  slackAbove = greatest - constant - residueLeast;
  return useful;
}

template <typename Z>
Z Prover<Z>::provedUpper(std::size_t i) const {
  const Z& m = multipliers[i];
  const bool rising = signOf(m) > 0;
  const W room = rising ? slackBelow : slackAbove;
  const W size = rising ? W(m) : -W(m);
  const Z& low = boxes.lower[items[i]];
  const Z& high = boxes.upper[items[i]];
  if (!(room < W(high - low) * size)) return high;
  return low + static_cast<Z>(floorDivide<W>(room, size));
}

template <typename Z>
Z Prover<Z>::provedLower(std::size_t i) const {
  const Z& m = multipliers[i];
  const bool rising = signOf(m) > 0;
  const W room = rising ? slackAbove : slackBelow;
  const W size = rising ? W(m) : -W(m);
  const Z& low = boxes.lower[items[i]];
  const Z& high = boxes.upper[items[i]];
  if (!(room < W(high - low) * size)) return low;
  return high - static_cast<Z>(floorDivide<W>(room, size));
}

template class Prover<std::int64_t>;
template class Prover<ZZ>;

}  // namespace vexil::solver
