// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

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

}  // namespace
}  // namespace vexil
