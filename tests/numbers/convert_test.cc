// Vexil - exact integer optimization on lattices.
#include "numbers/convert.h"

#include <cmath>
#include <limits>
#include <vector>

#include "foundation/overflow.h"
#include "number_cases.h"
#include "numbers/full_precision.h"
#include "numbers/qq_vectors.h"
#include "support/parsed.h"

namespace vexil {
namespace {

constexpr dbl_t NO_NUMBER = std::numeric_limits<dbl_t>::quiet_NaN();
constexpr dbl_t THIRD = 0.3333333333333333333L;

/// Long division digit by digit, and what the library reads from its 19 digits.
dbl_t paperValue(const QQ& x) {
  std::string text = (x.positive ? "" : "-") + toString(x.ganze) + ".";
  ZZ rest = x.zaehler;
  ZZ digit;
  for (int digits = 0; digits < 19 && !isZero(rest);) {
    div(rest * 10, x.nenner, digit, rest);
    text += toString(digit);
    if (digits > 0 || digit != 0) ++digits;
  }
  return std::stold(text);
}

TEST(ToFloat, DividesAsOnPaper) {
  for (int round = 0; round < 5000; ++round) {
    const QQ x(randomInteger(round % 3 == 0 ? 9 : 16), randomInteger(round % 2 == 0 ? 9 : 30));
    ASSERT_EQ(toFloat(x, false, false), paperValue(x)) << x;
    const QQ decimal = QQ(randomDigits(17)) + QQ("." + randomDigits(20));
    ASSERT_EQ(toFloat(decimal, false, false), paperValue(decimal)) << decimal;
  }
  EXPECT_EQ(toFloat(QQ("1234567890123456789:1/2"), false, false), 1234567890123456789.0L);
  EXPECT_EQ(toFloat(-pow(10, 6000), false, false), -std::numeric_limits<dbl_t>::max());
  EXPECT_EQ(toFloat(-QQ::INF(), true, false), -INF_F);
}

TEST(ToFloat, ReportsLosses) {
  const auto report = [](const std::string& number) {
    return thrown([&] { (void)toFloat(QQ(number), true, false); });
  };
  // 19 digits of a fraction are collected; zeros in front of them are not among these.
  expectResults(
      "inf= 999999999999999999.5= 0.1234567890123456789= 0.00001234567890123456789= "
      "1/3=Post 0.12345678901234567891=Post 1234567890123456789=Pre 1000000000000000000:1/2=Pre",
      [&](const auto& number) { return report(number).substr(0, report(number).find('C')); });
  EXPECT_EQ(report("1/3"), "PostCommaPrecision exception: QQ is not representable as dbl_t");
  EXPECT_EQ(report("1e18"), "PreCommaPrecision exception: QQ is not representable as dbl_t");
  EXPECT_EQ(toFloat(QQ("1/3"), true, true), THIRD);
  EXPECT_THROW((void)toFloat(pow(10, 18), true, true), PreCommaPrecisionException);
}

TEST(FromFloat, AgreesWithTheTextInFullPrecision) {
  std::vector<dbl_t> values;
  // Among them ties, which go to the even digit.
  for (const dbl_t value : {0.1L, 1e-9L, 1.1e-9L, -0.0L, NO_NUMBER, -NO_NUMBER, -INF_F, -1e25L,
                            99999999999999999.0L, 12345678901234567.5L, 12345678901234566.5L}) {
    values.push_back(value);
  }
  while (values.size() < 20000) {
    const dbl_t magnitude = std::ldexp(std::stold(randomDigits(19)), below(75) - 75);
    values.push_back(below(2) == 0 ? magnitude : -magnitude);
  }
  for (const dbl_t value : values) {
    std::ostringstream text;
    text << std::scientific << fullPrecision << value;
    ASSERT_EQ(QQ(value), std::fabs(value) > TOLERANCE ? QQ(text.str()) : 0) << text.str();
  }
}

TEST(Convert, CarriesSettingsAndElements) {
  Vector<QQ> source = vector<QQ>("[ 1/3 -inf 2 ]");
  source.delimiters = "; ";
  source.skipComments = false;
  Vector<dbl_t> target = vector<dbl_t>("[ 1 2 3 4 5 ]");
  target.tolerateFraction = true;
  convert(source, target, true);
  EXPECT_EQ(words(target.delimiters, target.skipComments, target.tolerateFraction), ";  0 1");
  EXPECT_EQ(joined(target), "[ 0.333333 -inf 2 ]");
  EXPECT_EQ(target[1], THIRD);
  target.throwOnLoss = true;
  target.tolerateFraction = false;
  EXPECT_THROW(convert(source, target, false), PostCommaPrecisionException);
  Matrix<dbl_t> rows;
  rows.resize(4, 7, false);
  convert(matrix<QQ>("[ [ 1 2 3 ] [ -inf ] ]"), rows, true);
  EXPECT_EQ(words(rows.columnCount, rows), "3 [\n[ 1 2 3 ]\n[ -inf ]\n]");

  SerializableArray<SerializablePair<QQ, QQ>> pairs("|");
  pairs.resize(1, false);
  pairs[1] = SerializablePair<QQ, QQ>(1, QQ("1/3"));
  SerializableArray<SerializablePair<dbl_t, dbl_t>> floats;
  convert(pairs, floats, false);
  EXPECT_EQ(joined(floats.delimiters, floats[1]), "| (1, 0.333333)");
}

TEST(Convert, ChecksTheWayBack) {
  const std::string lost = "Precision lost during conversion";
  const auto report = [](const auto& source, auto target) {
    return thrown([&] { convert(source, target, true); });
  };
  EXPECT_EQ(report(vector<QQ>("[ 1 1/3 ]"), Vector<dbl_t>()), "");
  EXPECT_EQ(report(vector<dbl_t>("[ 1e-10 0.1 -inf ]"), Vector<QQ>()), "");
  EXPECT_EQ(report(vector<dbl_t>("[ 123456789012345678 ]"), Vector<QQ>()), lost);
  Vector<dbl_t> target;  // all elements are converted before one is compared
  EXPECT_EQ(thrown([&] { convert(vector<QQ>("[ 100000000000000001 5 ]"), target, true); }), lost);
  EXPECT_EQ(target[2], 5);
  // Pairs are compared without a tolerance.
  const auto pair = [](auto number) { return Pair<long, decltype(number)>(3, number); };
  EXPECT_EQ(report(pair(QQ("1/4")), pair(0.0L)), "");
  EXPECT_NE(report(pair(QQ("1/3")), pair(0.0L)), "");
  EXPECT_EQ(report(pair(QQ("100000000000000001")), pair(0.0L)), lost);
  for (const dbl_t x : {NO_NUMBER, 1e-10L}) EXPECT_EQ(report(pair(x), pair(QQ())), lost);
}

TEST(CheckOverflow, HasASoftAndAHardLimit) {
  for (const dbl_t x : {1e9L, -1e9L, INF_F, -INF_F, NO_NUMBER}) EXPECT_FALSE(checkOverflow(x));
  for (const dbl_t x : {1e9L + 1, -1e9L - 1, 1e18L, -1e18L}) EXPECT_TRUE(checkOverflow(x));
  EXPECT_THROW((void)checkOverflow(1e4000L), FatalPrecisionException);
  EXPECT_EQ(thrown([] { (void)checkOverflow(-2e18L); }),
            "FatalPrecisionException exception: Uncorrectable precision overflow detected - "
            "probably more overflow / precision checks are needed ...");
}

}  // namespace
}  // namespace vexil
