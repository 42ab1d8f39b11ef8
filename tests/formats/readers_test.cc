// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include <iostream>

#include "formats/lp_reader.h"
#include "formats/model_file.h"
#include "formats/mps_reader.h"
#include "formats/opt_writer.h"
#include "formats/remarks.h"
#include "support/text_cases.h"
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

TEST(LpReader, ReadsWhatTheFormHas) {
  for (const auto& [opt, parts] : support::textCases("formats/lp_models.txt")) {
    const auto end = read("m.lp", parts[0] + "\ngeneral\\ a comment\nx y\nEND x\n");
    EXPECT_EQ(flat(end.out), opt + " ") << parts[0] << end.err;
  }
}

const std::string ROWS = "NAME test\nROWS\n N obj\n L le\n G ge\n E eq\n";
const std::string COLUMNS =
    "COLUMNS\n m 'MARKER' 'INTORG'\n x obj 1 le 2\n x ge 3 eq 1e0\n y le .5 obj -1\n";

/// An MPS file of integer columns x and y, which does without bounds and right-hand sides.
std::string mps(const std::string& tail, const std::string& rows = ROWS) {
  return rows + COLUMNS + tail + "ENDATA\n";
}

/// The text with the names of its common pieces replaced by these.
std::string whole(const String& text) {
  return text.replaceAll("<model>\n", ROWS + COLUMNS).replaceAll("<columns>\n", COLUMNS);
}

TEST(MpsReader, ReadsWhatTheFormHas) {
  for (const auto& [opt, parts] : support::textCases("formats/mps_models.txt")) {
    const auto end = read("m.mps", whole(parts[0]));
    EXPECT_EQ(flat(end.out), opt + " ") << parts[0] << end.err;
  }
}

TEST(MpsReader, TakesBoundsAsDocumented) {
  for (const auto& [bounds, parts] : support::textCases("formats/mps_bounds.txt")) {
    const auto end = read("m.mps", mps("BOUNDS\n" + parts[0]));
    EXPECT_TRUE(flat(end.out).ends_with("] [ 0 0 ] " + bounds + " ")) << parts[0] << end.err;
  }
}

TEST(Readers, NameThePlaceOfAFault) {
  for (const auto& [fault, parts] : support::textCases("formats/faults.txt")) {
    const std::string path = fault.substr(0, fault.find(':'));
    EXPECT_EQ(read(path, whole(parts[0])).err, "\n*** FAIL: " + fault + "\n") << parts[0];
  }
}

TEST(MpsReader, TellsWhatItDrops) {
  const std::string further = mps("", "ROWS\n N obj\n N le\n N ge\n E eq\n");
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
