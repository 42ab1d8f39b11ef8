// Vexil - exact integer optimization on lattices.
//
// Lattices on bases that are set by hand, and an independent judge of reduced bases.
#pragma once

#include <random>

#include "lattice/lattice.h"
#include "support/parsed.h"

namespace vexil {

/// A lattice on the basis of a text. Its bounds are such that no vector is ever within them.
template <typename L>
void setBasis(L& lattice, const std::string& text) {
  using T = decltype(lattice.embedding.R);
  const auto base = matrix<T>(text);
  lattice.setBase(&base, false);
  lattice.embedding.resize(base.columnCount);
  for (auto* const bounds : {&lattice.embedding.l, &lattice.embedding.r}) {
    bounds->fill(T{});
    (*bounds)[base.columnCount] = T(987654321);
  }
  lattice.embedding.checkMode = 1;
}

/// Small whole numbers; row i is an integer combination of the rows before it for each i in
/// `dependent`.
inline std::string randomBasis(std::mt19937& random, int rows, int cols,
                               const std::vector<int>& dependent = {}) {
  std::uniform_int_distribution<int> number(-9, 9);
  std::vector<std::vector<int>> basis;
  for (int i = 0; i < rows; ++i) {
    std::vector<int> row(static_cast<std::size_t>(cols));
    for (int& element : row) element = number(random);
    if (std::count(dependent.begin(), dependent.end(), i) != 0) {
      row.assign(row.size(), 0);
      for (const auto& earlier : basis) {
        const int factor = number(random) / 4;
        for (std::size_t j = 0; j < row.size(); ++j) row[j] += factor * earlier[j];
      }
    }
    basis.push_back(row);
  }
  std::string text = "[";
  for (const auto& row : basis) {
    text += "\n[ ";
    for (const int element : row) text += std::to_string(element) + " ";
    text += "]";
  }
  return text + "\n]";
}

/// Gram-Schmidt data in exact numbers, straight from the definition.
struct ExactGramSchmidt {
  Matrix<QQ> mu;
  Matrix<QQ> orthogonal;
  Vector<QQ> bstar;

  template <typename T>
  explicit ExactGramSchmidt(const Matrix<T>& B) {
    convert(B, orthogonal);
    const Matrix<QQ> rows = orthogonal;
    mu.setIdentity(B.rowCount);
    bstar.resize(B.rowCount, false);
    for (std::int64_t i = 1; i <= B.rowCount; ++i) {
      for (std::int64_t j = 1; j < i; ++j) {
        if (bstar[j] == QQ{}) continue;
        mu[i][j] = rows[i] * orthogonal[j] / bstar[j];
        orthogonal[i].subtractMultiple(mu[i][j], orthogonal[j]);
      }
      bstar[i] = orthogonal[i] * orthogonal[i];
    }
  }
};

}  // namespace vexil
