// Vexil - exact integer optimization on lattices.
#include <algorithm>
#include <climits>
#include <functional>
#include <utility>

#include "number_cases.h"
#include "numbers/qq_vectors.h"
#include "numbers/strict_number.h"
#include "support/pairs.h"
#include "support/parsed.h"

namespace vexil {
namespace {

ZZ zz(const std::string& text) {
  ZZ a;
  fromString(a, text);
  return a;
}

constexpr long long PRIME = 1000000007;

/// The number modulo PRIME, from its text.
long long residue(const ZZ& a) {
  long long rest = 0;
  for (const char digit : toString(abs(a))) rest = (rest * 10 + (digit - '0')) % PRIME;
  return a.positive ? rest : -rest;
}

bool isNormal(const ZZ& a) {
  return a.MN >= 1 && (a.MN == 1 || a.data[a.MN] != 0) && (a.positive || !isZero(a)) &&
         std::all_of(a.data + 1, a.data + 1 + a.MN,
                     [](long long limb) { return limb >= 0 && limb < limbs::BASE; });
}

void checkOperations(const ZZ& a, const ZZ& b) {
  const ZZ sum = result<ZZ>(add, a, b);
  const ZZ difference = result<ZZ>(sub, a, b);
  const ZZ product = result<ZZ>(mul, a, b);
  ASSERT_TRUE(isNormal(sum) && isNormal(difference) && isNormal(product));
  ASSERT_EQ((residue(sum) - residue(a) - residue(b)) % PRIME, 0);
  ASSERT_EQ((residue(difference) - residue(a) + residue(b)) % PRIME, 0);
  ASSERT_EQ((residue(product) - residue(a) * residue(b)) % PRIME, 0);
  ASSERT_EQ(compare(a, b), isZero(difference) ? 0 : (difference.positive ? 1 : -1));
  if (isZero(b)) return;
  // The quotient is truncated toward zero, whichever operands the results go to.
  ZZ q, r, x = a, y = b, u = a, v = b;
  div(a, b, q, r);
  div(x, y, x, y);
  div(u, v, v, u);
  ASSERT_TRUE(isNormal(q) && isNormal(r) && q * b + r == a && compareMagnitudes(r, b) < 0);
  ASSERT_TRUE(isZero(r) || r.positive == a.positive);
  ASSERT_TRUE(x == q && y == r && v == q && u == r && mod(a, b) == (r.positive ? r : r + b));
  const auto quotientAlone = [](const ZZ& m, const ZZ& n, ZZ& both) { div(m, n, both, both); };
  ASSERT_EQ(result<ZZ>(quotientAlone, a, b), q);
}

TEST(ZZ, ComputesWithShortAndLongNumbers) {
  const long long limits[] = {0, -1, 999999999, 1000000000, -1000000001, LLONG_MAX, LLONG_MIN};
  for (const long long x : limits) {
    EXPECT_TRUE(isNormal(x)) << x;
    EXPECT_EQ(toString(ZZ(x)), std::to_string(x));
    for (const long long y : limits) checkOperations(x, y);
  }
  for (int round = 0; round < 20000 && !HasFailure(); ++round) {
    const int length = round % 100 == 0 ? 600 : (round % 4 == 0 ? 90 : 18);
    const ZZ a = randomInteger(length);
    const ZZ b = randomInteger(round % 2 == 0 ? length : 9);
    checkOperations(a, b);
    checkOperations(a * b, b);
    const ZZ g = gcd(a * b, b * randomInteger(40));
    ASSERT_TRUE(mod(g, b) == 0 && g.positive);
    ASSERT_EQ(gcd(b, a * b + 1), 1);
    ASSERT_EQ(gcd(a * b, b), abs(b));
    const std::string text = randomDigits(length);
    ASSERT_TRUE(toString(zz(text)) == text && digitCount(zz(text)) == std::ssize(text));
  }
  // Around the length of products that are split, and one whose middle part carries far.
  const auto nines = [](int count) { return pow(10, count).ganze - 1; };
  for (const auto& [x, y] :
       {std::pair(180, 90), {603, 27}, {1800, 9}, {135, 126}, {288, 287}, {2700, 2691}}) {
    checkOperations(nines(x), nines(y));
  }
  checkOperations(nines(144), zz("1" + std::string(63, '0') + std::string(72, '9')));
  const ZZ a = nines(5000) * randomInteger(5000);
  const ZZ b = randomInteger(9000) - nines(10000);
  const ZZ c = randomInteger(3000);
  EXPECT_EQ((a - b) * (a + b), a * a - b * b);
  EXPECT_EQ(gcd(a * c, b * c), gcd(a, b) * abs(c));
  EXPECT_EQ(words(gcd(0, 0), gcd(-12, 18), gcd(0, -7), lcm(4, 6)), "0 6 7 12");
  ZZ e = 41;
  power(-3, e, e);
  EXPECT_EQ(toString(e), "-36472996377170786403");
}

TEST(ZZ, ReadsTextAndCutsDigits) {
  const auto check = [](const char* table, void (*operation)(ZZ&)) {
    expectResults(table, [&](const std::string& text) {
      ZZ a = zz(text);
      operation(a);
      return toString(a);
    });
  };
  check("=0 -=-0 12a3=123 -0=-0 000=0 +5=5 1-2=12 -x7=-7 x-7=7 1000000001=1000000001", [](ZZ&) {});
  check("1200000000=12 -50000000000000000000=-5 100200300400500600=1002003004005006 -=0",
        stripTrailingZeros);
  // The sign is a character of the text that is cut.
  check("12345678901234567890=1234567890 1234567890=0 -12345678901=-1 -1234567890=-0 -123456789=0",
        [](ZZ& a) { dropLowDigits(a, 10); });
}

/// ganze nenner + zaehler with the sign.
ZZ improper(const QQ& x) { return (x.ganze * x.nenner + x.zaehler) * (x.positive ? 1 : -1); }

bool isNormal(const QQ& x) {
  const bool flags = x.ganze.positive && x.zaehler.positive && x.nenner.positive;
  const bool zero = !x.isInf && isZero(x.ganze) && isZero(x.zaehler);
  return flags && x.zaehler < x.nenner && gcd(x.zaehler, x.nenner) == 1 && (x.positive || !zero) &&
         (!x.isInf || (x.ganze == 1 && x.nenner == 1));
}

/// x is n / d, in normal form.
bool is(const QQ& x, const ZZ& n, const ZZ& d) {
  return isNormal(x) && !x.isInf && improper(x) * d == n * x.nenner;
}

void checkOperations(const QQ& a, const QQ& b) {
  SCOPED_TRACE(toString(a) + " and " + toString(b));
  const ZZ an = improper(a);
  const ZZ bn = improper(b);
  ASSERT_TRUE(is(result<QQ>(add, a, b), an * b.nenner + bn * a.nenner, a.nenner * b.nenner));
  ASSERT_TRUE(is(result<QQ>(sub, a, b), an * b.nenner - bn * a.nenner, a.nenner * b.nenner));
  ASSERT_TRUE(is(result<QQ>(mul, a, b), an * bn, a.nenner * b.nenner));
  ASSERT_TRUE(b == 0 || is(result<QQ>(div, a, b), an * b.nenner, a.nenner * bn));
  ASSERT_EQ(compare(a, b), compare(an * b.nenner, bn * a.nenner));
  ASSERT_TRUE(is(-a, -an, a.nenner) && is(abs(a), abs(an), a.nenner));
  ASSERT_EQ(isZero(a), compareMagnitudes(an * ZZ(1000000000), a.nenner) <= 0);
  QQ sum = b;
  addProduct(sum, a, b);
  addProduct(sum, a, a);
  QQ x = a;
  addProduct(x, x, x);
  ASSERT_TRUE(sum == b + a * b + a * a && x == a + a * a);
}

TEST(QQ, ComputesWithFractions) {
  // Parts at the limit of a limb, and values at the bound of the tolerant zero test.
  const auto edges = vector<QQ>(
      "[ 999999999:999999998/999999999 -999999999:1/2 999999999 1000000000 1/999999999 "
      "999999998:1/999999997 -1/1000000000 12345678901/12345678901000000001 "
      "999999999999999999 -999999999999999999:1/2 -1000000000000000000 "
      "12345678901/12345678900999999999 999999999999999998/999999999999999999 "
      "-999999999999999997/999999999999999998 999999999999999996/999999999999999997 ]");
  for (std::int64_t i = 1; i <= edges.MN; ++i) {
    for (std::int64_t j = 1; j <= edges.MN; ++j) {
      checkOperations(edges[i], edges[j]);
      for (const QQ& factor : edges.elements()) checkOperations(edges[i] * factor, edges[j]);
    }
  }
  for (int round = 0; round < 30000 && !HasFailure(); ++round) {
    const int length = round % 20 == 0 ? 70 + round % 200 : (round % 3 == 0 ? 3 : 18);
    const QQ a = randomRational(length);
    const QQ b = randomRational(round % 40 == 0 ? length : 18);
    checkOperations(round % 7 == 0 ? a * b : a, b);
  }
}

TEST(QQ, ComputesWithInfinitiesPowersAndRoots) {
  const QQ inf = QQ::INF();
  const QQ ascending[] = {-inf, -1, 0, QQ("1/2"), inf};
  for (const QQ& a : ascending) {
    for (const QQ& b : ascending) EXPECT_EQ(compare(a, b), (&a > &b) - (&a < &b)) << a << " " << b;
  }
  for (const QQ& x : {inf + 1, 1 + inf, inf - -inf, -inf * -inf, inf / 3, abs(-inf), 1 - -inf,
                      -(1 - inf), -(-inf - 5), -(inf * -2), -(QQ("-1/2") * inf), -(-inf + -inf)}) {
    EXPECT_TRUE(isNormal(x)) << x;
    EXPECT_EQ(x, inf);
  }
  EXPECT_EQ(5 / -inf, 0);
  EXPECT_FALSE(isZero(inf));
  EXPECT_FALSE(NumberTraits<QQ>::isNoPivot(inf));
  EXPECT_FALSE(NumberTraits<QQ>::isNoPivot(1));
  EXPECT_EQ(words(pow(2, inf), pow(-2, inf), pow(QQ("-1/2"), inf), pow(-1, inf), pow(3, -inf)),
            "inf -inf 0 1 0");
  EXPECT_EQ(pow(inf, 2), 1);  // the parts of an infinity are those of 1
  EXPECT_EQ(words(pow(QQ("-2/3"), 3), pow(QQ("-2/3"), -3), pow(0, 0), root(QQ("-5/7"), 1)),
            "-8/27 -3:3/8 1 -5/7");
  const QQ cubeRoot = root(8, 3);
  EXPECT_TRUE(isNormal(cubeRoot)) << cubeRoot;
  EXPECT_NE(cubeRoot, 2);
  EXPECT_TRUE(isZero(cubeRoot - 2)) << cubeRoot;
  EXPECT_TRUE(isZero(root(-8, 3) + 2));
  EXPECT_TRUE(isZero(root(QQ("4/9"), -2) - QQ("3/2")));
  EXPECT_LT(abs(pow(QQ("9/4"), QQ("3/2")) - QQ("27/8")), QQ("1/10000000"));
}

TEST(QQ, RootsEnd) {
  const QQ big = pow(10, 60) + 1;
  const QQ tiny = QQ::ONE() / big;
  for (const QQ& x : {big, tiny, big + tiny, big * big, QQ("2:1/3"), QQ(0)}) {
    const QQ approximation = root(x, 2);
    EXPECT_LT(abs(approximation - squareRoot(x, 20)), QQ::EPSILON() * 2) << x;
    const QQ exact = squareRoot(x, 50);
    EXPECT_LT(abs(exact * exact - x), (exact + 1) * 2 / pow(10, 50)) << x;
  }
  EXPECT_EQ(squareRoot(pow(3, 300), 5), pow(3, 150));
  EXPECT_LT(abs(pow(root(3, 7), 7) - 3), QQ("1/100000000"));
  EXPECT_EQ(thrown([] { (void)root(10, 1000000007); }), "QQ: division by zero3");
}

template <typename T>
class Traits : public testing::Test {};
TYPED_TEST_SUITE(Traits, NumberTypes);

TYPED_TEST(Traits, RoundToWholeNumbers) {
  using N = NumberTraits<TypeParam>;
  const auto x = vector<TypeParam>("[ 2.5 -2.5 3 -3 0.4 -0.4 inf -inf ]");
  Vector<TypeParam> floors, ceilings, nearest;
  for (const TypeParam& value : x.elements()) {
    floors.append(N::floor(value));
    ceilings.append(N::ceil(value) + 0);
    nearest.append(N::round(value) + 0);
  }
  EXPECT_TRUE(floors.equalsExactly(vector<TypeParam>("[ 2 -3 3 -3 0 -1 inf -inf ]")));
  EXPECT_TRUE(ceilings.equalsExactly(vector<TypeParam>("[ 3 -2 3 -3 1 0 inf -inf ]")));
  EXPECT_TRUE(nearest.equalsExactly(vector<TypeParam>("[ 3 -3 3 -3 0 0 inf -inf ]")));
}

TYPED_TEST(Traits, KnowDivisorsAndDenominators) {
  using T = TypeParam;
  using N = NumberTraits<T>;
  EXPECT_EQ(N::gcd(T(-12), T(18)), T(6));
  EXPECT_EQ(N::lcm(T(-4), T(6)), T(12));
  EXPECT_TRUE(N::agree(N::powerOfTen(T(-2)) * T(100), T(1)));
  const auto x = vector<T>("[ 0.125 -0.00375 1.2 7 0 inf 123456.789 0.00001 ]");
  const auto expected = vector<T>("[ 8 800 5 1 1 1 1000 100000 ]");
  for (std::int64_t i = 1; i <= x.MN; ++i) EXPECT_EQ(N::den(x[i]), expected[i]) << x[i];
}

TEST(TraitsOfTypes, GuardStandardPrecisionAlone) {
  EXPECT_EQ(thrown([] { NumberTraits<dbl_t>::guard(-2e9L, "q overflow"); }), "q overflow");
  EXPECT_EQ(thrown([] { NumberTraits<dbl_t>::guard(1e9L, "q overflow"); }), "");
  EXPECT_EQ(thrown([] { NumberTraits<QQ>::guard(pow(10, 30), "q overflow"); }), "");
}

TEST(QQ, LimitsDigits) {
  const auto limited = [](const std::string& text) {
    QQ x(text);
    limitDigits(x, 3);
    return toString(x);
  };
  expectResults("5:1234/56789=5:12/567 5:12/56789=5 5:124/567=5:124/567 inf=inf", limited);
  // Only the product of the fractions has a denominator of more than 18 digits.
  const QQ a = QQ("-3:1/1000000007");
  const QQ b = QQ("2:1/9999999967");
  setLimitProducts(true);
  const QQ cut = a * b;
  setLimitProducts(false);
  EXPECT_EQ(cut, -6 - QQ("3/9999999967") - QQ("2/1000000007"));
  EXPECT_EQ(cut - a * b, QQ("1/1000000007") * QQ("1/9999999967"));
}

TEST(QQText, IsParsed) {
  const char* const table =
      // what is no digit is dropped; a second sign belongs to the number behind it
      "-0=0 007=7 5x6=56 x=0 5inf=5 123456789012345678901234567=123456789012345678901234567 +5=5 "
      "+-5=-5 --5=5 -+5=-5 --0=0 hello=0 inf=inf -inf=-inf +infinity=inf --inf=0 inf/2=0 "
      // fractions and mixed numbers
      "3/2=1:1/2 -3/2=-1:1/2 4/2=2 0/5=0 -0/5=0 1/-2=-1/2 -1/-2=1/2 1/2/3=1/23 /4=0 1/2.5=1/25 "
      "-1:2/4=-1:1/2 0:3/4=3/4 :3/4=3/4 ::1/2=1/2 1:x=1 1:.5=1:1/2 "
      "12345678901234567890:10/30=12345678901234567890:1/3 "
      // decimals; of what follows the zeros behind the separator only the whole part counts
      "0.25=1/4 0,25=1/4 .5=1/2 -1.05=-1:1/20 1.50=1:1/2 1.2.3=1:1/5 1.5/3=1:1/10 1.-5=1:1/2 "
      ".inf=1/10 1.0x=1 0.00000000000000000000032=1/3125000000000000000000 "
      "1e2=100 1.5e-1=3/20 1.5E+1=15 2e1e1=20000000000 1/3e1=3:1/3 -infe2=-inf";
  expectResults(table, [](const std::string& text) { return toString(QQ(text)); });
  EXPECT_EQ(QQ(" \t\n\v\f\r-7 "), -7);
  EXPECT_EQ(QQ(std::string("12\0003", 4)), 12);
}

TEST(QQText, EndsInAStreamWhereTheNumberEnds) {
  const auto restBehind = [](const std::string& text) {
    std::istringstream in("/* a */ // b\n" + text);
    QQ x;
    in >> x;
    EXPECT_FALSE(in.fail());
    const std::string rest = in.eof() ? "" : std::string(std::istreambuf_iterator<char>(in), {});
    EXPECT_EQ(x, QQ(text.substr(0, text.size() - rest.size())));
    return rest;
  };
  expectResults("1/2;3=;3 7e2=e2 -inf]=] infinity=inity 5i=", restBehind);
  for (int round = 0; round < 5000 && !HasFailure(); ++round) {
    const QQ x = randomRational(round % 4 == 0 ? 40 : 9) + below(5);
    const std::string text = testing::PrintToString(x);
    ASSERT_TRUE(QQ(text) == x && restBehind(text).empty()) << x;
  }
}

TEST(QQText, MayBeLongAndDeep) {
  std::string decimals;
  std::string exponents;
  for (int i = 0; i < 100000; ++i) {
    decimals += ".1";
    exponents += "0e";
  }
  EXPECT_EQ(words(QQ(decimals), QQ(exponents + "0")), "1/10 0");
  EXPECT_EQ(QQ(std::string(1000000, ':') + "1/2"), QQ("1/2"));
  EXPECT_EQ(digitCount(QQ("1." + std::string(1000000, '3')).nenner), 1000001);
  const std::string digits = randomDigits(1000) + std::string(1000000, '7');
  EXPECT_EQ(toString(QQ(digits)), digits);
}

TEST(QQDeathTest, ReportsWhatIsImpossible) {
  const QQ inf = QQ::INF();
  QQ x;
  ZZ a, b;
  for (const QQ& dividend : {QQ(1), QQ(0), inf}) {
    EXPECT_EQ(thrown([&] { x = dividend / 0; }), "QQ: division by zero3");  // recoverable
  }
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { x = inf - inf; }, "INF - INF is not defined"},
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
      {[&] { power(2, -1, a); }, "\\[ ZZ::operator \\^ \\] Exponent < 0 \n"},
      {[&] { a.base_rshift(1); }, "ZZ::base_rshift steps > N"}};
  for (const auto& [operation, text] : cases)
    EXPECT_EXIT(operation(), testing::ExitedWithCode(1), text);
  const std::pair<const char*, std::string> numbers[] = {
      {"QQ: parse error1", "+ - 1.0 2.00 1. 1: 1e e1 1e1e"},
      {"QQ: parse error2", "ix -i --1.i"},
      {"QQ: parse error3", "in ing"},
      {"QQ: malformed number1", "1:01/2 1:-1/2 1:0. 1:-inf"},
      {"QQ: malformed number2", "1:3/2 1:2 1:inf"},
      {"QQ: division by zero1", "1/0 1/ 1/1e1/0"},
      {"A ganze / zaehler / nenner sign has been set, though it should not be used",
       "+-5/3 --5.3 --1:1/2"}};
  for (const auto& [report, texts] : numbers) {
    std::istringstream words(texts);
    for (std::string text; words >> text;)
      EXPECT_EXIT(QQ{text}, testing::ExitedWithCode(1), report) << text;
  }
  EXPECT_EXIT(std::istringstream(" ") >> x, testing::ExitedWithCode(1), "QQ: parse error1");
  EXPECT_EXIT(std::istringstream("x1") >> x, testing::ExitedWithCode(1), "QQ: parse error1");
}

std::string strictly(const std::string& text) {
  const auto number = strictNumber(text);
  return number ? toString(*number) : "none";
}

TEST(StrictNumber, TakesWholeTexts) {
  expectResults(
      "7=7 -7=-7 +7=7 --3=3 -+3=-3 007=7 -0=0 4/2=2 -1/3=-1/3 7:1/3=7:1/3 -7:1/3=-7:1/3 :2/4=1/2 "
      "1:+1/2=1:1/2 1:0/3=1 0.25=1/4 0,5=1/2 .5=1/2 -1.05=-1:1/20 1.0=1 1.=1 inf=inf -inf=-inf "
      "1e2=100 1E+2=100 -2.5e-1=-1/4 1.23457e+06=1234570 0e9999=0 1e0002=100 "
      "123456789012345678901234567890=123456789012345678901234567890",
      strictly);
  EXPECT_EQ(strictly("- \t\n5"), "-5");
  EXPECT_EQ(strictly("1e-9999").size(), std::string("1/").size() + 10000);
}

TEST(StrictNumber, RefusesTheRest) {
  expectResults(
      "x=none -=none ---1=none 1x=none x1=none 1-2=none .=none e5=none 1e=none 1e+=none 1e+-5=none "
      "1e5.0=none 1e10000=none 1/2e3=none 1/=none /2=none 1/0=none 1:3/2=none 1:2/2=none 1:=none "
      "1:-1/2=none 1:0=none 1.2.3=none 1/2/3=none in=none infx=none INF=none nan=none 0x10=none",
      strictly);
  EXPECT_EQ(strictly("") + strictly("1 ") + strictly(" 1") + strictly("1 2") +
                strictly(std::string("1\0", 2)),
            "nonenonenonenonenone");
}

}  // namespace
}  // namespace vexil
