// Vexil - exact integer optimization on lattices.
#include "solutions/membership.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace vexil {

namespace {

using prime_field::Residue;

constexpr auto MODULUS = static_cast<dbl_t>(prime_field::PRIME);

/// The magnitude of a whole number, rounded up a little; +inf for any other number.
dbl_t wholeMagnitude(const QQ& x) {
  if (x.isInf || !isZero(x.zaehler)) return INF_F;
  if (limbCount(x.ganze) > WORD_LIMBS) return INF_F;
  return static_cast<dbl_t>(toWord(x.ganze));
}

dbl_t wholeMagnitude(dbl_t x) {
  const dbl_t magnitude = std::fabs(x);
  const bool isWhole = magnitude < MODULUS ? static_cast<dbl_t>(static_cast<std::int64_t>(x)) == x
                                           : std::trunc(x) == x;
  return isWhole ? magnitude : INF_F;
}

/// The magnitude of a number that has a residue; +inf for one that is not whole.
dbl_t magnitude(const QQ& x) { return wholeMagnitude(x); }
dbl_t magnitude(dbl_t x) { return std::fabs(x); }

const QQ& exactNumber(const QQ& x) { return x; }

QQ exactNumber(dbl_t x) {
  constexpr dbl_t WORD = 4e18L;
  return wholeMagnitude(x) < WORD ? QQ(static_cast<long>(x)) : QQ(x);
}

template <typename T>
Vector<QQ> exactVector(const Vector<T>& v) {
  Vector<QQ> result;
  for (const T& element : v.elements()) result.append(exactNumber(element));
  return result;
}

}  // namespace

void SparseColumns::clear() {
  terms_.clear();
  ends_.clear();
}

Residue SparseColumns::product(std::size_t j, const std::vector<Residue>& x) const {
  const std::size_t end = ends_[j];
  DoubleWord sum = 0;
  for (std::size_t k = j == 0 ? 0 : ends_[j - 1]; k < end;) {
    const std::size_t stop = std::min(end, k + prime_field::SUMMANDS);
    for (; k < stop; ++k) sum += static_cast<DoubleWord>(terms_[k].value) * x[terms_[k].row];
    sum = prime_field::reduced(sum);
  }
  return static_cast<Residue>(sum);
}

template <typename T>
void Membership<T>::build(const Matrix<T>& rows) {
  const auto isExact = [](const T& x) {
    return std::is_same_v<T, QQ> || !std::isinf(wholeMagnitude(x));
  };
  built_ = true;
  rows_ = rows;
  exact_.reset();
  solver_.reset();
  isExact_ = true;
  for (const Vector<T>& row : rows_.elements()) {
    const auto numbers = row.elements();
    isExact_ = isExact_ && std::all_of(numbers.begin(), numbers.end(), isExact);
  }
  isInverted_ = isExact_ && invert(rows_);
  if (isExact_ && !isInverted_) {
    makeIndependent();
    isInverted_ = invert(*exact_);
  }
}

template <typename T>
const Matrix<QQ>& Membership<T>::exactRows() {
  if (!exact_) {
    exact_.emplace();
    for (const Vector<T>& row : rows_.elements()) exact_->appendRow(exactVector(row));
  }
  return *exact_;
}

/// Finds independent columns and inverts them by the elimination of Gauss and Jordan, sparse
/// columns first; false if there are fewer than rows.
template <typename T>
template <typename S>
bool Membership<T>::invert(const Matrix<S>& rows) {
  using prime_field::difference;
  using prime_field::inverse;
  using prime_field::product;
  using prime_field::residue;
  const auto m = static_cast<std::size_t>(rows.rowCount);
  const auto n = static_cast<std::size_t>(rows.columnCount);
  std::vector<std::vector<Residue>> work(m, std::vector<Residue>(n + m));
  std::vector<std::size_t> nonZeros(n);
  greatestColumn_ = 0;
  for (std::size_t j = 0; j < n; ++j) {
    dbl_t sum = 0;
    for (std::size_t i = 0; i < m; ++i) {
      const S& x = rows.rows[i + 1].data[j + 1];
      const auto value = residue(x);
      if (!value) return false;
      work[i][j] = *value;
      nonZeros[j] += *value != 0 ? 1 : 0;
      sum += wholeMagnitude(x);
    }
    greatestColumn_ = std::max(greatestColumn_, sum);
  }
  const auto original = work;
  for (std::size_t i = 0; i < m; ++i) work[i][n + i] = 1;

  std::vector<std::size_t> order(n);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return nonZeros[a] < nonZeros[b]; });
  pivots_.clear();
  otherIndex_.clear();
  for (const std::size_t j : order) {
    const std::size_t rank = pivots_.size();
    std::size_t pivot = rank;
    while (pivot < m && work[pivot][j] == 0) ++pivot;
    if (pivot == m) {
      otherIndex_.push_back(j);
      continue;
    }
    std::swap(work[rank], work[pivot]);
    pivots_.push_back(j);
    if (const Residue value = work[rank][j]; value != 1) {
      const Residue scale = inverse(value);
      for (Residue& x : work[rank]) x = product(x, scale);
    }
    for (std::size_t i = 0; i < m; ++i) {
      const Residue factor = work[i][j];
      if (i == rank || factor == 0) continue;
      for (std::size_t k = 0; k < n + m; ++k) {
        if (work[rank][k] != 0) work[i][k] = difference(work[i][k], work[rank][k], factor);
      }
    }
  }
  if (pivots_.size() < m) return false;
  inverse_.clear();
  for (std::size_t i = 0; i < m; ++i) {
    inverse_.append(m, [&](std::size_t p) { return work[p][n + i]; });
  }
  others_.clear();
  for (const std::size_t j : otherIndex_) {
    others_.append(m, [&](std::size_t i) { return original[i][j]; });
  }
  values_.resize(m);
  coordinates_.resize(m);
  return true;
}

/// Rows that span the same lattice, in echelon form.
template <typename T>
void Membership<T>::makeIndependent() {
  Matrix<QQ> rows = exactRows();
  std::int64_t left = rows.rowCount;
  for (std::int64_t j = 1; j <= rows.columnCount && left > 0; ++j) {
    const std::int64_t pivot = euclidColumnStep<QQ>(rows, left, j, nullptr);
    if (pivot > 0) rows.swapRows(pivot, left--);
  }
  for (; left > 0; --left) rows.removeRow(left);
  exact_ = std::move(rows);
}

template <typename T>
typename Membership<T>::Verdict Membership<T>::decideByResidues(const Vector<T>& v) {
  using prime_field::leastInteger;
  using prime_field::residue;
  if (!isInverted_) return Verdict::OPEN;
  dbl_t greatest = 0;
  const auto valueAt = [&](std::size_t j) {
    const T& x = v.data[j + 1];
    greatest = std::max(greatest, magnitude(x));
    return residue(x);
  };
  for (std::size_t p = 0; p < pivots_.size(); ++p) {
    const auto value = valueAt(pivots_[p]);
    if (!value) return Verdict::OPEN;
    values_[p] = *value;
  }
  long greatestCoordinate = 0;
  for (std::size_t i = 0; i < coordinates_.size(); ++i) {
    coordinates_[i] = inverse_.product(i, values_);
    greatestCoordinate = std::max(greatestCoordinate, std::abs(leastInteger(coordinates_[i])));
  }
  for (std::size_t k = 0; k < otherIndex_.size(); ++k) {
    const auto value = valueAt(otherIndex_[k]);
    if (!value) return Verdict::OPEN;
    if (others_.product(k, coordinates_) != *value) return Verdict::NO;
  }
  constexpr dbl_t MARGIN = 2;  // for the rounding of the bound itself
  const dbl_t reach = static_cast<dbl_t>(greatestCoordinate) * greatestColumn_ + greatest;
  return MARGIN * reach < MODULUS ? Verdict::YES : Verdict::OPEN;
}

template <typename T>
bool Membership<T>::solvesExactly(const Vector<T>& v) {
  const Vector<QQ> wanted = exactVector(v);
  Vector<QQ> x;
  for (const Residue coordinate : coordinates_) x.append(QQ(prime_field::leastInteger(coordinate)));
  if (isInverted_ && (x * exactRows()).equalsExactly(wanted)) return true;
  if (!solver_) solver_.emplace(exactRows());
  return solver_->solve(wanted, x, true);
}

template <typename T>
bool Membership<T>::contains(const Vector<T>& v) {
  if (!isExact_) {
    Vector<T> x;
    return solveRowCoordinates<T>(rows_, v, x, true);
  }
  if (v.MN != rows_.columnCount) return false;
  const Verdict verdict = decideByResidues(v);
  return verdict == Verdict::OPEN ? solvesExactly(v) : verdict == Verdict::YES;
}

template class Membership<dbl_t>;
template class Membership<QQ>;

}  // namespace vexil
