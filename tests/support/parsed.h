// Vexil - exact integer optimization on lattices.
#pragma once

#include <sstream>
#include <string>

#include "foundation/exceptions.h"
#include "foundation/matrix.h"

namespace vexil {

/// The values one behind the other, parted by blanks.
template <typename First, typename... Others>
std::string words(const First& first, const Others&... others) {
  std::ostringstream text;
  text << first;
  ((text << ' ' << others), ...);
  return text.str();
}

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

/// The message of the exception that `operation` throws, nothing if it throws none.
template <typename Operation>
std::string thrown(Operation operation) {
  try {
    operation();
  } catch (const GeneralException& exception) {
    return exception.message;
  }
  return "";
}

}  // namespace vexil
