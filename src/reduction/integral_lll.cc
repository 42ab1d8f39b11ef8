// Vexil - exact integer optimization on lattices.
#include "reduction/integral_lll.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vexil {

namespace {

/// The squares of the weights as integers; what counts at all counts at least 1.
std::vector<Integer> integralSquares(const std::vector<dbl_t>& weights) {
  const dbl_t greatest = weights.empty() ? 0 : *std::max_element(weights.begin(), weights.end());
  std::vector<Integer> squares;
  for (const dbl_t weight : weights) {
    const dbl_t ratio = weight / greatest;
    squares.push_back(weight > 0
                          ? Integer::fromReal(std::max(1.0L, std::rint(ratio * ratio * 0x1p24L)))
                          : Integer());
  }
  return squares;
}

/// D(k) is the determinant of the Gram matrix of rows 0 to k - 1, lambda[k][j] = D(j + 1) mu(k, j).
class IntegralLll {
 public:
  IntegralLll(std::vector<std::vector<Integer>>& rows, std::vector<Integer> squares,
              WorkMeter& meter)
      : rows_(rows), squares_(std::move(squares)), meter_(meter) {
    const std::size_t d = rows.size();
    lambda_.assign(d, std::vector<Integer>(d));
    D_.assign(d + 1, 1);
  }

  void run() {
    for (std::size_t k = 0; k < rows_.size();) {
      if (k == known_) orthogonalise(known_++);
      if (k == 0) {
        ++k;
        continue;
      }
      sizeReduce(k, k - 1);
      if (isShorter(k)) {
        swap(k);
        --k;
        continue;
      }
      for (std::size_t j = k - 1; j-- > 0;) sizeReduce(k, j);
      ++k;
    }
  }

 private:
  [[nodiscard]] Integer dot(std::size_t k, std::size_t j) const {
    Integer sum;
    for (std::size_t f = 0; f < squares_.size(); ++f) {
      if (!squares_[f].isZero()) sum.addProduct(squares_[f] * rows_[k][f], rows_[j][f]);
    }
    return sum;
  }

  void orthogonalise(std::size_t k) {
    for (std::size_t j = 0; j <= k; ++j) {
      Integer u = dot(k, j);
      for (std::size_t i = 0; i < j; ++i) {
        u = exactQuotient(D_[i + 1] * u - lambda_[k][i] * lambda_[j][i], D_[i]);
      }
      meter_.spend(WORK * static_cast<std::int64_t>(squares_.size() + j));
      (j < k ? lambda_[k][j] : D_[k + 1]) = std::move(u);
    }
  }

  void sizeReduce(std::size_t k, std::size_t j) {
    const Integer q = nearestQuotient(lambda_[k][j], D_[j + 1]);
    if (q.isZero()) return;
    subtractMultiple(rows_[k], q, rows_[j]);
    lambda_[k][j].subtractProduct(q, D_[j + 1]);
    for (std::size_t i = 0; i < j; ++i) lambda_[k][i].subtractProduct(q, lambda_[j][i]);
    meter_.spend(WORK * static_cast<std::int64_t>(squares_.size() + j));
  }

  /// |b*_k|^2 + mu^2 |b*_(k-1)|^2 < 3/4 |b*_(k-1)|^2, by D(k)^2.
  [[nodiscard]] bool isShorter(std::size_t k) const {
    const Integer& lambda = lambda_[k][k - 1];
    return (D_[k + 1] * D_[k - 1] + lambda * lambda) * 4 < D_[k] * D_[k] * 3;
  }

  void swap(std::size_t k) {
    std::swap(rows_[k], rows_[k - 1]);
    for (std::size_t j = 0; j + 1 < k; ++j) std::swap(lambda_[k][j], lambda_[k - 1][j]);
    const Integer lambda = lambda_[k][k - 1];
    const Integer B = exactQuotient(D_[k - 1] * D_[k + 1] + lambda * lambda, D_[k]);
    for (std::size_t i = k + 1; i < known_; ++i) {
      const Integer t = lambda_[i][k];
      lambda_[i][k] = exactQuotient(D_[k + 1] * lambda_[i][k - 1] - lambda * t, D_[k]);
      lambda_[i][k - 1] = exactQuotient(B * t + lambda * lambda_[i][k], D_[k + 1]);
      meter_.spend(8 * WORK);
    }
    D_[k] = B;
  }

  /// Of an operation on numbers of several limbs.
  static constexpr std::int64_t WORK = 1000;

  std::vector<std::vector<Integer>>& rows_;
  std::vector<Integer> squares_;
  WorkMeter& meter_;
  std::vector<std::vector<Integer>> lambda_;
  std::vector<Integer> D_;
  std::size_t known_ = 0;  ///< rows of `lambda_` that are there
};

}  // namespace

void integralLll(WeightedRows& basis, WorkMeter& meter) {
  IntegralLll(basis.rows, integralSquares(basis.weights), meter).run();
}

}  // namespace vexil
