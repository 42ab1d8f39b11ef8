// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "foundation/failure.h"
#include "frontend/solve_run.h"
#include "support/parsed.h"
#include "support/tool_run.h"

namespace vexil {
namespace {

const std::string MODEL = "Minimize\n o: x + p\nSubject To\n x + p >= 0.5\nGeneral\n x\nEnd\n";
const std::string OPT =
    "// x[1]: x\n// x[2]: p\n// target[1]: o\n// inequation[1]: c1\n[ -inf ]\n[\n[ 1 1 ]\n]\n[\n]\n"
    "[ ]\n[\n[ 1 1 ]\n]\n[ 1/2 ]\n[ inf ]\n[ 0 1 ]\n[ 0 0 ]\n[ inf inf ]\n";

struct Row {
  std::vector<std::string> words;
  int status;
  std::string message;  ///< the start of the standard error, or of the output with status 0
  std::string written;  ///< what m.opt holds afterwards
};

TEST(Convert, WritesTheWholeFileOrNothing) {
  for (const auto& [words, status, message, written] : std::vector<Row>{
           {{"--decimals=1", "m.LP", "m.opt"}, 1, "m.opt: exists (--force replaces it)\n", "old"},
           {{"--decimals=1", "--force", "m.LP", "m.opt"}, 0, "", OPT},
           {{"m.LP", "--force", "m.opt"}, 1, "m.LP: variable p is not integer", "old"},
           {{"--force", "no.mps", "m.opt"}, 1, "Could not read model file: no.mps\n", "old"},
           {{"--force", "m.opt", "m.opt"}, 1, "Dimension error -- n == 0\n", "old"},
           {{"--force", "m.LP", "none/m.opt"}, 1, "none/m.opt: ", "old"},
           {{"--force", "m.LP", "m.txt"},
            1,
            "m.txt ends in none of .opt, .lp and .mps\nUsage: ",
            "old"},
           {{"--", "--force", "m.LP", "m.opt"}, 1, "expected two files, not 3\nUsage: ", "old"},
           {{"--decimals=x", "m.LP", "m.opt"},
            1,
            "--decimals=x: not a whole number from 0 to 9999",
            "old"},
           {{"--decimals=-1", "m.LP", "m.opt"}, 1, "--decimals=-1: not a whole number", "old"},
           {{"--forced", "m.LP", "m.opt"}, 1, "--forced is no option\nUsage: ", "old"},
           {{}, 1, "expected two files, not 0\nUsage: vexil-convert", "old"},
           {{"--help"}, 0, "Usage: vexil-convert ", "old"},
           {{"--version"}, 0, "vexil-convert 2.", "old"},
       }) {
    const support::TemporaryFolder folder;
    support::writeFile(folder / "m.LP", MODEL);
    support::writeFile(folder / "m.opt", "old");
    const auto end =
        support::run({.folder = folder.path(), .arguments = words, .program = VEXIL_CONVERT_TOOL});
    EXPECT_EQ(end.status, status) << message << end.err;
    const bool isUsage = message.find("Usage: ") != message.npos || message.starts_with("--");
    const char* const head = status == 0 ? "" : isUsage ? "vexil-convert: " : "\n*** FAIL: ";
    const std::string start = head + message;
    EXPECT_EQ((status == 0 ? end.out : end.err).substr(0, start.size()), start);
    EXPECT_EQ(support::readFile(folder / "m.opt"), written) << message;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
  }
}

/// A model that comes through a pipe leaves time to make the file that is to be written.
TEST(Convert, KeepsWhatAnotherProcessMakesMeanwhile) {
  for (const bool force : {false, true}) {
    const support::TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "m.lp").c_str(), 0600), 0);
    support::ToolRun tool{.folder = folder.path(),
                          .arguments = {"--decimals=1", "m.lp", "m.opt"},
                          .program = VEXIL_CONVERT_TOOL};
    if (force) tool.arguments.insert(tool.arguments.begin(), "--force");
    support::Child child(tool);
    std::ofstream pipe(folder / "m.lp");
    support::writeFile(folder / "m.opt", "mine");
    pipe << MODEL << std::flush;
    pipe.close();
    const auto end = child.finish(std::chrono::minutes(1));
    EXPECT_EQ(end.err, force ? "" : "\n*** FAIL: m.opt: exists (--force replaces it)\n");
    EXPECT_EQ(support::readFile(folder / "m.opt"), force ? OPT : "mine");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
  }
}

TEST(Convert, KeepsAllTargetsOnDemand) {
  const support::TemporaryFolder folder;
  support::writeFile(folder / "m.mps",
                     "NAME\nROWS\n N a\n N b\nCOLUMNS\n x a 1 b 2\nBOUNDS\n LI x 0\nENDATA\n");
  const auto end = support::run({.folder = folder.path(),
                                 .arguments = {"--targets", "m.mps", "m.opt"},
                                 .program = VEXIL_CONVERT_TOOL});
  EXPECT_EQ(end.err, "");
  const std::string written = support::readFile(folder / "m.opt").value_or("");
  EXPECT_NE(written.find("[ -inf -inf ]\n[\n[ 1 ]\n[ 2 ]\n]\n"), written.npos) << written;
}

namespace fs = std::filesystem;

const std::string CHAIRS =
    "Maximize\n profit: 3 chairs + 0.5 tables - 7\nSubject To\n hours: chairs + 2 tables <= 9\n"
    "Bounds\n chairs <= 5\nGeneral\n chairs\nEnd\n";
const std::string CHAIRS_OPT =
    "// x[1]: chairs\n// x[2]: tables\n// target[1]: profit\n// constant[1]: -7\n"
    "// inequation[1]: hours\n[ inf ]\n[\n[ 3 1/2 ]\n]\n[\n]\n[ ]\n[\n[ 1 2 ]\n]\n[ -inf ]\n[ 9 ]\n"
    "[ 0 1 ]\n[ 0 0 ]\n[ 5 inf ]\n";

class ModelRun : public testing::Test {
 protected:
  support::TemporaryFolder folder;

  void SetUp() override { support::writeFile(folder / "m.lp", CHAIRS); }

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
  EXPECT_EQ(support::readFile(folder / "m.opt"), CHAIRS_OPT);
  const std::string sol = support::readFile(folder / "m.sol").value_or("");
  EXPECT_NE(sol.find("--help=0 --verb=0"), sol.npos);
  for (const char* word : {"decimals", "names", "targets"}) EXPECT_EQ(sol.find(word), sol.npos);
  const std::string byVector = run({"--decimals=1", "--names=0", "--targets", "m.lp"}).out;
  EXPECT_EQ(byVector.substr(0, answer.size() + 13), answer + "x = [ 5 1:1/2");
  EXPECT_EQ(run({"m.sol"}).out, answer + byName);
  EXPECT_EQ(support::readFile(folder / "m.sol"), sol);
}

TEST_F(ModelRun, LeavesTheOptFileOfAnotherProgram) {
  support::writeFile(folder / "m.opt", CHAIRS_OPT + "// changed\n");
  const auto end = run({"--decimals=1", "m.lp"});
  EXPECT_EQ(
      end.err,
      "\n*** FAIL: m.opt: holds another program than m.lp and is not touched; remove it if the "
      "model has changed, or give one of them another name\n");
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(support::readFile(folder / "m.opt"), CHAIRS_OPT + "// changed\n");
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
  support::writeFile(folder / "m.opt", "// x[1]: a\n// constant[1]:  7 b\n" + CHAIRS_OPT);
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
