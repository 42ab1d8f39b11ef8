// Vexil - exact integer optimization on lattices.
//
// The opt file: a fixed sequence of bracketed items,
//   dt [= kt] At Ag bg Au lu ru dx lx rx
// read and validated in the order of the text, so that the first fault is the one reported.
#pragma once

#include "foundation/file_text.h"
#include "foundation/text_streams.h"
#include "program/vexil.h"

namespace vexil {

template <typename T>
void Vexil<T>::readOptFile() {
  auto text = readFileText(optFile);
  if (!text) fail("Could not read opt file: ", optFile);
  std::istringstream in(std::move(*text));  // nothing can be put into it, as into a file
  reset(true);
  readTargets(in);
  readEquations(in);
  Au.read(in);
  const std::int64_t n = At.rowCount > 0   ? At.columnCount
                         : Au.rowCount > 0 ? Au.columnCount
                                           : Ag.columnCount;
  if (n == 0) fail("Dimension error -- n == 0");
  checkColumns(n);
  checkFiniteness();
  readInequationBounds(in);
  readVariableBounds(in, n);
  classifyVariables();
  allTargetsFinite = isFinite(dt);
}

template <typename T>
void Vexil<T>::readTargets(std::istream& in) {
  dt.read(in);
  skipChars(in, BLANKS, true);
  if (nextIs(in, '=')) {
    in.get();
    kt.read(in);
    if (kt.MN != dt.MN) {
      fail("The dimensions of the target properties (kt, dt) differ (", kt.MN, ", ", dt.MN, ")");
    }
    skipChars(in, BLANKS, true);
    peekChar(in);  // a text that ends here leaves the stream failed
  } else {
    kt = dt;
  }
  At.read(in);
  if (At.rowCount != dt.MN) {
    fail("The row count of At (", At.rowCount, ") differs with the dimension of dt (", dt.MN, ")");
  }
}

template <typename T>
void Vexil<T>::readEquations(std::istream& in) {
  Ag.read(in);
  bg.read(in);
  if (Ag.rowCount != bg.MN) {
    fail("The row count of Ag (", Ag.rowCount, ") differs with the dimension of bg (", bg.MN, ")");
  }
}

template <typename T>
void Vexil<T>::checkColumns(std::int64_t n) const {
  const auto differs = [n](const Matrix<T>& matrix) {
    return matrix.columnCount > 0 && matrix.columnCount != n;
  };
  if (differs(At)) {
    fail("The column count of At (", At.columnCount, ") is not right ( != ", n, " )");
  }
  if (differs(Ag)) {
    fail("The column count of Ag (", Ag.columnCount, ") is not right ( != ", n, " )");
  }
  if (differs(Au)) {
    fail("The column count of Au (", Au.columnCount, ") is not right ( != ", n, " )");
  }
}

template <typename T>
void Vexil<T>::checkFiniteness() const {
  if (!isFinite(At)) fail("+-inf not allowed in At");
  for (std::int64_t i = 1; i <= Ag.rowCount; ++i) {
    if (!isFinite(bg[i])) fail("+-inf not allowed in bg");
    if (!isFinite(Ag[i])) fail("+-inf not allowed in Ag");
  }
  if (!isFinite(Au)) fail("+-inf not allowed in Au");
}

template <typename T>
void Vexil<T>::readInequationBounds(std::istream& in) {
  lu.read(in);
  if (Au.rowCount != lu.MN) {
    fail("The row count of Au ( ", Au.rowCount, ") differs with the dimension of lu / ru ( ", lu.MN,
         ")");
  }
  ru.read(in);
  if (lu.MN != ru.MN) {
    fail("The dimensions of lu (", lu.MN, ") and ru (", ru.MN, ") differ");
  }
  const T infinity = NumberTraits<T>::infinity();
  for (std::int64_t i = 1; i <= lu.MN; ++i) {
    if (lu[i] > ru[i]) fail("ru has to be >= lu in each of its components");
    if (lu[i] == -infinity && ru[i] == infinity) {
      fail("Useless inequation -inf <= ... <= inf found");
    }
  }
}

template <typename T>
void Vexil<T>::readVariableBounds(std::istream& in, std::int64_t n) {
  dx.read(in);
  lx.read(in);
  rx.read(in);
  if (rx.MN < n) fail("recheck sdim case and the usage of n (eg. in opt2lat)");
  if (rx.MN == 0 || rx.MN > n) fail("The dimension of rx has to be > 0 and < A_{t,u,g}.MN");
  if (lx.MN != rx.MN || dx.MN != rx.MN) {
    fail("The dimensions of the solution properties (lx, rx, dx) differ (", lx.MN, ", ", rx.MN,
         ", ", dx.MN, ")");
  }
  for (std::int64_t i = 1; i <= rx.MN; ++i) {
    if (rx[i] < lx[i]) fail("rx has to be >= lx in each of its components");
  }
}

template <typename T>
void Vexil<T>::classifyVariables() {
  freedomDegrees.resize(lx.MN, false);
  for (std::int64_t i = 1; i <= lx.MN; ++i) freedomDegrees[i] = freedomDegree(lx[i], rx[i]);
  starsPrepared = false;
}

}  // namespace vexil
