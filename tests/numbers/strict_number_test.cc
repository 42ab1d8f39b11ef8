// Vexil - exact integer optimization on lattices.
#include "numbers/strict_number.h"

#include "numbers/number_cases.h"

namespace vexil {
namespace {

std::string read(const std::string& text) {
  const auto number = strictNumber(text);
  return number ? toString(*number) : "none";
}

TEST(StrictNumber, TakesWholeTexts) {
  expectResults(
      "7=7 -7=-7 +7=7 --3=3 -+3=-3 007=7 -0=0 4/2=2 -1/3=-1/3 7:1/3=7:1/3 -7:1/3=-7:1/3 :2/4=1/2 "
      "1:+1/2=1:1/2 1:0/3=1 0.25=1/4 0,5=1/2 .5=1/2 -1.05=-1:1/20 1.0=1 1.=1 inf=inf -inf=-inf "
      "1e2=100 1E+2=100 -2.5e-1=-1/4 1.23457e+06=1234570 0e9999=0 1e0002=100 "
      "123456789012345678901234567890=123456789012345678901234567890",
      read);
  EXPECT_EQ(read("- \t\n5"), "-5");
  EXPECT_EQ(read("1e-9999").size(), std::string("1/").size() + 10000);
}

TEST(StrictNumber, RefusesTheRest) {
  expectResults(
      "x=none -=none ---1=none 1x=none x1=none 1-2=none .=none e5=none 1e=none 1e+=none 1e+-5=none "
      "1e5.0=none 1e10000=none 1/2e3=none 1/=none /2=none 1/0=none 1:3/2=none 1:2/2=none 1:=none "
      "1:-1/2=none 1:0=none 1.2.3=none 1/2/3=none in=none infx=none INF=none nan=none 0x10=none",
      read);
  EXPECT_EQ(read("") + read("1 ") + read(" 1") + read("1 2") + read(std::string("1\0", 2)),
            "nonenonenonenonenone");
}

}  // namespace
}  // namespace vexil
