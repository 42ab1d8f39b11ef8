// Vexil - exact integer optimization on lattices.
#include "frontend/solve_options.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

#include "params/extended_params.h"

namespace vexil {
namespace {

using Action = SolveOptions::Action;

SolveOptions parsed(const std::string& line) {
  std::istringstream in(line);
  return parseSolveOptions({std::istream_iterator<std::string>(in), {}});
}

std::string refusal(const std::vector<std::string>& words) {
  try {
    static_cast<void>(parseSolveOptions(words));
  } catch (const UsageException& fault) {
    return fault.message;
  }
  return "none";
}

/// The options of an engine without its lattice.
struct Table : ExtendedParams<QQ> {
  Table() = default;
};

TEST(SolveOptions, AreTheWordsOfTheTable) {
  EXPECT_EQ(parsed("x.opt").line, joined(Table()));
  const auto given = parsed(
      "--rtime=60 --sol=0 --tnorm=-1.5e1 --snorm=007:1/3 --eenum=0 --beta=30 --deep=1 --iters=4 "
      "--verb=2 --bench=0.5 --eprune=-7 --pairLimit=18446744073709551615 x.opt");
  EXPECT_EQ(given.line,
            "--help=0 --verb=2 --consistency=0 --eenum=0 --beta=30 --eprune=-7 --btime=0 --deep=1 "
            "--collectLimit=100 --pair=1 --pairLimit=18446744073709551615 --sieve=0 --sample=0 "
            "--sampleLimit=1000 --scale=0 --translate=0 --reinsert=1 --variate=1 --rtime=60 "
            "--iters=4 --sol=0 --bench=0.5 --snorm=7:1/3 --tnorm=-15");
  EXPECT_EQ(given.seconds, 60);
  EXPECT_EQ(given.wanted, 0);
  EXPECT_EQ(given.tnorm, QQ(-15));
  EXPECT_EQ(given.snorm, QQ("7:1/3"));
  EXPECT_FALSE(given.enumeration);
  EXPECT_EQ(given.blockSize, 30);
  EXPECT_TRUE(given.deep);
  EXPECT_EQ(given.rounds, 4);
  EXPECT_EQ(given.verbosity, 2);
  EXPECT_EQ(given.idle, (std::vector<String>{"bench", "eprune", "pairLimit"}));
  const auto last = parsed("--tnorm=5 --sol=7 x.opt --tnorm=-inf --snorm=-1 --sol=8");
  EXPECT_EQ(last.tnorm, std::nullopt);
  EXPECT_EQ(last.snorm, std::nullopt);
  EXPECT_EQ(last.wanted, 8);
  EXPECT_EQ(last.file, "x.opt");
}

TEST(SolveOptions, WordsBehindTheEndOfOptionsAreFiles) {
  EXPECT_EQ(parsed("-- --sol=3.opt").file, "--sol=3.opt");
  EXPECT_EQ(refusal({"--", "a", "--"}), "two files: a and --");
}

TEST(SolveOptions, AskForHelpOrVersion) {
  EXPECT_EQ(parsed("--help").action, Action::SHOW_HELP);
  EXPECT_EQ(parsed("--sol=2 --help=1").action, Action::SHOW_HELP);
  EXPECT_EQ(parsed("x.opt --version").action, Action::SHOW_VERSION);
  EXPECT_EQ(parsed("--help=0 x.opt").action, Action::SOLVE);
  const auto help = solveHelpText();
  const Table table;
  for (const std::string& key : table.names.elements()) {
    EXPECT_NE(help.find(" " + key), help.find("--" + key + "=")) << key;  // one of the two is there
  }
}

TEST(SolveOptions, RefuseWhatTheyDoNotUnderstand) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{}, "no file is named"},
      {{"--sol=3"}, "no file is named"},
      {{""}, "the name of the file is empty"},
      {{"a.opt", "b.opt"}, "two files: a.opt and b.opt"},
      {{"-h"}, "-h is no option"},
      {{"--speed=1"}, "--speed is no option"},
      {{"--=1"}, "-- is no option"},
      {{"--Sol=1"}, "--Sol is no option"},
      {{"--deep"}, "--deep: the value is missing, as in --deep=0"},
      {{"--rtime=abc"}, "--rtime=abc: not a whole number"},
      {{"--rtime=5s"}, "--rtime=5s: not a whole number"},
      {{"--rtime="}, "--rtime=: not a whole number"},
      {{"--rtime= 5"}, "--rtime= 5: not a whole number"},
      {{"--rtime=-1"}, "--rtime=-1: the least value is 0"},
      {{"--rtime=9223372036854775808"}, "--rtime=9223372036854775808: the number is out of range"},
      {{"--iters=-2"}, "--iters=-2: the least value is -1"},
      {{"--beta=1"}, "--beta=1: the least value is 2"},
      {{"--verb=3"}, "--verb=3: the greatest value is 2"},
      {{"--pairLimit=-1"}, "--pairLimit=-1: not a whole number"},
      {{"--deep=2"}, "--deep=2: neither 0 nor 1"},
      {{"--tnorm=1/0"}, "--tnorm=1/0: not a number"},
      {{"--tnorm=- 5"}, "--tnorm=- 5: not a number"},
      {{"--snorm=-2"}, "--snorm=-2: the least value is 0, or -1 for unset"},
      {{"--bench=fast"}, "--bench=fast: not a number"},
  };
  for (const auto& [words, reason] : cases) EXPECT_EQ(refusal(words), reason);
}

}  // namespace
}  // namespace vexil
