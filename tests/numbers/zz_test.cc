// Vexil - exact integer optimization on lattices.
#include "numbers/zz.h"

#include <algorithm>
#include <climits>
#include <utility>
#include <vector>

#include "number_cases.h"

namespace vexil {
namespace {

ZZ zz(const std::string& text) {
  ZZ a;
  fromString(a, text);
  return a;
}

std::string nines(int count) { return std::string(static_cast<std::size_t>(count), '9'); }

/// The product digit by digit, as on paper.
std::string paperProduct(const std::string& a, const std::string& b) {
  std::vector<int> columns(a.size() + b.size(), 0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < b.size(); ++j) {
      columns[i + j] += (a[a.size() - 1 - i] - '0') * (b[b.size() - 1 - j] - '0');
    }
  }
  std::string text;
  int carry = 0;
  for (const int column : columns) {
    text += static_cast<char>('0' + (column + carry) % 10);
    carry = (column + carry) / 10;
  }
  while (text.size() > 1 && text.back() == '0') text.pop_back();
  std::reverse(text.begin(), text.end());
  return text;
}

bool isNormal(const ZZ& a) {
  return a.MN >= 1 && (a.MN == 1 || a.data[a.MN] != 0) && (a.positive || !isZero(a)) &&
         std::all_of(a.data + 1, a.data + 1 + a.MN,
                     [](long long limb) { return limb >= 0 && limb < limbs::BASE; });
}

TEST(ZZ, ComputesLikeMachineIntegers) {
  for (const long long value : {0LL, -1LL, 999999999LL, 1000000000LL, -1000000001LL,
                                1000000000000000000LL, LLONG_MAX, LLONG_MIN}) {
    EXPECT_TRUE(isNormal(value));
    EXPECT_EQ(toString(ZZ(value)), std::to_string(value));
  }
  RandomNumbers random(1);
  for (int round = 0; round < 20000; ++round) {
    const long long x = std::stoll(random.digits(9)) * (random.below(2) == 0 ? 1 : -1);
    const long long y = std::stoll(random.digits(random.below(2) == 0 ? 9 : 2)) - 50;
    const ZZ a = x;
    const ZZ b = y;
    ASSERT_EQ(a + b, ZZ(x + y));
    ASSERT_EQ(a - b, ZZ(x - y));
    ASSERT_EQ(a * b, ZZ(x * y));
    ASSERT_EQ(compare(a, b), (x > y) - (x < y));
    if (y == 0) continue;
    ZZ q;
    ZZ r;
    div(a * b + a, b, q, r);
    ASSERT_EQ(q, ZZ((x * y + x) / y));
    ASSERT_EQ(r, ZZ((x * y + x) % y));
  }
}

TEST(ZZ, MultipliesAndDividesLongNumbers) {
  RandomNumbers random(2);
  for (int round = 0; round < 3000; ++round) {
    const int length = round % 10 == 0 ? 600 : 90;
    const std::string x = random.digits(length);
    const std::string y = random.digits(length);
    const ZZ a = zz(x);
    const ZZ b = zz(y);
    ASSERT_EQ(toString(a) + toString(-a * b), x + "-" + paperProduct(x, y));
    ZZ q;
    ZZ r;
    div(-a, b, q, r);
    ASSERT_TRUE(isNormal(q) && isNormal(r) && q * b + r == -a);
    ASSERT_TRUE(compareMagnitudes(r, b) < 0 && (isZero(r) || !r.positive));
    const ZZ g = gcd(a * b, b * random.integer(40));
    div(g, b, q, r);
    ASSERT_TRUE(isZero(r) && g.positive);
  }
  // On both sides of the products that are split, uneven ones, and one whose middle part carries
  // far.
  const std::string far = "1" + std::string(63, '0') + nines(72);
  for (const auto& [x, y] : {std::pair(nines(180), nines(90)),
                             {nines(603), nines(27)},
                             {nines(1800), nines(9)},
                             {nines(135), nines(126)},
                             {nines(2700), nines(2691)},
                             {nines(144), far}}) {
    EXPECT_EQ(toString(zz(x) * zz(y)), paperProduct(x, y));
  }
  const ZZ a = zz(nines(5000) + random.digits(5000));
  const ZZ b = zz(random.digits(9000) + nines(1000));
  const ZZ c = random.integer(3000);
  EXPECT_EQ((a + c) * b, a * b + c * b);
  EXPECT_EQ((a - b) * (a + b), a * a - b * b);
  EXPECT_EQ(gcd(a * c, b * c), gcd(a, b) * abs(c));
}

TEST(ZZ, LetsResultsBeOperands) {
  RandomNumbers random(3);
  using Operation = void (*)(const ZZ&, const ZZ&, ZZ&);
  for (int round = 0; round < 300; ++round) {
    const ZZ a = random.integer(round % 2 == 0 ? 18 : 120);
    const ZZ b = random.integer(60);
    for (const auto operation : {Operation(add), Operation(sub), Operation(mul)}) {
      ZZ expected;
      operation(a, b, expected);
      ZZ x = a;
      operation(x, b, x);
      ASSERT_EQ(x, expected);
      x = b;
      operation(a, x, x);
      ASSERT_EQ(x, expected);
      operation(a, ZZ(a), expected);
      x = a;
      operation(x, x, x);
      ASSERT_EQ(x, expected);
    }
    ZZ quotient;
    ZZ remainder;
    div(a, b, quotient, remainder);
    ZZ x = a;
    ZZ y = b;
    div(x, y, x, y);
    ASSERT_TRUE(x == quotient && y == remainder);
    x = a;
    y = b;
    div(x, y, y, x);
    ASSERT_TRUE(y == quotient && x == remainder);
    x = a;
    div(x, b, x, x);  // one object for both: the quotient
    ASSERT_EQ(x, quotient);
    y = b;
    div(y, y, x, y);
    ASSERT_TRUE(x == 1 && y == 0);
  }
}

TEST(ZZ, RoundsQuotientsTowardZero) {
  const auto divided = [](int a, int b) {
    ZZ q;
    ZZ r;
    div(a, b, q, r);
    return toString(q) + " " + toString(r) + " " + toString(mod(a, b));
  };
  EXPECT_EQ(divided(-7, 2), "-3 -1 1");
  EXPECT_EQ(divided(7, -2), "-3 1 1");
  EXPECT_EQ(divided(-7, -2), "3 -1 -3");
  EXPECT_EQ(divided(-1, 2), "0 -1 1");
  EXPECT_EQ(divided(-4, 2), "-2 0 0");
}

TEST(ZZ, TakesPowersAndDivisors) {
  const auto raised = [](int base, ZZ exponent) {
    power(base, exponent, exponent);
    return toString(exponent);
  };
  EXPECT_EQ(raised(0, 0) + " " + raised(2, 5) + " " + raised(10, 10), "1 32 10000000000");
  EXPECT_EQ(raised(-3, 41), "-36472996377170786403");
  EXPECT_EQ(toString(gcd(0, 0)) + toString(gcd(-12, 18)) + toString(gcd(0, -7)), "067");
  EXPECT_EQ(lcm(4, 6), 12);
}

TEST(ZZ, ReadsTextAndCutsDigits) {
  forEachCase("=0 -=-0 12a3=123 -0=-0 000=0 +5=5 1-2=12 -x7=-7 x-7=7 1000000001=1000000001",
              [](const std::string& text, const std::string& printed) {
                EXPECT_EQ(toString(zz(text)), printed) << text;
              });
  EXPECT_EQ(compare(zz("-"), 0), 0);
  forEachCase("1200000000=12 -50000000000000000000=-5 100200300400500600=1002003004005006 -=0",
              [](const std::string& text, const std::string& stripped) {
                ZZ a = zz(text);
                stripTrailingZeros(a);
                EXPECT_EQ(toString(a), stripped);
              });
  const auto dropped = [](const std::string& text, std::int64_t count) {
    ZZ a = zz(text);
    dropLowDigits(a, count);
    return toString(a) + " of " + std::to_string(digitCount(zz(text)));
  };
  EXPECT_EQ(dropped("12345678901234567890", 11), "123456789 of 20");
  EXPECT_EQ(dropped("1234567890", 10), "0 of 10");
  EXPECT_EQ(dropped("-123456789", 8), "-1 of 9");
  EXPECT_EQ(dropped("-123456789", 9), "-0 of 9");  // the sign is a character of the text
  EXPECT_EQ(dropped("-123456789", 10), "0 of 9");
}

TEST(ZZ, CountsWithoutLimbsAsZero) {
  ZZ a = 7;
  a.base_lshift(2);
  EXPECT_EQ(toString(a), "7000000000000000000");
  a.base_rshift(3);
  EXPECT_EQ(a.MN, 0);
  EXPECT_TRUE(isZero(a) && a == ZZ() && toString(a) == "0" && digitCount(a) == 1);
  a.base_lshift(3);
  EXPECT_EQ(a, 0);
  ZZ moved = zz(nines(40));
  const ZZ kept = std::move(moved);
  moved = ZZ();
  EXPECT_TRUE(isNormal(moved + ZZ()) && isNormal(moved * kept) && isNormal(kept - kept));
  EXPECT_TRUE(kept + moved == kept && -moved == 0);
}

TEST(ZZDeathTest, ReportsImpossibleOperations) {
  ZZ r = 5;
  EXPECT_EXIT(div(5, zz("-"), r, r), testing::ExitedWithCode(1), "ZZ::div -- division by zero");
  EXPECT_EXIT(power(2, -1, r), testing::ExitedWithCode(1),
              "\\[ ZZ::operator \\^ \\] Exponent < 0 \n");
  EXPECT_EXIT(r.base_rshift(2), testing::ExitedWithCode(1), "ZZ::base_rshift steps > N");
}

}  // namespace
}  // namespace vexil
