// Vexil - exact integer optimization on lattices.
//
// The manual pages say of options, exit statuses and version what the programs say.
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "foundation/failure.h"
#include "foundation/version.h"
#include "frontend/convert_command.h"
#include "frontend/solve_options.h"
#include "support/tool_run.h"

namespace vexil {
namespace {

using Words = std::set<std::string>;

std::string page(const std::string& name) {
  const auto path = std::filesystem::path(VEXIL_SOURCE_DIR) / "docs/man" / name;
  return std::regex_replace(support::readFile(path).value_or(""), std::regex("\\\\-"), "-");
}

/// The text behind `head` up to the next line that begins with ".SH".
std::string section(const std::string& text, const std::string& head) {
  const std::size_t start = text.find(head);
  if (start == text.npos) return "";
  return text.substr(start, text.find("\n.SH", start + 1) - start);
}

Words matches(const std::string& text, const char* pattern) {
  const std::regex regex(pattern);
  Words words;
  for (std::sregex_iterator i(text.begin(), text.end(), regex), end; i != end; ++i)
    words.insert((*i)[1]);
  return words;
}

TEST(Manual, HasTheOptionsAndStatusesOfThePrograms) {
  for (const auto& [name, help] : {std::pair("vexil-solve.1", std::string(solveHelpText())),
                                   std::pair("vexil-convert.1", convertHelpText())}) {
    const std::string options = section(page(name), ".SH OPTIONS");
    const Words said = matches(options, "\n\\.TP\n\\.BI? (--[a-z]*(?:=-?[0-9a-z]+)?)");
    EXPECT_EQ(said, matches(help, "\n  (--[a-z]*(?:=-?[0-9a-jl-z]+)?)")) << name;
    EXPECT_EQ(matches(section(page(name), ".SH EXIT STATUS"), "\n\\.TP\n\\.B ([0-9])\n"),
              matches(help.substr(help.find("Exit status:")), "[ ,]([0-9]) (?:for|OUT|a)"))
        << name;
  }
}

TEST(Manual, NamesTheWordsWithoutEffectAndTheAnswers) {
  const std::string help = solveHelpText();
  const std::string idle = section(page("vexil-solve.1"), "The other words");
  const std::size_t start = help.find("without effect here:\n");
  const std::string listed = help.substr(start + 21, help.find("\n\n", start) - start - 21);
  EXPECT_EQ(matches(idle, "\n\\.BR? ([A-Za-z]+)"), matches(listed, " ([A-Za-z]+)"));
  const std::string answers = help.substr(help.find("first line"));
  EXPECT_EQ(matches(section(page("vexil-solve.1"), ".SS Output"), "\n\\.TP\n\\.B ([a-z ]+)\n"),
            matches(answers, "\n  ([a-z]+(?: [a-z]+)*)  +"));
}

TEST(Manual, TellsTheVersionAndTheUsage) {
  for (const char* name : {"vexil.1", "vexil-solve.1", "vexil-convert.1", "vexil-formats.5"})
    EXPECT_NE(page(name).find(joined("\"vexil ", VERSION, "\" \"Vexil\"\n")), std::string::npos);
  const auto end = support::run({.folder = "/", .arguments = {}});
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(matches(section(page("vexil.1"), ".SH EXIT STATUS"), "\n\\.TP\n\\.B ([0-9])\n"),
            Words({"0", "1"}));
}

/// The examples of the page of formats are one model.
TEST(Manual, ShowsOneModelInThreeForms) {
  const std::string examples = section(page("vexil-formats.5"), ".SH EXAMPLES");
  const support::TemporaryFolder folder;
  std::size_t start = 0;
  for (const char* name : {"a.lp", "b.mps", "c.opt"}) {
    start = examples.find("\n.nf\n", start) + 5;
    support::writeFile(folder / name, examples.substr(start, examples.find(".fi", start) - start));
    const auto end = support::run({.folder = folder.path(),
                                   .arguments = {name, std::string(name) + ".lp"},
                                   .program = VEXIL_CONVERT_TOOL});
    EXPECT_EQ(end.err, "") << name;
  }
  const auto reference = support::readFile(folder / "a.lp.lp").value_or("");
  const std::size_t rows = reference.find("Maximize");
  EXPECT_NE(rows, reference.npos);
  for (const char* name : {"b.mps.lp", "c.opt.lp"}) {
    const std::string other = support::readFile(folder / name).value_or("");
    EXPECT_EQ(section(other, "Bounds"), section(reference, "Bounds")) << name;
    EXPECT_EQ(matches(other, "(profit: .*)\n"), matches(reference, "(profit: .*)\n")) << name;
    EXPECT_EQ(matches(other, ": (.*[<>]= .*)\n"), matches(reference, ": (.*[<>]= .*)\n")) << name;
  }
}

}  // namespace
}  // namespace vexil
