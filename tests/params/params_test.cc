// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include <sstream>

#include "foundation/failure.h"
#include "params/extended_params.h"
#include "support/pairs.h"
#include "support/parsed.h"

namespace vexil {
namespace {

using testing::ExitedWithCode;

/// The options without a lattice.
template <typename T>
struct Options : ExtendedParams<T> {
  Options() = default;

  [[nodiscard]] std::string text() const { return joined(*this); }

  /// Reads `line` and returns what stays in the stream.
  std::string readLine(const std::string& line) {
    std::istringstream in(line);
    in >> *this;
    in.clear();
    return {std::istreambuf_iterator<char>(in), {}};
  }
};

const std::string DEFAULTS =
    "--help=0 --verb=0 --consistency=0 --eenum=1 --beta=20 --eprune=3 --btime=0 --deep=0 "
    "--collectLimit=100 --pair=1 --pairLimit=10 --sieve=0 --sample=0 --sampleLimit=1000 --scale=0 "
    "--translate=0 --reinsert=1 --variate=1 --rtime=0 --iters=-1 --sol=1 --bench=0 --snorm=-1 "
    "--tnorm=-inf";

template <typename T>
class ParamsTest : public testing::Test {};
TYPED_TEST_SUITE(ParamsTest, NumberTypes);

TYPED_TEST(ParamsTest, Lines) {
  Options<TypeParam> options;
  EXPECT_EQ(options.text(), DEFAULTS);
  options.readLine(DEFAULTS);
  EXPECT_EQ(options.text(), DEFAULTS);
  EXPECT_EQ(
      options.readLine(" \t/* c */ x-verb=2 /* c */--beta=10\t --rtime=4 --tnorm=3 // c\n--sol=7"),
      "\n--sol=7");
  EXPECT_EQ(options.text(), String(DEFAULTS)
                                .replaceAll("verb=0", "verb=2")
                                .replaceAll("beta=20", "beta=10")
                                .replaceAll("rtime=0", "rtime=4")
                                .replaceAll("-inf", "3"));
  EXPECT_TRUE(options.tnorm.current == TypeParam(3));
  EXPECT_EQ(options.beta.defaultText, "20");
  options.readLine("--verb= --rtime=");
  EXPECT_EQ(options.text().find("--verb"), std::string::npos);
  EXPECT_EQ(options.verb, 2L);
  EXPECT_EQ(options.rtime.current.get(), 4);

  Options<TypeParam> copy;
  EXPECT_EQ(options.readLine(" \t/* c */\n--sol=7"), "\n--sol=7");  // empties the table
  copy.assign(options);
  EXPECT_EQ(options.text() + copy.text(), "");
  copy.assign(Options<TypeParam>());
  EXPECT_EQ(copy.text(), DEFAULTS);
}

TEST(Params, TypedValues) {
  constexpr auto most = std::numeric_limits<unsigned long>::max();
  constexpr auto least = std::numeric_limits<long>::min();
  const std::pair<const char*, std::string> cases[] = {
      {"inf", words(true, HUGE_LONG, most, INF_F, HUGE_LONG)},
      {"-inf", words(true, least, 0, -INF_F, least)},
      {"99999999999999999999999",
       words(true, HUGE_LONG, most, 99999999999999999999999.0L, HUGE_LONG)}};
  for (const auto& [text, expected] : cases) {
    Options<dbl_t> o;
    o.readLine(joined("--help=", text, " --iters=", text, " --pairLimit=", text, " --rtime=", text,
                      " --snorm=", text));
    EXPECT_EQ(words(o.help.current, o.iters.current, o.pairLimit.current, o.snorm.current,
                    o.rtime.current.get()),
              expected);
  }
}

TEST(ParamsDeathTest, MalformedWords) {
  const std::pair<const char*, const char*> cases[] = {
      {"--verb", "verb"}, {"--verb=1 --", ""},      {"--verb=1\r\n", ""},
      {"", ""},           {"--speed=1", "speed=1"}, {"--=", "="},
  };
  for (const auto& [line, word] : cases) {
    Options<dbl_t> options;
    EXPECT_EXIT(options.readLine(line), ExitedWithCode(1),
                joined("^\n\\*\\*\\* FAIL: Malformed parameter: ", word, "\n$"));
  }
}

TEST(Params, AssignBetweenNumberTypes) {
  Options<QQ> exact;
  Options<dbl_t> standard;
  exact.readLine("--snorm=1234567:1/4 --tnorm=-inf --verb=2 --rtime=5");
  exact.cellsEnabled.set(true);
  const std::string line = exact.text();
  standard.assign(exact);
  EXPECT_EQ(standard.text(), String(line).replaceAll("1234567:1/4", "1234567.25"));
  EXPECT_EQ(standard.snorm, 1234567.25L);
  EXPECT_EQ(standard.rtime.current.get(), 5);
  EXPECT_TRUE(standard.cellsEnabled);
  EXPECT_EQ(*standard.table.find("verb"), &standard.verb);
  exact.assign(standard);
  EXPECT_EQ(exact.text(), line);
  exact.readLine("--snorm=1234567890123456789012");
  EXPECT_THROW(standard.assign(exact), PrecisionException);
}

}  // namespace
}  // namespace vexil
