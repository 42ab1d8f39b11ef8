// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include <functional>
#include <numeric>

#include "lattice/lattice.h"
#include "numbers/divisors.h"
#include "numbers/number_cases.h"
#include "support/pairs.h"
#include "support/random_programs.h"

namespace vexil {
namespace {

using testing::ExitedWithCode;

template <typename T>
class Embeddings : public testing::Test {
 protected:
  static Lattice<T, T> built(const OptText& opt, const std::string& form, bool equationsOnly) {
    Lattice<T, T> lattice;
    lattice.program.assign(programOf<T>(opt.text()));
    lattice.prepare(form[0] == 't', form[1] == 't');
    lattice.buildBase(equationsOnly);
    return lattice;
  }

  /// "width left" of the search for a soft width.
  static std::string widened(const T& R, const T& right, T left) {
    const T width = Lattice<T, T>::minimizeLcm(R, right, left);
    return words(width, left);
  }
};
TYPED_TEST_SUITE(Embeddings, NumberTypes);

TYPED_TEST(Embeddings, StartOverAtEachBuild) {
  using T = TypeParam;
  auto lattice =
      this->built({.Ag = "[ [1 1] ]", .bg = "[ 3 ]", .lx = "[ 0 0 ]", .rx = "[ 3 3 ]"}, "ff", true);
  const auto first = lattice.basis.B;
  lattice.params.scale.set(true);
  lattice.setWeight(1, T(100));
  lattice.basis.transformation()[1][2] = T(5);
  lattice.gramSchmidt.rowState[1] = 6;
  lattice.interval_tt = 3;
  lattice.buildBase(true);
  EXPECT_EQ(joined(lattice.basis.B), joined(first));
  EXPECT_EQ(joined(lattice.form.weights, lattice.embedding.r0), "[ 1 1 1 1 ][ 0 3 3 1 ]");
  EXPECT_TRUE(lattice.basis.transformation().isIdentity());
  EXPECT_EQ(lattice.gramSchmidt.rowState[1], 0);
  EXPECT_EQ(lattice.interval_tt, 100);
}

TYPED_TEST(Embeddings, WidenSoftBoundsToTheNextDivisor) {
  using T = TypeParam;
  EXPECT_EQ(this->widened(T(1000000007), T(5), T(0)), words(T(1000000007), T(-1000000002)));
  EXPECT_EQ(this->widened(T(12), T(2.5L), T(0)), words(T(3), T(-0.5L)));
  EXPECT_EQ(this->widened(T(12), T(4), T(4)), "0 4");
  for (long R = 1; R <= 60; ++R) {
    for (long d = 1; d <= 130; ++d) {
      // The definition: the best of all widths up to the first that divides R or is divided by it.
      long best = d;
      for (long e = d;; ++e) {
        if (std::lcm(R, e) < std::lcm(R, best)) best = e;
        if (R % e == 0 || e % R == 0) break;
      }
      ASSERT_EQ(this->widened(T(R), T(7), T(7 - d)), words(T(best), T(7 - best))) << R << ' ' << d;
    }
  }
}

TEST(Divisors, AreFoundAtOnce) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"1000000000000000000", "999999999999", "1000000000000"},
      {"999999999999999989", "7", "999999999999999989"},   // a prime
      {"999999874000003969", "8", "999999937"},            // the square of one
      {"897612484786617600", "1000000000", "1000099800"},  // more divisors than any below 10^18
      {"999999866000004473", "2", "999999929"},            // two great primes
      {"10000000000000000000000000000000000000000", "99999999999999999997",
       "100000000000000000000"},
      {"10000000000000000000000000000000000000000", "5000000000000000000000000000000000000000",
       "10000000000000000000000000000000000000000"},
      {"10000000000000000000000000000000000000000", "1000000000000000000000000000000000000000",
       "1250000000000000000000000000000000000000"},
  };
  for (const auto& [n, bound, expected] : cases)
    EXPECT_EQ(toString(nextDivisor(QQ(n).ganze, QQ(bound).ganze)), expected) << n << ' ' << bound;
  // Where both neighbourhoods are empty the number itself has to do.
  const ZZ n = QQ("10000000000000000000000000000000000000000").ganze;
  EXPECT_EQ(nextDivisor(n, QQ("54321000000000000000").ganze), n);
}

TYPED_TEST(Embeddings, RefuseVectorsThatAreNone) {
  using T = TypeParam;
  const OptText opt = {
      .Au = "[ [1 2] ]", .lu = "[ 3 ]", .ru = "[ inf ]", .lx = "[ 0 0 ]", .rx = "[ 4 4 ]"};
  auto lattice = this->built(opt, "ft", true);
  Vector<T> image;
  const Lattice<T, T> fresh;
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { fresh.lat2opt(image, image, true, true); },
       "lat2opt called with uninitialized check vectors!"},
      {[&] { fresh.opt2lat(image, image, true); },
       "opt2lat called with uninitialized check vectors!"},
      {[&] { lattice.lat2opt({}, image, true, true); }, "lat_vec == 0"},
      {[&] { lattice.lat2opt(vector<T>("[ 1 ]"), image, true, true); },
       "lat_vec doesn't match lattice dimension"},
      {[&] { lattice.opt2lat(vector<T>("[ 1 0 ]"), image, true); },
       "slack variable insonsistency, s should be >= 0"},
  };
  for (const auto& [operation, text] : cases) EXPECT_EXIT(operation(), ExitedWithCode(1), text);
  lattice.opt2lat(vector<T>("[ 1 3 ]"), image, false);
  Vector<T> point;
  lattice.lat2opt(image, point, false, true);
  EXPECT_EQ(joined(point), "[ 1 3 4 ]");
  const bool guarded = std::is_same_v<T, dbl_t>;
  const auto map = [&] { lattice.lat2opt(image, point, true, true); };
  lattice.lx[1] = T(2e9L);
  EXPECT_EQ(thrown(map), guarded ? "opt_vec overflow1" : "");
  image[1] = T(2e9L);
  EXPECT_EQ(thrown(map), guarded ? "lat_vec overflow" : "");
  testing::internal::CaptureStderr();
  lattice.writeEnabled = true;
  lattice.writeLatFile();
  lattice.writeSolFile(true);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "\n*** latFile is not set - lattice write not possible\n"
            "\n*** solFile is not set - solution write not possible\n");
}

}  // namespace
}  // namespace vexil
