// Vexil - exact integer optimization on lattices.
#pragma once

#include <optional>
#include <vector>

#include "numbers/prime_field.h"
#include "numbers/qq_vectors.h"
#include "program/elimination.h"

namespace vexil {

/// A matrix by its columns, without its zeros, modulo the prime.
class SparseColumns {
 public:
  using Residue = prime_field::Residue;

  void clear();

  /// Appends a column; `entry(i)` is its element in row i, counted from 0.
  template <typename Entry>
  void append(std::size_t rows, Entry entry) {
    for (std::size_t i = 0; i < rows; ++i) {
      if (const Residue value = entry(i); value != 0) terms_.push_back({i, value});
    }
    ends_.push_back(terms_.size());
  }

  [[nodiscard]] std::size_t count() const { return ends_.size(); }

  /// The scalar product of column j with `x`.
  [[nodiscard]] Residue product(std::size_t j, const std::vector<Residue>& x) const;

 private:
  struct Term {
    std::size_t row;
    Residue value;
  };

  std::vector<Term> terms_;
  std::vector<std::size_t> ends_;  ///< of each column, in `terms_`
};

/// Tells whether vectors are integer combinations of the rows of a basis. Belongs to one lattice,
/// is built at the first question and dropped with the basis.
///
/// A vector has coordinates modulo a prime p in a set of independent columns, and those of least
/// magnitude are the only ones below p / 2. Where they fail in another column modulo p, there are
/// no integer coordinates at all; where they hold, and no sum can leave the range of p, they are
/// the coordinates. All this takes a few operations on words for each non-zero element. What is
/// left undecided, coordinates of 19 digits and more, is computed exactly.
///
/// In `dbl_t` a basis that is not whole has no exact combinations; there they are compared within
/// the tolerance of vectors.
template <typename T>
class Membership {
 public:
  void clear() { built_ = false; }
  [[nodiscard]] bool isBuilt() const { return built_; }

  /// Takes the basis, in the unweighted form. Its rows may depend on each other.
  void build(const Matrix<T>& rows);

  [[nodiscard]] bool contains(const Vector<T>& v);

 private:
  using Residue = prime_field::Residue;
  enum class Verdict { NO, YES, OPEN };

  template <typename S>
  bool invert(const Matrix<S>& rows);
  const Matrix<QQ>& exactRows();
  void makeIndependent();
  Verdict decideByResidues(const Vector<T>& v);
  [[nodiscard]] bool solvesExactly(const Vector<T>& v);

  bool built_ = false;
  bool isExact_ = false;                      ///< all numbers of the basis are whole, or exact
  bool isInverted_ = false;                   ///< there are as many independent columns as rows
  Matrix<T> rows_;                            ///< the basis
  std::optional<Matrix<QQ>> exact_;           ///< independent rows of it, once they are needed
  std::optional<RowCoordinates<QQ>> solver_;  ///< coordinates in these, once they are needed
  dbl_t greatestColumn_ = 0;         ///< greatest sum of magnitudes in a column; +inf for fractions
  std::vector<std::size_t> pivots_;  ///< the independent columns, from 0; as many as rows
  SparseColumns inverse_;            ///< column i: of the inverse of the independent columns
  SparseColumns others_;             ///< the other columns of the basis
  std::vector<std::size_t> otherIndex_;
  std::vector<Residue> values_;       ///< a vector's elements in the independent columns
  std::vector<Residue> coordinates_;  ///< what follows from them
};

extern template class Membership<dbl_t>;
extern template class Membership<QQ>;

}  // namespace vexil
