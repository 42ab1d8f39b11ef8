// Vexil - exact integer optimization on lattices.
//
// Runs of the solver program on models with names, around a stand-in for the search.
#include <gtest/gtest.h>

#include "foundation/failure.h"
#include "frontend/solve_run.h"
#include "support/parsed.h"
#include "support/tool_run.h"

namespace vexil {
namespace {

namespace fs = std::filesystem;

const std::string MODEL =
    "Maximize\n profit: 3 chairs + 0.5 tables - 7\nSubject To\n hours: chairs + 2 tables <= 9\n"
    "Bounds\n chairs <= 5\nGeneral\n chairs\nEnd\n";
const std::string OPT =
    "// x[1]: chairs\n// x[2]: tables\n// target[1]: profit\n// constant[1]: -7\n"
    "// inequation[1]: hours\n[ inf ]\n[\n[ 3 1/2 ]\n]\n[\n]\n[ ]\n[\n[ 1 2 ]\n]\n[ -inf ]\n[ 9 ]\n"
    "[ 0 1 ]\n[ 0 0 ]\n[ 5 inf ]\n";

class ModelRun : public testing::Test {
 protected:
  support::TemporaryFolder folder;

  void SetUp() override { support::writeFile(folder / "m.lp", MODEL); }

  /// A run whose search finds two points and claims the best norm of them.
  support::ChildEnd run(const std::vector<std::string>& words) {
    return support::Child([&]() -> int {
             fs::current_path(folder.path());
             try {
               return solveRun(parseSolveOptions(words), [](const auto& program, const auto& known,
                                                            const auto& settings, auto& listener) {
                 static_cast<void>(program);
                 static_cast<void>(settings);
                 if (known.empty()) listener.point(vector<QQ>("[ 0 4 ]"));
                 if (known.empty()) listener.point(vector<QQ>("[ 5 3/2 ]"));
                 solver::Outcome outcome;
                 outcome.status = solver::Status::Optimal;
                 outcome.best = QQ("-15:3/4");
                 return outcome;
               });
             } catch (const std::exception& fault) {
               fail(fault.what());
             }
           })
        .finish(std::chrono::minutes(1));
  }
};

TEST_F(ModelRun, PrintsNamesAndKeepsItsFiles) {
  const std::string answer = "optimal: target norm -15:3/4\n\n";
  const std::string byName =
      "profit = 8.75\n\nchairs = 5\ntables = 1.5\n\n---\n\nprofit = -5\n\ntables = 4\n";
  const auto first = run({"--decimals=1", "m.lp"});
  EXPECT_EQ(first.out, answer + byName);
  EXPECT_EQ(first.err, "");
  EXPECT_EQ(first.status, 0);
  EXPECT_EQ(support::readFile(folder / "m.opt"), OPT);
  const std::string sol = support::readFile(folder / "m.sol").value_or("");
  EXPECT_NE(sol.find("--help=0 --verb=0"), sol.npos);
  for (const char* word : {"decimals", "names", "targets"}) EXPECT_EQ(sol.find(word), sol.npos);
  const std::string byVector = run({"--decimals=1", "--names=0", "--targets", "m.lp"}).out;
  EXPECT_EQ(byVector.substr(0, answer.size() + 13), answer + "x = [ 5 1:1/2");
  EXPECT_EQ(run({"m.sol"}).out, answer + byName);
  EXPECT_EQ(support::readFile(folder / "m.sol"), sol);
}

TEST_F(ModelRun, LeavesTheOptFileOfAnotherProgram) {
  support::writeFile(folder / "m.opt", OPT + "// changed\n");
  const auto end = run({"--decimals=1", "m.lp"});
  EXPECT_EQ(
      end.err,
      "\n*** FAIL: m.opt: holds another program than m.lp and is not touched; remove it if the "
      "model has changed, or give one of them another name\n");
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(support::readFile(folder / "m.opt"), OPT + "// changed\n");
  EXPECT_FALSE(fs::exists(folder / "m.sol"));
}

TEST_F(ModelRun, NamesGoalsAndWhatHasNoName) {
  support::writeFile(folder / "g.opt",
                     "// x[2]: b\n// target[2]: timber\n[ -inf 40 ] [ [ 1/3 0 ] [ 1 8 ] ]\n"
                     "[ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ 9 9 ]\n");
  EXPECT_EQ(run({"g.opt"}).out.substr(29),
            "\nt1 = 0\ntimber = 32 (wished: 40)\n\nb = 4\n\n---\n\n"
            "t1 = 1:2/3\ntimber = 17 (wished: 40)\n\nx1 = 5\nb = 1.5\n");
}

TEST_F(ModelRun, RefusesAConstantThatIsNoNumber) {
  support::writeFile(folder / "m.opt", "// x[1]: a\n// constant[1]:  7 b\n" + OPT);
  const auto end = run({"m.opt"});
  EXPECT_EQ(end.err, "\n*** FAIL: m.opt:2:18: expected a number, not 7 b\n");
  EXPECT_EQ(end.out, "");
}

TEST_F(ModelRun, RefusesWrongWords) {
  EXPECT_EQ(run({"--names=2", "m.lp"}).err, "\n*** FAIL: --names=2: neither 0 nor 1\n");
  EXPECT_EQ(run({"--targets=2", "m.lp"}).err, "\n*** FAIL: --targets=2: neither 0 nor 1\n");
  EXPECT_EQ(run({"--decimals=10000", "m.lp"}).err,
            "\n*** FAIL: --decimals=10000: not a whole number from 0 to 9999\n");
  EXPECT_EQ(run({"m.txt"}).err, "\n*** FAIL: m.txt ends in none of .opt, .sol, .lp and .mps\n");
}

}  // namespace
}  // namespace vexil
