// Vexil - exact integer optimization on lattices.
#include <sstream>
#include <utility>

#include "number_cases.h"

namespace vexil {
namespace {

std::string repeated(const std::string& piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

TEST(QQText, IsParsed) {
  const char* const tables[] = {
      // whole numbers; what is no digit is dropped
      "7=7 -0=0 007=7 5x6=56 x=0 5inf=5 123456789012345678901234567=123456789012345678901234567",
      // one sign is taken off, another one belongs to the number behind it
      "+5=5 +-5=-5 --5=5 -+5=-5 --0=0",
      // fractions and mixed numbers
      "1/2=1/2 3/2=1:1/2 -3/2=-1:1/2 4/2=2 0/5=0 -0/5=0 1/-2=-1/2 -1/-2=1/2 1/2/3=1/23 /4=0",
      "1:1/2=1:1/2 -1:2/4=-1:1/2 0:3/4=3/4 :3/4=3/4 ::1/2=1/2 1:x=1 1:.5=1:1/2",
      "12345678901234567890:10/30=12345678901234567890:1/3 1/2.5=1/25",
      // decimals; of what follows the zeros behind the separator only the whole part counts
      "0.25=1/4 0,25=1/4 .5=1/2 -1.05=-1:1/20 1.50=1:1/2 1.2.3=1:1/5 1.5/3=1:1/10 1.-5=1:1/2",
      ".inf=1/10 1.0x=1 0.00000000000000000000032=1/3125000000000000000000",
      // exponents
      "1e2=100 1.5e-1=3/20 1.5E+1=15 2e1e1=20000000000 1/3e1=3:1/3 hello=0 -infe2=-inf",
      "1e-30=1/1000000000000000000000000000000",
      // infinities
      "inf=inf -inf=-inf +infinity=inf --inf=0 inf/2=0"};
  for (const char* const table : tables) {
    forEachCase(table, [](const std::string& text, const std::string& printed) {
      EXPECT_EQ(toString(QQ(text)), printed) << text;
    });
  }
  EXPECT_EQ(QQ(" \t\n\v\f\r-7 "), -7);
  EXPECT_EQ(QQ(std::string("12\0003", 4)), 12);
}

TEST(QQText, ComesBackAsItWas) {
  RandomNumbers random(21);
  for (int round = 0; round < 5000; ++round) {
    const QQ x = random.rational(round % 4 == 0 ? 40 : 9) + random.below(5);
    std::ostringstream out;
    out << x;
    ASSERT_EQ(out.str(), toString(x));
    ASSERT_EQ(toString(QQ(out.str())), out.str());
    std::istringstream in(" // comment\n" + out.str());
    QQ back = QQ::INF();
    in >> back;
    ASSERT_TRUE(back == x && in.eof() && !in.fail()) << x;
  }
}

TEST(QQText, TellsTheValueOfDecimals) {
  RandomNumbers random(22);
  for (int round = 0; round < 2000; ++round) {
    const std::string whole = random.digits(30);
    // Powers of 2 and of 5 cancel against most of the denominator.
    const std::string digits = round > 1 ? repeated("0", random.below(12)) + random.digits(60)
                                         : toString(pow(round == 0 ? 2 : 5, 200));
    const QQ value(QQ(whole + digits) / pow(10, static_cast<long>(digits.size())));
    ASSERT_EQ(toString(QQ(whole + "." + digits)), toString(value));
  }
}

TEST(QQText, MayBeLongAndDeep) {
  EXPECT_EQ(QQ(repeated(".1", 1000000)), QQ("1/10"));
  EXPECT_EQ(QQ(repeated(":", 1000000) + "1/2"), QQ("1/2"));
  EXPECT_EQ(QQ(repeated("0e", 100000) + "0"), 0);
  EXPECT_EQ(digitCount(QQ("1." + repeated("3", 1000000)).nenner), 1000001);
  EXPECT_EQ(toString(QQ(repeated("12", 500000))), repeated("12", 500000));
}

TEST(QQText, EndsInAStreamWhereTheNumberEnds) {
  const std::pair<const char*, const char*> cases[] = {{"/* a */ 1/2 3", "1/2< 3"},
                                                       {"7e2", "7<e2"},
                                                       {"-inf]", "-inf<]"},
                                                       {"infinity", "inf<inity"},
                                                       {"5i", "5<"}};
  for (const auto& [text, expected] : cases) {
    std::istringstream in(text);
    QQ x;
    in >> x;
    std::string rest;
    if (in.good()) std::getline(in, rest);
    EXPECT_EQ(toString(x) + "<" + rest, expected);
  }
}

TEST(QQTextDeathTest, ReportsWhatIsNoNumber) {
  const std::pair<const char*, std::string> cases[] = {
      {"QQ: parse error1", "+ - 1.0 2.00 1. 1: 1e e1 1e1e"},
      {"QQ: parse error2", "ix -i --1.i"},
      {"QQ: parse error3", "in ing"},
      {"QQ: malformed number1", "1:01/2 1:-1/2 1:0. 1:-inf"},
      {"QQ: malformed number2", "1:3/2 1:2 1:inf"},
      {"QQ: division by zero1", "1/0 1/ 1/1e1/0"},
      {"A ganze / zaehler / nenner sign has been set, though it should not be used",
       "+-5/3 --5.3 --1:1/2"}};
  for (const auto& entry : cases) {
    forEachCase(entry.second, [&](const std::string& text, const std::string&) {
      EXPECT_EXIT(QQ{text}, testing::ExitedWithCode(1), entry.first) << text;
    });
  }
}

TEST(QQTextDeathTest, ReportsStreamsWithoutANumber) {
  const auto read = [](const char* text, std::ios::iostate state = std::ios::goodbit) {
    std::istringstream in(text);
    in.setstate(state);
    QQ x;
    in >> x;
  };
  EXPECT_EXIT(read("  "), testing::ExitedWithCode(1), "QQ: parse error1");
  EXPECT_EXIT(read("x1"), testing::ExitedWithCode(1), "QQ: parse error1");
  EXPECT_EXIT(read("1", std::ios::eofbit), testing::ExitedWithCode(1), "QQ: parse error1");
  EXPECT_EXIT(read("ing"), testing::ExitedWithCode(1), "QQ: parse error3");
  EXPECT_EXIT(read("ix"), testing::ExitedWithCode(1), "QQ: parse error2");
}

}  // namespace
}  // namespace vexil
