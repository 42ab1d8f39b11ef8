// Vexil - exact integer optimization on lattices.
#include "reduction/bkz.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace vexil {

namespace {

constexpr int MOST_TOURS = 8;

/// A block is given up after so many nodes.
constexpr std::int64_t MOST_NODES = 1'000'000;

/// Searches the coefficients x of a combination of the rows k to end - 1 that is short orthogonally
/// to the rows ahead (Schnorr, Euchner 1994).
class BlockEnumeration {
 public:
  BlockEnumeration(const FloatingLll<double>& rows, std::size_t k, std::size_t end,
                   WorkMeter& meter)
      : rows_(rows), k_(k), size_(end - k), meter_(meter) {
    x_.assign(size_, 0);
    step_.assign(size_, 0);
    center_.assign(size_, 0);
    length_.assign(size_ + 1, 0);
  }

  /// The coefficients of the shortest combination below `bound`, a square; empty: none was found.
  std::vector<double> shortest(double bound) {
    std::vector<double> best;
    std::size_t i = 0;
    x_[0] = 1;
    std::size_t top = 0;  // the highest coefficient that is not 0; it is positive
    for (std::int64_t nodes = 0; nodes < MOST_NODES; ++nodes) {
      const double distance = x_[i] - center_[i];
      length_[i] = length_[i + 1] + distance * distance * rows_.squaredLength(k_ + i);
      meter_.spend(static_cast<std::int64_t>(2 * size_));
      if (length_[i] < bound) {
        if (i > 0) {
          enter(--i);
          continue;
        }
        best = x_;
        bound = length_[0];
      } else if (++i == size_) {
        break;
      }
      if (i >= top) {
        top = i;
        x_[i] += 1;
      } else {
        next(i);
      }
    }
    return best;
  }

 private:
  void enter(std::size_t i) {
    double center = 0;
    for (std::size_t j = i + 1; j < size_; ++j) center -= x_[j] * rows_.mu(k_ + j, k_ + i);
    center_[i] = center;
    x_[i] = std::rint(center);
    step_[i] = x_[i] <= center ? 1 : -1;
  }

  /// The next integer by distance from the centre.
  void next(std::size_t i) {
    x_[i] += step_[i];
    step_[i] = step_[i] > 0 ? -step_[i] - 1 : -step_[i] + 1;
  }

  const FloatingLll<double>& rows_;
  std::size_t k_;
  std::size_t size_;
  WorkMeter& meter_;
  std::vector<double> x_;
  std::vector<double> step_;
  std::vector<double> center_;
  std::vector<double> length_;  ///< squared, from coefficient i up
};

/// Makes the combination x of the rows k to k + size x - 1 row k, by unimodular operations:
/// Euclid's algorithm on the coefficients, each step undone on the rows, which keeps the
/// combination. False if the coefficients have a common divisor; the rows span the lattice all the
/// same.
bool insertCombination(std::vector<std::vector<Integer>>& rows, std::size_t k,
                       std::vector<double> x) {
  for (;;) {
    std::size_t greatest = 0;
    for (std::size_t i = 1; i < x.size(); ++i) {
      if (std::fabs(x[i]) > std::fabs(x[greatest])) greatest = i;
    }
    std::size_t second = x.size();
    for (std::size_t i = 0; i < x.size(); ++i) {
      if (i == greatest || x[i] == 0) continue;
      if (second == x.size() || std::fabs(x[i]) > std::fabs(x[second])) second = i;
    }
    if (second == x.size()) {
      if (std::fabs(x[greatest]) != 1) return false;
      const auto begin = rows.begin() + static_cast<std::ptrdiff_t>(k);
      const auto found = begin + static_cast<std::ptrdiff_t>(greatest);
      std::rotate(begin, found, found + 1);
      return true;
    }
    const double factor = std::rint(x[greatest] / x[second]);
    x[greatest] -= factor * x[second];
    subtractMultiple(rows[k + second], Integer::fromReal(-factor), rows[k + greatest]);
  }
}

}  // namespace

void bkzReduce(WeightedRows& basis, std::size_t blockSize, const LllSettings& settings,
               WorkMeter& meter) {
  const std::size_t d = basis.rows.size();
  FloatingLll<double> lll(basis, settings, meter);
  std::size_t known = 0;  // rows that are reduced and orthogonalised
  bool changed = true;
  for (int tour = 0; changed && tour < MOST_TOURS; ++tour) {
    changed = false;
    for (std::size_t k = 0; k + 1 < d; ++k) {
      const std::size_t end = std::min(k + blockSize, d);
      if (known < end && !lll.reduce(known, end)) return;
      known = std::max(known, end);
      std::vector<double> x =
          BlockEnumeration(lll, k, end, meter).shortest(settings.delta * lll.squaredLength(k));
      if (x.empty()) continue;
      static_cast<void>(insertCombination(basis.rows, k, std::move(x)));
      for (std::size_t j = k; j < end; ++j) lll.refresh(j);
      known = k;
      changed = true;
    }
  }
  static_cast<void>(lll.reduce(known, d));
}

}  // namespace vexil
