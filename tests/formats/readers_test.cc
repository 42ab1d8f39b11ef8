// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include <iostream>

#include "formats/lp_reader.h"
#include "formats/model_file.h"
#include "formats/mps_reader.h"
#include "formats/opt_writer.h"
#include "formats/remarks.h"
#include "support/tool_run.h"

namespace vexil::formats {
namespace {

using support::ChildEnd;

/// Reads a model "m.lp" or "m.mps" in a process of its own, which writes the opt file.
ChildEnd read(const std::string& path, const std::string& text, const ReadSettings& settings = {}) {
  return support::Child([&] {
           const SourceText source(path, text);
           NamedModel model = path == "m.lp" ? readLp(source) : readMps(source, settings);
           applyRemarks(model, path);
           makeDiscrete(model, settings.decimals, path);
           std::cout << optText(model) << std::flush;
           return 0;
         })
      .finish(std::chrono::minutes(1));
}

/// The text without its line breaks and without the comments at its head.
std::string flat(const std::string& opt) {
  std::string result;
  std::istringstream lines(opt);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("//")) result += line + " ";
  }
  return result;
}

struct Case {
  std::string text;
  std::string result;
};

TEST(LpReader, ReadsWhatTheFormHas) {
  for (const auto& [text, opt] : std::vector<Case>{
           // Sides: variables and numbers on both, ranges, all spellings of relations.
           {"min\n 2x + 3 y - -4\nst\n x + 2 <= 3 y - 1 + x\n",
            "[ -inf ] [ [ 2 3 ] ] [ ] [ ] [ [ 0 -3 ] ] [ -inf ] [ -3 ] "
            "[ 0 0 ] [ 0 0 ] [ inf inf ] "},
           {"MAXIMIZE o: x\n+ y\nSubject  To\n a: -3 <= x\n+ y <= 5\n b: 7 => x c: x = y\n",
            "[ inf ] [ [ 1 1 ] ] [ [ 1 -1 ] ] [ 0 ] [ [ 1 1 ] [ 1 0 ] ] [ -3 -inf ] [ 5 7 ] "
            "[ 0 0 ] [ 0 0 ] [ inf inf ] "},
           {"min\nx + y\nst\n x >= 2\n y =< 5\n - x + y > - 7\n3 y < 2 x\n4 x + 1 >=\n2\nx = 5\n+ "
            "y\n"
            "<= 8",
            "[ -inf ] [ [ 1 1 ] ] [ [ 1 0 ] ] [ 5 ] "
            "[ [ 1 0 ] [ 0 1 ] [ -1 1 ] [ -2 3 ] [ 4 0 ] [ 0 1 ] ] [ 2 -inf -7 -inf 1 -inf ] "
            "[ inf 5 inf 0 inf 8 ] [ 0 0 ] [ 0 0 ] [ inf inf ] "},
           {"min\nst\n x + y >= -inf\n 9 >= x + y + 1 >= -infinity\n",
            "[ ] [ ] [ ] [ ] [ [ 1 1 ] ] [ -inf ] [ 8 ] [ 0 0 ] [ 0 0 ] [ inf inf ] "},
           // Exact numbers of any length.
           {"min\n .1x+12345678901234567890.5e-2y+ 0 x\nst\nc: 1e2x + 2.E+0 y - x >= 5e-1\n",
            "[ -inf ] [ [ 1/10 123456789012345678:181/200 ] ] [ ] [ ] [ [ 99 2 ] ] [ 1/2 ] [ inf ] "
            "[ 0 0 ] [ 0 0 ] [ inf inf ] "},
           // Bounds; the word of a section is a name where no section can begin.
           {"min\n x + y + 2 st + end + free\nst\n end: x + y <= 1\nbounds\n -2 <= x <= 1e1\n"
            " y free 5 >= st\n -inf <= end <= -1\n free = 4\nbinary\n y\nint st end\ngen\n free\n",
            "[ -inf ] [ [ 1 1 2 1 1 ] ] [ ] [ ] [ [ 1 1 0 0 0 ] ] [ -inf ] [ 1 ] [ 0 0 0 0 0 ] "
            "[ -2 0 0 -inf 4 ] [ 10 1 5 -1 4 ] "},
           {"min\n x + y\nst\nbounds\n x <= 1e30\n y <= 1000000000000000000000000000000\n y >= "
            "-7\n",
            "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 0 -7 ] "
            "[ inf 1000000000000000000000000000000 ] "},
       }) {
    const auto end = read("m.lp", text + "\ngeneral\\ a comment\nx y\nEND x\n");
    EXPECT_EQ(flat(end.out), opt) << text << end.err;
  }
}

TEST(LpReader, NamesThePlaceOfAFault) {
  for (const auto& [text, fault] : std::vector<Case>{
           {"x + y\n", "1:1: expected Minimize or Maximize"},
           {"min: x\nend", "1:1: expected Minimize or Maximize"},
           {"min\n x +\nst\n", "3:1: expected a number or a variable, not st"},
           {"min\n x y\nst\n", "2:4: expected a sign, a term or Subject To, not y"},
           {"min\n x\nst\n c: x 3\n", "4:7: expected <=, >= or =, not 3"},
           {"min\n x\nst\n c: 2 <= 3\nend", "4:10: expected a variable on one side of the row"},
           {"min\n x\nst\n c: 2 <= x >= 3\nend",
            "4:12: expected the relation of the left side again"},
           {"min\n x\nst\n x <= 2 x <= 3\nend",
            "4:7: expected a number on the left side of a range"},
           {"min\n x\nst\n 2 <= x <= 3 x\nend",
            "4:12: expected a number on the right side of a range"},
           {"min\n x\nst\n c: 3 <= x <= 2\nend",
            "4:2: expected sides that leave a value to the row"},
           {"min\n x\nst\n x <= -inf\nend", "4:7: expected a finite side"},
           {"min\n x + inf\nst\n x <= 2\nend", "2:2: expected a finite objective"},
           {"min\n x\nst\n c: x <= 2\n c: x >= 1\nend", "5:2: expected a new name, not c again"},
           {"min\n x\nst\n x <= 1e10000\nend", "4:7: expected a number, not 1e10000"},
           {"min\n [ x ^ 2 ]\nst\n",
            "2:2: expected a number or a variable, not [ (quadratic terms are not read)"},
           {"min\n x\nst\n b = 1 -> x <= 2\nend",
            "4:8: expected a number or a variable, not -> (indicator rows are not read)"},
           {"min\n x\nst\nbounds\n y <= 2\nend",
            "5:2: expected a variable of the objective or of a row, not y"},
           {"min\n x\nst\nbounds\n x <= -2\nend", "5:4: expected bounds that leave a value to x"},
           {"min\n x\nst\nbounds\n x = inf\nend",
            "6:1: expected a finite bound ahead of this, not end"},
           {"min\n x\nst\nsemi-continuous\n x\nend",
            "4:1: expected Subject To, Bounds, General, Binary or End, not the section "
            "semi-continuous"},
           {"min\n x\nst\ngeneral\n x\n", "6:1: expected a section or End"},
       }) {
    EXPECT_EQ(read("m.lp", text).err, "\n*** FAIL: m.lp:" + fault + "\n") << text;
  }
}

/// An MPS file of integer columns x and y, which does without bounds and right-hand sides.
std::string mps(const std::string& tail, const std::string& head = "NAME test\n",
                const std::string& rows = " N obj\n L le\n G ge\n E eq\n") {
  return head + "ROWS\n" + rows +
         "COLUMNS\n m 'MARKER' 'INTORG'\n x obj 1 le 2\n x ge 3 eq 1e0\n y le .5 obj -1\n" + tail +
         "ENDATA\n";
}

TEST(MpsReader, ReadsWhatTheFormHas) {
  const std::string columns = "[ -inf ] [ [ 1 -1 ] ] [ [ 1 0 ] ] [ 0 ] [ [ 2 1/2 ] [ 3 0 ] ] ";
  const std::string noBounds = "[ 0 0 ] [ 0 0 ] [ 1 1 ] ";
  for (const auto& [text, opt] : std::vector<Case>{
           {mps(""), columns + "[ -inf 0 ] [ 0 inf ] " + noBounds},
           {mps("RHS\n rhs le 1 ge 2.5\n rhs obj 7 eq 0\n"),
            columns + "[ -inf 2:1/2 ] [ 1 inf ] " + noBounds},
           {mps("\n* a comment\nRHS\n le 1 ge 2\nRANGES\n r le -5 ge -5\n r eq 0\n"),
            columns + "[ -4 2 ] [ 1 7 ] " + noBounds},
           {mps("RANGES\n eq 4\nRHS\n eq 3\n"),
            "[ -inf ] [ [ 1 -1 ] ] [ ] [ ] [ [ 2 1/2 ] [ 3 0 ] [ 1 0 ] ] [ -inf 0 3 ] [ 0 inf 7 "
            "] " +
                noBounds},
           {mps("RANGES\n eq -4\nRHS\n eq 3\n"),
            "[ -inf ] [ [ 1 -1 ] ] [ ] [ ] [ [ 2 1/2 ] [ 3 0 ] [ 1 0 ] ] [ -inf 0 -1 ] "
            "[ 0 inf 3 ] " +
                noBounds},
           {mps("", "OBJSENSE\n    MAX\n"),
            "[ inf ] [ [ 1 -1 ] ] [ [ 1 0 ] ] [ 0 ] [ [ 2 1/2 ] [ 3 0 ] ] [ -inf 0 ] [ 0 inf ] " +
                noBounds},
           {mps("", "OBJSENSE maximize\n", " N obj\n N le\n E ge\n E eq\n"),
            "[ inf ] [ [ 1 -1 ] ] [ [ 3 0 ] [ 1 0 ] ] [ 0 0 ] [ ] [ ] [ ] " + noBounds},
       }) {
    const auto end = read("m.mps", text);
    EXPECT_EQ(flat(end.out), opt) << text << end.err;
  }
}

TEST(MpsReader, TakesBoundsAsDocumented) {
  for (const auto& [records, bounds] : std::vector<Case>{
           {" LO b x 2\n UP b y 9\n", "[ 2 0 ] [ inf 9 ] "},
           {" UP x 4\n LO x -3\n FX y 2\n", "[ -3 2 ] [ 4 2 ] "},
           {" FR b x\n MI b y\n", "[ -inf -inf ] [ inf inf ] "},
           {" PL x\n BV b y 1\n", "[ 0 0 ] [ inf 1 ] "},
           {" FR x 0\n MI y\n UP y 3\n", "[ -inf -inf ] [ inf 3 ] "},
           {" LI x -2\n UI y 7\n", "[ -2 0 ] [ inf 7 ] "},
           {" UP x -2\n UP y 0\n", "[ -inf 0 ] [ -2 0 ] "},
           {" UP x -2\n MI y\n UP y -1\n LO x -5\n", "[ -5 -inf ] [ -2 -1 ] "},
           {" UP x 1e30\n LO y -1E+31\n", "[ 0 -inf ] [ inf inf ] "},
           {" UP x 1000000000000000000000000000000\n UP y inf\n",
            "[ 0 0 ] [ 1000000000000000000000000000000 inf ] "},
           {" UP one x 3\n UP two x 4\n LO one y 1\n", "[ 0 1 ] [ 3 inf ] "},
       }) {
    const auto end = read("m.mps", mps("BOUNDS\n" + records));
    EXPECT_TRUE(flat(end.out).ends_with("] [ 0 0 ] " + bounds)) << records << end.out << end.err;
  }
}

TEST(MpsReader, TellsWhatItDrops) {
  const std::string further = mps("", "", " N obj\n N le\n N ge\n E eq\n");
  EXPECT_EQ(read("m.mps", further).err,
            "\n*** m.mps:3:4: a target row behind the first one is left out (see --targets) "
            "(2 times)\n");
  const auto all = read("m.mps", further, {.furtherTargets = true});
  EXPECT_EQ(flat(all.out).substr(0, 53), "[ -inf -inf -inf ] [ [ 1 -1 ] [ 2 1/2 ] [ 3 0 ] ] [ [");
  EXPECT_EQ(all.err, "");
  EXPECT_EQ(
      read("m.mps", mps("BOUNDS\n UP x -1\n")).err,
      "\n*** m.mps:13:2: an upper bound below 0 without a lower bound: the lower one is -inf\n");
  EXPECT_EQ(
      read("m.mps", mps("RHS\n a le 1\n b le 2\n")).err,
      "\n*** m.mps:14:2: a record of another set than the first of its section is left out\n");
  EXPECT_EQ(read("m.lp", "min\n x\nst\n x >= -inf\nint\n x\nend\n").err,
            "\n*** m.lp:4:2: a row without a finite side is left out\n");
}

TEST(MpsReader, ReadsNamesWithBlanksInTheFixedForm) {
  const std::string fixed =
      "NAME          a name\n"
      "ROWS\n"
      " N  COST\n"
      " L  row one\n"
      "COLUMNS\n"
      "    MARKER                 'MARKER'                 'INTORG'\n"
      "    x y       COST               1.5   row one              2\n"
      "    z         row one             -1\n"
      "RHS\n"
      "    RHS       row one             12\n"
      "BOUNDS\n"
      " UP BND       x y                  4\n"
      "ENDATA\n";
  EXPECT_EQ(read("m.mps", fixed).out,
            "// model: a\n// x[1]: x y\n// x[2]: z\n// target[1]: COST\n// inequation[1]: row one\n"
            "[ -inf ]\n[\n[ 1:1/2 0 ]\n]\n[\n]\n[ ]\n[\n[ 2 -1 ]\n]\n[ -inf ]\n[ 12 ]\n"
            "[ 0 0 ]\n[ 0 0 ]\n[ 4 1 ]\n");
}

TEST(MpsReader, NamesThePlaceOfAFault) {
  for (const auto& [text, fault] : std::vector<Case>{
           {" x\n", "1:2: expected a section, as ROWS"},
           {"NAME\nSOS1\n",
            "2:1: expected NAME, OBJSENSE, ROWS, COLUMNS, RHS, RANGES, BOUNDS or ENDATA, not the "
            "section SOS1"},
           {"NAME\nCOLUMNS\n", "2:1: expected the section ROWS ahead of COLUMNS"},
           {"NAME\nROWS\nNAME\n", "3:1: expected a section that may follow ROWS"},
           {"ROWS\n N a b\n", "2:6: expected the end of the line"},
           {"ROWS\n N\n", "2:3: expected a type and a name"},
           {"ROWS\n N a\n X b\n", "3:2: expected a row type N, L, G or E"},
           {"ROWS\n N a\n L a\n", "3:4: expected a new name, not a again"},
           {"OBJSENSE\n up\n", "2:2: expected MIN or MAX"},
           {"ROWS\n N a\nCOLUMNS\n x b 1\n", "4:4: expected a row of the section ROWS, not b"},
           {"ROWS\n N a\nCOLUMNS\n x a one\n", "4:6: expected a number, not one"},
           {"ROWS\n N a\nCOLUMNS\n x a 1 a 2\n",
            "4:8: expected another row than a, which this column has named already"},
           {"ROWS\n N a\nCOLUMNS\n x a 1 a\n", "4:9: expected a number"},
           {"ROWS\n N a\nCOLUMNS\n x a 1\n y a 1\n x a 1\n",
            "6:2: expected the entries of column x in one place"},
           {"ROWS\n N a\nCOLUMNS\n m 'MARKER' 'SOSORG'\n",
            "4:13: expected 'INTORG' or 'INTEND' behind 'MARKER'"},
           {"ROWS\n N a\nCOLUMNS\n x a 1 b c d e f\n",
            "4:14: expected the end of the line behind 6 words"},
           {mps("RHS\n le 1\n le 2\n"), "14:2: expected one number for le"},
           {mps("RANGES\n obj 1\n"), "13:2: expected a row of the type L, G or E"},
           {mps("BOUNDS\n SC b x 3\n"),
            "13:2: expected a bound type LO, UP, FX, FR, MI, PL, BV, LI or UI, not SC"},
           {mps("BOUNDS\n UP b z 3\n"), "13:7: expected a column, not z"},
           {mps("BOUNDS\n UP x\n"), "13:6: expected a column and a number"},
           {mps("BOUNDS\n FX x inf\n"), "13:7: expected a bound, not inf"},
           {mps("BOUNDS\n LO x 3\n UP x 2\n"), "14:2: expected bounds that leave a value to x"},
           {"ROWS\n N a\n", "3:1: expected the section ENDATA"},
       }) {
    EXPECT_EQ(read("m.mps", text).err, "\n*** FAIL: m.mps:" + fault + "\n") << text;
  }
}

TEST(Discreteness, IsAskedForOrGiven) {
  const std::string text = "min\n 2 x + y\nst\n x + y >= 1\ngeneral\n y\nend\n";
  EXPECT_EQ(read("m.lp", text).err,
            "\n*** FAIL: m.lp: variable x is not integer (--decimals=k makes it a multiple of "
            "10^-k)\n");
  EXPECT_TRUE(flat(read("m.lp", text, {.decimals = 2}).out)
                  .ends_with("[ 1 ] [ inf ] [ 2 0 ] [ 0 0 ] [ inf inf ] "));
}

TEST(ModelText, RefusesNothingAndWhatNoMemoryHolds) {
  NamedModel model;
  for (const auto form : {ModelForm::LP, ModelForm::OPT}) {
    EXPECT_EXIT(static_cast<void>(modelText(model, form, {}, "m")), testing::ExitedWithCode(1),
                "m: the model has no variables");
  }
  model.variables.resize(200'000);
  model.rows.resize(200'000);
  EXPECT_EXIT(checkDenseSize(model, "m"), testing::ExitedWithCode(1),
              "m: 200000 rows of 200000 variables take [0-9.e+]+ GB as dense matrices, and there "
              "are [0-9.e+]+ GB of memory");
}

}  // namespace
}  // namespace vexil::formats
