// Vexil - exact integer optimization on lattices.
//
// What tests/lattice/worked_values.txt cannot say of the normal form.
#include <gtest/gtest.h>

#include "lattice/lattice.h"
#include "support/pairs.h"
#include "support/programs.h"

namespace vexil {
namespace {

template <typename T>
class NormalForm : public testing::Test {};
TYPED_TEST_SUITE(NormalForm, NumberTypes);

TYPED_TEST(NormalForm, BoundsTheTargetByKnownValues) {
  using T = TypeParam;
  Lattice<T, dbl_t> lattice;
  lattice.program.assign(programOf<T>(
      "[ -inf inf ] = [ 6 5 ] [ [1 2] [2 1] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ 4 4 ]"));
  lattice.prepare(true, false);
  EXPECT_FALSE(lattice.program.tightenTargetBound(vector<T>("[ 6 5 ]"), T(2)));
  EXPECT_TRUE(lattice.program.tightenTargetBound(vector<T>("[ 20 5 ]"), T(-30)));
  EXPECT_EQ(joined(lattice.program.lrtu), "(-31, -31)");
}

TYPED_TEST(NormalForm, RefusesWhatPreparationRulesOut) {
  auto program = programOf<TypeParam>(
      "[ 3 ] [ [1 0] ] [ ] [ ] [ [1 2] ] [ 1 ] [ inf ] [ 0 0 ] [ 0 0 ] [ 1 1 ]");
  EXPECT_EXIT((void)program.targetNorm(program.dt), testing::ExitedWithCode(1),
              "This should not be the case anymore!");
  program.rx.resize(1, false);
  EXPECT_EXIT(program.addSlackVariables(), testing::ExitedWithCode(1),
              "Implement the insert at sdim position case!");
}

TEST(NormalFormGuards, NameTheTargetBoundThatOverflows) {
  struct Case {
    const char* opt;
    dbl_t left, right;
    const char* text;
  };
  const char* const fixed =
      "[ -inf ] [ [1000000000 1] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 3 0 ] [ 3 1 ]";
  const char* const half =
      "[ -inf ] [ [0.5] ] [ ] [ ] [ ] [ ] [ ] [ 0 ] [ -1000000000 ] [ 1000000000 ]";
  const char* const whole =
      "[ -inf ] [ [1] ] [ ] [ ] [ ] [ ] [ ] [ 0 ] [ -1000000000 ] [ 1000000000 ]";
  for (const auto& [opt, left, right, text] : {Case{fixed, 0, INF_F, "ltu overflow"},
                                               {fixed, -INF_F, 5, "rtu overflow"},
                                               {half, -1e9L, 0, "ltu iMFFT overflow"},
                                               {half, 0, 1e9L, "rtu iMFFT overflow"},
                                               {whole, 5, INF_F, "ltu overflow"},
                                               {whole, -INF_F, 5, "rtu overflow"}}) {
    auto program = programOf<dbl_t>(opt);
    program.tu = 1;
    program.lrtu = {left, right};
    EXPECT_EQ(thrown([&] { program.normalForm(false); }), text);
  }
  Vexil<dbl_t> program;
  program.dt = vector<dbl_t>("[ -inf -inf ]");
  const auto tighten = [&](const char* values, dbl_t value) {
    return thrown([&] { program.tightenTargetBound(vector<dbl_t>(values), value); });
  };
  EXPECT_EQ(tighten("[ 1000000000 1 ]", 5), "sum overflow");
  EXPECT_EQ(tighten("[ 1 1 ]", 2e9L), "rt overflow");
}

}  // namespace
}  // namespace vexil
