// Vexil - exact integer optimization on lattices.
#include "numbers/integer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

#include "numbers/integer_row.h"
#include "numbers/matrix_product.h"
#include "support/parsed.h"

namespace vexil {
namespace {

constexpr std::int64_t MOST = std::numeric_limits<std::int64_t>::max();

/// Numbers on both sides of the end of a word, and far beyond it.
std::vector<ZZ> sampleNumbers() {
  const ZZ most = static_cast<long long>(MOST);
  std::vector<ZZ> numbers = {0, 1, 2, 3, 7, most, most + 1, most + 2, most + most, most * most};
  std::mt19937_64 random(1);
  for (int i = 0; i < 30; ++i) {
    ZZ number = static_cast<long long>(random() >> (1 + random() % 60));
    for (std::uint64_t factors = random() % 3; factors > 0; --factors)
      number = number * ZZ(static_cast<long long>(random() >> (1 + random() % 60)));
    numbers.push_back(number);
  }
  for (std::size_t i = numbers.size(); i-- > 0;) numbers.push_back(-numbers[i]);
  return numbers;
}

TEST(Integer, AgreesWithBigIntegersAcrossTheEndOfTheWord) {
  const std::vector<ZZ> numbers = sampleNumbers();
  for (const ZZ& a : numbers) {
    for (const ZZ& b : numbers) {
      const Integer A(a);
      const Integer B(b);
      SCOPED_TRACE(testing::Message() << toString(a) << " and " << toString(b));
      ASSERT_EQ((A + B).zz(), a + b);
      ASSERT_EQ((A - B).zz(), a - b);
      ASSERT_EQ((A * B).zz(), a * b);
      ASSERT_EQ(compare(A, B), compare(a, b));
      ASSERT_EQ(gcd(A, B).zz(), gcd(a, b));
      Integer sum = B;
      sum.addProduct(A, B);
      ASSERT_EQ(sum.zz(), b + a * b);
      sum.subtractProduct(A, B);
      ASSERT_EQ(sum, B);
      ASSERT_EQ(sum.isWord(),
                b >= ZZ(static_cast<long long>(-MOST)) && b <= ZZ(static_cast<long long>(MOST)));
      if (B.isZero()) continue;
      const Integer rest = A - floorQuotient(A, B) * B;
      ASSERT_TRUE(rest.isZero() || rest.sign() == B.sign());
      ASSERT_LT(abs(rest), abs(B));
      ASSERT_EQ(divides(B, A), rest.isZero());
      ASSERT_EQ(ceilQuotient(A, B), floorQuotient(A, B) + (rest.isZero() ? 0 : 1));
      const Integer excess = (A - nearestQuotient(A, B) * B) * 2 * B.sign();
      ASSERT_GE(excess, -abs(B));
      ASSERT_LT(excess, abs(B));
    }
  }
}

TEST(Integer, GoesToRealNumbersAndBack) {
  for (const ZZ& a : sampleNumbers()) {
    const Integer A(a);
    const Integer back = Integer::fromReal(A.toReal());
    EXPECT_LE(abs(back - A) * (std::int64_t{1} << 60), abs(A)) << A;
  }
  EXPECT_EQ(Integer::fromReal(-2.9L), -2);
  EXPECT_EQ(Integer::fromReal(INF_F), 0);
  EXPECT_EQ(Integer::fromReal(std::numeric_limits<dbl_t>::quiet_NaN()), 0);
  std::ostringstream text;
  text << Integer::fromReal(-0x1p80L);
  EXPECT_EQ(text.str(), "-1208925819614629174706176");
}

template <typename T>
class IntegerRows : public testing::Test {
 protected:
  static std::string product(const std::string& a, const std::string& b) {
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
  const std::string five =
      "800000000000000000 -800000000000000000 800000000000000000 800000000000000000 "
      "800000000000000000";
  for (const auto& [a, b, expected] :
       {std::array<std::string, 3>{"[ 2 -3 5 ]", "[ 7 11 -13 ]", "-84"},
        {"[ " + five + " ]", "[ -1 1 -1 -1 -1 ]", "-4000000000000000000"},
        {"[ " + five + " ]", "[ -1 1 -1 -1 -2 ]", "too great"},
        {"[ 2000000000 2000000000 ]", "[ 1000000000 -1000000000 ]", "0"},
        {"[ 2000000000 2000000000 ]", "[ 1000000001 -1000000000 ]", "too great"},
        {"[ 2000000000 1 ]", "[ -1000000000 -1000000000 ]", "-2000000001000000000"},
        {"[ 1 2 ]", "[ 1 2 3 ]", "too great"},
        {"[ ]", "[ ]", "too great"},
        {"[ " + five + " -1 ]", "[ 0 0 0 0 0 0 ]", "not taken"},
        {"[ 10000000000000000000 ]", "[ 0 ]", "not taken"},
        {"[ 1 0.5 ]", "[ 1 1 ]", "not taken"},
        {"[ 1 -inf ]", "[ 1 1 ]", "not taken"}}) {
    EXPECT_EQ(this->product(a, b), expected) << a << b;
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
  for (const char* const x : {"[ 3 4 ]", "[ 0.25 4 ]", "[ 1 -1 ]"})
    EXPECT_EQ(joined(product(vector<TypeParam>(x))), joined(A * vector<TypeParam>(x))) << x;
}

}  // namespace
}  // namespace vexil
