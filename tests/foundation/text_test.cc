// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include <csignal>
#include <sstream>

#include "foundation/array.h"
#include "foundation/exceptions.h"
#include "foundation/text_streams.h"
#include "foundation/trace.h"
#include "foundation/write_guard.h"

namespace vexil {
namespace {

TEST(String, SplitsAsALineReaderDoes) {
  const auto joinedPieces = [](const String& text) {
    std::string result;
    const Array<String> pieces = text.split('|');
    for (const String& piece : pieces.elements()) result += "<" + piece + ">";
    return result;
  };
  EXPECT_EQ(joinedPieces("a|b|"), "<a><b>");
  EXPECT_EQ(joinedPieces("a||b"), "<a><><b>");
  EXPECT_EQ(joinedPieces("|"), "<>");
  EXPECT_EQ(joinedPieces(""), "");
}

TEST(String, HasItsOperations) {
  EXPECT_EQ(String("aaa").replaceAll("a", "aa"), "aaaaaa");
  EXPECT_EQ(String("run.1/x.y.sol").regexReplace("\\.[^./]*$", ""), "run.1/x.y");
  EXPECT_EQ(String(" \t\f").trim(WHITE_SPACE), "");
  EXPECT_EQ(String(" a b ").trimRight(" "), " a b");
  EXPECT_TRUE(String(".sol").endsWith(".sol"));
  EXPECT_TRUE(String("x").endsWith(""));
  EXPECT_FALSE(String("sol").endsWith(".sol"));
  EXPECT_FALSE(String("a.SOL").endsWith(".sol"));
  EXPECT_EQ(String("aBc").toLower() + String("aBc").toUpper(), "abcABC");
}

TEST(TextStreams, SkipBlanksAndComments) {
  for (const auto& [text, next] : {std::pair(" /* x */ // y\n /**/z", 'z'),
                                   {"/*/ */z", 'z'},
                                   {"/x", 'x'},
                                   {"/* * / **/z", 'z'},
                                   {"\r\n\tz", 'z'},
                                   {"//\nz", 'z'}}) {
    std::stringstream in(text);
    int peeked = 0;
    skipBlanks(in, BLANKS, &peeked);
    EXPECT_TRUE(nextIs(in, next)) << text;
    EXPECT_EQ(peeked, next) << text;
  }
}

TEST(TextStreams, TakeBarAndTheEnd) {
  std::stringstream in(" /* a */ |x");
  EXPECT_TRUE(takeBar(in));
  EXPECT_FALSE(takeBar(in));
  EXPECT_EQ(in.get(), 'x');
  skipChars(in, BLANKS, true);
  EXPECT_TRUE(in.eof());
  EXPECT_FALSE(in.fail());
  skipBlanks(in);
  EXPECT_TRUE(in.fail());
  std::stringstream one("  x");
  EXPECT_TRUE(skipChars(one, BLANKS, false));
  EXPECT_EQ(one.str().size() - static_cast<std::size_t>(one.tellg()), 2U);
}

TEST(Trace, IndentsNestedLines) {
  std::ostringstream log;
  log << traceBegin() << " heading" << traceNewline();
  log << traceBegin() << " line" << traceEnd(false);
  log << traceBegin() << " open";
  log << traceBegin() << " nested" << traceEnd(false);
  log << traceEnd(false) << traceEnd(true);
  log << traceBegin() << " waiting" << traceEnd(false) << traceEnd(false);
  EXPECT_EQ(log.str(),
            "|-> heading\n|    |-> line\n|    |-> open\n|    |    |-> nested\n|-> waiting\n");
  EXPECT_EQ(traceDepth, 0);
  traceLineOpen[traceDepth = 1] = 1;
  EXPECT_EQ(traceEnd(true), "\n");
  for (int i = 0; i < 127; ++i) static_cast<void>(traceBegin());
  EXPECT_EQ(traceDepth, 127);
  EXPECT_EXIT(static_cast<void>(traceBegin()), testing::ExitedWithCode(1),
              "^\n\\*\\*\\* FAIL: Maximum thread depth reached\n$");
  traceDepth = 0;
}

volatile std::sig_atomic_t interrupts = 0;

TEST(WriteGuard, PutsTheEarlierHandlersBack) {
  const auto earlier = std::signal(SIGINT, [](int) { interrupts = interrupts + 1; });
  { const WriteGuard guard; }
  std::raise(SIGINT);
  EXPECT_EQ(interrupts, 1);
  std::signal(SIGINT, earlier);
}

}  // namespace
}  // namespace vexil
