// Vexil - exact integer optimization on lattices.
//
// Random programs through generation and reduction: whatever comes of them, the lattice stays that
// of the program, and stars are points of it.
#include <map>

#include "numbers/number_cases.h"
#include "program/elimination.h"
#include "support/engine.h"
#include "support/programs.h"
#include "support/random_programs.h"

namespace vexil {
namespace {

template <typename Pair>
class Invariants : public testing::Test {};
TYPED_TEST_SUITE(Invariants, Pairs);

/// A generated lattice and what has to hold of it.
template <typename Pair>
struct Checked : Engine<Pair> {
  using T = typename Pair::T;
  using Engine<Pair>::Engine;
  using Engine<Pair>::lattice;

  /// The basis is its transformation of the saved one, whose rows solve the equations.
  void checkBasis() const {
    const Matrix<T> B = lattice.unweightedMatrix(lattice.basis.B);
    EXPECT_TRUE(lattice.applyTransformations(lattice.basis.B_save) == B);
    T determinant;
    EXPECT_TRUE(isUnimodular(lattice.basis.TT[1], determinant)) << lattice.basis.TT[1];
    const auto& [R, c] = std::tie(lattice.embedding.R, lattice.embedding.c);
    const std::int64_t n = lattice.rx.MN;
    for (const Vector<T>& row : B.elements()) {
      Vector<T> x;
      const T t = row[row.MN];
      for (std::int64_t i = row.MN - n; i < row.MN; ++i) {
        x.append((row[i] + R * t) / (T(2) * c[i]));
        EXPECT_TRUE(isZero<T>(x[x.MN] - NumberTraits<T>::round(x[x.MN]))) << row;
      }
      if (lattice.Ag.rowCount == 0) continue;
      Vector<T> right = lattice.bg;
      right *= t;
      EXPECT_TRUE(lattice.Ag * x == right) << row;
    }
  }

  /// One pass after the other, until the basis stays.
  void search() {
    lattice.writeEnabled = lattice.reportEnabled = true;
    for (int pass = 0; pass < 100; ++pass) {
      const auto before = lattice.basis.B;
      try {
        lattice.lll(1, 0, 0);
      } catch (const RestartException&) {
        continue;
      }
      checkBasis();
      if (before.equalsExactly(lattice.basis.B)) return;
    }
  }

  /// Judged exactly, since a sum at a fractional bound rounds. Those of the sol file too, but for
  /// the long ones of programs with extra variables and without targets.
  void checkStars() {
    const auto check = [this](const Vector<T>& x) {
      Star<QQ> star;
      convert(x, static_cast<Vector<QQ>&>(star), false);
      EXPECT_TRUE(this->exact.starIsValid(star)) << x;
    };
    for (const auto& star : lattice.found.stars.elements()) {
      Vector<T> x;
      EXPECT_EQ(lattice.lat2opt(star, x, true, false), 1) << star;
      check(x);
    }
    for (const Star<T>& x : lattice.program.solStars.elements()) {
      if (x.MN <= this->exact.lx.MN) check(x);
      EXPECT_TRUE(x.MN <= this->exact.lx.MN || this->exact.At.rowCount == 0) << x;
    }
  }
};

/// Whether a loss of precision came up.
template <typename Pair>
bool check(const RandomProgram& random, int round) {
  using T = typename Pair::T;
  const bool slacks = round % 4 == 1;
  try {
    Checked<Pair> engine(random.opt.text(), false, slacks);
    auto& lattice = engine.lattice;
    lattice.params.consistency.set(true);
    lattice.params.snorm.current = T(round % 3 == 0 ? 0 : 1000);
    engine.checkBasis();
    Vector<T> point, image, back;
    convert(random.point, point, false);
    lattice.opt2lat(point, image, false);
    EXPECT_EQ(lattice.lat2opt(-image, back, true, false), 1);
    EXPECT_TRUE(back == point) << back;
    EXPECT_TRUE(image >= lattice.embedding.l) << image << lattice.embedding.l;
    EXPECT_TRUE(image <= lattice.embedding.r) << image << lattice.embedding.r;
    EXPECT_TRUE(slacks || lattice.isLatticeMember(image)) << image;
    image[image.MN] = T{};
    EXPECT_EQ(lattice.lat2opt(image, back, true, false), -1);
    engine.search();
    engine.checkStars();
    // A replay keeps the best ones, or all of them without targets.
    const T bestNorm = lattice.found.bestTarget.targetNorm;
    const bool isAimed = engine.original.At.rowCount > 0;
    const auto kept = engine.starPoints(isAimed ? std::optional<T>(bestNorm) : std::nullopt);
    lattice.regenerate();
    const auto stars = engine.starPoints();
    const bool improved = lattice.found.bestTarget.targetNorm < bestNorm;
    EXPECT_TRUE(slacks || improved ||
                std::includes(stars.begin(), stars.end(), kept.begin(), kept.end()))
        << testing::PrintToString(kept) << testing::PrintToString(stars);
    return false;
  } catch (const PrecisionException& exception) {
    EXPECT_TRUE((std::is_same_v<T, dbl_t>)) << exception.what();
    return true;
  }
}

TYPED_TEST(Invariants, HoldForRandomPrograms) {
  std::map<int, int> ends;
  for (int round = 0; round < 40 && !this->HasFailure(); ++round) {
    const bool slacks = round % 4 == 1;  // their targets could not be evaluated
    const auto random = RandomProgram::make(2 + below(4), 1 + below(2), below(3), slacks,
                                            round % 4 == 2, slacks ? 0 : below(3));
    const auto end = support::inChild([&] {
      const bool threw = check<TypeParam>(random, round);
      return this->HasFailure() ? 3 : threw ? 2 : 0;
    });
    // The observed range of an unbounded variable is what the next lattice takes for its bounds,
    // also where no point is left in it; a slack row may have been multiplied.
    const auto says = [&](const char* text) { return end.err.find(text) != end.err.npos; };
    const bool known = says("sol bounds error") || says("ineq bounds error1") ||
                       says("Unfulfillable") || says("slack variable insonsistency");
    EXPECT_TRUE(end.status == 0 || end.status == 2 || (end.status == 1 && known))
        << random.opt.text() << end.out << end.err;
    ++ends[end.status];
  }
  EXPECT_GT(ends[0], 20) << testing::PrintToString(ends);
}

}  // namespace
}  // namespace vexil
