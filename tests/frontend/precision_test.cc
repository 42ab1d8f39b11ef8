// Vexil - exact integer optimization on lattices.
//
// The guarded attempts of the front object, with precision failures forced from within.
#include <gtest/gtest.h>

#include <type_traits>

#include "foundation/trace.h"
#include "frontend/ylattice.h"
#include "support/programs.h"

namespace vexil {
namespace {

class Precision : public testing::Test {
 protected:
  Precision() {
    traceDepth = 0;
    traceLineOpen = {};
    traceLineClosed = {};
    auto& program = front.standard.program;
    program.solStars.resize(3, false);
    for (long i = 1; i <= 3; ++i) {
      program.solStars[i].resize(1, false);
      program.solStars[i][1] = static_cast<dbl_t>(i);
    }
  }

  /// Fails in standard precision only, five trace levels deep and with a star removed.
  static int failing(auto& lattice) {
    lattice.program.solStars.removeElement(1);
    if constexpr (std::is_same_v<std::decay_t<decltype(lattice)>, Lattice<dbl_t, dbl_t>>) {
      for (int i = 0; i < 5; ++i) static_cast<void>(traceBegin());
      throw PrecisionException("forced");
    }
    seenDepth = traceDepth;
    return static_cast<int>(lattice.program.solStars.MN);
  }

  static inline std::int64_t seenDepth = -1;
  YLattice<dbl_t> front;
};

TEST_F(Precision, RollsBackAndRepeatsInExtended) {
  traceDepth = 2;
  EXPECT_EQ(front.guarded([](auto& lattice) { return failing(lattice); }), 2);
  EXPECT_EQ(seenDepth, 2);
  EXPECT_EQ(traceDepth, 2);
  EXPECT_FALSE(front.isExtended);
  EXPECT_EQ(front.standard.program.solStars.MN, 2);
  EXPECT_EQ(front.standard.program.solStars[1][1], 2);
}

TEST_F(Precision, StaysExtendedWhereANumberDoesNotFit) {
  front.switchToExtended();
  front.extended.program.solStars[2][1] = QQ("123456789012345678");
  EXPECT_EQ(front.guarded([](auto& lattice) { return failing(lattice); }), 2);
  EXPECT_TRUE(front.isExtended);
  EXPECT_EQ(joined(front.extended.program.solStars[1]), "[ 123456789012345678 ]");
  EXPECT_THROW(front.switchToStandard(), PrecisionException);
  EXPECT_TRUE(front.isExtended);
}

TEST_F(Precision, GeneratesInExtendedWhatOverflowsInStandard) {
  front.standard.program.assign(
      programOf<dbl_t>("[ ][ ][ [1 1] ][ 3 ][ ][ ][ ][ 0 0 ][ 0 0 ][ 99991 99989 ]"));
  const auto generate = [](auto& lattice) {
    lattice.prepare(false, false);
    lattice.generate();
    return joined(lattice.embedding.R, lattice.basis.B);
  };
  EXPECT_EQ(thrown([&] { generate(front.standard); }), "R overflow");
  EXPECT_EQ(front.guarded(generate),
            "9998000099[\n[ -199978 199982 0 ]\n[ -13329833557 -6665500051 1 ]\n]");
  EXPECT_EQ(front.standard.embedding.R, 9998000099);
}

TEST_F(Precision, TracesTheSwitches) {
  front.standard.params.verb.set(2);
  testing::internal::CaptureStdout();
  front.switchToExtended();
  front.switchToExtended();
  front.switchToStandard();
  front.guarded([](auto& lattice) { return failing(lattice); });
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "|-> Switching to extended precision\n|-> Using standard precision\n"
            "\n|    |    |    |    |    |-> Switching to extended precision\n"
            "|-> Using standard precision\n");
}

}  // namespace
}  // namespace vexil
