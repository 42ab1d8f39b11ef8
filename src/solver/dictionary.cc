// Vexil - exact integer optimization on lattices.
#include "solver/dictionary.h"

#include <algorithm>
#include <cmath>

namespace vexil::solver {
namespace {

constexpr double NOTHING = 1e-12;    ///< coefficients up to this count as 0
constexpr double PIVOT_SIZE = 1e-7;  ///< least pivot, in units of the largest entry of the row
constexpr double TOLERANCE_LEAST = 1e-7;
constexpr double TOLERANCE_OF_WIDTH = 1e-11;
constexpr double TOLERANCE_OF_COEFFICIENT = 1e-9;
constexpr int REFACTOR_INTERVAL = 120;
constexpr int PIVOTS_BEFORE_PERTURBATION = 300;
constexpr double PERTURBATION = 1e-6;
constexpr std::size_t UNROLL = 4;
constexpr std::int64_t WORK_BETWEEN_QUESTIONS = 4'000'000;

/// 1 + the sum of the squares, in four interleaved sums.
double squaredNorm(const double* a, std::size_t stride) {
  double s0 = 0;
  double s1 = 0;
  double s2 = 0;
  double s3 = 0;
  for (std::size_t j = 0; j < stride; j += UNROLL) {
    s0 += a[j] * a[j];
    s1 += a[j + 1] * a[j + 1];
    s2 += a[j + 2] * a[j + 2];
    s3 += a[j + 3] * a[j + 3];
  }
  return 1 + ((s0 + s1) + (s2 + s3));
}

/// target += factor * source.
void addMultiple(double* __restrict target, const double* __restrict source, double factor,
                 std::size_t stride) {
  for (std::size_t j = 0; j < stride; ++j) target[j] += factor * source[j];
}

}  // namespace

template <typename Z>
Dictionary::Dictionary(const ItemSystem<Z>& system)
    : D(system.parameters),
      R(system.count),
      stride((D + UNROLL - 1) / UNROLL * UNROLL),
      parameterItem(system.parameterItem),
      table((R - D) * stride),
      constants(R - D),
      weights(R - D),
      rowOf(R),
      columnOf(R),
      itemOf(D),
      basicOf(R - D),
      values(R),
      cost(stride),
      costWeights(R),
      pivotRow(stride) {
  for (std::size_t i = 0; i < R; ++i) takeItem(system, i);
  breakpoints.reserve(D);
  support.reserve(D);
  initialize();
}

template Dictionary::Dictionary(const ItemSystem<std::int64_t>&);
template Dictionary::Dictionary(const ItemSystem<ZZ>&);

template <typename Z>
void Dictionary::takeItem(const ItemSystem<Z>& system, std::size_t item) {
  double greatest = 0;
  for (std::size_t k = 0; k < D; ++k) {
    original.push_back(toDouble(system.entry(item, k)));
    greatest = std::max(greatest, std::fabs(original.back()));
  }
  originalConstant.push_back(toDouble(system.offset[item]));
  low.push_back(toDouble(system.lower[item]));
  high.push_back(toDouble(system.upper[item]));
  slack.push_back(std::max({TOLERANCE_LEAST, TOLERANCE_OF_WIDTH * (high[item] - low[item]),
                            TOLERANCE_OF_COEFFICIENT * greatest}));
}

template <typename Z>
void Dictionary::append(const ItemSystem<Z>& system) {
  for (; R < system.count; ++R) {
    takeItem(system, R);
    rowOf.push_back(R - D);
    columnOf.push_back(NONE);
    basicOf.push_back(R);
    values.push_back(0);
    costWeights.push_back(0);
    table.resize(table.size() + stride);
    expressItem(R);
  }
  recomputeValues();
}

template void Dictionary::append(const ItemSystem<std::int64_t>&);
template void Dictionary::append(const ItemSystem<ZZ>&);

/// Writes the row of a new item by way of the items that determine the parameters.
void Dictionary::expressItem(std::size_t item) {
  double* a = table.data() + (rowOf[item] * stride);
  const double* const first = original.data() + (item * D);
  std::vector<double> rest(first, first + D);
  double constant = originalConstant[item];
  for (std::size_t k = D; k-- > 0;) {
    const double factor = rest[k];
    if (factor == 0) continue;
    const std::size_t named = parameterItem[k];
    for (std::size_t j = 0; j < k; ++j) rest[j] -= factor * original[named * D + j];
    constant -= factor * originalConstant[named];
    if (isBasic(named)) {
      addMultiple(a, row(named), factor, stride);
      constant += factor * constants[rowOf[named]];
    } else {
      a[columnOf[named]] += factor;
    }
    workDone += static_cast<std::int64_t>(2 * D);
  }
  constants.push_back(constant);
  weights.push_back(squaredNorm(a, stride));
}

void Dictionary::remove(const std::vector<bool>& gone) {
  std::vector<std::size_t> nameOf(R, NONE);
  std::size_t items = 0;
  for (std::size_t i = 0; i < R; ++i) {
    if (gone[i]) continue;
    nameOf[i] = items;
    std::copy_n(original.begin() + static_cast<std::ptrdiff_t>(i * D), D,
                original.begin() + static_cast<std::ptrdiff_t>(items * D));
    for (auto* const numbers : {&originalConstant, &low, &high, &values, &slack, &costWeights}) {
      (*numbers)[items] = (*numbers)[i];
    }
    columnOf[items] = columnOf[i];
    rowOf[items] = NONE;
    ++items;
  }
  std::size_t rows = 0;
  for (std::size_t r = 0; r < R - D; ++r) {
    const std::size_t item = nameOf[basicOf[r]];
    if (item == NONE) continue;
    std::copy_n(table.begin() + static_cast<std::ptrdiff_t>(r * stride), stride,
                table.begin() + static_cast<std::ptrdiff_t>(rows * stride));
    constants[rows] = constants[r];
    weights[rows] = weights[r];
    basicOf[rows] = item;
    rowOf[item] = rows++;
  }
  for (std::size_t& item : itemOf) item = nameOf[item];
  R = items;
  original.resize(R * D);
  for (auto* const numbers : {&originalConstant, &low, &high, &values, &slack, &costWeights}) {
    numbers->resize(R);
  }
  for (auto* const places : {&rowOf, &columnOf}) places->resize(R);
  basicOf.resize(rows);
  constants.resize(rows);
  weights.resize(rows);
  table.resize(rows * stride);
}

/// The dictionary in the items that determine the parameters. Such an item is p + u, so that
/// parameter p is the item less u; but the item delta - t is delta - t.
void Dictionary::initialize() {
  std::fill(columnOf.begin(), columnOf.end(), NONE);
  std::vector<bool> isPlain(D);  // the item is its parameter and a constant
  for (std::size_t k = 0; k < D; ++k) {
    itemOf[k] = parameterItem[k];
    columnOf[itemOf[k]] = k;
    rowOf[itemOf[k]] = NONE;
    const auto named = original.begin() + static_cast<std::ptrdiff_t>(itemOf[k] * D);
    const auto end = named + static_cast<std::ptrdiff_t>(k);
    isPlain[k] = std::all_of(named, end, [](double a) { return a == 0; });
  }
  std::size_t row = 0;
  for (std::size_t i = 0; i < R; ++i) {
    if (columnOf[i] != NONE) continue;
    rowOf[i] = row;
    basicOf[row] = i;
    double* a = table.data() + (row * stride);
    std::fill(a, a + stride, 0.0);
    std::copy_n(original.data() + (i * D), D, a);
    double constant = originalConstant[i];
    // From the last parameter on: that of a goal is expressed by the item and coordinates.
    for (std::size_t k = D; k-- > 0;) {
      const double factor = a[k];
      if (factor == 0) continue;
      const double* named = original.data() + (itemOf[k] * D);
      for (std::size_t j = 0; !isPlain[k] && j < k; ++j) a[j] -= factor * named[j];
      constant -= factor * originalConstant[itemOf[k]];
    }
    constants[row] = constant;
    weights[row] = squaredNorm(a, stride);
    ++row;
  }
  pivotsSinceRefactor = 0;
}

/// Builds the dictionary of the present nonbasic items anew from the integers.
void Dictionary::refactor() {
  std::vector<std::size_t> wanted = itemOf;
  const std::vector<double> oldWeights = costWeights;
  initialize();
  std::vector<bool> stays(R, false);
  for (const std::size_t item : wanted) stays[item] = true;
  for (const std::size_t item : wanted) {
    if (columnOf[item] != NONE) continue;
    const double* a = row(item);
    std::size_t best = NONE;
    for (std::size_t j = 0; j < D; ++j) {
      if (stays[itemOf[j]]) continue;
      if (best == NONE || std::fabs(a[j]) > std::fabs(a[best])) best = j;
    }
    if (best != NONE && std::fabs(a[best]) > PIVOT_SIZE) pivot(item, best);
  }
  setCost(oldWeights);
  pivotsSinceRefactor = 0;
}

void Dictionary::setCost(std::size_t item, double weight) {
  std::vector<double> single(R, 0.0);
  single[item] = weight;
  setCost(single);
}

void Dictionary::setCost(const std::vector<double>& itemWeights) {
  costWeights = itemWeights;
  std::fill(cost.begin(), cost.end(), 0.0);
  for (std::size_t i = 0; i < R; ++i) {
    if (costWeights[i] == 0) continue;
    if (rowOf[i] == NONE) {
      cost[columnOf[i]] += costWeights[i];
    } else {
      addMultiple(cost.data(), row(i), costWeights[i], stride);
      workDone += static_cast<std::int64_t>(stride);
    }
  }
}

void Dictionary::setLower(std::size_t item, double value) {
  low[item] = value;
  const std::size_t j = columnOf[item];
  if (j != NONE && values[item] < value) moveColumn(j, value);
}

void Dictionary::setUpper(std::size_t item, double value) {
  high[item] = value;
  const std::size_t j = columnOf[item];
  if (j != NONE && values[item] > value) moveColumn(j, value);
}

/// Gives the nonbasic item of column j a value and all basic ones theirs.
void Dictionary::moveColumn(std::size_t j, double value) {
  const double step = value - values[itemOf[j]];
  values[itemOf[j]] = value;
  if (step == 0) return;
  for (std::size_t i = 0; i < R - D; ++i) values[basicOf[i]] += step * table[i * stride + j];
  workDone += static_cast<std::int64_t>(R - D);
}

/// Every nonbasic item to the bound that its cost asks for.
void Dictionary::moveToBounds() {
  for (std::size_t j = 0; j < D; ++j) {
    const std::size_t item = itemOf[j];
    const bool atUpper = values[item] == high[item] && low[item] != high[item];
    const double target = cost[j] > NOTHING    ? low[item]
                          : cost[j] < -NOTHING ? high[item]
                          : atUpper            ? high[item]
                                               : low[item];
    values[item] = target;
  }
  recomputeValues();
}

void Dictionary::recomputeValues() {
  for (std::size_t i = 0; i < R - D; ++i) {
    const double* a = table.data() + (i * stride);
    double sum = constants[i];
    for (std::size_t j = 0; j < D; ++j) sum += a[j] * values[itemOf[j]];
    values[basicOf[i]] = sum;
  }
  workDone += static_cast<std::int64_t>((R - D) * D);
}

/// The basic item whose bound is missed by most, in units of its row's norm.
std::size_t Dictionary::chooseLeaving() const {
  std::size_t best = NONE;
  double greatest = 0;
  for (std::size_t i = 0; i < R - D; ++i) {
    const std::size_t item = basicOf[i];
    if (item == kept) continue;
    const double miss = std::max(low[item] - values[item], values[item] - high[item]);
    if (miss <= slack[item]) continue;
    const double merit = miss * miss / weights[i];
    if (merit > greatest) {
      greatest = merit;
      best = item;
    }
  }
  return best;
}

/// Dual ratio test with bound flipping for a leaving item whose value has to rise or fall: the
/// nonbasic items that can help turn to their other bounds in the order of their ratios as long as
/// the item still misses its own. NONE: all of them together are not enough.
std::size_t Dictionary::chooseEntering(std::size_t item, bool rising) {
  const double* a = row(item);
  double missing = rising ? low[item] - values[item] : values[item] - high[item];
  double greatest = 0;
  breakpoints.clear();
  for (std::size_t j = 0; j < D; ++j) {
    const double size = std::fabs(a[j]);
    if (size <= NOTHING) continue;
    const std::size_t other = itemOf[j];
    if (low[other] == high[other]) continue;
    const bool upward = (a[j] > 0) == rising;
    if (values[other] != (upward ? low[other] : high[other])) continue;
    greatest = std::max(greatest, size);
    const double d = upward ? cost[j] : -cost[j];
    breakpoints.push_back({d > 0 ? d / size : 0, size, j});
  }
  const auto before = [](const Breakpoint& x, const Breakpoint& y) {
    if (x.ratio != y.ratio) return x.ratio < y.ratio;
    if (x.size != y.size) return x.size > y.size;
    return x.column < y.column;
  };
  std::sort(breakpoints.begin(), breakpoints.end(), before);
  std::size_t chosen = NONE;
  for (std::size_t i = 0; i < breakpoints.size(); ++i) {
    const Breakpoint& b = breakpoints[i];
    const std::size_t other = itemOf[b.column];
    const double gain = b.size * (high[other] - low[other]);
    if (missing - gain > 0) {
      missing -= gain;
      continue;
    }
    // Among ratios that are nearly equal the largest pivot is the safest.
    chosen = i;
    const double limit = b.ratio * (1 + 1e-9) + 1e-12;
    for (std::size_t next = i + 1; next < breakpoints.size() && breakpoints[next].ratio <= limit;
         ++next) {
      if (breakpoints[next].size > breakpoints[chosen].size) chosen = next;
    }
    if (breakpoints[chosen].size < PIVOT_SIZE * greatest) {
      for (std::size_t k = 0; k < breakpoints.size(); ++k) {
        if (breakpoints[k].size < PIVOT_SIZE * greatest) continue;
        chosen = k;
        if (k >= i) break;
      }
    }
    break;
  }
  if (chosen == NONE) return NONE;
  for (std::size_t i = 0; i < chosen; ++i) {
    const Breakpoint& b = breakpoints[i];
    if (b.ratio >= breakpoints[chosen].ratio) break;
    const std::size_t other = itemOf[b.column];
    const bool upward = (a[b.column] > 0) == rising;
    moveColumn(b.column, upward ? high[other] : low[other]);
  }
  return breakpoints[chosen].column;
}

/// target := target with the entering item replaced; `pivotRow` is the entering item's new row.
void Dictionary::updateRow(double* target, double& constant, double& weight, std::size_t column) {
  const double factor = target[column];
  if (factor == 0) return;
  target[column] = 0;
  if (sparse) {
    double change = -factor * factor;
    for (const std::size_t j : support) {
      const double old = target[j];
      double fresh = old + factor * pivotRow[j];
      if (std::fabs(fresh) <= NOTHING) fresh = 0;
      change += fresh * fresh - old * old;
      target[j] = fresh;
    }
    weight = std::max(1.0, weight + change);
    workDone += static_cast<std::int64_t>(2 * support.size());
  } else {
    addMultiple(target, pivotRow.data(), factor, stride);
    weight = squaredNorm(target, stride);
    workDone += static_cast<std::int64_t>(2 * stride);
  }
  constant += factor * costConstant;
}

/// The item leaves for the column, whose item takes its row.
void Dictionary::pivot(std::size_t item, std::size_t column) {
  const std::size_t r = rowOf[item];
  const std::size_t entering = itemOf[column];
  double* a = table.data() + (r * stride);
  const double inverse = 1 / a[column];
  support.clear();
  for (std::size_t j = 0; j < D; ++j) {
    pivotRow[j] = std::fabs(a[j]) <= NOTHING ? 0 : -a[j] * inverse;
    if (pivotRow[j] != 0 || j == column) support.push_back(j);
  }
  pivotRow[column] = inverse;
  costConstant = -constants[r] * inverse;
  sparse = support.size() * 4 < D;
  std::copy(pivotRow.begin(), pivotRow.end(), a);
  constants[r] = costConstant;
  weights[r] = squaredNorm(a, stride);
  for (std::size_t i = 0; i < R - D; ++i) {
    if (i != r) updateRow(table.data() + (i * stride), constants[i], weights[i], column);
  }
  double ignoredConstant = 0;
  double ignoredWeight = 0;
  updateRow(cost.data(), ignoredConstant, ignoredWeight, column);
  rowOf[entering] = r;
  columnOf[entering] = NONE;
  basicOf[r] = entering;
  itemOf[column] = item;
  columnOf[item] = column;
  rowOf[item] = NONE;
  ++pivotsSinceRefactor;
  workDone += static_cast<std::int64_t>(R + D);
  if (stop == nullptr || workDone < nextQuestion) return;
  nextQuestion = workDone + WORK_BETWEEN_QUESTIONS;
  throwIfStopped(*stop);
}

/// Against cycles: prefers the bounds where the nonbasic items are, by different small amounts.
void Dictionary::perturb() {
  std::uint32_t seed = 1;
  for (std::size_t j = 0; j < D; ++j) {
    seed = seed * 1664525U + 1013904223U;
    const double unit = 0.5 + static_cast<double>(seed >> 8U) / static_cast<double>(1U << 24U);
    const double change = PERTURBATION * (1 + std::fabs(cost[j])) * unit;
    const std::size_t item = itemOf[j];
    cost[j] += values[item] == low[item] ? change : -change;
  }
}

LpEnd Dictionary::solve(int limit) {
  if (pivotsSinceRefactor >= REFACTOR_INTERVAL) refactor();
  moveToBounds();
  bool isPerturbed = false;
  for (int pivots = 0;; ++pivots) {
    if (pivots == PIVOTS_BEFORE_PERTURBATION) {
      perturb();
      isPerturbed = true;
    }
    const std::size_t item = chooseLeaving();
    workDone += static_cast<std::int64_t>(R);
    if (item == NONE && isPerturbed) {
      setCost(std::vector<double>(costWeights));
      moveToBounds();
      isPerturbed = false;
      continue;
    }
    if (item == NONE) return LpEnd::Optimal;
    if (pivots >= limit) return LpEnd::GaveUp;
    const bool rising = values[item] < low[item];
    const std::size_t column = chooseEntering(item, rising);
    workDone += static_cast<std::int64_t>(2 * D);
    if (column == NONE) {
      failed = item;
      return LpEnd::Infeasible;
    }
    const double target = rising ? low[item] : high[item];
    const double step = (target - values[item]) / row(item)[column];
    moveColumn(column, values[itemOf[column]] + step);
    values[item] = target;
    pivot(item, column);
    if (pivotsSinceRefactor >= REFACTOR_INTERVAL) {
      refactor();
      moveToBounds();
    }
  }
}

void Dictionary::reach(std::size_t item, double& least, double& greatest) const {
  const double* a = row(item);
  least = constants[rowOf[item]];
  greatest = least;
  for (std::size_t j = 0; j < D; ++j) {
    const double atLow = a[j] * low[itemOf[j]];
    const double atHigh = a[j] * high[itemOf[j]];
    least += a[j] > 0 ? atLow : atHigh;
    greatest += a[j] > 0 ? atHigh : atLow;
  }
}

}  // namespace vexil::solver
