// Vexil - exact integer optimization on lattices.
//
// What the documents show is what the programs do: the blocks of a page are run in the order of the
// page. Behind "opt", "lp" or "names" stand "answer", "best" and "kept", the beginnings of what
// vexil-solve prints, of its report and of the sol file; behind "sol" stand "after" and "report" of
// the tool.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "foundation/string.h"
#include "support/tool_run.h"

namespace vexil::support {
namespace {

/// The blocks of a page, each by its kind and its text.
std::vector<std::pair<std::string, std::string>> blocksOf(const std::string& page) {
  std::istringstream in(page);
  std::vector<std::pair<std::string, std::string>> blocks;
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("```")) {
      inside = !inside;
      if (inside) blocks.emplace_back(line.substr(3), "");
    } else if (inside) {
      blocks.back().second += line + "\n";
    }
  }
  return blocks;
}

class Documents : public testing::TestWithParam<const char*> {};

TEST_P(Documents, ShowWhatTheToolDoes) {
  const auto page = readFile(std::filesystem::path(VEXIL_SOURCE_DIR) / GetParam());
  ASSERT_TRUE(page);
  const TemporaryFolder folder;
  ChildEnd end;
  ChildEnd solved;
  std::string model;
  int checked = 0;
  for (const auto& [kind, text] : blocksOf(*page)) {
    if (kind == "opt") writeFile(folder / (model = "x.opt"), text);
    if (kind == "lp") writeFile(folder / (model = "lp.lp"), text);
    if (kind == "names") writeFile(folder / (model = "names.opt"), text);
    if (kind == "answer") {
      solved = run({.folder = folder.path(), .arguments = {model}, .program = VEXIL_SOLVE_TOOL});
      EXPECT_TRUE(solved.out.starts_with(text)) << solved.out << solved.err;
    }
    if (kind == "best") {
      EXPECT_NE(solved.out.find("\n" + text), std::string::npos) << solved.out;
    }
    if (kind == "kept") {
      const auto sol = readFile(folder / "x.sol").value_or("");
      const String line = sol.substr(0, sol.find('\n') + 1);
      EXPECT_EQ(line.regexReplace("[0-9]+ \\| (--help=0) .* (--tnorm)", "0 | $1 ... $2"), text);
    }
    if (kind == "sol") {
      writeFile(folder / "x.sol", text);
      end = run({.folder = folder.path(), .arguments = {"x.sol"}});
      EXPECT_EQ(end.status, 0) << text << end.err;
    }
    if (kind != "after" && kind != "report") continue;
    EXPECT_EQ(kind == "after" ? readFile(folder / "x.sol") : end.out, text);
    ++checked;
  }
  EXPECT_GE(checked, 2);
}

INSTANTIATE_TEST_SUITE_P(Pages, Documents, testing::Values("README.md", "docs/file-formats.md"));

const std::filesystem::path examples = std::filesystem::path(VEXIL_SOURCE_DIR) / "examples";

TEST(Examples, CallTheEngine) {
  const auto code = readFile(examples / "engine.cc").value();
  const auto page = readFile(std::filesystem::path(VEXIL_SOURCE_DIR) / "README.md").value();
  EXPECT_NE(page.find("```cpp\n" + code + "```"), page.npos);
  const TemporaryFolder folder;
  std::filesystem::copy(examples, folder.path());
  const ChildEnd end = run({.folder = folder.path(), .program = VEXIL_EXAMPLE});
  EXPECT_EQ(end.status, 0) << end.err;
  EXPECT_EQ(end.out,
            "stars: 1\n\nx = [ 4 3 2 ]\n\nTarget values: [ ]\nTarget Norm: 0\nSlack Norm: 0\n"
            "Found after: 0 sec(s)\n");
  EXPECT_TRUE(readFile(folder / "coins.sol").value_or("").starts_with("[ 4 3 2 ] | 0 | "));
  EXPECT_TRUE(readFile(folder / "coins.lat"));
}

TEST(Examples, KeepTheStarsThatTheyClaim) {
  const std::map<std::string, std::string> norms = {{"goal", "-381 -356 -326 "},
                                                    {"knapsack", "-309 -270 -239 "},
                                                    {"ledger", "5 "},
                                                    {"shifts", "0 0 "}};
  for (const auto& [name, expected] : norms) {
    const TemporaryFolder folder;
    std::filesystem::copy(examples, folder.path());
    const ChildEnd end = run({.folder = folder.path(), .arguments = {name + ".sol"}});
    EXPECT_EQ(end.status, 0) << name << end.err;
    std::istringstream after(readFile(folder / (name + ".sol")).value_or(""));
    std::string found;
    for (std::string line; std::getline(after, line);) {
      const auto norm = line.find(" | ") + 3;
      found += line.substr(norm, line.find(' ', norm) - norm) + " ";
    }
    EXPECT_EQ(found, expected) << name;
  }
}

}  // namespace
}  // namespace vexil::support
