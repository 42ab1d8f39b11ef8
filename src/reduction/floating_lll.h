// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "foundation/dbl.h"
#include "foundation/work_meter.h"
#include "reduction/weighted_rows.h"

namespace vexil {

/// When a reduction swaps.
struct LllSettings {
  double delta = 0.99;  ///< Lovasz' condition, below 1
  bool deep = false;    ///< a row may move to any place ahead of it (Schnorr, Euchner 1994)
};

/// LLL reduction of integer rows by floating Gram-Schmidt coefficients (Lenstra, Lenstra, Lovasz
/// 1982; Schnorr, Euchner 1994; Nguyen, Stehle 2009 for the chain of Lovasz tests): the rows change
/// by exact unimodular operations only, so that whatever the floating numbers are worth the rows
/// stay a basis of their lattice. Real is `double` or `dbl_t`.
template <typename Real>
class FloatingLll {
 public:
  /// The rows, which are independent, are kept by reference.
  FloatingLll(WeightedRows& basis, const LllSettings& settings, WorkMeter& meter);

  /// Reduces rows 0 to end - 1, of which 0 to begin - 1 are reduced and orthogonalised already.
  /// False if the floating numbers do not carry it; the rows are then a basis still.
  [[nodiscard]] bool reduce(std::size_t begin, std::size_t end);

  /// Orthogonalises all rows as they stand. False if the floating numbers do not carry it.
  [[nodiscard]] bool orthogonalise();

  /// Brings `point` near to 0 by multiples of the rows, all of which are orthogonalised.
  void reducePoint(std::vector<Integer>& point);

  /// To be called after rows were changed from outside.
  void refresh(std::size_t k);

  /// Gram-Schmidt: b_k = b*_k + sum over j < k of mu(k, j) b*_j.
  [[nodiscard]] Real mu(std::size_t k, std::size_t j) const { return mu_[k][j]; }
  /// |b*_k|^2.
  [[nodiscard]] Real squaredLength(std::size_t k) const { return r_[k][k]; }

 private:
  using Row = std::vector<Real>;

  [[nodiscard]] bool sizeReduce(std::size_t k);
  void orthogonaliseRow(std::size_t k);
  bool subtractRows(std::size_t k);
  [[nodiscard]] std::size_t insertionPlace(std::size_t k);
  void move(std::size_t from, std::size_t to);

  WeightedRows& basis_;
  LllSettings settings_;
  WorkMeter& meter_;
  std::vector<Row> b_;   ///< the weighted rows
  std::vector<Row> mu_;  ///< mu_[k][j], j < k
  std::vector<Row> r_;   ///< r_[k][j] = <b_k, b*_j>, j <= k
  Row tail_;             ///< of the row in work: its squared length orthogonal to rows 0 to j - 1
  Real norm_ = 0;        ///< of the row in work, before its last reduction
  bool largeStep_ = false;  ///< in the last reduction of the row in work
};

extern template class FloatingLll<double>;
extern template class FloatingLll<dbl_t>;

/// Reduces `basis`, by `double`, else by `dbl_t`, else exactly first.
void lllReduce(WeightedRows& basis, const LllSettings& settings, WorkMeter& meter);

/// Brings `point` near to 0 by multiples of the rows of a reduced basis.
void reducePoint(std::vector<Integer>& point, WeightedRows& basis, WorkMeter& meter);

}  // namespace vexil
