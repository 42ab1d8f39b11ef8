// Vexil - exact integer optimization on lattices.
#pragma once

#include <tuple>

#include "foundation/members.h"
#include "numbers/integer_row.h"
#include "numbers/qq_vectors.h"

namespace vexil {

/// The bits of a word of `rowState`: what is valid of the data of a basis row.
enum RowBits : short {
  DEPENDENT = 1,       ///< depends on the rows before it; the only bit of its word
  ORTHOGONALIZED = 2,  ///< the row of `mu` and the entry of `bstar`
  NORM_KNOWN = 4,      ///< the entry of `rowNorm`
  IN_FULL_LQ = 8,      ///< the row's part of the full decomposition
  IN_REDUCED_LQ = 16,  ///< the row's part of the reduced decomposition
  SIZE_REDUCED = 32,   ///< the row is size-reduced and nothing has changed since
  PASSED = 64          ///< the row was passed in the present pass of the reduction
};

/// Gram-Schmidt data of the rows of a basis, which the operations are given: b[i] is the sum over
/// j <= i of mu[i][j] b*[j] with orthogonal b*[j]. `rowState` tells for each row what is valid.
template <typename T, typename U>
struct GramSchmidt {
  Matrix<U> mu;                ///< coefficients; 1 on the diagonal, 0 to the right of it
  Matrix<U> Q;                 ///< orthogonal rows
  Vector<U> bstar;             ///< squared lengths of the orthogonal rows
  Vector<T> rowNorm;           ///< squared lengths of the rows of the basis
  Array<short> rowState;       ///< a word of `RowBits` for each row
  bool keepDependent = false;  ///< `invalidateFrom` spares the words of dependent rows

  /// So many leading coefficients of a row hold, whatever its word says, and the entry of `bstar`
  /// too where that is the index of the row.
  Array<long> held;
  Vector<U> heldLength;  ///< squared length of the row at their computation, doubled with a change
  Array<IntegerRow> integerRows;  ///< the rows of the basis that have been needed as such

  Matrix<U> Lfull;                 ///< lower triangular factor of the full decomposition
  Array<Matrix<U>> fullStages;     ///< products of the reflections of the full decomposition
  Matrix<U> Lreduced;              ///< lower triangular factor of the reduced decomposition
  Array<Matrix<U>> reducedStages;  ///< rows after each step of the reduced decomposition
  Vector<U> reducedNorms;          ///< squared lengths of the orthogonal rows of the reduced one

  template <typename Self>
  static auto members(Self& self) {
    auto& [mu, Q, bstar, rowNorm, rowState, keepDependent, held, heldLength, integerRows, Lfull,
           fullStages, Lreduced, reducedStages, reducedNorms] = self;
    return std::tie(mu, Q, bstar, rowNorm, rowState, keepDependent, held, heldLength, integerRows,
                    Lfull, fullStages, Lreduced, reducedStages, reducedNorms);
  }

  /// Room for `rows` rows of `cols` coordinates.
  void resize(std::int64_t rows, std::int64_t cols);

  /// Empties everything but `rowState`, whose words become 0.
  void clear();

  /// Nothing is valid any more; dependent rows are forgotten too.
  void clearRowState();

  /// Nothing is valid any more of the rows from `i` on; with `keepDependent` the words of dependent
  /// rows from the second on stay.
  void invalidateFrom(std::int64_t i);

  /// Follows an exchange of rows of the basis; the words go with their rows.
  void swapRows(std::int64_t i, std::int64_t j);

  /// Follows the row operation B[k] -= q B[j], j < k.
  void subtractMultiple(std::int64_t k, const U& q, std::int64_t j);

  /// The squared length of row i of the basis.
  [[nodiscard]] T squaredLength(const Matrix<T>& B, std::int64_t i) {
    fit(B.rowCount);
    return scalarProduct<T>(B, i, i);
  }

  [[nodiscard]] bool isDependent(std::int64_t i) const { return rowState[i] == DEPENDENT; }

  // The three ways to the data of the rows `start` to `end` of B, 0 standing for the last row. Rows
  // whose data are valid are passed over; those before `start` must be valid. A row whose
  // orthogonal part has a squared length of at most 10^-9 depends on the rows before it.

  /// The recurrence on scalar products of the rows [SE], row by row, where row operations have not
  /// left the coefficients behind. False at the first dependent
  /// row, whose word becomes `DEPENDENT`; its data are filled in, the rows behind it are not looked
  /// at.
  bool updateGramSchmidt(const Matrix<T>& B, std::int64_t start, std::int64_t end);

  /// By `lq_full`; scales the rows of `Q` to the Gram-Schmidt vectors. Returns the first dependent
  /// row or 0; of more rows than columns the first one too many is dependent. Fatal with
  /// `abortOnDependency`: "Linear dependency detected - remove first!".
  std::int64_t lqFullRows(const Matrix<T>& B, std::int64_t start, std::int64_t end,
                          bool abortOnDependency);

  /// By `lq_reduced`. Returns the first dependent row or 0. Fatal with `abortOnDependency`: "Linear
  /// dependency detected - remove these first!".
  std::int64_t lqReducedRows(const Matrix<T>& B, std::int64_t start, std::int64_t end,
                             bool abortOnDependency);

 private:
  void fit(std::int64_t rows);
  void finishRow(std::int64_t i, short bits);
  [[nodiscard]] std::int64_t firstWithout(short bits, std::int64_t start, std::int64_t end) const;
  bool orthogonalizeRow(const Matrix<T>& B, std::int64_t i);
  void projectRow(const Matrix<T>& B, std::int64_t i, std::int64_t first);
  [[nodiscard]] bool isWhole(const Matrix<T>& B, std::int64_t i);
  template <typename Number>
  [[nodiscard]] Number scalarProduct(const Matrix<T>& B, std::int64_t i, std::int64_t j);
  void dropHeld(std::int64_t i);
};

extern template struct GramSchmidt<dbl_t, dbl_t>;
extern template struct GramSchmidt<QQ, dbl_t>;
extern template struct GramSchmidt<dbl_t, QQ>;
extern template struct GramSchmidt<QQ, QQ>;

}  // namespace vexil
