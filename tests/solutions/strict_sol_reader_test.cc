// Vexil - exact integer optimization on lattices.
#include "solutions/strict_sol_reader.h"

#include <gtest/gtest.h>

#include "foundation/exceptions.h"
#include "foundation/failure.h"

namespace vexil {
namespace {

/// The entries as "line elements time(options,version)", then "lossy" or the fault.
std::string read(const std::string& text) {
  std::string result;
  StrictSolReader reader("x.sol", text);
  try {
    for (SolEntry e; reader.next(e);) {
      result += joined(e.line, e.elements, e.time, "(", e.paramText, ",", e.version, ") ");
    }
  } catch (const ReadException& fault) {
    return result + fault.what();
  }
  return result + (reader.isLossless() ? "" : "lossy");
}

TEST(StrictSolReader, TakesWhatTheToolTakes) {
  const std::string star = "1[ 2 1 ]7(--a=1,2.2.3) ";
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"[ 2 1 ] | 3 | [ 3 ] | 0 | 7 | --a=1 | 2.2.3\n", star},
      {"[2 1]|-381|[ 410 26 43 ]|1e+06|7|--a=1|2.2.3", star},
      {"[ 2 1 ] | 0 [ ] 0 7 --a=1 | 2.2.3\n", star},
      {"[ 2 1 ] | 0 0 7 --a=1 | 2.2.3\n", star},
      {"[ 2\r\n1 ]\r\n|\t0 |\n[ ]\n| 0\n|\n7\n|\n\n\t--a=1\t|\t2.2.3\t\r\n", star},
      {"/* a */ [ 2 // b\n 1 ] /* c */ | // d\n0/**/| [ 3/* e */] | 0 | 7 // f\n| // g\n"
       "--a=1 | 2.2.3\n// h",
       star + "lossy"},
      {"\n[ 1.5 - 2 1e2 ]\n\n[ 1/3 inf ]", "2[ 1:1/2 -2 100 ]-1(,) 4[ 1/3 inf ]-1(,) "},
      {"[ 1 ] | 0 | [ ] | 0 | +5 | a // b | 9.9 | more\n[ 2 ]",
       "1[ 1 ]5(a // b,9.9) 2[ 2 ]-1(,) lossy"},
      {"[ 1 ] | 0 | [ ] | 0 | -1 | [ a | \n", "1[ 1 ]-1([ a,) "},
      {"[ 1 ] | 0 | [ ] | 0 | -1 |  | 1.2\n", "1[ 1 ]-1(,1.2) "},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(read(text), expected) << text;
}

TEST(StrictSolReader, NoEmptyFieldTakesTheNextStar) {
  const std::string next = "[ 2 ] | 0 | [ 5 ] | 0 | 7 | --a=1\n";
  for (const std::string cut :
       {"", " |", " | 0", " | 0 |", " | 0 | [ ]", " | 0 | [ ] |", " | | |", " | 0 | [ ] | 0",
        " | 0 | [ ] | 0 |", " | 0 | [ ] | 0 | -1", " | 0 | [ ] | 0 | -1 |", " | | | | |"}) {
    EXPECT_EQ(read("[ 1 ]" + cut + "\n" + next), "1[ 1 ]-1(,) 2[ 2 ]7(--a=1,) ") << cut;
    EXPECT_EQ(read("[ 1 ]" + cut + "\n[ 2 ]"), "1[ 1 ]-1(,) 2[ 2 ]-1(,) ") << cut;
    EXPECT_EQ(read("[ 1 ]" + cut), "1[ 1 ]-1(,) ") << cut;
  }
}

TEST(StrictSolReader, NamesLineAndFieldOfAFault) {
  const std::pair<std::string, std::string> cases[] = {
      {"1 2", "1: field 1: not a vector: 1"},
      {"\n]", "2: field 1: not a vector: ]"},
      {"[ 1\nx2 ]", "2: field 1: not a number: x2"},
      {"[ 1 -x ]", "1: field 1: not a number: -x"},
      {"[ 1 \n[ 2 ]", "2: field 1: not a number: ["},
      {"[ 1 - ]", "1: field 1: not a number: - ]"},
      {"[ 1\n", "2: field 1: the vector has no end"},
      {"[ 1 ] | [ 2 ]", "1: field 2: not a number: ["},
      {"[ 1 ] | 1:2 |", "1: field 2: not a number: 1:2"},
      {"[ 1 ] | 0 | abc | 0", "1: field 3: not a vector: abc"},
      {"[ 1 ] | 0 | [ ] | y", "1: field 4: not a number: y"},
      {"[ 1 ] | 0 | [ ] |\n\n 0 | abc | --a=1", "3: field 5: not a number: abc"},
      {"[ 1 ] | 0 | [ ] | 0 | 7.5", "1: field 5: not a whole number: 7.5"},
      {"[ 1 ] | 0 | [ ] | 0 | 9223372036854775808",
       "1: field 5: out of range: 9223372036854775808"},
      {"\n/* [ 1 ]", "2: the comment has no end"},
      {"[ \a" + std::string(50, '1') + "]",
       "1: field 1: not a number: ?" + std::string(39, '1') + "..."},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(read(text), "x.sol:" + expected) << text;
  EXPECT_EQ(read("[ 1 ]\nabc"), "1[ 1 ]-1(,) x.sol:2: field 1: not a vector: abc");
}

}  // namespace
}  // namespace vexil
