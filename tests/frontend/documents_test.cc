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

struct Block {
  std::string kind;
  std::string text;
};

std::vector<Block> blocksOf(const std::string& page) {
  std::istringstream in(page);
  std::vector<Block> blocks;
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("```")) {
      inside = !inside;
      if (inside) blocks.push_back({line.substr(3), ""});
    } else if (inside) {
      blocks.back().text += line + "\n";
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
  for (const Block& block : blocksOf(*page)) {
    if (block.kind == "opt") writeFile(folder / "x.opt", block.text);
    if (block.kind == "sol") {
      writeFile(folder / "x.sol", block.text);
      end = run({.folder = folder.path(), .arguments = {"x.sol"}});
      EXPECT_EQ(end.status, 0) << block.text << end.err;
    }
    if (block.kind == "after" || block.kind == "report") {
      EXPECT_EQ(block.kind == "after" ? readFile(folder / "x.sol") : end.out, block.text);
      ++checked;
    }
  }
  EXPECT_GE(checked, 2);
}

INSTANTIATE_TEST_SUITE_P(Pages, Documents, testing::Values("README.md", "docs/file-formats.md"));

TEST(Examples, KeepTheStarsThatTheyClaim) {
  const std::filesystem::path examples = std::filesystem::path(VEXIL_SOURCE_DIR) / "examples";
  const std::map<std::string, std::vector<std::string>> firstFields = {
      {"goal", {"[ 5 2 2 ] | -381", "[ 4 2 2 ] | -356", "[ 4 1 3 ] | -326"}},
      {"knapsack",
       {"[ 1 1 1 1 0 1 0 0 0 0 ] | -309", "[ 1 1 1 0 0 0 0 0 0 1 ] | -270",
        "[ 1 0 0 0 1 0 0 0 1 0 ] | -239"}},
      {"ledger", {"[ 1 0 1 1 0 0 1 0 1 0 ] | 5"}},
      {"shifts", {"[ 1 0 0 0 1 0 0 0 1 ] | 0", "[ 0 1 0 0 0 1 1 0 0 ] | 0"}},
  };
  for (const auto& [name, expected] : firstFields) {
    const TemporaryFolder folder;
    for (const char* const ending : {".opt", ".sol"}) {
      std::filesystem::copy(examples / (name + ending), folder.path());
    }
    const ChildEnd end = run({.folder = folder.path(), .arguments = {name + ".sol"}});
    EXPECT_EQ(end.status, 0) << name << end.err;
    std::istringstream after(readFile(folder / (name + ".sol")).value_or(""));
    std::size_t count = 0;
    for (std::string line; std::getline(after, line); ++count) {
      ASSERT_LT(count, expected.size()) << line;
      EXPECT_TRUE(line.starts_with(expected[count] + " |")) << line;
    }
    EXPECT_EQ(count, expected.size()) << name;
  }
}

}  // namespace
}  // namespace vexil::support
