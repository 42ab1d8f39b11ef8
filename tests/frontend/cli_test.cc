// Vexil - exact integer optimization on lattices.
//
// Whole runs of the tool: what a user gives and what comes of it.
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fstream>
#include <map>

#include "support/text_cases.h"
#include "support/tool_run.h"

namespace vexil {
namespace {

using Texts = std::vector<std::string>;
using MaybeText = std::optional<std::string>;

/// Minimizes the sum of two variables between 0 and 9.
const std::string SUM = "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ 9 9 ]\n";

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

/// Ends by the exception of a number list that is looked for behind the end of the file.
Case aborted(const std::string& name, const std::string& opt) {
  const std::string text =
      "terminate called after throwing an instance of 'vexil::ReadException'\n"
      "  what():  Vector: bad stream\n";
  return {name, opt, "[ 1 1 ]\n", "[ 1 1 ]\n", "", text, -1, SIGABRT};
}

void addCommandLines(std::vector<Case>& rows) {
  const std::string usage = "Usage: vexil *.sol\n";
  int number = 0;
  for (const Texts& arguments : std::vector<Texts>{
           {}, {""}, {"a.sol", "b.sol", "x.sol"}, {"x.SOL"}, {"x.sol.txt"}, {"x.sol", "a.txt"}}) {
    Case row{"Usage" + std::to_string(++number), SUM, "[1 1]", "[1 1]", usage, "", 1};
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
    Case row{"FileNames" + std::to_string(++number),
             SUM,
             "[1 1]",
             "[ 1 1 ] | 2 | [ 2 ] | 0 | -1 | \n",
             "\nx = [ 1 1 ]\n\nTarget values: [ 2↓ ]\nTarget Norm: 2\nSlack Norm: 0\n\n",
             ""};
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
  rows.push_back(aborted("EndsBehindDx", "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ]"));
}

void addRuns(std::vector<Case>& rows) {
  for (const auto& [name, parts] : support::textCases("frontend/runs.txt"))
    rows.push_back(
        {name, parts[0], parts[1], parts[2].empty() ? MaybeText() : parts[2], parts[3], ""});
  rows.push_back({"NoFile", SUM, std::nullopt, std::nullopt, "\n\n", ""});
  for (const auto& [name, sol, text] :
       {std::array{"RefusedDecimal", "[ 1 1.0 ]", "QQ: parse error1"},
        {"WrongLength", "[ 2 ] | 3 | [ 3 ] | 0 | 7 | --a=1\n", "Vector: dimension mismatch10"},
        {"CutInVector", "[ 2 1", "QQ: parse error1"},
        {"BadSlackNorm", "[ 2 1 ] | 1 | [ ] | 1:2 | 7 | --a=1\n", "QQ: malformed number2"},
        {"NormWithExponent", "[ 1 0 ] | 1.23457e+06 | [ 1.23457e+06 ] | 0 | 7 | --a=1\n",
         "QQ: parse error1"},
        {"SecondFailingStarWithoutValues", "[ 10 0 ][ 11 0 ]", "Array: index out of range"}})
    rows.push_back(refused(name, SUM, sol, text));
  rows.back().after = "[ 11 0 ] | 0 | [ ] | 0 | -1 | \n";
}

std::vector<Case> allCases() {
  std::vector<Case> rows;
  for (const auto add : {addCommandLines, addFaultyPrograms, addRuns}) add(rows);
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
