// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include "lattice/lattice.h"
#include "numbers/number_cases.h"
#include "support/programs.h"

namespace vexil {
namespace {

using testing::ExitedWithCode;

template <typename T>
class NormalForm : public testing::Test {
 protected:
  static Lattice<T, dbl_t> prepared(const OptText& opt, bool force1, bool force2) {
    Lattice<T, dbl_t> lattice;
    lattice.program.assign(programOf<T>(opt.text()));
    lattice.prepare(force1, force2);
    return lattice;
  }
};
using NumberTypes = testing::Types<dbl_t, QQ>;
TYPED_TEST_SUITE(NormalForm, NumberTypes);

TYPED_TEST(NormalForm, MakesEquationsOfOneSidedAndFakeInequations) {
  auto program = this->prepared({.Au = "[ [1 2] [3 1] [1 -1] ]",
                                 .lu = "[ -inf 1 2 ]",
                                 .ru = "[ 5 inf 2 ]",
                                 .lx = "[ 0 0 ]",
                                 .rx = "[ 4 4 ]"},
                                false, true)
                     .program;
  EXPECT_EQ(words(program.Ag[1], program.Ag[2], program.Ag[3], program.bg),
            "[ 1 -1 0 0 ] [ -1 -2 -1 0 ] [ 3 1 0 -1 ] [ 2 -5 1 ]");
  EXPECT_EQ(words(program.sdim, program.Au.rowCount, program.rx), "2 0 [ 4 4 inf inf ]");
  program = this->prepared({.Au = "[ [1 0 0] [0 1 0] [0 0 1] ]",
                            .lu = "[ 1 2 3 ]",
                            .ru = "[ inf inf inf ]",
                            .lx = "[ 0 0 0 ]",
                            .rx = "[ 4 4 4 ]"},
                           false, true)
                .program;
  EXPECT_EQ(joined(program.bg), "[ 1 3 2 ]");
  EXPECT_EQ(joined(program.Ag[2]), "[ 0 0 1 0 -1 0 ]");
}

TYPED_TEST(NormalForm, MakesEquationsOfWishes) {
  const OptText opt = {.dt = "[ 7 3 ]", .At = "[ [1 2] [2 1] ]", .lx = "[ 0 0 ]", .rx = "[ 4 4 ]"};
  const auto program = this->prepared(opt, false, true).program;
  EXPECT_EQ(words(program.At[1], program.At[2]), "[ 0 0 0 0 1 1 ] [ 0 0 1 1 0 0 ]");
  EXPECT_EQ(words(program.Ag[1], program.Ag[2]), "[ 1 2 1 -1 0 0 ] [ 2 1 0 0 1 -1 ]");
  EXPECT_EQ(words(program.bg, program.dt, program.kt, program.tdim, program.starsPrepared),
            "[ 7 3 ] [ -inf -inf ] [ -inf -inf ] 4 1");
}

TYPED_TEST(NormalForm, BoundsTheTargetByKnownValues) {
  const OptText opt = {
      .dt = "[ -inf inf ] = [ 6 5 ]", .At = "[ [1 2] [2 1] ]", .lx = "[ 0 0 ]", .rx = "[ 4 4 ]"};
  auto program = this->prepared(opt, true, false).program;
  EXPECT_EQ(words(program.tu, program.lrtu, program.atu), "1 (-24, 1) [ -1 1 ]");
  EXPECT_EQ(this->prepared(opt, false, false).program.tu, 0);
  using T = TypeParam;
  EXPECT_FALSE(program.tightenTargetBound(vector<T>("[ 6 5 ]"), T(2)));
  EXPECT_TRUE(program.tightenTargetBound(vector<T>("[ 20 5 ]"), T(-30)));
  EXPECT_EQ(joined(program.lrtu), "(-31, -31)");
}

TYPED_TEST(NormalForm, RoundsBoundsInward) {
  const auto lattice = this->prepared({.Au = "[ [2 1] [0.5 0] ]",
                                       .lu = "[ 1/2 0.7 ]",
                                       .ru = "[ 11 inf ]",
                                       .lx = "[ 0 0 ]",
                                       .rx = "[ 9 9.5 ]"},
                                      false, false);
  EXPECT_EQ(words(lattice.Au[1], lattice.Au[2]), "[ 2 1 ] [ 1 0 ]");
  EXPECT_EQ(words(lattice.lu, lattice.ru, lattice.rx), "[ 1 2 ] [ 11 9 ] [ 9 9 ]");
}

TYPED_TEST(NormalForm, LeavesTracesOfWhatItDid) {
  auto lattice = this->prepared({.dt = "[ inf ]",
                                 .At = "[ [1 2 3 4] ]",
                                 .Ag = "[ [1 1 1 1] [2 2 2 2] ]",
                                 .bg = "[ 12 24 ]",
                                 .Au = "[ [1 1 0 1] ]",
                                 .lu = "[ 0 ]",
                                 .ru = "[ 9 ]",
                                 .lx = "[ -inf 2 1 -inf ]",
                                 .rx = "[ 5 2 2.5 inf ]",
                                 .dx = "[ 0 0 1 0 ]"},
                                false, false);
  EXPECT_EQ(words(lattice.At[1], lattice.Ag[1]), "[ -10 3 40 ] [ -10 1 10 ]");
  EXPECT_EQ(words(lattice.Ag.rowCount, lattice.bg, lattice.lu, lattice.ru),
            "1 [ 40 ] [ -7 ] [ 2 ]");
  EXPECT_EQ(words(lattice.lx, lattice.rx, lattice.atu),
            "[ -5 10 -inf ] [ inf 15 inf ] [ 10 -3 -40 ]");
  EXPECT_EQ(words(lattice.swappedVariables[1], lattice.fixedVariables[1].left,
                  lattice.fixedVariables[1].right),
            "1 2 2");
  EXPECT_EQ(joined(lattice.freedomDegrees), "[ 2,0,3 ]");
  EXPECT_EQ(joined(lattice.lrtu), "(-inf, inf)");
}

TYPED_TEST(NormalForm, NamesWhatCannotBeFulfilled) {
  const std::pair<OptText, const char*> cases[] = {
      {{.Au = "[ [1] ]", .lu = "[ inf ]", .ru = "[ inf ]", .lx = "[ 0 ]", .rx = "[ 1 ]"},
       "Unfulfillable infinite inequation detected --> NO SOLUTIONS!"},
      {{.Au = "[ [1] [2] ]", .lu = "[ 0 7 ]", .ru = "[ 1 8 ]", .lx = "[ 0 ]", .rx = "[ 3 ]"},
       "^p.opt: Inequality #2, this->lu = 7, this->ru = 6\n\\*\\*\\* FAIL: Unfulfillable "
       "inequality "
       "detected --> NO SOLUTIONS!"},
      {{.Ag = "[ [1] ]", .bg = "[ 5 ]", .lx = "[ 1 ]", .rx = "[ 3 ]"},
       "^p.opt: Equality #1, lg = 1, this->bg = 5, rg = 3\n\\*\\*\\* FAIL: Unfulfillable equality "
       "detected --> NO SOLUTIONS!"},
      {{.Ag = "[ [1] ]", .bg = "[ 0 ]", .lx = "[ 1 ]", .rx = "[ 3 ]"}, "Equality #1, lg = 1"},
  };
  for (const auto& [opt, text] : cases) {
    const bool whole = opt.lu == "[ inf ]";
    EXPECT_EXIT(this->prepared(opt, false, whole), ExitedWithCode(1), text);
  }
  auto program = programOf<TypeParam>(
      OptText{.dt = "[ 3 ]", .At = "[ [1] ]", .lx = "[ 0 ]", .rx = "[ 1 ]"}.text());
  EXPECT_EXIT((void)program.targetNorm(program.dt), ExitedWithCode(1),
              "This should not be the case anymore!");
  program.Au = matrix<TypeParam>("[ [1 2] ]");
  program.lu = vector<TypeParam>("[ 1 ]");
  program.ru = vector<TypeParam>("[ inf ]");
  EXPECT_EXIT(program.addSlackVariables(), ExitedWithCode(1),
              "Implement the insert at sdim position case!");
}

TEST(NormalFormGuards, NameTheValueThatOverflows) {
  const std::string big = "1000000000";
  const std::string fixed = "[ 3 0 ]";
  const auto equation = [](const std::string& Ag, const std::string& bg, const std::string& lx,
                           const std::string& rx) {
    return OptText{.Ag = Ag, .bg = bg, .lx = lx, .rx = rx};
  };
  const auto inequation = [](const std::string& Au, const std::string& lu, const std::string& ru,
                             const std::string& lx, const std::string& rx) {
    return OptText{.Au = Au, .lu = lu, .ru = ru, .lx = lx, .rx = rx};
  };
  const auto target = [](const std::string& At, const std::string& dt, const std::string& lx,
                         const std::string& rx, const std::string& dx = "") {
    return OptText{.dt = dt, .At = At, .lx = lx, .rx = rx, .dx = dx};
  };
  const auto minimum = [&](const std::string& At, const std::string& dx = "") {
    return target(At, "[ -inf ]", "[ -" + big + " ]", "[ " + big + " ]", dx);
  };
  const std::string half = "[ [0.5 " + big + "] ]";
  const std::string tiny = "[ [0.0000000001] ]";
  const struct {
    OptText opt;
    const char* left;  ///< bounds of the combined target row
    const char* right;
    const char* overflow;
  } cases[] = {
      {target("[ [" + big + "] [" + big + "] ]", "[ -inf -inf ]", "[ 0 ]", "[ 1 ]"), "", "", "atu"},
      {equation("[ [" + big + " 1] ]", "[ 0 ]", fixed, "[ 3 1 ]"), "", "", "bg"},
      {inequation("[ [" + big + " 1] ]", "[ 0 ]", "[ 5 ]", fixed, "[ 3 1 ]"), "", "", "lu"},
      {inequation("[ [" + big + " 1] ]", "[ -inf ]", "[ 5 ]", fixed, "[ 3 1 ]"), "", "", "ru"},
      {target("[ [" + big + " 1] ]", "[ -inf ]", fixed, "[ 3 1 ]"), "0", "inf", "ltu"},
      {target("[ [" + big + " 1] ]", "[ -inf ]", fixed, "[ 3 1 ]"), "-inf", "5", "rtu"},
      {minimum("[ [1] ]", "[ 10 ]"), "", "", "data"},
      {minimum("[ [1] ]", "[ 99999 ]"), "", "", "data"},
      {minimum("[ [1] ]", "[ 1 ]"), "", "", "rx"},
      {target("[ [1] ]", "[ -inf ]", "[ -" + big + " ]", "[ 0 ]", "[ 1 ]"), "", "", "lx"},
      {minimum(tiny), "", "", "iMFFT"},
      {target(half, "[ -inf ]", "[ 0 0 ]", "[ 1 1 ]"), "", "", "At iMFFT"},
      {target("[ [0.5] ]", "[ " + big + " ]", "[ 0 ]", "[ 1 ]"), "", "", "dt iMFFT"},
      {target("[ [0.5] ]", "[ -inf ] = [ " + big + " ]", "[ 0 ]", "[ 1 ]"), "", "", "kt iMFFT"},
      {minimum("[ [0.5] ]"), "-1000000000", "0", "ltu iMFFT"},
      {minimum("[ [0.5] ]"), "0", "1000000000", "rtu iMFFT"},
      {equation(tiny, "[ 0 ]", "[ 0 ]", "[ 1 ]"), "", "", "iMF overflow2"},
      {equation(half, "[ 0 ]", "[ 0 0 ]", "[ 1 1 ]"), "", "", "Ag iMF"},
      {equation("[ [0.5] ]", "[ " + big + " ]", "[ 0 ]", "[ 1 ]"), "", "", "bg iMF"},
      {inequation(tiny, "[ 0 ]", "[ 1 ]", "[ 0 ]", "[ 1 ]"), "", "", "iMF overflow3"},
      {inequation(half, "[ 0 ]", "[ 1 ]", "[ 0 0 ]", "[ 1 1 ]"), "", "", "Au iMF"},
      {inequation("[ [0.5] ]", "[ -" + big + " ]", "[ 1 ]", "[ 0 ]", "[ 1 ]"), "", "", "lu iMF"},
      {inequation("[ [0.5] ]", "[ 0 ]", "[ " + big + " ]", "[ 0 ]", "[ 1 ]"), "", "", "ru iMF"},
      {inequation("[ [" + big + "] ]", "[ 0 ]", "[ 1 ]", "[ 0 ]", "[ 5 ]"), "", "", "llu"},
      {equation("[ [1] ]", "[ " + big + " ]", "[ -" + big + " ]", "[ " + big + " ]"), "", "",
       "this->bg"},
      {inequation("[ [1] ]", "[ 5 ]", "[ inf ]", "[ -" + big + " ]", "[ " + big + " ]"), "", "",
       "this->lu"},
      {inequation("[ [1] ]", "[ -5 ]", "[ 5 ]", "[ -" + big + " ]", "[ " + big + " ]"), "", "",
       "this->ru"},
      {minimum("[ [1] ]"), "5", "inf", "ltu"},
      {minimum("[ [1] ]"), "-inf", "5", "rtu"},
  };
  for (const auto& [opt, left, right, overflow] : cases) {
    auto program = programOf<dbl_t>(opt.text());
    if (*left != '\0') {
      program.tu = 1;
      program.lrtu = {numberAs<dbl_t>(QQ(left)), numberAs<dbl_t>(QQ(right))};
    }
    const std::string text = overflow;
    const bool whole = text.find("overflow") != std::string::npos;
    EXPECT_EQ(thrown([&] { program.normalForm(false); }), whole ? text : text + " overflow");
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
