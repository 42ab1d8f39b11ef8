// Vexil - exact integer optimization on lattices.
//
// Whole runs of the tool: what a user gives and what comes of it. All expectations are worked out
// by hand.
#include <gtest/gtest.h>

#include <csignal>
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
  return {name,
          opt,
          "[ 1 1 ]\n",
          "[ 1 1 ]\n",
          "",
          "terminate called after throwing an instance of 'vexil::ReadException'\n"
          "  what():  Vector: bad stream\n",
          -1,
          SIGABRT};
}

std::string block(const std::string& x, const std::string& values, const std::string& targetNorm,
                  const std::string& slackNorm, const std::string& time = "") {
  return "x = [ " + x + " ]\n\nTarget values: [ " + values + "]\nTarget Norm: " + targetNorm +
         "\nSlack Norm: " + slackNorm + "\n" + (time.empty() ? "" : "Found after: " + time + "\n");
}

std::string report(const Texts& blocks) {
  std::string text = "\n";
  for (const std::string& star : blocks) {
    text += (text.size() > 1 ? "\n---\n\n" : "") + star;
  }
  return text + "\n";
}

void addCommandLines(std::vector<Case>& rows) {
  const std::string usage = "Usage: vexil *.sol\n";
  int number = 0;
  const std::vector<Texts> refusedLines = {{},        {""},          {"a.sol", "b.sol", "x.sol"},
                                           {"x.SOL"}, {"x.sol.txt"}, {"x.sol", "a.txt"},
                                           {"a.d/x"}};
  for (const Texts& arguments : refusedLines) {
    Case row = kept("Usage" + std::to_string(++number), Program(), "[1 1]", "[1 1]", usage);
    row.status = 1;
    row.arguments = arguments;
    rows.push_back(row);
  }
  number = 0;
  const std::vector<std::pair<Texts, std::string>> optFiles = {
      {{"x.sol"}, "x.opt"},       {{"a.txt", "b.sol"}, "b.opt"}, {{"r.1/x.y.sol"}, "r.1/x.y.opt"},
      {{"../x.sol"}, "../x.opt"}, {{"x.sol.sol"}, "x.sol.opt"},  {{".sol"}, ".sol.opt"},
      {{"d.d/.sol"}, "d.d/.opt"}, {{"..sol"}, "..opt"}};
  for (const auto& [arguments, optFile] : optFiles) {
    Case row = refused("NoOptFile" + std::to_string(++number), std::nullopt, "[1 1]",
                       "Could not read opt file: " + optFile);
    row.arguments = arguments;
    rows.push_back(row);
  }
  number = 0;
  for (const auto& [argument, base] : std::vector<std::pair<std::string, std::string>>{
           {".sol", ".sol"}, {"dir.d/.sol", "dir.d/"}, {"run.1/x.y.sol", "run.1/x.y"}}) {
    Case row = kept("FileNames" + std::to_string(++number), Program(), "[1 1]",
                    "[ 1 1 ] | 2 | [ 2 ] | 0 | -1 | \n", report({block("1 1", "2↓ ", "2", "0")}));
    row.arguments = {"first.sol", argument};
    row.optName = base + ".opt";
    row.solName = base + ".sol";
    rows.push_back(row);
  }
}

/// Where a program has two faults, the message is that of the one that is looked for first.
void addFaultyPrograms(std::vector<Case>& rows) {
  const auto add = [&](const std::string& name, const std::string& opt, const std::string& text) {
    rows.push_back(refused(name, opt, "[ 1 1 ]\n", text));
  };
  const std::string row1 = "[ [ 1 1 ] ]";
  const std::string rows2 = "[ [ 1 1 ] [ 1 1 ] ]";
  add("KtDimension", Program{.dt = "[ -inf ] = [ 1 2 ]", .At = rows2},
      "The dimensions of the target properties (kt, dt) differ (2, 1)");
  add("KtMissing", Program{.dt = "[ -inf ] = 7"},
      "The dimensions of the target properties (kt, dt) differ (0, 1)");
  add("AtRows", Program{.At = rows2, .bg = "[ 1 ]"},
      "The row count of At (2) differs with the dimension of dt (1)");
  add("AtOfEmptyRows", Program{.At = "[ [ ] ]"},
      "The row count of At (0) differs with the dimension of dt (1)");
  add("CommentAheadOfKt", Program{.dt = "[ -inf ] /* known: */ = [ 1 ]"},
      "The row count of At (0) differs with the dimension of dt (1)");
  add("AgRows", Program{.Ag = rows2, .bg = "[ 1 ]", .Au = "[ [ 1 ] ]"},
      "The row count of Ag (2) differs with the dimension of bg (1)");
  add("AgRowsAheadOfN", Program{.dt = "[ ]", .At = "[ ]", .bg = "[ 1 ]"},
      "The row count of Ag (0) differs with the dimension of bg (1)");
  add("NoVariables", Program{.dt = "[ ]", .At = "[ ]", .lu = "[ 1 ]"}, "Dimension error -- n == 0");
  add("NoBrackets", "garbage", "Dimension error -- n == 0");
  add("AgColumns", Program{.Ag = "[ [ 1 ] ]", .bg = "[ inf ]", .Au = "[ [ 1 ] ]"},
      "The column count of Ag (1) is not right ( != 2 )");
  add("AuColumns", Program{.At = "[ [ inf 1 ] ]", .Au = "[ [ 1 1 1 ] ]"},
      "The column count of Au (3) is not right ( != 2 )");
  add("AuGivesN", Program{.dt = "[ ]", .At = "[ ]", .Ag = "[ [ 1 ] ]", .bg = "[ 1 ]", .Au = row1},
      "The column count of Ag (1) is not right ( != 2 )");
  add("AgGivesN", Program{.dt = "[ ]", .At = "[ ]", .Ag = "[ [ 1 1 1 ] ]", .bg = "[ 1 ]"},
      "recheck sdim case and the usage of n (eg. in opt2lat)");
  add("InfiniteAt", Program{.At = "[ [ 1 -inf ] ]", .Ag = row1, .bg = "[ inf ]"},
      "+-inf not allowed in At");
  add("InfiniteBg", Program{.Ag = "[ [ inf 1 ] ]", .bg = "[ -inf ]"}, "+-inf not allowed in bg");
  add("InfiniteAg",
      Program{.Ag = "[ [ 1 inf ] [ 1 1 ] ]", .bg = "[ 1 inf ]", .Au = "[ [ inf 1 ] ]"},
      "+-inf not allowed in Ag");
  add("InfiniteAu", Program{.Au = "[ [ 1 inf ] ]"}, "+-inf not allowed in Au");
  add("LuDimension", Program{.Au = row1, .lu = "[ 1 2 ]", .ru = "[ 0 ]"},
      "The row count of Au ( 1) differs with the dimension of lu / ru ( 2)");
  add("RuDimension", Program{.Au = row1, .lu = "[ 5 ]", .ru = "[ 1 2 ]"},
      "The dimensions of lu (1) and ru (2) differ");
  add("RuBelowLu", Program{.Au = rows2, .lu = "[ 5 -inf ]", .ru = "[ 4 inf ]"},
      "ru has to be >= lu in each of its components");
  add("UselessInequation",
      Program{.Au = rows2, .lu = "[ -inf 5 ]", .ru = "[ inf 4 ]", .rx = "[ 9 ]"},
      "Useless inequation -inf <= ... <= inf found");
  add("RxShort", Program{.lx = "[ 0 0 0 ]", .rx = "[ 9 ]"},
      "recheck sdim case and the usage of n (eg. in opt2lat)");
  add("RxLong", Program{.lx = "[ 0 ]", .rx = "[ 9 9 9 ]"},
      "The dimension of rx has to be > 0 and < A_{t,u,g}.MN");
  add("LxDimension", Program{.dx = "[ 0 0 0 ]", .lx = "[ 10 ]"},
      "The dimensions of the solution properties (lx, rx, dx) differ (1, 2, 3)");
  add("DxDimension", Program{.dx = "[ 0 ]", .lx = "[ 10 10 ]"},
      "The dimensions of the solution properties (lx, rx, dx) differ (2, 2, 1)");
  add("RxBelowLx", Program{.lx = "[ 0 10 ]"}, "rx has to be >= lx in each of its components");
  add("VectorForMatrix", Program{.At = "[ 1 1 ]"}, "Matrix: bad input");
  add("RowTooLong", Program{.Au = "[ [ ] [ 1 ] [ 1 1 ] ]"}, "Matrix row dimension mismatch");
  add("EmptyFile", "", "Matrix: bad stream");
  add("EndsBehindDt", "[ -inf ]\n", "Matrix: bad stream");
  add("EndsBehindKt", "[ -inf ] = [ 1 ]", "Matrix: bad stream");
  add("EndsBehindAg", "[ ] [ ] [ ]", "Matrix: bad stream");
  add("EndsBehindLx", Program{.rx = ""}, "recheck sdim case and the usage of n (eg. in opt2lat)");
  add("EndsInVector", "[ -inf", "QQ: parse error1");
  rows.push_back(aborted("EndsInMatrix", "[ -inf ] [ [ 1 1 ]"));
  rows.push_back(aborted("EndsBehindAt", "[ ] [ ]"));
  rows.push_back(aborted("EndsBehindAu", "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ]"));
  rows.push_back(aborted("EndsBehindDx", Program{.lx = "", .rx = ""}));
}

void addNumbers(std::vector<Case>& rows) {
  const std::vector<std::pair<std::string, Texts>> refusals = {
      {"QQ: parse error1",
       {"1.0", "1.", "2.00", "0,0", "1, 2", "1e2", "x", ".", "+", "-", "1:", "1:1:", "1:1.0"}},
      {"QQ: parse error2", {"+ix"}},
      {"QQ: malformed number1", {"1:0/2", "1:01/2", "1:-1/2", "1:0"}},
      {"QQ: malformed number2", {"1:3/2", "-1:2", "1:inf"}},
      {"QQ: division by zero1", {"1/0", "1/", "2:1/0"}},
      {"Vector: bad input2", {"ix", "-i", "i nf"}},
      {"Vector: bad input3", {"inx", "-in"}},
  };
  int number = 0;
  for (const auto& [text, forms] : refusals) {
    for (const std::string& form : forms) {
      const std::string name = "Number" + std::to_string(++number);
      const std::string vector = "[ 1 " + form + " ]";
      rows.push_back(refused(name + "InProgram", Program{.lx = vector}, std::nullopt, text));
      rows.push_back(refused(name + "InStar", Program(), vector, text));
    }
  }
  const Texts forms = {"3/2", "4/2",   "7:1/3", "-7:1/3", "0.25",   "0,25",
                       ".5",  "1.05",  "007",   "-0",     "+3",     "--3",
                       "- 5", "0.050", "0/5",   ":2/4",   "1:+1/2", LONG_NUMBER + "90123"};
  // In exact precision each value stands as itself; the sum is 15:3/5 more than the last one.
  const Texts values = {"1:1/2", "2",      "7:1/3", "-7:1/3", "1/4",   "1/4",
                        "1/2",   "1:1/20", "7",     "0",      "3",     "3",
                        "-5",    "1/20",   "0",     "1/2",    "1:1/2", LONG_NUMBER + "90123"};
  std::string dt, At, list, marked;
  for (std::size_t i = 0; i < forms.size(); ++i) {
    dt += "-inf ";
    At += "[ " + forms[i] + " ]";
    list += values[i] + " ";
    marked += values[i] + "↓ ";
  }
  const std::string sum = "12345678901234567890138:3/5";
  rows.push_back(kept("NumberForms",
                      "[ " + dt + "] [ " + At + "] [ ] [ ] [ ] [ ] [ ] [ 0 ] [ 1 ] [ 1 ]",
                      "[ 1 ]\n", "[ 1 ] | " + sum + " | [ " + list + "] | 0 | -1 | \n",
                      report({block("1", marked, sum, "0")})));
  rows.push_back(kept("Infinities", Program{.rx = "[ inf +inf ]"}, "[ inf 1 ]\n",
                      "[ inf 1 ] | inf | [ inf ] | 0 | -1 | \n",
                      report({block("inf 1", "inf↓ ", "inf", "0")})));
  rows.push_back(refused("ZeroTimesInfinity", Program{.At = "[ [ 0 1 ] ]", .rx = "[ inf 9 ]"},
                         "[ inf 1 ]\n", "qq: 0 * INF is not defined!"));
  rows.push_back(refused("InfinityMinusInfinity",
                         Program{.At = "[ [ 1 -1 ] ]", .rx = "[ inf inf ]"}, "[ inf inf ]\n",
                         "INF - INF is not defined"));
}

void addPrograms(std::vector<Case>& rows) {
  rows.push_back(kept("AllMarks",
                      Program{.dt = "[ -inf inf 5 ]", .At = "[ [ 1 2 ] [ 3 1 ] [ 1 1 ] ]"},
                      "[2 1]|0|[]|0|12|--a=1|2.2.3\n[ 1 1 ] | 0 | [ ] | 0 | -1 | --a=1\n",
                      "[ 2 1 ] | -1 | [ 4 7 3 ] | 2 | 12 | --a=1 | 2.2.3\n"
                      "[ 1 1 ] | 2 | [ 3 4 2 ] | 3 | -1 | --a=1 | 2.2.3\n",
                      "\nx = [ 2 1 ]\n\nTarget values: [ 4↓ 7↑ 3→5 ]\n"
                      "Target Norm: -1\nSlack Norm: 2\nFound after: 12 sec(s)\n"
                      "\n---\n\nx = [ 1 1 ]\n\nTarget values: [ 3↓ 4↑ 2→5 ]\n"
                      "Target Norm: 2\nSlack Norm: 3\n\n"));
  rows.push_back(kept("Comments",
                      Program{.dt = "// One\n[ -inf ] = /* two */ [ /**/ 7 ] // three\n",
                              .rx = "[ 9 9 ] [ no matter"},
                      std::nullopt, std::nullopt, "\n\n"));
  // A short row is filled up with zeros; a short last one fails where its length matters.
  rows.push_back(kept(
      "ShortRows", Program{.dt = "[ -inf -inf -inf 1/2 ]", .At = "[ [ ] [ 1 2 ] [ 3 ] [ 0 5 ] ]"},
      "[ 1 1 ]\n", "[ 1 1 ] | 10.5 | [ 0 3 3 5 ] | 4.5 | -1 | \n",
      report({block("1 1", "0↓ 3↓ 3↓ 5→0.5 ", "10.5", "4.5")})));
  const Program shortLastRow{.Au = "[ [ 1 1 ] [ 1 ] ]", .lu = "[ 0 0 ]", .ru = "[ 9 9 ]"};
  rows.push_back(refused("ShortLastRow", shortLastRow, "[ 1 1 ]\n", "Vector: dimension mismatch8"));
  rows.push_back(emptied("ShortLastRowUnused", shortLastRow, std::nullopt));
  rows.push_back(emptied("NothingIsInfinite",
                         Program{.Au = "[ [ 1 1 ] ]", .lu = "[ inf ]", .ru = "[ inf ]"},
                         "[ 1 1 ]\n"));
  // The variables stand for one kind of test each: bounds, equation, left and right of inequations.
  const auto bare = [](int i) { return "[ " + std::to_string(i) + " 1 2 3 ]"; };
  std::string after;
  Texts blocks;
  for (int i = 1; i <= 4; ++i) {
    after += bare(i) + " | 0 | [ ] | 0 | -1 | \n";
    blocks.push_back(block(std::to_string(i) + " 1 2 3", "", "0", "0"));
  }
  rows.push_back(kept("FailingStars",
                      "[ ] [ ] [ [ 0 1 0 0 ] ] [ 1 ] [ [ 0 0 1 0 ] [ 0 0 0 1 ] ] [ 2 -inf ] "
                      "[ inf 3 ] [ 0 0 0 0 ] [ 0 -99 -99 -99 ] [ 9 99 99 99 ]",
                      bare(-1) + bare(1) + bare(10) + bare(2) + "[ 0 2 2 3 ]" + bare(3) +
                          "[ 0 1 1 3 ]" + bare(4) + "[ 0 1 2 4 ]",
                      after, report(blocks)));
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
                        report({block(shown, norm + "↓ ", norm, "0")})));
  };
  const Program wide{.At = "[ [ 0 1 ] ]", .rx = "[ inf 9 ]"};
  const Program third{.At = "[ [ 1/3 0 ] ]", .rx = "[ 9 inf ]"};
  const std::string thrice = "99999999999999999/100000000000000000";
  add("ThirdIsStandard", third, "1 5", "1 5", "1 5", "0.333333");
  add("LongCoefficientIsExact", {.At = "[ [ 1/3 " + LONG_NUMBER + " ] ]"}, "1 1", "1 1", "1 1",
      LONG_NUMBER + ":1/3");
  add("MillionHasExponent", {.At = "[ [ 1234567 1 ] ]"}, "1 0", "1 0", "1 0", "1.23457e+06");
  add("ElementOfSeventeenDigits", wide, "99999999999999999 1", "99999999999999999 1", "1e+17 1",
      "1");
  add("RoundElement", wide, "100000000000000000 1", "1e+17 1", "1e+17 1", "1");
  add("LongElementIsExact", wide, "100000000000000001 1", "100000000000000001 1",
      "100000000000000001 1", "1");
  add("FractionalElement", {}, "1/3 0,5", "0.33333333333333333 0.5", "0.333333 0.5", "0.833333");
  // What standard precision made of a third stays with the program.
  add("ExactBehindStandard", third, "3 " + LONG_NUMBER, "3 " + LONG_NUMBER, "3 " + LONG_NUMBER,
      thrice);
  rows.push_back(kept(
      "BackToStandard", Program{.At = "[ [ 1/3 0 ] ]"},
      "[ 1 1 ] | 0 | [ ] | 0 | -1 | --a=1\n[ 1 " + LONG_NUMBER + " ] | 0 | [ ] | 0 | -1 | --a=1\n",
      "[ 1 1 ] | 0.333333 | [ 0.333333 ] | 0 | -1 | --a=1\n",
      report({block("1 1", "0.333333↓ ", "0.333333", "0")})));
  rows.push_back(kept("NormsAsRead", WITHOUT_TARGETS, "[ 1 1 ] | +1/3 | [ ] | -3/2 | -1 | --a=1\n",
                      "[ 1 1 ] | 0.333333 | [ ] | -1.5 | -1 | --a=1\n",
                      report({block("1 1", "", "0.333333", "-1.5")})));
  rows.push_back(kept("LongNormIsExact", WITHOUT_TARGETS,
                      "[ 1 1 ] | " + LONG_NUMBER + " | [ ] | -1:1/2 | -1 | --a=1\n",
                      "[ 1 1 ] | " + LONG_NUMBER + " | [ ] | -1:1/2 | -1 | --a=1\n",
                      report({block("1 1", "", LONG_NUMBER, "-1:1/2")})));
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
  const std::string found = block("2 1", "3↓ ", "3", "0", "7 sec(s)");
  const std::string bare = block("2 1", "3↓ ", "3", "0");
  rows.push_back(emptied("NoFile", Program(), std::nullopt));
  rows.push_back(emptied("Nothing", Program(), ""));
  rows.push_back(emptied("OnlyComments", Program(), " \n/* no */ // stars\n"));
  rows.push_back(emptied("NoElements", Program(), "[ ] | 0 | [ ] | 0 | 7" + texts));
  rows.push_back(emptied("CutBehindNorm", Program(), "[ 2 1 ] | 3"));
  fail("CutBehindBar", "[ 2 1 ] |", "QQ: parse error1");
  fail("CutBehindValues", "[ 2 1 ] | 3 | [ 3 ]", "QQ: parse error1");
  add("CutBehindSlackNorm", "[ 2 1 ] | 3 | [ 3 ] | 0", star + "-1 | \n", {bare});
  add("CutBehindTime", "[ 2 1 ] | 3 | [ 3 ] | 0 | 7", star + "7 | \n", {found});
  add("NoNewline", "[ 2 1 ] | 3 | [ 3 ] | 0 | 7 | --a=1", star + "7 | --a=1\n", {found});
  add("AllComments",
      "/* first */ [ 2 // two\n 1 ] /* bar */ | // norm\n0 /**/ | [ /* none */ ] | 0 | 7 /* s */\n"
      "| /* options */ --a=1 // kept | 2.2.3 // too\n// the end\n",
      star + "7 | --a=1 // kept | 2.2.3 // too\n", {found});
  add("BarsLeftOut", "[ 2 1 ] | 0 [ ] 0 7 --a=1 | 2.2.3\n", star + "7" + texts, {found});
  add("ManyLines", "[ 2\r\n1 ]\r\n|\t0 |\n[ ]\n| 0\n|\n7\n|\n\n\t--a=1\t|\t2.2.3\t\r\n",
      star + "7" + texts, {found});
  add("ValuesLeftOut", "[ 2 1 ] | 5 | 6 | 7" + texts, star + "7" + texts, {found});
  add("StartsWithBar", "| 0 | [ ] | 0 | 7" + texts + "[ 2 1 ]", star + "7 | \n", {found});
  add("BareTakesTime", "[ 1 1 ] | 0 | [ ] | 0 | 7" + texts + "[ 2 1 ]\n",
      "[ 1 1 ] | 2 | [ 2 ] | 0 | 7" + texts + star + "7 | \n",
      {block("1 1", "2↓ ", "2", "0", "7 sec(s)"), found});
  add("InvalidBareTakesNorms", "[ 10 0 ] | 5 | [ 6 ] | -2 | 7" + texts + "[ 11 0 ]\n",
      "[ 11 0 ] | 5 | [ 6 ] | -2 | 7 | \n", {block("11 0", "6↓ ", "5", "-2", "7 sec(s)")});
  add("Versions",
      "[ 1 0 ] | 0 | [ ] | 0 | -1 | --a=1 | 1.5\n"
      "[ 2 0 ] | 0 | [ ] | 0 | -1 | --b=2 | 9.9 | more\n"
      "[ 3 0 ] | 0 | [ ] | 0 | -1 | --c=3\n"
      "[ 4 0 ] | 0 | [ ] | 0 | -1 | --d=4 |\n"
      "[ 5 0 ] | 0 | [ ] | 0 | -1 | --e=5 | \n",
      "[ 1 0 ] | 1 | [ 1 ] | 0 | -1 | --a=1 | 1.5\n"
      "[ 2 0 ] | 2 | [ 2 ] | 0 | -1 | --b=2 | 1.5\n"
      "[ 3 0 ] | 3 | [ 3 ] | 0 | -1 | --c=3 | 1.5\n"
      "[ 4 0 ] | 4 | [ 4 ] | 0 | -1 | --d=4 | 1.5\n"
      "[ 5 0 ] | 5 | [ 5 ] | 0 | -1 | --e=5\n",
      {block("1 0", "1↓ ", "1", "0"), block("2 0", "2↓ ", "2", "0"), block("3 0", "3↓ ", "3", "0"),
       block("4 0", "4↓ ", "4", "0"), block("5 0", "5↓ ", "5", "0")});
  add("EmptyOptionsTakeTheNextLine",
      "[ 2 1 ] | 0 | [ ] | 0 | 7 | \n[ 3 1 ] | 0 | [ ] | 0 | -1" + texts, star + "7 | [ 3 1 ]\n",
      {found});
  add("UnreadableTime",
      "[ 2 1 ] | 0 | [ ] | 0 | soon" + texts + "[ 1 1 ] | 0 | [ ] | 0 | 7" + texts, star + "0 | \n",
      {block("2 1", "3↓ ", "3", "0", "0 sec(s)")});
  add("FractionalTime", "[ 2 1 ] | 0 | [ ] | 0 | 7.5" + texts, star + "7 | .5\n", {found});
  // Of two failing neighbours the second is not looked at.
  add("SecondFailingStar",
      "[ 10 0 ] | 0 | [ 0 ] | 0 | -1" + texts + "[ 11 0 ] | 7 | [ 8 ] | 6 | -1" + texts +
          "[ 2 1 ] | 0 | [ ] | 0 | 7" + texts,
      star + "7" + texts + "[ 11 0 ] | 7 | [ 8 ] | 6 | -1" + texts,
      {found, block("11 0", "8↓ ", "7", "6")});
  rows.push_back(refused("SecondFailingStarWithoutValues", Program(), "[ 10 0 ][ 11 0 ]",
                         "Array: index out of range"));
  rows.back().after = "[ 11 0 ] | 0 | [ ] | 0 | -1 | \n";
  const std::string shortStar = "[ 2 ] | 3 | [ 3 ] | 0 | 7 | --a=1\n";
  add("SecondFailingStarIsShort", "[ 10 0 ] | 0 | [ ] | 0 | -1 | --a=1\n" + shortStar, shortStar,
      {block("2", "3↓ ", "3", "0", "7 sec(s)")});
  fail("SecondFailingStarMeetsAnother",
       "[ 10 0 ] | 0 | [ ] | 0 | -1 | --a=1\n" + shortStar + star + "7" + texts,
       "Vector: dimension mismatch9");
  fail("WrongLength", shortStar, "Vector: dimension mismatch10");
  fail("WrongLengthOfFullLine", shortStar + "[ 1 x ]", "QQ: parse error1");
  fail("WrongLengthOfBareLine", "[ 1 2 3 ]\n[ 1 x ]", "Vector: dimension mismatch10");
  fail("EmptyBareLine", "[ ]\n", "Vector: dimension mismatch10");
  fail("NoBracket", "2 1\n", "Vector: dimension mismatch10");
  fail("CutInVector", "[ 2 1", "QQ: parse error1");
  fail("NoNorm", "[ 2 1 ] | | [ ] | 0 | 7" + texts, "QQ: parse error1");
  fail("BadNorm", "[ 2 1 ] | 1/0 | [ ] | 0 | 7" + texts, "QQ: division by zero1");
  fail("BadSlackNorm", "[ 2 1 ] | 1 | [ ] | 1:2 | 7" + texts, "QQ: malformed number2");
  fail("BadValues", "[ 2 1 ] | 1 | [ ix ] | 1 | 7" + texts, "Vector: bad input2");
  fail("NormWithExponent", "[ 1 0 ] | 1.23457e+06 | [ 1.23457e+06 ] | 0 | 7" + texts,
       "QQ: parse error1");
}

void addOrder(std::vector<Case>& rows) {
  // A line by its elements, both norms, time and texts.
  struct Line {
    std::string x, targetNorm, slackNorm, time, texts;
  };
  const auto text = [](const std::vector<Line>& lines) {
    std::string all;
    for (const Line& line : lines) {
      all += "[ " + line.x + " ] | " + line.targetNorm + " | [ ] | " + line.slackNorm + " | " +
             line.time + " | " + line.texts + "\n";
    }
    return all;
  };
  const auto add = [&](const std::string& name, const std::vector<Line>& before,
                       const std::vector<Line>& after, const Texts& shown) {
    rows.push_back(kept(name, WITHOUT_TARGETS, text(before), text(after), report(shown)));
  };
  const auto plain = [](const std::string& x) { return block(x, "", "0", "0"); };
  const Line best{"1 5", "1", "2", "5", "--a=1 | 2"}, later{"1 4", "1", "2", "9", "--a=1 | 2"},
      untimed{"1 3", "1", "2", "-1", "--a=1 | 2"}, slack{"1 2", "1", "3", "1", "--a=1 | 2"},
      worst{"1 1", "2", "0", "1", "--a=1 | 2"};
  add("ByNormsAndTime", {worst, slack, untimed, later, best}, {best, later, untimed, slack, worst},
      {block("1 5", "", "1", "2", "5 sec(s)"), block("1 4", "", "1", "2", "9 sec(s)"),
       block("1 3", "", "1", "2"), block("1 2", "", "1", "3", "1 sec(s)"),
       block("1 1", "", "2", "0", "1 sec(s)")});
  const Line old{"1 1", "0", "0", "-1", "--a=1 | 2.9.1"},
      young{"1 2", "0", "0", "-1", "--a=1 | 2.10.0"}, same{"1 3", "0", "0", "-1", "--a=1 | 2.10"};
  add("ByVersion", {same, old, young}, {young, same, old},
      {plain("1 2"), plain("1 3"), plain("1 1")});
  const Line nine{"9 0", "0", "0", "-1", "--a=1 | 2"}, ten{"10 0", "0", "0", "-1", "--a=1 | 2"},
      minus{"-1 0", "0", "0", "-1", "--a=1 | 2"};
  add("ByText", {nine, ten, minus}, {minus, ten, nine},
      {plain("-1 0"), plain("10 0"), plain("9 0")});
  // The options of the one that came behind by version or text may yet put it first: then both
  // precede each other, and the stars stay as they stand.
  const Line oldA{"1 1", "0", "0", "-1", "--a=1 | 1"}, newB{"1 2", "0", "0", "-1", "--b=1 | 2"};
  add("OldFirst", {oldA, newB}, {oldA, newB}, {plain("1 1"), plain("1 2")});
  add("NewFirst", {newB, oldA}, {newB, oldA}, {plain("1 2"), plain("1 1")});
  const Line tenB{"10 0", "0", "0", "-1", "--b=1 | 2"};
  add("GreaterTextFirst", {nine, tenB}, {nine, tenB}, {plain("9 0"), plain("10 0")});
  // The file keeps a star once for each of its options, the report once.
  const Line nineA{"1 1", "0", "0", "9", "--a=1 | 2"}, fiveB{"1 1", "0", "0", "5", "--b=1 | 2"},
      sevenA{"1 1", "0", "0", "7", "--a=1 | 3"};
  add("Duplicates", {nineA, fiveB, sevenA, nineA}, {fiveB, sevenA},
      {block("1 1", "", "0", "0", "5 sec(s)")});
  for (const auto& [name, rx] :
       {std::pair<std::string, std::string>{"Standard", "9"}, {"Extended", LONG_NUMBER}}) {
    rows.push_back(
        kept(name + "TolerantDuplicates", Program{.At = "[ [ 0 1 ] ]", .rx = "[ 9 " + rx + " ]"},
             "[ 1.0000000005 1 ]\n[ 1 1 ]\n[ 1.000000002 1 ]\n",
             name == "Standard" ? "[ 1 1 ] | 1 | [ 1 ] | 0 | -1 | \n"
                                  "[ 1.000000002 1 ] | 1 | [ 1 ] | 0 | -1 | \n"
                                : "[ 1 1 ] | 1 | [ 1 ] | 0 | -1 | \n"
                                  "[ 1:1/500000000 1 ] | 1 | [ 1 ] | 0 | -1 | \n",
             report({block("1 1", "1↓ ", "1", "0"),
                     block(name == "Standard" ? "1 1" : "1:1/500000000 1", "1↓ ", "1", "0")})));
  }
  const std::vector<std::pair<std::string, std::string>> times = {
      {"-5", "59:55 min(s):sec(s) == -5 secs"},
      {"0", "0 sec(s)"},
      {"60", "1:00 min(s):sec(s) == 60 secs"},
      {"3599", "59:59 min(s):sec(s) == 3599 secs"},
      {"36061", "10:01:01 hour(s):min(s):sec(s) == 36061 secs"},
      {"3600000000", "1e+06:00:00 hour(s):min(s):sec(s) == 3600000000 secs"},
      {"9223372036854775807",
       "2.56205e+15:30:07 hour(s):min(s):sec(s) == 9223372036854775807 secs"}};
  std::vector<Line> lines;
  Texts blocks;
  for (const auto& [time, shown] : times) {
    lines.push_back({"1 " + std::to_string(lines.size()), "0", "0", time, "--a=1"});
    blocks.push_back(block(lines.back().x, "", "0", "0", shown));
  }
  add("TimesInOrder", lines, lines, blocks);
  add("NotEvaluated", {{"1 1", "5", "-1", "7", "--a=1"}}, {{"1 1", "5", "-1", "7", "--a=1"}},
      {"x = [ 1 1 ]\n\n"});
}

std::vector<Case> allCases() {
  std::vector<Case> rows;
  addCommandLines(rows);
  addFaultyPrograms(rows);
  addNumbers(rows);
  addPrograms(rows);
  addPrecision(rows);
  addSolFiles(rows);
  addOrder(rows);
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
  for (const auto& [word, name] : std::vector<std::pair<std::string, std::string>>{
           {"vexil", "vexil"}, {"/usr/bin/other tool", "other tool"}, {"bin/", ""}, {"", ""}}) {
    const auto end = support::run({.folder = folder.path(), .firstWord = word});
    EXPECT_EQ(end.out, "Usage: " + name + " *.sol\n");
    EXPECT_EQ(end.status, 1);
  }
}

}  // namespace
}  // namespace vexil
