// Vexil - exact integer optimization on lattices.
#include "foundation/matrix.h"

#include <gtest/gtest.h>

#include <functional>

#include "numbers/qq_vectors.h"
#include "support/pairs.h"
#include "support/parsed.h"

namespace vexil {
namespace {

using testing::ExitedWithCode;

template <typename T>
class Containers : public testing::Test {
 public:
  static Vector<T> vector(const std::string& text) { return parsed<Vector<T>>(text); }
  static Matrix<T> matrix(const std::string& text) { return parsed<Matrix<T>>(text); }
};
TYPED_TEST_SUITE(Containers, NumberTypes);

TYPED_TEST(Containers, RefuseMalformedVectors) {
  EXPECT_EXIT(this->vector("[ ix ]"), ExitedWithCode(1), "Vector: bad input2");
  EXPECT_EXIT(this->vector("[ inx ]"), ExitedWithCode(1), "Vector: bad input3");
  const char* const expected =
      std::is_same_v<TypeParam, QQ> ? "QQ: parse error1" : "Vector: bad input";
  EXPECT_EXIT(this->vector("[ 1 x ]"), ExitedWithCode(1), expected);
  EXPECT_EXIT(this->vector("[ 1 2"), ExitedWithCode(1), expected);
  std::istringstream failed;
  failed.setstate(std::ios::failbit);
  Vector<TypeParam> v;
  EXPECT_THROW(v.read(failed), ReadException);
  Matrix<TypeParam> m;
  EXPECT_EXIT(m.read(failed), ExitedWithCode(1), "Matrix: bad stream");
}

TYPED_TEST(Containers, CompareWithinTheTolerance) {
  using T = TypeParam;
  const auto pair = [](const T& second) {
    Vector<T> v;
    v.resize(2, false);
    v[1] = T(1);
    v[2] = second;
    return v;
  };
  const T tiny = T(1) / T(10000000000LL);
  EXPECT_TRUE(pair(T(2)) == pair(T(2) + tiny));
  EXPECT_FALSE(pair(T(2)) == pair(T(2) + tiny * T(100)));
  EXPECT_FALSE(pair(T(2)) >= pair(T(2) + tiny));
  EXPECT_TRUE(pair(T(2)) <= pair(T(2) + tiny));
  const T infinity = NumberTraits<T>::infinity();
  EXPECT_TRUE(pair(infinity) == pair(infinity));
  EXPECT_FALSE(pair(infinity) == pair(-infinity));
}

TYPED_TEST(Containers, CheckDimensionsFirst) {
  const auto a = this->vector("[ 1 2 ]");
  const auto b = this->vector("[ 1 2 3 ]");
  auto c = a;
  const auto A = this->matrix("[ [1 2] [3 4] ]");
  auto C = this->matrix("[ [1 2 3] ]");
  auto ragged = Matrix<TypeParam>(this->matrix("[ [1 2] [3] ]"));
  const std::vector<std::pair<std::function<void()>, const char*>> cases = {
      {[&] { c += b; }, "Vector: dimension mismatch1\n"},
      {[&] { c -= b; }, "Vector: dimension mismatch2\n"},
      {[&] { c *= b; }, "Vector: dimension mismatch3\n"},
      {[&] { c /= b; }, "Vector: dimension mismatch4\n"},
      {[&] { c = a + b; }, "Vector: dimension mismatch5\n"},
      {[&] { c = a - b; }, "Vector: dimension mismatch6\n"},
      {[&] { c[1] = a * b; }, "Vector: dimension mismatch8\n"},
      {[&] { C.columnCount = a == b; }, "Vector: dimension mismatch9\n"},
      {[&] { C.columnCount = a >= b; }, "Vector: dimension mismatch10\n"},
      {[&] { C.columnCount = a <= b; }, "Vector: dimension mismatch11\n"},
      {[&] { c = A * b; }, "Matrix: mat-vec multiplication dimension mismatch\n"},
      {[&] { c = b * A; }, "vector-matrix dimension mismatch\n"},
      {[&] { C = A * C; }, "Matrix: dimension mismatch6\n"},
      {[&] { C *= C; }, "Matrix: dimension mismatch3\n"},
      {[&] { C.swapRows(1, 2); }, "Matrix: row swap index out of range\n"},
      {[&] { C.resize(-1, 2, false); }, "Matrix: invalid size\n"},
      {[&] { c[1] = C.determinant(); }, "Matrix: a non-quadratic matrix determinant is not"},
      {[&] { c[1] = ragged.determinant(); }, "Matrix: a non-quadratic matrix determinant is not"},
      {[&] { c.subtractMultiple(c[1], b); }, "Vector: dimension mismatch2\n"},
      {[&] { c.insertComponent(4, c[1]); }, "insertComponent: invalid index\n"},
      {[&] { c.removeComponent(0); }, "removeComponent: invalid index\n"},
      {[&] { C.removeRow(2); }, "Invalid row index!\n"},
      {[&] { C.removeColumn(4); }, "removeComponent: invalid index\n"},
      {[&] { C.appendRow(this->vector("[ 1 2 3 4 ]")); }, "Matrix row dimension mismatch\n"},
      {[&] { ragged *= A; }, "Matrix: dimension mismatch3\n"},
  };
  for (const auto& [act, text] : cases) EXPECT_EXIT(act(), ExitedWithCode(1), text);
}

TYPED_TEST(Containers, Multiply) {
  const auto A = this->matrix("[ [1 2 3] [4 5 6] ]");
  auto B = this->matrix("[ [1 0] [0 2] [1 1] ]");
  EXPECT_EQ(joined(A * this->vector("[ 1 0 -1 ]")), "[ -2 -2 ]");
  EXPECT_EQ(joined(this->vector("[ 2 -1 ]") * A), "[ -2 -1 0 ]");
  EXPECT_EQ(joined(A * B), "[\n[ 4 7 ]\n[ 10 16 ]\n]");
  B *= A;
  EXPECT_EQ(joined(B), "[\n[ 1 2 3 ]\n[ 8 10 12 ]\n[ 5 7 9 ]\n]");
  // A row with a zero factor is not looked at, whatever it holds.
  EXPECT_EQ(joined(this->vector("[ 0 1 ]") * this->matrix("[ [inf 1] [2 3] ]")), "[ 2 3 ]");
}

TYPED_TEST(Containers, HaveDeterminants) {
  const std::vector<std::pair<const char*, int>> cases = {
      {"[ ]", 1},
      {"[ [1 2] [2 4] ]", 0},
      {"[ [0 1] [1 0] ]", -1},
      {"[ [2 0 1] [4 1 3] [6 5 8] ]", 0},
      {"[ [2 0 1] [4 1 3] [8 5 8] ]", -2},
  };
  for (const auto& [text, determinant] : cases) {
    const TypeParam difference = this->matrix(text).determinant() - TypeParam(determinant);
    EXPECT_TRUE(isZero(difference)) << text;
  }
}

TYPED_TEST(Containers, ResizeKeepsRows) {
  auto m = this->matrix("[ [1] [2] [3] [4] [5] ]");
  m.resize(3, 4, false);
  EXPECT_EQ(m.rowCount, 5);
  EXPECT_EQ(m[5].MN, 4);
  m.setSize(2, 1);
  EXPECT_EQ(joined(m), "[\n[ 1 ]\n[ 2 ]\n]");
  Matrix<TypeParam> copy = m;
  m.swapRows(1, 2);
  EXPECT_EQ(joined(copy), "[\n[ 1 ]\n[ 2 ]\n]");
  EXPECT_EQ(joined(m[1]), "[ 2 ]");
}

TYPED_TEST(Containers, ChangeByRowsAndColumns) {
  auto v = this->vector("[ 1 -5 3 ]");
  EXPECT_EQ(joined(-v, v.supNorm()), "[ -1 5 -3 ]5");
  v.subtractMultiple(TypeParam(-2), this->vector("[ 0 1 2 ]"));
  EXPECT_EQ(joined(v), "[ 1 -3 7 ]");
  v.insertComponent(1, v[3]);
  v.insertComponent(5, TypeParam(2));
  v.removeComponent(2);
  EXPECT_EQ(joined(v), "[ 7 -3 7 2 ]");
  auto A = this->matrix("[ [1 2 3] [4 5 6] ]");
  EXPECT_EQ(joined(A.transposed()), "[\n[ 1 4 ]\n[ 2 5 ]\n[ 3 6 ]\n]");
  A.appendRow(A[1]);
  A.removeRow(1);
  A.removeColumn(2);
  A.widen(3);
  A.appendRow(this->vector("[ 8 ]"));
  A.negateColumn(1);
  A.divideColumn(2, TypeParam(3));
  EXPECT_EQ(joined(A), "[\n[ -4 2 0 ]\n[ -1 1 0 ]\n[ -8 0 0 ]\n]");
  Matrix<TypeParam> first;
  first.appendRow(v);
  EXPECT_EQ(joined(first), "[\n[ 7 -3 7 2 ]\n]");
}

TYPED_TEST(Containers, CompareExactly) {
  const auto A = this->matrix("[ [1 2] ]");
  for (const char* const other :
       {"[ [1 2.00000000001] ]", "[ [1 2 3] ]", "[ [1 3] ]", "[ [1 2] [1 2] ]", "[ [-inf 2] ]"}) {
    EXPECT_FALSE(A.equalsExactly(this->matrix(other))) << other;
  }
  EXPECT_TRUE(A.equalsExactly(this->matrix("[ [1 2] ]")));
  EXPECT_TRUE(isFinite(A));
  EXPECT_FALSE(isFinite(this->matrix("[ [1 2] [3 -inf] ]")));
}

}  // namespace
}  // namespace vexil
