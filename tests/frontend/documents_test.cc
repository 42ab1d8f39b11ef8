// Vexil - exact integer optimization on lattices.
//
// What the documents show is what the tool does: the blocks "opt", "sol", "after" and "report" of a
// page are run in the order of the page.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

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
  int checked = 0;
  for (const auto& [kind, text] : blocksOf(*page)) {
    if (kind == "opt") writeFile(folder / "x.opt", text);
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

TEST(Examples, KeepTheStarsThatTheyClaim) {
  const std::filesystem::path examples = std::filesystem::path(VEXIL_SOURCE_DIR) / "examples";
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
