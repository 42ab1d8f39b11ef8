// Vexil - exact integer optimization on lattices.
#include "numbers/convert.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <sstream>

#include "foundation/exceptions.h"
#include "number_cases.h"
#include "numbers/full_precision.h"
#include "numbers/overflow.h"
#include "numbers/qq_vectors.h"

namespace vexil {
namespace {

constexpr dbl_t NO_NUMBER = std::numeric_limits<dbl_t>::quiet_NaN();
constexpr dbl_t GREATEST = std::numeric_limits<dbl_t>::max();

/// Runs `operation`; the message of the exception E, nothing if none is thrown.
template <typename E, typename Operation>
std::string thrown(Operation operation) {
  try {
    operation();
  } catch (const E& exception) {
    return exception.what();
  }
  return "";
}

/// Long division digit by digit, and what the library reads from its digits.
dbl_t paperValue(const QQ& x) {
  std::string text = (x.positive ? "" : "-") + toString(x.ganze) + ".0";
  ZZ rest = x.zaehler;
  int digits = 0;
  while (digits < 19 && !isZero(rest)) {
    ZZ digit;
    div(rest * 10, x.nenner, digit, rest);
    text.insert(text.size() - 1, toString(digit));
    if (digits > 0 || digit != 0) ++digits;
  }
  return std::strtold(text.c_str(), nullptr);
}

TEST(ToFloat, DividesAsOnPaper) {
  RandomNumbers random(31);
  for (int round = 0; round < 5000; ++round) {
    const QQ x(random.integer(round % 3 == 0 ? 9 : 16), random.integer(round % 2 == 0 ? 9 : 30));
    ASSERT_EQ(toFloat(x, false, false), paperValue(x)) << x;
    const QQ decimal = QQ(random.digits(17)) + QQ("." + random.digits(20));
    ASSERT_EQ(toFloat(decimal, false, false), paperValue(decimal)) << decimal;
  }
  EXPECT_EQ(toFloat(QQ("1/4"), false, false), 0.25L);
  EXPECT_EQ(toFloat(QQ("1234567890123456789:1/2"), false, false), 1234567890123456789.0L);
  EXPECT_EQ(toFloat(-pow(10, 6000), false, false), -GREATEST);
  EXPECT_EQ(toFloat(-QQ::INF(), true, false), -INF_F);
}

TEST(ToFloat, ReportsLosses) {
  const std::string lost = "QQ is not representable as dbl_t";
  const auto postComma = [](const char* text, bool tolerant) {
    return thrown<PostCommaPrecisionException>([&] { (void)toFloat(QQ(text), true, tolerant); });
  };
  const auto preComma = [](const char* text, bool tolerant) {
    return thrown<PreCommaPrecisionException>([&] { (void)toFloat(QQ(text), true, tolerant); });
  };
  EXPECT_EQ(postComma("1/3", false), PostCommaPrecisionException(lost).what());
  EXPECT_EQ(preComma("1234567890123456789", true), PreCommaPrecisionException(lost).what());
  EXPECT_EQ(preComma("1000000000000000000:1/2", false), PreCommaPrecisionException(lost).what());
  EXPECT_EQ(postComma("1/3", true) + postComma("1/4", false) + postComma("inf", false), "");
  EXPECT_EQ(preComma("999999999999999999", false) + preComma("-inf", false), "");
  // 19 digits are collected; zeros in front of them are not among these.
  EXPECT_EQ(postComma("0.1234567890123456789", false), "");
  EXPECT_EQ(postComma("0.00001234567890123456789", false), "");
  EXPECT_NE(postComma("0.12345678901234567891", false), "");
  EXPECT_EQ(postComma("999999999999999999.5", false), "");
}

TEST(FromFloat, TakesSeventeenDigits) {
  EXPECT_EQ(QQ(0.1L), QQ("1/10"));
  EXPECT_EQ(QQ(1.1e-9L), QQ("11/10000000000"));
  for (const dbl_t zero : {1e-9L, -0.0L, NO_NUMBER, -NO_NUMBER}) EXPECT_EQ(QQ(zero), 0);
  EXPECT_EQ(QQ(99999999999999999.0L), 99999999999999999L);
  EXPECT_EQ(QQ(123456789012345678.0L), 123456789012345680L);
  EXPECT_EQ(QQ(-1e25L), -pow(10, 25));
  EXPECT_EQ(QQ(12345678901234567.5L), 12345678901234568L);  // ties go to the even digit
  EXPECT_EQ(QQ(12345678901234566.5L), 12345678901234566L);
  EXPECT_EQ(QQ(-INF_F), -QQ::INF());
}

TEST(FromFloat, AgreesWithThePrintedText) {
  RandomNumbers random(32);
  for (int round = 0; round < 20000; ++round) {
    const auto mantissa = std::strtold(random.digits(19).c_str(), nullptr);
    const dbl_t value = std::ldexp(mantissa, random.below(70) - 75) * (round % 2 == 0 ? 1 : -1);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.17Lg", value);
    ASSERT_EQ(toString(QQ(value)), std::fabs(value) <= TOLERANCE ? "0" : toString(QQ(text.data())))
        << text.data();
  }
}

template <typename T>
Vector<T> vectorOf(const std::string& text) {
  std::istringstream in(text);
  Vector<T> v;
  in >> v;
  return v;
}

TEST(Convert, CarriesVectorsBothWays) {
  Vector<QQ> source = vectorOf<QQ>("[ 1/3 -inf 2 ]");
  source.delimiters = "; ";
  source.skipComments = false;
  Vector<dbl_t> target = vectorOf<dbl_t>("[ 1 2 3 4 5 ]");
  target.tolerateFraction = true;
  convert(source, target, true);
  EXPECT_EQ(target.MN, 3);
  EXPECT_TRUE(std::fabs(target[1] * 3 - 1) < 1e-17L && target[2] == -INF_F && target[3] == 2);
  EXPECT_TRUE(target.delimiters == "; " && !target.skipComments && target.tolerateFraction);

  Vector<QQ> back;
  convert(target, back, true);
  EXPECT_EQ(toString(back[1]), "33333333333333333/100000000000000000");
  EXPECT_EQ(back[2], -QQ::INF());
  target.throwOnLoss = true;
  target.tolerateFraction = false;
  EXPECT_THROW(convert(source, target, false), PostCommaPrecisionException);
}

TEST(Convert, ChecksTheWayBack) {
  const std::string lost = "Precision lost during conversion";
  const auto report = [](const auto& source, auto target) {
    return thrown<PrecisionException>([&] { convert(source, target, true); });
  };
  EXPECT_EQ(report(vectorOf<QQ>("[ 1 1/3 ]"), Vector<dbl_t>()), "");
  EXPECT_EQ(report(vectorOf<QQ>("[ 1 100000000000000001 ]"), Vector<dbl_t>()), lost);
  EXPECT_EQ(report(vectorOf<dbl_t>("[ 1e-10 0.1 ]"), Vector<QQ>()), "");
  EXPECT_EQ(report(vectorOf<dbl_t>("[ 123456789012345678 ]"), Vector<QQ>()), lost);

  // All elements are converted before one is compared.
  Vector<dbl_t> target;
  EXPECT_THROW(convert(vectorOf<QQ>("[ 100000000000000001 5 ]"), target, true), PrecisionException);
  EXPECT_EQ(target[2], 5);

  const auto pair = [](const char* text) { return Pair<long, QQ>(3, QQ(text)); };
  EXPECT_EQ(report(pair("1/4"), Pair<long, dbl_t>()), "");
  EXPECT_NE(report(pair("1/3"), Pair<long, dbl_t>()), "");
  EXPECT_EQ(report(pair("100000000000000001"), Pair<long, dbl_t>()), lost);
  EXPECT_EQ(report(Pair<long, dbl_t>(3, NO_NUMBER), Pair<long, QQ>()), lost);
  EXPECT_EQ(report(Pair<long, dbl_t>(3, 1e-10L), Pair<long, QQ>()), lost);
  Pair<long, dbl_t> unchecked;
  convert(pair("1/3"), unchecked, false);
  EXPECT_TRUE(unchecked.left == 3 && unchecked.right > 0.333L);
}

TEST(Convert, CarriesMatricesAndArrays) {
  std::istringstream in("[ [ 1 2 3 ] [ 4 ] ]");
  Matrix<QQ> source;
  in >> source;
  Matrix<dbl_t> target;
  target.resize(4, 7, false);
  convert(source, target, true);
  EXPECT_TRUE(target.rowCount == 2 && target.columnCount == 3 && target.rows[2].MN == 1);
  EXPECT_TRUE(target[1][3] == 3 && target[2][1] == 4);
  Matrix<QQ> back;
  convert(target, back, true);
  EXPECT_EQ(back[2][1], 4);

  Array<Vector<QQ>> vectors;
  vectors.resize(2, false);
  vectors[2] = vectorOf<QQ>("[ 7 ]");
  Array<Vector<dbl_t>> converted;
  convert(vectors, converted, true);
  EXPECT_EQ(converted[2][1], 7);

  SerializableArray<SerializablePair<QQ, QQ>> pairs("|");
  pairs.resize(1, false);
  pairs[1] = SerializablePair<QQ, QQ>(1, QQ("1/2"));
  SerializableArray<SerializablePair<dbl_t, dbl_t>> floats;
  convert(pairs, floats, true);
  EXPECT_TRUE(floats.delimiters == "| " && floats[1].right == 0.5L);
  pairs[1].right = QQ("1/3");
  EXPECT_THROW(convert(pairs, floats, true), PrecisionException);
}

TEST(CheckOverflow, HasASoftAndAHardLimit) {
  for (const dbl_t x : {0.0L, 1e9L, -1e9L, INF_F, -INF_F, NO_NUMBER})
    EXPECT_FALSE(checkOverflow(x));
  for (const dbl_t x : {1e9L + 1, -1e9L - 1, 1e18L, -1e18L}) EXPECT_TRUE(checkOverflow(x));
  const std::string text =
      "Uncorrectable precision overflow detected - probably more overflow / precision checks are "
      "needed ...";
  for (const dbl_t x : {2e18L, -2e18L, GREATEST}) {
    EXPECT_EQ(thrown<FatalPrecisionException>([&] { (void)checkOverflow(x); }),
              FatalPrecisionException(text).what());
  }
}

TEST(FullPrecision, PrintsSeventeenDigits) {
  std::ostringstream out;
  out << std::scientific << fullPrecision << 1.0L / 3 << ' ' << 1e6L;
  EXPECT_EQ(out.str(), "0.33333333333333333 1000000");
}

}  // namespace
}  // namespace vexil
