// Vexil - exact integer optimization on lattices.
//
// Whole runs of vexil-solve: command line, answers, files, and what the tool makes of them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <iterator>
#include <sstream>

#include "support/tool_run.h"

namespace vexil::support {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

const fs::path SOURCES = VEXIL_SOURCE_DIR;

class SolveTool : public testing::Test {
 protected:
  TemporaryFolder folder;

  [[nodiscard]] ToolRun tool(const Texts& words) const {
    return {.folder = folder.path(),
            .arguments = words,
            .firstWord = "vexil-solve",
            .program = VEXIL_SOLVE_TOOL};
  }
  [[nodiscard]] ChildEnd solve(const Texts& words) const { return run(tool(words)); }
  [[nodiscard]] std::string sol() const { return readFile(folder / "x.sol").value_or("none"); }
};

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

const std::string BOX = "[ 0 0 ] [ 0 0 ] [ 3 3 ]\n";

TEST_F(SolveTool, ExplainsItself) {
  const std::string usage =
      "Usage: vexil-solve [--key=value ...] model.opt|model.sol|model.lp|model.mps\n";
  for (const auto& [words, out, err] : std::vector<std::tuple<Texts, std::string, std::string>>{
           {{}, "", "vexil-solve: no file is named\n" + usage},
           {{"--rtime=abc", "x.opt"}, "", "vexil-solve: --rtime=abc: not a whole number\n" + usage},
           {{"x.txt"}, "", "vexil-solve: x.txt ends in none of .opt, .sol, .lp and .mps\n" + usage},
           {{"--version"}, "vexil-solve 2.2.3\n", ""},
           {{"x.opt"}, "", "\n*** FAIL: Could not read opt file: x.opt\n"}}) {
    const auto end = solve(words);
    EXPECT_EQ(end.out, out);
    EXPECT_EQ(end.err, err);
    EXPECT_EQ(end.status, err.empty() ? 0 : 1);
  }
  const auto help = solve({"--help"});
  EXPECT_TRUE(help.out.starts_with(usage)) << help.out;
  EXPECT_EQ(help.status, 0);
}

TEST_F(SolveTool, NoticesThatItsOutputIsClosed) {
  writeFile(folder / "x.opt", "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ] [ ] [ ] " + BOX);
  const auto end = Child([&] {
                     close(STDOUT_FILENO);
                     const std::string file = folder / "x.opt";
                     return execl(VEXIL_SOLVE_TOOL, "vexil-solve", file.c_str(), nullptr);
                   }).finish(1min);
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(end.err, "\n*** standard output: not everything could be written\n");
}

TEST_F(SolveTool, TouchesNothingBeforeItUnderstandsTheFiles) {
  const std::string broken = "[ 1 1 ] | 0 | [ ] | 0 | abc\n";
  writeFile(folder / "x.sol", broken);
  writeFile(folder / "x.opt", "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ]");
  EXPECT_EQ(solve({"x.sol"}).err, "\n*** FAIL: x.opt: Vector: bad stream\n");
  for (const char* const text : {"[ -inf ] // /*\n [ [ 1 1 ] ] /* b //\n", "[ 1 /* / */ ] // c"}) {
    writeFile(folder / "x.opt", text);
    EXPECT_EQ(solve({"x.sol"}).err, "\n*** FAIL: x.opt: the last comment has no end\n");
  }
  writeFile(folder / "x.opt", "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ] [ ] [ ] " + BOX);
  EXPECT_EQ(solve({"x.sol"}).err, "\n*** FAIL: x.sol:1: field 5: not a number: abc\n");
  EXPECT_EQ(sol(), broken);
  EXPECT_FALSE(fs::exists(folder / "x.sol.lock"));
}

TEST_F(SolveTool, Answers) {
  const std::string atLeast3 = "[ ] [ ] [ [ 1 1 ] ] [ 3 ] [ inf ] " + BOX;
  const std::string best = "[ -inf ] [ [ 1 2 ] ] " + atLeast3;
  const std::string near = "[ 5/2 ] [ [ 1 2 ] ] " + atLeast3;
  const std::string any = "[ ] [ ] " + atLeast3;
  const std::string odd = "[ -inf ] [ [ 1 2 ] ] [ [ 2 4 ] ] [ 5 ] [ ] [ ] [ ] " + BOX;
  const std::string free = "[ 0 0 ] [ -inf -inf ] [ inf inf ]\n";
  const std::string falls = "[ -inf ] [ [ 1 2 ] ] [ ] [ ] [ ] [ ] [ ] " + free;
  const std::string line = "[ ] [ ] [ [ 1 -1 ] ] [ 0 ] [ ] [ ] [ ] " + free;
  // The program, an option or two, the stars that are there, the answer.
  const std::vector<std::array<std::string, 4>> cases = {
      {best, "", "", "optimal: target norm 3"},
      {near, "", "", "optimal: target norm 1/2"},
      {odd, "", "", "infeasible: there is no point"},
      {any, "", "", "feasible: 1 point"},
      {falls, "", "", "unbounded: the target norm falls for ever"},
      {line, "--sol=0", "", "feasible: infinitely many points\nray: [ 1 1 ]"},
      {any, "--sol=4", "", "feasible: 4 points"},
      {any, "--sol=0", "", "feasible: all 10 points"},
      {any, "--sol=2", "[ 3 3 ]\n[ 2 2 ]", "feasible: 2 points"},
      {best, "--tnorm=4 --sol=0", "", "reached: all 2 stars within target norm 4"},
      {best, "--tnorm=4", "[ 2 1 ]", "reached: 1 star within target norm 4"},
      {best, "--tnorm=2", "[ 2 1 ]", "infeasible: there is no point within target norm 2"},
      {any, "--tnorm=-5", "", "feasible: 1 point"},
  };
  for (const auto& [opt, options, sol, answer] : cases) {
    writeFile(folder / "x.opt", opt);
    writeFile(folder / "x.sol", sol);
    std::istringstream words(options + " x.opt");
    const auto end = solve({std::istream_iterator<std::string>(words), {}});
    EXPECT_TRUE(end.out.starts_with(answer + "\n")) << opt << end.out << end.err;
    EXPECT_EQ(end.status, 0) << opt;
    const bool isIdle = opt == any && options.starts_with("--tnorm");
    EXPECT_EQ(end.err, isIdle ? "\n*** --tnorm has no effect without targets\n" : "") << opt;
  }
}

/// The stars of a sol file: elements, target norm, target values and slack norm.
Texts starsOf(const std::string& text) {
  std::istringstream in(text);
  Texts stars;
  for (std::string line; std::getline(in, line);) {
    std::size_t end = 0;
    for (int field = 0; field < 4; ++field) end = line.find(" | ", end + 1);
    stars.push_back(line.substr(0, end));
  }
  std::sort(stars.begin(), stars.end());
  return stars;
}

struct Known {
  const char* file;
  const char* answer;
  bool isWhole = true;  ///< no number has a fraction
};

class SolvedPrograms : public SolveTool, public testing::WithParamInterface<Known> {};

/// Their numbers are below a million, or the check of the tool stays exact; where they are whole,
/// it writes them in the same way.
TEST_P(SolvedPrograms, KeepTheirStarsInTheTool) {
  const auto& [file, answer, isWhole] = GetParam();
  fs::copy(SOURCES / file, folder / "x.opt");
  const auto end = solve({"x.opt"});
  EXPECT_EQ(firstLine(end.out), answer);
  EXPECT_EQ(end.status, 0);
  const auto found = starsOf(sol());
  const auto again = solve({"--rtime=100", "x.opt"});
  EXPECT_EQ(firstLine(again.out), answer);
  EXPECT_EQ(starsOf(sol()), found);
  const auto checked = run({.folder = folder.path(), .arguments = {"x.sol"}});
  EXPECT_EQ(checked.status, 0);
  EXPECT_EQ(checked.err, "");
  EXPECT_EQ(starsOf(sol()).size(), found.size());
  if (isWhole) {
    EXPECT_EQ(starsOf(sol()), found);
  }
}

INSTANTIATE_TEST_SUITE_P(
    , SolvedPrograms,
    testing::Values(Known{"examples/goal.opt", "optimal: target norm -433"},
                    Known{"examples/knapsack.opt", "optimal: target norm -309"},
                    Known{"examples/ledger.opt", "optimal: target norm 5"},
                    Known{"examples/shifts.opt", "feasible: 1 point"},
                    Known{"examples/tokens.opt", "optimal: target norm 3325"},
                    Known{"examples/unpayable.opt", "infeasible: there is no point"},
                    Known{"examples/split.opt", "feasible: 1 point"},
                    Known{"examples/cutting.opt", "optimal: target norm 453"},
                    Known{"examples/roster.opt", "optimal: target norm 9:1/5", false},
                    Known{"examples/blend.opt", "optimal: target norm 10:93/100", false},
                    Known{"bench/instances/cuww5_min.opt", "optimal: target norm 1"},
                    Known{"bench/instances/mixed14_2.opt", "optimal: target norm -831"},
                    Known{"bench/instances/mknap5x20_1.opt", "optimal: target norm -831"},
                    Known{"bench/instances/cutstock4_1.opt", "optimal: target norm 42"}),
    [](const auto& test) { return fs::path(test.param.file).stem().string(); });

/// A program that keeps a search busy: 8 equations in 100 variables with a target.
std::string busyProgram() {
  std::uint32_t bits = 1;
  const auto row = [](const auto& element) {
    std::string text = "[ ";
    for (int i = 0; i < 100; ++i) text += std::to_string(element()) + " ";
    return text + "]\n";
  };
  const auto coefficient = [&] { return (bits = bits * 1664525 + 1013904223) / 65536 % 1000; };
  std::string text = "[ -inf ] [ " + row(coefficient) + "] [ ";
  for (int k = 0; k < 8; ++k) text += row(coefficient);
  const std::string zeros = row([] { return 0; });
  return text + "] [ 25000 25001 25002 25003 25004 25005 25006 25007 ] [ ] [ ] [ ] " + zeros +
         zeros + row([] { return 1; });
}

TEST_F(SolveTool, StopsInEveryPhase) {
  writeFile(folder / "x.opt", busyProgram());
  for (const auto delay : {1ms, 10ms, 30ms, 100ms, 300ms, 1000ms}) {
    Child child(tool({"x.opt"}));
    std::this_thread::sleep_for(delay);
    kill(child.pid(), SIGINT);
    const auto end = child.finish(20s);
    EXPECT_FALSE(end.timedOut) << delay.count();
    if (end.signal == SIGINT) continue;  // it came before the program was read
    EXPECT_EQ(end.status, 2) << end.out << end.err;
    EXPECT_FALSE(fs::exists(folder / "x.sol.lock"));
  }
  const auto end = solve({"--rtime=1", "x.opt"});
  EXPECT_EQ(end.status, 2) << end.out;
}

TEST_F(SolveTool, KeepsASecondRunAwayWithoutASemaphore) {
  writeFile(folder / "x.opt", busyProgram());
  Child child(tool({"--rtime=100", "x.opt"}));
  const auto lock = folder / "x.sol.lock";
  ASSERT_TRUE(comesTrue([&] { return readFile(lock).value_or("").ends_with("\n"); }));
  EXPECT_EQ(semaphoreNames(child.pid()), Texts());
  const auto second = solve({"x.opt"});
  EXPECT_EQ(second.status, 1);
  const std::string holder = "vexil-solve, process " + std::to_string(child.pid()) + " on ";
  EXPECT_NE(second.err.find("/x.sol: is in use by " + holder), std::string::npos) << second.err;
  kill(child.pid(), SIGKILL);
  child.finish(20s);
  EXPECT_EQ(solve({"--rtime=1", "x.opt"}).status, 2);
}

}  // namespace
}  // namespace vexil::support
