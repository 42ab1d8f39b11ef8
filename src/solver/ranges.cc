// Vexil - exact integer optimization on lattices.
#include "solver/ranges.h"

#include <algorithm>
#include <cmath>

namespace vexil::solver {
namespace {

using Index = std::size_t;

/// Rows of the inverse that mix forms with short and with long numbers take long multipliers.
template <typename Z>
constexpr double GREATEST_MULTIPLIER = std::is_same_v<Z, ZZ> ? 0x1p200 : 1e14;

/// d forms of full rank and the inverse of their columns of Y.
struct Inverse {
  std::vector<Index> forms;
  std::vector<double> entries;  ///< d x d: lambda_k = sum over j of entry k d + j times form j
};

/// Gauss-Jordan elimination on Y, each form in units of its width, with complete pivoting: it
/// prefers forms that leave little room.
template <typename Z>
std::optional<Inverse> invert(const FormSystem<Z>& system) {
  const Index d = system.dimension;
  const Index F = system.count;
  std::vector<double> Y(d * F);  // row k: coordinate k, columns: forms
  std::vector<double> width(F);
  for (Index f = 0; f < F; ++f) width[f] = toDouble(system.upper[f] - system.lower[f]) + 1;
  for (Index k = 0; k < d; ++k) {
    for (Index f = 0; f < F; ++f) Y[k * F + f] = toDouble(system.entry(k, f)) / width[f];
  }
  std::vector<double> T(d * d, 0.0);  // T Y is reduced
  for (Index k = 0; k < d; ++k) T[k * d + k] = 1;
  std::vector<Index> formOf(d, F);
  for (Index step = 0; step < d; ++step) {
    Index row = d;
    Index column = F;
    double greatest = 0;
    for (Index k = 0; k < d; ++k) {
      if (formOf[k] != F) continue;
      for (Index f = 0; f < F; ++f) {
        if (std::fabs(Y[k * F + f]) > greatest) {
          greatest = std::fabs(Y[k * F + f]);
          row = k;
          column = f;
        }
      }
    }
    if (row == d || !(greatest < 1e300)) return std::nullopt;
    formOf[row] = column;
    const double inverse = 1 / Y[row * F + column];
    for (Index f = 0; f < F; ++f) Y[row * F + f] *= inverse;
    for (Index j = 0; j < d; ++j) T[row * d + j] *= inverse;
    for (Index k = 0; k < d; ++k) {
      const double factor = Y[k * F + column];
      if (k == row || factor == 0) continue;
      for (Index f = 0; f < F; ++f) Y[k * F + f] -= factor * Y[row * F + f];
      for (Index j = 0; j < d; ++j) T[k * d + j] -= factor * T[row * d + j];
    }
  }
  // T Y_S = P: lambda Y_S = s gives lambda = s P^T T, all in units of the widths.
  Inverse inverse;
  inverse.forms = formOf;
  inverse.entries.resize(d * d);
  for (Index k = 0; k < d; ++k) {
    for (Index j = 0; j < d; ++j) inverse.entries[k * d + j] = T[j * d + k] / width[formOf[j]];
  }
  return inverse;
}

/// 2^exponent.
ZZ powerOfTwo(int exponent) {
  ZZ power = 1;
  for (; exponent > 0; --exponent) power = power + power;
  return power;
}

/// The exponent s that brings the greatest entry near to GREATEST_MULTIPLIER, at least 0.
template <typename Z>
int scaleOf(const double* entries, Index d) {
  double greatest = 0;
  for (Index j = 0; j < d; ++j) greatest = std::max(greatest, std::fabs(entries[j]));
  int s = 0;
  constexpr double TARGET = 0.35 * GREATEST_MULTIPLIER<Z>;
  for (; greatest > 0 && greatest < TARGET; greatest *= 2) ++s;
  return s;
}

/// Leaves room for the products of coordinates and entries that points are evaluated by.
template <typename Z>
bool isRange(const Z& bound) {
  const Z limit(1LL << 56);
  return !(bound > limit) && !(bound < -limit);
}

/// What an exact row of the inverse proves: 2^s lambda_k in [low, high] + error * max |lambda|.
struct RowRange {
  ZZ scale;
  ZZ low;
  ZZ high;
  ZZ error;
};

template <typename Z>
std::optional<RowRange> rowRange(const FormSystem<Z>& system, const Inverse& inverse, Index k) {
  const Index d = system.dimension;
  const double* entries = inverse.entries.data() + (k * d);
  RowRange range;
  range.scale = powerOfTwo(scaleOf<Z>(entries, d));
  const double scale = toDouble(range.scale);
  std::vector<Wide<Z>> products(d, Wide<Z>(0));  // m Y
  Wide<Z> low = 0;
  Wide<Z> high = 0;
  for (Index j = 0; j < d; ++j) {
    if (!(std::fabs(entries[j]) * scale < GREATEST_MULTIPLIER<Z>)) return std::nullopt;
    const Z m = nearestInteger<Z>(entries[j] * scale);
    if (signOf(m) == 0) continue;
    const Index f = inverse.forms[j];
    const bool rising = signOf(m) > 0;
    addProduct(low, m, (rising ? system.lower[f] : system.upper[f]) - system.offset[f]);
    addProduct(high, m, (rising ? system.upper[f] : system.lower[f]) - system.offset[f]);
    for (Index i = 0; i < d; ++i) addProduct(products[i], m, system.entry(i, f));
  }
  range.low = toZZ(low);
  range.high = toZZ(high);
  for (Index i = 0; i < d; ++i) {
    const ZZ product = toZZ(products[i]);
    range.error = range.error + abs(i == k ? range.scale - product : product);
  }
  return range;
}

/// The form that is lambda_k plus a constant; F if there is none.
template <typename Z>
Index formOfCoordinate(const FormSystem<Z>& system, Index k) {
  const auto isCoordinate = [&](Index f) {
    if (!(system.entry(k, f) == Z(1))) return false;
    for (Index j = 0; j < system.dimension; ++j) {
      if (j != k && signOf(system.entry(j, f)) != 0) return false;
    }
    return true;
  };
  Index f = 0;
  while (f < system.count && !isCoordinate(f)) ++f;
  return f;
}

/// The ranges where each coordinate is a form.
template <typename Z>
std::optional<CoordinateRanges<Z>> rangesOfForms(const FormSystem<Z>& system) {
  CoordinateRanges<Z> ranges;
  for (Index k = 0; k < system.dimension; ++k) {
    const Index f = formOfCoordinate(system, k);
    if (f == system.count) return std::nullopt;
    ranges.lower.push_back(system.lower[f] - system.offset[f]);
    ranges.upper.push_back(system.upper[f] - system.offset[f]);
    if constexpr (!std::is_same_v<Z, ZZ>) {
      if (!isRange(ranges.lower[k]) || !isRange(ranges.upper[k])) return std::nullopt;
    }
  }
  return ranges;
}

}  // namespace

template <typename Z>
std::optional<CoordinateRanges<Z>> coordinateRanges(const FormSystem<Z>& system) {
  const Index d = system.dimension;
  if (auto ranges = rangesOfForms(system)) return ranges;
  const std::optional<Inverse> inverse = invert(system);
  if (!inverse) return std::nullopt;
  std::vector<RowRange> rows;
  ZZ greatest = 0;  // bounds |lambda_k| for all k
  for (Index k = 0; k < d; ++k) {
    std::optional<RowRange> proved = rowRange(system, *inverse, k);
    if (!proved) return std::nullopt;
    rows.push_back(std::move(*proved));
    const RowRange& row = rows.back();
    // Where scale |lambda_k| <= room + error M, with error <= scale / 2: M <= 2 room / scale.
    if (row.error + row.error > row.scale) return std::nullopt;
    const ZZ room = std::max(abs(row.low), abs(row.high));
    greatest = std::max(greatest, ceilDivide<ZZ>(room + room, row.scale));
  }
  CoordinateRanges<Z> ranges;
  for (const RowRange& row : rows) {
    const ZZ low = ceilDivide<ZZ>(row.low - row.error * greatest, row.scale);
    const ZZ high = floorDivide<ZZ>(row.high + row.error * greatest, row.scale);
    if constexpr (!std::is_same_v<Z, ZZ>) {
      if (!isRange(low) || !isRange(high)) return std::nullopt;
    }
    ranges.lower.push_back(fromZZ<Z>(low));
    ranges.upper.push_back(fromZZ<Z>(high));
  }
  return ranges;
}

template std::optional<CoordinateRanges<std::int64_t>> coordinateRanges(
    const FormSystem<std::int64_t>&);
template std::optional<CoordinateRanges<ZZ>> coordinateRanges(const FormSystem<ZZ>&);

}  // namespace vexil::solver
