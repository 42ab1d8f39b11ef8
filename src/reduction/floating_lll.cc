// Vexil - exact integer optimization on lattices.
#include "reduction/floating_lll.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "reduction/integral_lll.h"

namespace vexil {

namespace {

/// Up to this magnitude a coefficient stays; 1/2 itself would never come to rest.
constexpr double REST = 0.51;

constexpr int MOST_PASSES = 60;

/// Below this part of the squared length of its row a computed |b*|^2 is noise.
template <typename Real>
constexpr Real NOISE = std::numeric_limits<Real>::epsilon() * Real(1 << 10);

/// From this multiple on the squared length is computed anew: errors of the rows ahead count with
/// the square of the multiple, and they add up along the basis.
template <typename Real>
constexpr Real LARGE_STEP = Real(4);

/// The sum of a_f b_f in four interleaved parts, which are added pairwise.
template <typename Real>
Real dot(const std::vector<Real>& a, const std::vector<Real>& b) {
  std::array<Real, 4> part{};
  const std::size_t whole = a.size() / 4 * 4;
  for (std::size_t f = 0; f < whole; f += 4) {
    for (std::size_t lane = 0; lane < 4; ++lane) part[lane] += a[f + lane] * b[f + lane];
  }
  for (std::size_t f = whole; f < a.size(); ++f) part[0] += a[f] * b[f];
  return (part[0] + part[1]) + (part[2] + part[3]);
}

template <typename Container>
void moveElement(Container& elements, std::size_t from, std::size_t to) {
  const auto begin = elements.begin();
  const auto at = [&](std::size_t i) { return begin + static_cast<std::ptrdiff_t>(i); };
  std::rotate(at(to), at(from), at(from + 1));
}

}  // namespace

template <typename Real>
FloatingLll<Real>::FloatingLll(WeightedRows& basis, const LllSettings& settings, WorkMeter& meter)
    : basis_(basis), settings_(settings), meter_(meter) {
  const std::size_t d = basis.rows.size();
  b_.assign(d, Row(basis.weights.size()));
  mu_.assign(d, Row(d));
  r_.assign(d, Row(d));
  tail_.assign(d + 1, 0);
  for (std::size_t k = 0; k < d; ++k) refresh(k);
}

template <typename Real>
void FloatingLll<Real>::refresh(std::size_t k) {
  const std::vector<Integer>& row = basis_.rows[k];
  for (std::size_t f = 0; f < row.size(); ++f) {
    b_[k][f] = static_cast<Real>(row[f].toReal() * basis_.weights[f]);
  }
}

/// Row k of the decomposition, from inner products.
template <typename Real>
void FloatingLll<Real>::orthogonaliseRow(std::size_t k) {
  Row& r = r_[k];
  Row& mu = mu_[k];
  for (std::size_t j = 0; j < k; ++j) {
    Real value = dot(b_[k], b_[j]);
    const Row& other = mu_[j];
    for (std::size_t i = 0; i < j; ++i) value -= other[i] * r[i];
    r[j] = value;
    mu[j] = value / r_[j][j];
  }
  norm_ = dot(b_[k], b_[k]);
  Real rest = norm_;
  for (std::size_t j = 0; j < k; ++j) rest -= mu[j] * r[j];
  r[k] = rest;
  meter_.spend(static_cast<std::int64_t>(k * (b_[k].size() + k)));
}

/// Subtracts multiples of the rows ahead from row k, as its coefficients tell; true if it changed.
template <typename Real>
bool FloatingLll<Real>::subtractRows(std::size_t k) {
  Row& mu = mu_[k];
  bool changed = false;
  largeStep_ = false;
  for (std::size_t j = k; j-- > 0;) {
    if (!(std::fabs(mu[j]) > static_cast<Real>(REST))) continue;
    const Real q = std::rint(mu[j]);
    const Row& other = mu_[j];
    for (std::size_t i = 0; i < j; ++i) mu[i] -= q * other[i];
    mu[j] -= q;
    subtractMultiple(basis_.rows[k], Integer::fromReal(q), basis_.rows[j]);
    changed = true;
    if (!(std::fabs(q) < LARGE_STEP<Real>)) largeStep_ = true;
    meter_.spend(static_cast<std::int64_t>(4 * b_[k].size()));
  }
  if (!changed) return false;
  refresh(k);
  for (std::size_t j = 0; j < k; ++j) r_[k][j] = mu[j] * r_[j][j];
  return true;
}

/// Size-reduces row k. |b*_k|^2 is taken from the row ahead of its last reduction, if that row was
/// not too long for it. False: its noise hides it.
template <typename Real>
bool FloatingLll<Real>::sizeReduce(std::size_t k) {
  for (int pass = 0; pass < MOST_PASSES; ++pass) {
    orthogonaliseRow(k);
    const bool changed = subtractRows(k);
    if (!largeStep_ && r_[k][k] > NOISE<Real> * norm_) return true;
    if (!changed) return false;
  }
  return false;
}

template <typename Real>
std::size_t FloatingLll<Real>::insertionPlace(std::size_t k) {
  tail_[k] = r_[k][k];
  for (std::size_t j = k; j-- > 0;) tail_[j] = tail_[j + 1] + mu_[k][j] * r_[k][j];
  const auto isShorter = [&](std::size_t j) {
    return tail_[j] < static_cast<Real>(settings_.delta) * r_[j][j];
  };
  std::size_t place = k;
  if (settings_.deep) {
    for (place = 0; place < k && !isShorter(place);) ++place;
  } else {
    while (place > 0 && isShorter(place - 1)) --place;
  }
  return place;
}

/// Row `from` becomes row `to`, to < from, and keeps what is known of it there.
template <typename Real>
void FloatingLll<Real>::move(std::size_t from, std::size_t to) {
  moveElement(basis_.rows, from, to);
  moveElement(b_, from, to);
  moveElement(mu_, from, to);
  moveElement(r_, from, to);
  r_[to][to] = tail_[to];
}

template <typename Real>
bool FloatingLll<Real>::reduce(std::size_t begin, std::size_t end) {
  const std::size_t d = basis_.rows.size();
  std::size_t movesLeft = 1000 + 200 * d * d;
  for (std::size_t k = begin; k < end;) {
    if (!sizeReduce(k)) return false;
    const std::size_t place = insertionPlace(k);
    if (k - place > movesLeft) return false;
    movesLeft -= k - place;
    if (place < k) move(k, place);
    k = place + 1;
  }
  return true;
}

template <typename Real>
bool FloatingLll<Real>::orthogonalise() {
  for (std::size_t k = 0; k < basis_.rows.size(); ++k) {
    orthogonaliseRow(k);
    if (!(r_[k][k] > NOISE<Real> * norm_)) return false;
  }
  return true;
}

template <typename Real>
void FloatingLll<Real>::reducePoint(std::vector<Integer>& point) {
  const std::size_t d = basis_.rows.size();
  basis_.rows.push_back(std::move(point));
  b_.emplace_back(basis_.weights.size());
  mu_.emplace_back(d + 1);
  r_.emplace_back(d + 1);
  refresh(d);
  for (int pass = 0; pass < MOST_PASSES; ++pass) {
    orthogonaliseRow(d);
    if (!subtractRows(d)) break;
  }
  point = std::move(basis_.rows.back());
  basis_.rows.pop_back();
  b_.pop_back();
  mu_.pop_back();
  r_.pop_back();
}

template class FloatingLll<double>;
template class FloatingLll<dbl_t>;

void lllReduce(WeightedRows& basis, const LllSettings& settings, WorkMeter& meter) {
  const std::size_t d = basis.rows.size();
  if (FloatingLll<double>(basis, settings, meter).reduce(0, d)) return;
  if (FloatingLll<dbl_t>(basis, settings, meter).reduce(0, d)) return;
  integralLll(basis, meter);
  // The exact reduction is what counts; another floating one only brings the last percent.
  static_cast<void>(FloatingLll<dbl_t>(basis, settings, meter).reduce(0, d));
}

void reducePoint(std::vector<Integer>& point, WeightedRows& basis, WorkMeter& meter) {
  FloatingLll<dbl_t> rows(basis, {}, meter);
  if (rows.orthogonalise()) rows.reducePoint(point);
}

}  // namespace vexil
