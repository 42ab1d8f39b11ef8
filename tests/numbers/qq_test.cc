// Vexil - exact integer optimization on lattices.
#include "numbers/qq.h"

#include <functional>
#include <utility>

#include "foundation/exceptions.h"
#include "number_cases.h"
#include "numbers/qq_vectors.h"

namespace vexil {
namespace {

QQ q(const char* text) { return QQ(text); }

/// ganze nenner + zaehler with the sign.
ZZ improper(const QQ& x) { return (x.ganze * x.nenner + x.zaehler) * (x.positive ? 1 : -1); }

bool isNormal(const QQ& x) {
  const bool flags = x.ganze.positive && x.zaehler.positive && x.nenner.positive;
  const bool zero = !x.isInf && isZero(x.ganze) && isZero(x.zaehler);
  return flags && x.zaehler < x.nenner && gcd(x.zaehler, x.nenner) == 1 && (x.positive || !zero) &&
         (!x.isInf || (x.ganze == 1 && x.nenner == 1));
}

/// x is n / d, in normal form.
testing::AssertionResult is(const QQ& x, const ZZ& n, const ZZ& d) {
  if (isNormal(x) && !x.isInf && improper(x) * d == n * x.nenner)
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << x << " is not " << toString(n) << "/" << toString(d);
}

void checkOperations(const QQ& a, const QQ& b) {
  const ZZ an = improper(a);
  const ZZ bn = improper(b);
  const ZZ& ad = a.nenner;
  const ZZ& bd = b.nenner;
  ASSERT_TRUE(is(a + b, an * bd + bn * ad, ad * bd));
  ASSERT_TRUE(is(a - b, an * bd - bn * ad, ad * bd));
  ASSERT_TRUE(is(a * b, an * bn, ad * bd));
  ASSERT_EQ(compare(a, b), compare(an * bd, bn * ad));
  ASSERT_TRUE(is(-a, -an, ad));
  ASSERT_TRUE(is(abs(a), abs(an), ad));
  ASSERT_EQ(isZero(a), compareMagnitudes(an * ZZ(1000000000), ad) <= 0);
  QQ sum = b;
  addProduct(sum, a, b);
  ASSERT_EQ(sum, b + a * b);
  if (b != 0) {
    ASSERT_TRUE(is(a / b, an * bd, ad * bn));
  }
}

TEST(QQ, ComputesWithFractions) {
  RandomNumbers random(11);
  for (int round = 0; round < 30000; ++round) {
    const int length = round % 20 == 0 ? 70 : (round % 3 == 0 ? 3 : 9);
    const QQ a = random.rational(length);
    const QQ b = round % 2 == 0 ? random.rational(length) : random.rational(9);
    checkOperations(a, b);
    if (HasFatalFailure()) FAIL() << a << " and " << b;
  }
}

TEST(QQ, ComputesAtTheEdgeOfOneLimb) {
  const char* const edges[] = {"999999999:999999998/999999999",
                               "999999999",
                               "1000000000",
                               "1/999999999",
                               "1/1000000000",
                               "999999998:1/999999997",
                               "-999999999:1/2",
                               "1/2",
                               "999999999/1000000000",
                               "-1",
                               "0"};
  for (const char* const a : edges) {
    for (const char* const b : edges) checkOperations(q(a), q(b));
  }
}

TEST(QQ, LetsResultsBeOperands) {
  RandomNumbers random(12);
  using Operation = void (*)(const QQ&, const QQ&, QQ&);
  for (int round = 0; round < 300; ++round) {
    const QQ a = random.rational(round % 2 == 0 ? 9 : 40) + 1;
    const QQ b = random.rational(20) + random.rational(3);
    for (const auto operation : {Operation(add), Operation(sub), Operation(mul), Operation(div)}) {
      if (operation == Operation(div) && (a == 0 || b == 0)) continue;
      QQ expected;
      operation(a, b, expected);
      QQ x = a;
      operation(x, b, x);
      ASSERT_EQ(x, expected);
      x = b;
      operation(a, x, x);
      ASSERT_EQ(x, expected);
      operation(a, QQ(a), expected);
      x = a;
      operation(x, x, x);
      ASSERT_EQ(x, expected);
    }
    QQ x = a;
    addProduct(x, x, x);
    ASSERT_EQ(x, a + a * a);
  }
}

TEST(QQ, HasNormalizedConstructors) {
  EXPECT_TRUE(is(QQ(), 0, 1));
  EXPECT_TRUE(is(QQ(-7LL), -7, 1));
  EXPECT_TRUE(is(QQ(ZZ(6), ZZ(-4)), -3, 2));
  EXPECT_TRUE(is(QQ(ZZ(-6), ZZ(-4)), 3, 2));
  EXPECT_TRUE(is(QQ(ZZ(0), ZZ(0)), 0, 1));
  ZZ minusZero;
  fromString(minusZero, "-");
  EXPECT_TRUE(is(QQ(minusZero), 0, 1));
  EXPECT_TRUE(is(QQ(minusZero, ZZ(5)), 0, 1));
  QQ moved = q("5:1/3");
  const QQ kept = std::move(moved);
  moved = kept;
  EXPECT_TRUE(is(moved, 16, 3));
  EXPECT_TRUE(isNormal(QQ::INF()) && isNormal(-QQ::INF()));
  EXPECT_TRUE(is(QQ::EPSILON(), 1, 1000000000));
}

TEST(QQ, GivesItsPartsWithTheSign) {
  EXPECT_EQ(wholeSigned(q("-7:1/3")), -7);
  EXPECT_EQ(numeratorSigned(q("-7:1/3")), -1);
  EXPECT_EQ(denominator(q("-7:1/3")), 3);
  EXPECT_EQ(denominator(-QQ::INF()), 1);
  EXPECT_EQ(numeratorSigned(q("-7")), 0);
  ZZ az;
  ZZ bz;
  ZZ l;
  commonDenominator(az, bz, l, q("2:1/6"), q("-1/4"));
  EXPECT_EQ(toString(az) + " " + toString(bz) + " " + toString(l), "2 3 12");
}

TEST(QQ, OrdersInfinities) {
  const QQ ascending[] = {-QQ::INF(), -1, q("-1/2"), 0, q("1/2"), 1, QQ::INF()};
  for (const QQ& a : ascending) {
    for (const QQ& b : ascending) EXPECT_EQ(compare(a, b), (&a > &b) - (&a < &b)) << a << " " << b;
  }
  EXPECT_EQ(compare(QQ::INF(), QQ(QQ::INF())), 0);
}

TEST(QQ, ComputesWithInfinities) {
  const QQ inf = QQ::INF();
  for (const QQ& x : {inf + 1, 1 + inf, inf - (-inf), -inf * -inf, inf / 3, abs(-inf), 1 - -inf}) {
    EXPECT_TRUE(isNormal(x) && x == inf) << x;
  }
  for (const QQ& x : {-inf + 1, 1 - inf, -inf - 5, inf * -2, q("-1/2") * inf, -inf + -inf}) {
    EXPECT_TRUE(isNormal(x) && x == -inf) << x;
  }
  EXPECT_EQ(5 / -inf, 0);
  EXPECT_FALSE(isZero(inf) || NumberTraits<QQ>::isNoPivot(inf) || NumberTraits<QQ>::isNoPivot(1));
}

TEST(QQ, ToleratesDeviationsFromZero) {
  EXPECT_TRUE(isZero(q("1/1000000000")) && isZero(q("-1/1000000000")) && isZero(QQ()));
  EXPECT_TRUE(isZero(q("12345678901/12345678901000000001")));
  EXPECT_FALSE(isZero(q("1/999999999")) || isZero(q("12345678901/12345678900999999999")));
  EXPECT_FALSE(q("1/10000000000") == 0);
}

TEST(QQ, TakesPowersAndRoots) {
  const QQ inf = QQ::INF();
  EXPECT_EQ(pow(q("-2/3"), 3), q("-8/27"));
  EXPECT_EQ(pow(q("-2/3"), -3), q("-27/8"));
  EXPECT_EQ(pow(0, 0), 1);
  EXPECT_EQ(pow(2, inf), inf);
  EXPECT_EQ(pow(-2, inf), -inf);
  EXPECT_EQ(pow(q("-1/2"), inf), 0);
  EXPECT_EQ(pow(-1, inf), 1);
  EXPECT_EQ(pow(3, -inf), 0);
  EXPECT_EQ(pow(inf, 2), 1);  // the parts of an infinity are those of 1
  EXPECT_EQ(root(q("-5/7"), 1), q("-5/7"));
  const QQ cubeRoot = root(8, 3);
  EXPECT_TRUE(isZero(cubeRoot - 2) && cubeRoot != 2 && isNormal(cubeRoot)) << cubeRoot;
  EXPECT_TRUE(isZero(root(-8, 3) + 2) && isZero(root(q("4/9"), -2) - q("3/2")));
  EXPECT_LT(abs(pow(q("9/4"), q("3/2")) - q("27/8")), q("1/10000000"));
  EXPECT_THROW((void)pow(0, -1), PrecisionException);
}

TEST(QQ, LimitsDigits) {
  const auto limited = [](const char* text, int digits) {
    QQ x(text);
    limitDigits(x, digits);
    return toString(x);
  };
  EXPECT_EQ(limited("5:1234/56789", 3), "5:12/567");
  EXPECT_EQ(limited("5:1234/56789", 5), "5:1234/56789");
  EXPECT_EQ(limited("5:12/56789", 3), "5");
  EXPECT_EQ(limited("inf", 0), "inf");

  // Of the three fractions of the product only the one of both denominators has more than 18
  // digits.
  const QQ a = q("-3:1/1000000007");
  const QQ b = q("2:1/9999999967");
  setLimitProducts(true);
  const QQ cut = a * b;
  const QQ uncut = q("1/3") * q("1/7");
  setLimitProducts(false);
  EXPECT_EQ(cut, -6 - q("3/9999999967") - q("2/1000000007"));
  EXPECT_EQ(cut - a * b, q("1/1000000007") * q("1/9999999967"));
  EXPECT_EQ(uncut, q("1/21"));
}

TEST(QQ, FillsVectors) {
  std::istringstream in("[ 1 -2:1/3 inf -inf /* */ .5 ]");
  Vector<QQ> v;
  in >> v;
  std::ostringstream out;
  out << v;
  EXPECT_EQ(out.str(), "[ 1 -2:1/3 inf -inf 1/2 ]");

  RandomNumbers random(13);
  Vector<QQ> a;
  Vector<QQ> b;
  a.resize(40, false);
  b.resize(40, false);
  QQ sum = 0;
  for (std::int64_t i = 1; i <= 40; ++i) {
    a[i] = i < 20 ? QQ(random.integer(12)) : random.rational(9);
    b[i] = random.integer(9);
    sum = sum + a[i] * b[i];
  }
  EXPECT_EQ(a * b, sum);
}

TEST(QQ, DividesByZeroRecoverably) {
  for (const QQ& x : {QQ(1), QQ(0), QQ::INF()}) {
    try {
      (void)(x / QQ());
      ADD_FAILURE();
    } catch (const PrecisionException& exception) {
      EXPECT_STREQ(exception.what(), "QQ: division by zero3");
    }
  }
}

TEST(QQDeathTest, ReportsImpossibleOperations) {
  const QQ inf = QQ::INF();
  QQ x;
  ZZ a;
  ZZ b;
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { x = inf - inf; }, "INF - INF is not defined"},
      {[&] { x = inf + (-inf); }, "INF - INF is not defined"},
      {[&] { x = inf * 0; }, "qq: INF \\* 0 is not defined!"},
      {[&] { x = 0 * -inf; }, "qq: 0 \\* INF is not defined!"},
      {[&] { x = inf / -inf; }, "QQ: \\+-INF / \\+-INF is not defined"},
      {[&] { x = QQ(ZZ(1), ZZ(0)); }, "ZZ::div -- division by zero"},
      {[&] { commonDenominator(a, a, b, x, x); }, "QQ: The ZZs have the same address"},
      {[&] { commonDenominator(a, b, x.ganze, x, inf); },
       "a_z, b_z can not be set to ZZ::INF -- isInf is logic only available in QQ class"},
      {[&] { x = root(2, 0); }, "QQ: zero-th roots are not defined"},
      {[&] { x = root(0, -2); }, "QQ: division by zero\n"},
      {[&] { x = root(-4, 2); }, "QQ: complex roots are not implemented"},
      {[&] {
         x.zaehler = -1;
         normalize(x);
       },
       "A ganze / zaehler / nenner sign has been set, though it should not be used"}};
  for (const auto& [operation, text] : cases) {
    EXPECT_EXIT(operation(), testing::ExitedWithCode(1), text);
  }
}

}  // namespace
}  // namespace vexil
