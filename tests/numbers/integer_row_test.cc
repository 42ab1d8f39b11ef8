// Vexil - exact integer optimization on lattices.
#include "numbers/integer_row.h"

#include <gtest/gtest.h>

#include "numbers/matrix_product.h"
#include "support/parsed.h"

namespace vexil {
namespace {

template <typename T>
class IntegerRows : public testing::Test {
 protected:
  static std::string product(const char* a, const char* b) {
    IntegerRow left;
    IntegerRow right;
    left.take(vector<T>("[ 1 1 1 1 ]"));  // is forgotten
    if (!left.take(vector<T>(a)) || !right.take(vector<T>(b))) return "not taken";
    const auto result = left * right;
    EXPECT_EQ(result, right * left);
    return result ? std::to_string(*result) : "too great";
  }
};
using BothNumbers = testing::Types<dbl_t, QQ>;
TYPED_TEST_SUITE(IntegerRows, BothNumbers);

TYPED_TEST(IntegerRows, MultiplyUpToTheLimit) {
  struct Case {
    const char* a;
    const char* b;
    const char* product;
  };
  for (const Case& c : {Case{"[ 2 -3 5 ]", "[ 7 11 -13 ]", "-84"},
                        {"[ 800000000000000000 -800000000000000000 800000000000000000 "
                         "800000000000000000 800000000000000000 ]",
                         "[ -1 1 -1 -1 -1 ]", "-4000000000000000000"},
                        {"[ 800000000000000000 -800000000000000000 800000000000000000 "
                         "800000000000000000 800000000000000000 ]",
                         "[ -1 1 -1 -1 -2 ]", "too great"},
                        {"[ 2000000000 2000000000 ]", "[ 1000000000 -1000000000 ]", "0"},
                        {"[ 2000000000 2000000000 ]", "[ 1000000001 -1000000000 ]", "too great"},
                        {"[ 2000000000 1 ]", "[ -1000000000 -1000000000 ]", "-2000000001000000000"},
                        {"[ 1 2 ]", "[ 1 2 3 ]", "too great"},
                        {"[ ]", "[ ]", "too great"},
                        {"[ 800000000000000000 -800000000000000000 800000000000000000 "
                         "800000000000000000 800000000000000000 -1 ]",
                         "[ 0 0 0 0 0 0 ]", "not taken"},
                        {"[ 10000000000000000000 ]", "[ 0 ]", "not taken"},
                        {"[ 1 0.5 ]", "[ 1 1 ]", "not taken"},
                        {"[ 1 -inf ]", "[ 1 1 ]", "not taken"}}) {
    EXPECT_EQ(this->product(c.a, c.b), c.product) << c.a << c.b;
  }
  IntegerRow row;
  EXPECT_FALSE(row.isTaken());
  row.take(vector<TypeParam>("[ 0.5 ]"));
  EXPECT_TRUE(row.isTaken());
  EXPECT_TRUE(row.isEmpty());
  row.clear();
  EXPECT_FALSE(row.isTaken());
}

TYPED_TEST(IntegerRows, MakeProductsOfMatrices) {
  const auto A = matrix<TypeParam>("[ [ 1 2 ] [ 0.5 1 ] [ 4000000000000000000 1 ] ]");
  MatrixProduct<TypeParam> product(A);
  for (const char* const x : {"[ 3 4 ]", "[ 0.25 4 ]", "[ 1 -1 ]"}) {
    EXPECT_EQ(joined(product(vector<TypeParam>(x))), joined(A * vector<TypeParam>(x))) << x;
  }
}

}  // namespace
}  // namespace vexil
