// Vexil - exact integer optimization on lattices.
#pragma once

#include <sstream>
#include <string>

#include "foundation/matrix.h"

namespace vexil {

/// The vector or matrix of a text.
template <typename Container>
Container parsed(const std::string& text) {
  std::stringstream in(text);
  Container result;
  result.read(in);
  return result;
}

template <typename T>
Vector<T> vector(const std::string& text) {
  return parsed<Vector<T>>(text);
}

template <typename T>
Matrix<T> matrix(const std::string& text) {
  return parsed<Matrix<T>>(text);
}

}  // namespace vexil
