// Vexil - exact integer optimization on lattices.
//
// Whole runs of the tool: what a user gives and what comes of it. All expectations are worked out
// by hand.
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fstream>
#include <map>

#include "support/tool_run.h"

namespace vexil {
namespace {

using Texts = std::vector<std::string>;
using MaybeText = std::optional<std::string>;

/// An opt file by its items. As it stands: minimize the sum of two variables between 0 and 9.
struct Program {
  std::string dt = "[ -inf ]", At = "[ [ 1 1 ] ]";
  std::string Ag = "[ ]", bg = "[ ]";
  std::string Au = "[ ]", lu = "[ ]", ru = "[ ]";
  std::string dx = "[ 0 0 ]", lx = "[ 0 0 ]", rx = "[ 9 9 ]";

  operator std::string() const {
    std::string text;
    for (const auto& item : {dt, At, Ag, bg, Au, lu, ru, dx, lx, rx}) text += item + "\n";
    return text;
  }
};

/// Nothing to optimize, so that norms stay as the sol file has them.
const std::string WITHOUT_TARGETS =
    "[ ] [ ] [ ] [ ] [ [ 1 1 ] ] [ -inf ] [ 999 ] [ 0 0 ] [ -9 -9 ] [ 99 99 ]";

/// Has more digits than standard precision holds.
const std::string LONG_NUMBER = "123456789012345678";

struct Case {
  std::string name;
  MaybeText opt;
  MaybeText sol;
  MaybeText after;  ///< the sol file behind the run
  std::string out;
  std::string err;
  int status = 0;
  int signal = 0;
  Texts arguments = {"x.sol"};
  std::string optName = "x.opt";
  std::string solName = "x.sol";
};

void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }

/// A fatal failure ahead of the write.
Case refused(const std::string& name, const MaybeText& opt, const MaybeText& sol,
             const std::string& text) {
  return {name, opt, sol, sol, "", "\n*** FAIL: " + text + "\n", 1};
}

Case kept(const std::string& name, const std::string& opt, const MaybeText& sol,
          const MaybeText& after, const std::string& out) {
  return {name, opt, sol, after, out, ""};
}

/// Every star goes, and the file with them.
Case emptied(const std::string& name, const std::string& opt, const MaybeText& sol) {
  return kept(name, opt, sol, std::nullopt, "\n\n");
}

/// Ends by the exception of a number list that is looked for behind the end of the file.
Case aborted(const std::string& name, const std::string& opt) {
  const std::string text =
      "terminate called after throwing an instance of 'vexil::ReadException'\n"
      "  what():  Vector: bad stream\n";
  return {name, opt, "[ 1 1 ]\n", "[ 1 1 ]\n", "", text, -1, SIGABRT};
}

std::string block(const std::string& x, const std::string& values, const std::string& targetNorm,
                  const std::string& slackNorm, const std::string& time = "") {
  return "x = [ " + x + " ]\n\nTarget values: [ " + values + "]\nTarget Norm: " + targetNorm +
         "\nSlack Norm: " + slackNorm + "\n" + (time.empty() ? "" : "Found after: " + time + "\n");
}

/// A star with one value to minimize, which is its norm.
std::string minimized(const std::string& x, const std::string& norm, const std::string& time = "") {
  return block(x, norm + "↓ ", norm, "0", time);
}

std::string report(const Texts& blocks) {
  std::string text = "\n";
  for (const std::string& star : blocks) text += (text.size() > 1 ? "\n---\n\n" : "") + star;
  return text + "\n";
}

void addCommandLines(std::vector<Case>& rows) {
  const std::string usage = "Usage: vexil *.sol\n";
  int number = 0;
  for (const Texts& arguments : std::vector<Texts>{
           {}, {""}, {"a.sol", "b.sol", "x.sol"}, {"x.SOL"}, {"x.sol.txt"}, {"x.sol", "a.txt"}}) {
    Case row = kept("Usage" + std::to_string(++number), Program(), "[1 1]", "[1 1]", usage);
    row.status = 1;
    row.arguments = arguments;
    rows.push_back(row);
  }
  number = 0;
  for (const auto& [solFile, optFile] :
       std::vector<std::pair<std::string, std::string>>{{"r.1/x.y.sol", "r.1/x.y.opt"},
                                                        {"../vexil-none.sol", "../vexil-none.opt"},
                                                        {"x.sol.sol", "x.sol.opt"},
                                                        {"d.d/.sol", "d.d/.opt"},
                                                        {"..sol", "..opt"}}) {
    Case row = refused("NoOptFile" + std::to_string(++number), std::nullopt, "[1 1]",
                       "Could not read opt file: " + optFile);
    row.arguments = {solFile};
    rows.push_back(row);
  }
  for (const std::string base : {".sol", "run.1/x.y"}) {  // the former is named without its ending
    Case row = kept("FileNames" + std::to_string(++number), Program(), "[1 1]",
                    "[ 1 1 ] | 2 | [ 2 ] | 0 | -1 | \n", report({minimized("1 1", "2")}));
    row.optName = base + ".opt";
    row.solName = base + ".sol";
    row.arguments = {"a.txt", base == ".sol" ? base : row.solName};
    rows.push_back(row);
  }
}

/// Pairs of lines in a file: the failure and the opt file. Where that has two faults, the message
/// is that of the one that is looked for first.
void addFaultyPrograms(std::vector<Case>& rows) {
  std::ifstream in(std::string(VEXIL_SOURCE_DIR) + "/tests/frontend/faulty_programs.txt");
  for (std::string text, opt; std::getline(in, text) && std::getline(in, opt);)
    rows.push_back(refused("Faulty" + std::to_string(rows.size()), opt, "[ 1 1 ]\n", text));
  rows.push_back(refused("EmptyFile", "", "[ 1 1 ]\n", "Matrix: bad stream"));
  rows.push_back(aborted("EndsInMatrix", "[ -inf ] [ [ 1 1 ]"));
  rows.push_back(aborted("EndsBehindAu", "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ]"));
  rows.push_back(aborted("EndsBehindDx", Program{.lx = "", .rx = ""}));
}

void addNumbers(std::vector<Case>& rows) {
  rows.push_back(refused("RefusedDecimal", Program(), "[ 1 1.0 ]", "QQ: parse error1"));
  rows.push_back(kept("ExactNumbers",
                      Program{.At = "[ [ -7:1/3 0,25 ] ]", .rx = "[ 1 " + LONG_NUMBER + " ]"},
                      "[ 1 " + LONG_NUMBER + " ]\n",
                      "[ 1 " + LONG_NUMBER +
                          " ] | 30864197253086412:1/6 | "
                          "[ 30864197253086412:1/6 ] | 0 | -1 | \n",
                      report({minimized("1 " + LONG_NUMBER, "30864197253086412:1/6")})));
}

void addPrograms(std::vector<Case>& rows) {
  rows.push_back(kept("AllMarks",
                      Program{.dt = "[ -inf inf 5 ]", .At = "[ [ 1 2 ] [ 3 1 ] [ 1 1 ] ]"},
                      "[2 1]|0|[]|0|12|--a=1|2.2.3\n[ 1 1 ] | 0 | [ ] | 0 | -1 | --a=1\n",
                      "[ 2 1 ] | -1 | [ 4 7 3 ] | 2 | 12 | --a=1 | 2.2.3\n"
                      "[ 1 1 ] | 2 | [ 3 4 2 ] | 3 | -1 | --a=1 | 2.2.3\n",
                      report({block("2 1", "4↓ 7↑ 3→5 ", "-1", "2", "12 sec(s)"),
                              block("1 1", "3↓ 4↑ 2→5 ", "2", "3")})));
  // A short row is filled up with zeros.
  rows.push_back(kept(
      "ShortRows", Program{.dt = "[ -inf -inf -inf 1/2 ]", .At = "[ [ ] [ 1 2 ] [ 3 ] [ 0 5 ] ]"},
      "[ 1 1 ]\n", "[ 1 1 ] | 10.5 | [ 0 3 3 5 ] | 4.5 | -1 | \n",
      report({block("1 1", "0↓ 3↓ 3↓ 5→0.5 ", "10.5", "4.5")})));
  // The character behind a slash that starts no comment takes its place.
  rows.push_back(kept("StraySlashInAStar", WITHOUT_TARGETS, "[ 1 /2 ]\n",
                      "[ 1 22 ] | 0 | [ ] | 0 | -1 | \n", report({block("1 22", "", "0", "0")})));
  rows.push_back(emptied("NothingIsInfinite",
                         Program{.Au = "[ [ 1 1 ] ]", .lu = "[ inf ]", .ru = "[ inf ]"},
                         "[ 1 1 ]\n"));
  // The variables stand for one kind of test each: bounds, equation, left and right of inequations.
  const auto bare = [](int i) { return "[ " + std::to_string(i) + " 1 2 3 ]"; };
  const std::string asBare = " | 0 | [ ] | 0 | -1 | \n";
  rows.push_back(kept("FailingStars",
                      "[ ] [ ] [ [ 0 1 0 0 ] ] [ 1 ] [ [ 0 0 1 0 ] [ 0 0 0 1 ] ] [ 2 -inf ] "
                      "[ inf 3 ] [ 0 0 0 0 ] [ 0 -99 -99 -99 ] [ 9 99 99 99 ]",
                      bare(-1) + bare(1) + bare(10) + bare(2) + "[ 0 2 2 3 ]" + bare(3) +
                          "[ 0 1 1 3 ]" + bare(4) + "[ 0 1 2 4 ]",
                      bare(1) + asBare + bare(2) + asBare + bare(3) + asBare + bare(4) + asBare,
                      report({block("1 1 2 3", "", "0", "0"), block("2 1 2 3", "", "0", "0"),
                              block("3 1 2 3", "", "0", "0"), block("4 1 2 3", "", "0", "0")})));
  rows.push_back(kept(
      "EquationsHaveATolerance", "[ ] [ ] [ [ 1 ] ] [ 1 ] [ ] [ ] [ ] [ 0 ] [ 0 ] [ 1.0000000005 ]",
      "[ 0.999999998 ]\n[ 1.0000000002 ]\n[ 1.0000000007 ]\n",
      "[ 1.0000000002 ] | 0 | [ ] | 0 | -1 | \n", report({block("1", "", "0", "0")})));
}

void addPrecision(std::vector<Case>& rows) {
  const auto add = [&](const std::string& name, const Program& program, const std::string& x,
                       const std::string& written, const std::string& shown,
                       const std::string& norm) {
    rows.push_back(kept(name, program, "[ " + x + " ]\n",
                        "[ " + written + " ] | " + norm + " | [ " + norm + " ] | 0 | -1 | \n",
                        report({minimized(shown, norm)})));
  };
  const Program wide{.At = "[ [ 0 1 ] ]", .rx = "[ inf 9 ]"};
  const Program third{.At = "[ [ 1/3 0 ] ]", .rx = "[ 9 inf ]"};
  const std::string thrice = "99999999999999999/100000000000000000";
  add("LongCoefficientIsExact", {.At = "[ [ 1/3 " + LONG_NUMBER + " ] ]"}, "1 1", "1 1", "1 1",
      LONG_NUMBER + ":1/3");
  add("LongElementIsExact", wide, "100000000000000001 1", "100000000000000001 1",
      "100000000000000001 1", "1");
  add("FractionalElement", {}, "1/3 0,5", "0.33333333333333333 0.5", "0.333333 0.5", "0.833333");
  add("ElementHasExponent", wide, "100000000000000000 1", "1e+17 1", "1e+17 1", "1");
  const std::string big = "3900000000", shown = "3.9e+09";  // any two of the products fit a word
  add("SumBeyondAWord",
      {.At = "[ [ 1000000000 1000000000 1000000000 ] ]",
       .dx = "[ 0 0 0 ]",
       .lx = "[ 0 0 0 ]",
       .rx = "[ inf inf inf ]"},
      big + " " + big + " " + big, big + " " + big + " " + big, shown + " " + shown + " " + shown,
      "1.17e+19");
  // What standard precision made of a third stays with the program.
  add("ExactBehindStandard", third, "3 " + LONG_NUMBER, "3 " + LONG_NUMBER, "3 " + LONG_NUMBER,
      thrice);
  rows.push_back(kept(
      "BackToStandard", Program{.At = "[ [ 1/3 0 ] ]"},
      "[ 1 1 ] | 0 | [ ] | 0 | -1 | --a=1\n[ 1 " + LONG_NUMBER + " ] | 0 | [ ] | 0 | -1 | --a=1\n",
      "[ 1 1 ] | 0.333333 | [ 0.333333 ] | 0 | -1 | --a=1\n",
      report({minimized("1 1", "0.333333")})));
}

void addSolFiles(std::vector<Case>& rows) {
  const std::string texts = " | --a=1 | 2.2.3\n";
  const std::string star = "[ 2 1 ] | 3 | [ 3 ] | 0 | ";
  const auto add = [&](const std::string& name, const std::string& sol, const std::string& after,
                       const Texts& blocks) {
    rows.push_back(kept(name, Program(), sol, after, report(blocks)));
  };
  const auto fail = [&](const std::string& name, const std::string& sol, const std::string& text) {
    rows.push_back(refused(name, Program(), sol, text));
  };
  const std::string found = minimized("2 1", "3", "7 sec(s)");
  const std::string bare = minimized("2 1", "3");
  rows.push_back(emptied("NoFile", Program(), std::nullopt));
  rows.push_back(emptied("Nothing", Program(), ""));
  add("CutBehindSlackNorm", "[ 2 1 ] | 3 | [ 3 ] | 0", star + "-1 | \n", {bare});
  add("AllComments",
      "/* first */ [ 2 // two\n 1 ] /* bar */ | // norm\n0 /**/ | [ /* none */ ] | 0 | 7 /* s */\n"
      "| /* options */ --a=1 // kept | 2.2.3 // too\n// the end\n",
      star + "7 | --a=1 // kept | 2.2.3 // too\n", {found});
  add("BarsLeftOut", "[ 2 1 ] | 0 [ ] 0 7 --a=1 | 2.2.3\n", star + "7" + texts, {found});
  add("ManyLines", "[ 2\r\n1 ]\r\n|\t0 |\n[ ]\n| 0\n|\n7\n|\n\n\t--a=1\t|\t2.2.3\t\r\n",
      star + "7" + texts, {found});
  add("BareTakesTime", "[ 1 1 ] | 0 | [ ] | 0 | 7" + texts + "[ 2 1 ]\n",
      "[ 1 1 ] | 2 | [ 2 ] | 0 | 7" + texts + star + "7 | \n",
      {minimized("1 1", "2", "7 sec(s)"), found});
  add("InvalidBareTakesNorms", "[ 10 0 ] | 5 | [ 6 ] | -2 | 7" + texts + "[ 11 0 ]\n",
      "[ 11 0 ] | 5 | [ 6 ] | -2 | 7 | \n", {block("11 0", "6↓ ", "5", "-2", "7 sec(s)")});
  add("Versions",
      "[ 1 0 ] | 0 | [ ] | 0 | -1 | --a=1 | 1.5\n[ 2 0 ] | 0 | [ ] | 0 | -1 | --b=2 | 9.9 | more\n"
      "[ 3 0 ] | 0 | [ ] | 0 | -1 | --c=3\n[ 4 0 ] | 0 | [ ] | 0 | -1 | --d=4 | \n",
      "[ 1 0 ] | 1 | [ 1 ] | 0 | -1 | --a=1 | 1.5\n[ 2 0 ] | 2 | [ 2 ] | 0 | -1 | --b=2 | 1.5\n"
      "[ 3 0 ] | 3 | [ 3 ] | 0 | -1 | --c=3 | 1.5\n[ 4 0 ] | 4 | [ 4 ] | 0 | -1 | --d=4\n",
      {minimized("1 0", "1"), minimized("2 0", "2"), minimized("3 0", "3"), minimized("4 0", "4")});
  add("EmptyOptionsTakeTheNextLine",
      "[ 2 1 ] | 0 | [ ] | 0 | 7 | \n[ 3 1 ] | 0 | [ ] | 0 | -1" + texts, star + "7 | [ 3 1 ]\n",
      {found});
  add("UnreadableTime",
      "[ 2 1 ] | 0 | [ ] | 0 | soon" + texts + "[ 1 1 ] | 0 | [ ] | 0 | 7" + texts, star + "0 | \n",
      {minimized("2 1", "3", "0 sec(s)")});
  // Of two failing neighbours the second is not looked at.
  rows.push_back(refused("SecondFailingStarWithoutValues", Program(), "[ 10 0 ][ 11 0 ]",
                         "Array: index out of range"));
  rows.back().after = "[ 11 0 ] | 0 | [ ] | 0 | -1 | \n";
  const std::string shortStar = "[ 2 ] | 3 | [ 3 ] | 0 | 7 | --a=1\n";
  add("SecondFailingStarIsShort", "[ 10 0 ] | 0 | [ ] | 0 | -1 | --a=1\n" + shortStar, shortStar,
      {minimized("2", "3", "7 sec(s)")});
  fail("WrongLength", shortStar, "Vector: dimension mismatch10");
  fail("CutInVector", "[ 2 1", "QQ: parse error1");
  fail("BadSlackNorm", "[ 2 1 ] | 1 | [ ] | 1:2 | 7" + texts, "QQ: malformed number2");
  fail("NormWithExponent", "[ 1 0 ] | 1.23457e+06 | [ 1.23457e+06 ] | 0 | 7" + texts,
       "QQ: parse error1");
}

void addOrder(std::vector<Case>& rows) {
  const auto add = [&](const std::string& name, const std::string& before, const std::string& after,
                       const Texts& shown) {
    rows.push_back(kept(name, WITHOUT_TARGETS, before, after, report(shown)));
  };
  // Each one by its norms and its time. The later ones would come first by their elements.
  const std::vector<std::array<std::string, 4>> bestFirst = {
      {"1", "2", "-5", "59:55 min(s):sec(s) == -5 secs"},
      {"1", "2", "0", "0 sec(s)"},
      {"1", "2", "60", "1:00 min(s):sec(s) == 60 secs"},
      {"1", "2", "3599", "59:59 min(s):sec(s) == 3599 secs"},
      {"1", "2", "36061", "10:01:01 hour(s):min(s):sec(s) == 36061 secs"},
      {"1", "2", "3600000000", "1e+06:00:00 hour(s):min(s):sec(s) == 3600000000 secs"},
      {"1", "2", "9223372036854775807",
       "2.56205e+15:30:07 hour(s):min(s):sec(s) == 9223372036854775807 secs"},
      {"1", "2", "-1", ""},
      {"1", "3", "1", "1 sec(s)"},
      {"2", "0", "1", "1 sec(s)"}};
  std::string before, after;
  Texts blocks;
  for (const auto& [targetNorm, slackNorm, time, shown] : bestFirst) {
    const std::string x = "1 " + std::to_string(99 - blocks.size());
    const std::string line =
        "[ " + x + " ] | " + targetNorm + " | [ ] | " + slackNorm + " | " + time + " | --a=1\n";
    before.insert(0, line);
    after += line;
    blocks.push_back(block(x, "", targetNorm, slackNorm, shown));
  }
  add("ByNormsAndTime", before, after, blocks);
  // The file keeps a star once for each of its options, the report once.
  const std::string star = "[ 1 1 ] | 0 | [ ] | 0 | ";
  const std::string fiveB = star + "5 | --b=1 | 2\n", sevenA = star + "7 | --a=1 | 3\n",
                    nineA = star + "9 | --a=1 | 2\n";
  add("Duplicates", nineA + fiveB + sevenA + nineA, fiveB + sevenA,
      {block("1 1", "", "0", "0", "5 sec(s)")});
  rows.push_back(
      kept("TolerantDuplicates", Program(),
           "[ 1.0000000005 1 ]\n[ 1 1 ]\n[ 1.000000002 1 ]\n[ 2 2 ]\n[ 2 2 ]\n",
           "[ 1 1 ] | 2 | [ 2 ] | 0 | -1 | \n[ 1.000000002 1 ] | 2 | [ 2 ] | 0 | -1 | \n"
           "[ 2 2 ] | 4 | [ 4 ] | 0 | -1 | \n",
           report({minimized("1 1", "2"), minimized("1 1", "2"), minimized("2 2", "4")})));
  const std::string notEvaluated = "[ 1 1 ] | 5 | [ ] | -1 | 7 | --a=1\n";
  add("NotEvaluated", notEvaluated, notEvaluated, {"x = [ 1 1 ]\n\n"});
}

std::vector<Case> allCases() {
  std::vector<Case> rows;
  for (const auto add : {addCommandLines, addFaultyPrograms, addNumbers, addPrograms, addPrecision,
                         addSolFiles, addOrder}) {
    add(rows);
  }
  return rows;
}

class CommandLine : public testing::TestWithParam<Case> {};

TEST_P(CommandLine, EndsAsExpected) {
  const Case& row = GetParam();
  const support::TemporaryFolder folder;
  std::map<std::string, std::string> expectedFiles;
  if (row.opt) support::writeFile(folder / row.optName, *row.opt);
  if (row.opt) expectedFiles[row.optName] = *row.opt;
  if (row.sol) support::writeFile(folder / row.solName, *row.sol);
  if (row.after) expectedFiles[row.solName] = *row.after;
  const auto end = support::run({.folder = folder.path(), .arguments = row.arguments});
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path())) {
    const auto name = std::filesystem::relative(entry.path(), folder.path());
    if (entry.is_regular_file()) files[name] = support::readFile(entry.path()).value();
  }
  EXPECT_EQ(end.out, row.out);
  EXPECT_EQ(end.err, row.err);
  EXPECT_EQ(end.status, row.status);
  EXPECT_EQ(end.signal, row.signal);
  EXPECT_EQ(files, expectedFiles);
  EXPECT_EQ(support::semaphoreNames(end.pid), Texts());
}

INSTANTIATE_TEST_SUITE_P(, CommandLine, testing::ValuesIn(allCases()),
                         [](const auto& test) { return test.param.name; });

TEST(ProgramName, IsThePartBehindTheLastSlash) {
  const support::TemporaryFolder folder;
  for (const auto& [word, name] :
       {std::pair("vexil", "vexil"), {"/usr/bin/a b", "a b"}, {"b/", ""}}) {
    const auto end = support::run({.folder = folder.path(), .firstWord = word});
    EXPECT_EQ(end.out, std::string("Usage: ") + name + " *.sol\n");
    EXPECT_EQ(end.status, 1);
  }
}

}  // namespace
}  // namespace vexil
