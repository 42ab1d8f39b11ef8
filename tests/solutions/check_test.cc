// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <random>

#include "solutions/check_bits.h"
#include "support/engine.h"

namespace vexil {
namespace {

using Points = std::set<std::string>;

template <typename Pair>
class Candidates : public testing::Test {};
TYPED_TEST_SUITE(Candidates, Pairs);

const std::string SUM_OF_TWO = "[ ] [ ] [ [ 1 1 ] ] [ 3 ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ 3 3 ]";
const std::string SHORTEST =
    "[ -inf ] [ [ 1 1 ] ] [ [ 1 2 ] ] [ 7 ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ 5 5 ]";

TYPED_TEST(Candidates, GetTheirWords) {
  using T = typename TypeParam::T;
  const auto judged = [](auto& engine, const Matrix<T>& rows) {
    std::string result;
    for (const auto& v : rows.elements())
      result += std::to_string(engine.lattice.checkSolution(v, false, 5, false)) + " ";
    return result;
  };
  Engine<TypeParam> sum(SUM_OF_TWO);
  EXPECT_EQ(judged(sum, matrix<T>("[ [ -1 1 -1 ] [ -1 1 1 ] [ 1 -1 1 ] [ 0 1 1 ] [ 3 -3 1 ] "
                                  "[ 5 -5 1 ] [ 7 -7 1 ] ]")),
            "14 14 14 1 14 0 0 ");
  EXPECT_EQ(sum.starPoints(), (Points{"[ 2 1 ]", "[ 1 2 ]", "[ 3 0 ]"}));
  EXPECT_EQ(joined(sum.lattice.found.bestHeuristic), "[ 5 -5 1 ]");
  sum.lattice.params.sol.current = 4;
  EXPECT_EQ(judged(sum, matrix<T>("[ [ -3 3 1 ] ]")), "38 ");
  EXPECT_EQ(sum.lattice.found.stars[4].time, 5);
  // A row of a weighted basis comes with its weights.
  sum.lattice.params.scale.current = true;
  sum.lattice.setWeight(1, T(10));
  sum.lattice.setWeight(3, T(-1));
  EXPECT_EQ(sum.lattice.checkSolution(sum.lattice.basis.B[1], true, 0, false), 38);

  Engine<TypeParam> shortest(SHORTEST);
  shortest.lattice.params.snorm.current = T{};
  Matrix<T> points;
  for (const char* const x : {"[ 3 2 ]", "[ 3 2 ]", "[ 5 1 ]", "[ 1 3 ]", "[ -1 4 ]"})
    points.appendRow(shortest.latticeVector(vector<T>(x)));
  points[4].negate();
  EXPECT_EQ(judged(shortest, points), "30 2 2 30 0 ");
  const auto& best = shortest.lattice.found.bestTarget;
  EXPECT_EQ(words(best.targetNorm, best.targetValue, shortest.lattice.program.lrtu,
                  shortest.lattice.program.tu),
            "4 4 (-5, 3) 1");
}

/// All points of a box and one step around it, through the judgement, against their definition.
template <typename Pair>
class Box {
 public:
  using T = typename Pair::T;

  explicit Box(const std::string& opt) : engine_(opt) {
    engine_.lattice.params.snorm.current = T{};
    const Vexil<T>& program = engine_.original;
    x_.resize(program.lx.MN, false);
    visit(1);
  }

  void check() {
    for (const auto& [point, vector] : vectors_) {
      const int word = engine_.lattice.checkSolution(vector, false, 0, false);
      EXPECT_EQ(word, expectedWord(parsed<Star<T>>(point))) << point << vector;
    }
    EXPECT_EQ(engine_.starPoints(), stars_);
    EXPECT_EQ(words(engine_.lattice.program.lx, engine_.lattice.program.rx), words(lx_, rx_));
    engine_.lattice.regenerate();
    // A replay starts from the best one: whoever is worse is dropped.
    if (engine_.original.At.rowCount > 0) stars_ = best_;
    EXPECT_EQ(engine_.starPoints(), stars_);
    EXPECT_FALSE(engine_.lattice.run.restoring);
  }

 private:
  void visit(std::int64_t i) {
    const Vexil<T>& program = engine_.original;
    if (i > x_.MN) {
      vectors_.emplace_back(joined(x_), engine_.latticeVector(x_));
      return;
    }
    const bool isFixed = program.lx[i] == program.rx[i];
    const T left = isFixed ? program.lx[i] : std::max<T>(program.lx[i] - T(1), T(-4));
    const T right = isFixed ? program.rx[i] : std::min<T>(program.rx[i] + T(1), T(4));
    for (x_[i] = left; x_[i] <= right; x_[i] += T(1)) visit(i + 1);
  }

  /// Also keeps account of the range seen and of the best norm.
  int expectedWord(Star<T> x) {
    const Vexil<T>& program = engine_.original;
    const std::string text = joined(x);
    if (program.Ag.rowCount > 0 && !(program.Ag * x == program.bg)) return OUTSIDE_LATTICE;
    if (!program.starIsValid(x)) return 0;
    if (!stars_.empty() && program.At.rowCount > 0) {
      if (x.targetNorm > bestNorm_) return WITHIN_BOUNDS;
    }
    const bool improves = program.At.rowCount > 0 && (stars_.empty() || x.targetNorm < bestNorm_);
    if (improves) {
      bestNorm_ = x.targetNorm;
      best_.clear();
    }
    best_.insert(text);
    stars_.insert(text);
    return WITHIN_BOUNDS | EVALUATED | STAR | (widens(x) || improves ? IMPROVED : 0);
  }

  bool widens(const Vector<T>& x) {
    const T infinity = NumberTraits<T>::infinity();
    bool result = false;
    const auto widen = [&](bool isOpen, bool isBeyond, T& bound, const T& value) {
      if (!isOpen || !(isBeyond || NumberTraits<T>::abs(bound) == infinity)) return;
      bound = value;
      result = true;
    };
    for (std::int64_t i = 1; i <= x.MN; ++i) {
      widen(engine_.original.lx[i] == -infinity, x[i] < lx_[i], lx_[i], x[i]);
      widen(engine_.original.rx[i] == infinity, x[i] > rx_[i], rx_[i], x[i]);
    }
    return result;
  }

  Engine<Pair> engine_;
  Vector<T> x_;
  std::vector<std::pair<std::string, Vector<T>>> vectors_;
  Points stars_;
  Points best_;
  T bestNorm_{};
  Vector<T> lx_ = engine_.lattice.program.lx;  ///< the range seen; generation may have moved it
  Vector<T> rx_ = engine_.lattice.program.rx;
};

TYPED_TEST(Candidates, OfABoxAreJudgedByDefinition) {
  for (const char* const opt :
       {"[ ] [ ] [ [ 1 2 -1 ] ] [ 3 ] [ [ 1 1 1 ] [ 2 0 -1 ] ] [ 1 -4 ] [ 5 inf ] [ 0 0 0 ] "
        "[ -1 0 0 ] [ 2 3 3 ]",
        "[ ] [ ] [ ] [ ] [ [ 3 -2 ] ] [ 0.5 ] [ 3.5 ] [ 0 0 ] [ -2 -2 ] [ 2 3 ]",
        "[ ] [ ] [ [ 2 3 0 ] [ 0 0 1 ] ] [ 6 1 ] [ ] [ ] [ ] [ 0 0 0 ] [ -inf -inf 1 ] "
        "[ 3 inf 1 ]",
        "[ ] [ ] [ [ 1 1 1 ] ] [ 2 ] [ ] [ ] [ ] [ 0 0 0 ] [ 0 -inf 0 ] [ inf 1 2 ]",
        "[ -inf inf ] [ [ 2 1 0 ] [ 0 1 1 ] ] [ [ 1 1 1 ] ] [ 4 ] [ [ 1 -1 0 ] ] [ -2 ] [ 2 ] "
        "[ 0 0 0 ] [ 0 0 0 ] [ 3 3 3 ]"}) {
    SCOPED_TRACE(opt);
    Box<TypeParam>(opt).check();
  }
}

TYPED_TEST(Candidates, ThatFailAreMeasured) {
  using T = typename TypeParam::T;
  Engine<TypeParam> engine("[ ] [ ] [ ] [ ] [ [ 1 1 ] ] [ 0 ] [ 4 ] [ 0 0 ] [ 0 0 ] [ 4 4 ]");
  auto& lattice = engine.lattice;
  const auto measured = [&](auto& on, const Vector<T>& v, bool withTargets) {
    std::string text;
    const auto list = on.violationList(v, withTargets, false);
    for (const auto& entry : list.elements()) text += words(entry.left, entry.right) + " ";
    const auto d = on.computeDeviation(v, false);
    return text + words('|', int{d.kind}, d.violations, d.maxViolationIndex, d.maxViolation,
                        d.sumViolation, d.euclidNorm, d.inBounds, d.targetNorm);
  };
  const auto at = [&](const char* x) { return engine.latticeVector(vector<T>(x)); };
  EXPECT_EQ(measured(lattice, at("[ 1 2 ]"), true), "| 2 0 0 0 0 9 0 inf");
  EXPECT_EQ(measured(lattice, at("[ 6 -1 ]"), true), "2 4 3 2 1 2 | 2 3 2 4 8 137 0 inf");
  EXPECT_EQ(measured(lattice, vector<T>("[ 0 2 -2 0 ]"), true), "4 1 | 1 1 4 1 1 8 0 inf");
  // Collected are those that are not too long; the best one is kept for itself.
  for (const char* const x : {"[ 9 9 ]", "[ 5 0 ]", "[ 5 5 ]", "[ -1 2 ]"})
    EXPECT_EQ(lattice.checkSolution(at(x), false, 7, false), 0);
  lattice.checkSolution(vector<T>("[ 0 2 -2 0 ]"), false, 0, false);
  EXPECT_EQ(words(lattice.found.bestHeuristic, lattice.found.bestHeuristic.time),
            words(at("[ -1 2 ]"), 7));
  EXPECT_EQ(lattice.found.inhomogeneousVectors.count, 2);
  EXPECT_EQ(lattice.found.homogeneousVectors.count, 1);

  Engine<TypeParam> shortest(SHORTEST);
  shortest.lattice.checkSolution(shortest.latticeVector(vector<T>("[ 1 3 ]")), false, 0, false);
  shortest.lattice.regenerate();
  const auto worse = shortest.latticeVector(vector<T>("[ 5 1 ]"));
  EXPECT_EQ(measured(shortest.lattice, worse, true).substr(0, 9), "| 2 0 0 0");
  EXPECT_EQ(measured(shortest.lattice, worse, false).substr(0, 4), "1 3 ");
  EXPECT_EQ(shortest.lattice.computeDeviation(worse, false).targetNorm, typename TypeParam::U(6));
}

/// Rows are passed over at a glance only where the whole judgement would change nothing.
TYPED_TEST(Candidates, OfTheBasisFareAsOthersDo) {
  using T = typename TypeParam::T;
  std::mt19937 random(3);
  std::uniform_int_distribution<int> factor(-3, 3);
  for (const std::string& opt :
       {SHORTEST, std::string("[ ] [ ] [ [ 1 2 3 4 ] ] [ 12 ] [ [ 1 1 0 -1 ] ] [ -1 ] [ 2 ] "
                              "[ 0 0 0 0 ] [ 0 0 0 0 ] [ 3 3 1 2 ]")}) {
    for (const int settings : {0, 1, 2, 3, 4}) {
      Engine<TypeParam> engine(opt);
      auto& rows = engine.lattice;
      rows.params.pair.current = settings > 0;
      rows.params.sieve.current = settings == 2;
      rows.params.scale.current = settings == 3;
      rows.params.translate.current = settings == 4;
      rows.setWeight(1, T(3));
      rows.found.clear();
      rows.found.homogeneousVectors.setCapacity(3);
      rows.found.inhomogeneousVectors.setCapacity(2);
      auto whole = rows;
      const Matrix<T> basis = rows.basis.B;
      const auto state = [](auto& lattice, auto act) {
        const auto hits = lattice.run.heuristicHits + lattice.run.targetHits + lattice.run.starHits;
        act();
        std::string text =
            words(lattice.run.heuristicHits + lattice.run.targetHits + lattice.run.starHits - hits,
                  lattice.found.bestHeuristic, lattice.found.bestTarget, lattice.found.stars.MN);
        for (auto* const set :
             {&lattice.found.homogeneousVectors, &lattice.found.inhomogeneousVectors}) {
          for (auto* p = set->head; p != nullptr; p = p->next) text += joined(p->element);
        }
        return text;
      };
      for (int round = 0; round < 100; ++round) {
        Vector<T> v;
        v.resize(basis.columnCount, false);
        v.fill(T{});
        for (const auto& row : basis.elements()) v.subtractMultiple(T(factor(random) / 2), row);
        rows.basis.B = basis;
        rows.membership.clear();
        EXPECT_TRUE(rows.isLatticeMember(rows.unweightedRow(v)));
        rows.basis.B[1] = v;
        rows.gramSchmidt.clearRowState();
        EXPECT_EQ(state(rows, [&] { rows.checkRow(1); }),
                  state(whole, [&] { whole.checkSolution(v, true, 0, false); }))
            << settings << v;
      }
    }
  }
}

TYPED_TEST(Candidates, SurviveABackupInEachForm) {
  using T = typename TypeParam::T;
  Engine<TypeParam> engine(SUM_OF_TWO);
  auto& lattice = engine.lattice;
  for (const char* const x : {"[ 2 1 ]", "[ 4 -1 ]", "[ 0 3 ]", "[ 5 -2 ]"})
    lattice.checkSolution(engine.latticeVector(vector<T>(x)), false, 3, false);
  lattice.program.solStars.resize(1, false);
  const auto state = [&] {
    const auto& found = lattice.found;
    return words(found.bestHeuristic, found.bestHeuristic.time, found.stars.MN, found.stars[2],
                 found.stars[2].time, found.inhomogeneousVectors.count, lattice.program.solStars.MN,
                 lattice.run.starHits);
  };
  const std::string before = state();
  Array<Star<T>> stars;
  Array<TimeVector<T>> vectors;
  typename Lattice<T, typename TypeParam::U>::Collection homogeneous, inhomogeneous;
  const auto backup = [&](int mode, std::int64_t cut) {
    stars.clear();
    vectors.clear();
    homogeneous.clear();
    inhomogeneous.clear();
    lattice.backupState(static_cast<std::int8_t>(mode), stars, vectors, homogeneous, inhomogeneous,
                        cut);
  };
  for (const int mode : {0, 1, 2, 3}) {
    backup(mode, 0);
    EXPECT_EQ(words(vectors.MN, stars.MN, lattice.found.stars.MN, lattice.program.solStars.MN,
                    lattice.found.bestHeuristic.MN, lattice.found.inhomogeneousVectors.count),
              "3 1 0 0 0 0");
    lattice.restoreState(stars, vectors, homogeneous, inhomogeneous,
                         static_cast<std::int8_t>(mode));
    EXPECT_EQ(state(), before) << mode;
  }
  lattice.resize(lattice.basis.latRows, 0, false);
  EXPECT_EQ(state(), before);
  lattice.found.stars.clear();
  // A head goes only where it is zero.
  for (const auto& [row, rest] : {std::pair("[ 0 0 7 1 ]", "[ 7 1 ]"), {"[ 0 1 7 1 ]", ""}}) {
    static_cast<Vector<T>&>(lattice.found.bestHeuristic) = vector<T>(row);
    backup(1, 2);
    EXPECT_EQ(vectors.MN == 0 ? "" : joined(vectors[1]), rest);
  }
}

TYPED_TEST(Candidates, EndOrRestartTheRun) {
  using T = typename TypeParam::T;
  Engine<TypeParam> engine("[ ] [ ] [ [ 1 -1 ] ] [ 1 ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ inf inf ]");
  auto& lattice = engine.lattice;
  const auto sol = engine.folder / "x.sol";
  lattice.writeEnabled = lattice.reportEnabled = true;
  const auto first = lattice.run.iterations;
  EXPECT_THROW(lattice.checkSolution(engine.latticeVector(vector<T>("[ 5 4 ]")), false, 9, false),
               RestartException);
  EXPECT_EQ(lattice.run.iterations, first + 1);
  EXPECT_EQ(joined(lattice.program.rx), "[ 5 4 ]");
  EXPECT_EQ(engine.starPoints(), (Points{"[ 5 4 ]"}));
  EXPECT_EQ(support::readFile(sol),
            "[ 5 4 ] | 0 | [ ] | 0 | 9 | " + joined(lattice.params) + " | 2.2.3\n");
  EXPECT_TRUE(support::readFile(engine.folder / "x.lat"));
  EXPECT_TRUE(lattice.writeEnabled);
  EXPECT_TRUE(lattice.reportEnabled);
  const auto next = engine.latticeVector(vector<T>("[ 6 5 ]"));
  lattice.params.sol.current = 2;
  EXPECT_EXIT(lattice.checkSolution(next, false, 0, false), testing::KilledBySignal(SIGTERM), "");
  lattice.params.sol.current = 0;
  lattice.params.iters.current = lattice.run.iterations;
  EXPECT_EXIT(lattice.checkSolution(next, false, 0, false), testing::KilledBySignal(SIGTERM), "");
  lattice.params.cellsEnabled.current = true;
  testing::internal::CaptureStdout();
  lattice.handleRestart(true);
  EXPECT_NE(testing::internal::GetCapturedStdout().find("Solutions found: 1\n"), std::string::npos);
  EXPECT_EQ((*lattice.cells)[MainMutexVariable::RUN_STATE].get(), "stopped");
  lattice.reportEnabled = false;
  EXPECT_EQ(lattice.checkSolution(next, false, 0, false), 30);
  EXPECT_EQ((*lattice.cells)[MainMutexVariable::STAR_COUNT].get(), "2");
  EXPECT_EQ((*lattice.cells)[MainMutexVariable::NEWEST_STAR].get(), joined(next));
}

TYPED_TEST(Candidates, OfTargetsBecomeStarsWithinTheLimits) {
  using T = typename TypeParam::T;
  Engine<TypeParam> engine(SHORTEST);
  const T off = -NumberTraits<T>::infinity();
  // Both limits, -99 standing for none, the norms, whether all targets are finite, the answer.
  for (const auto& [tnorm, snorm, target, slack, allFinite, accepted] :
       {std::tuple(-99, 0, 9, 0, false, true),
        {-99, 0, 9, 1, false, false},
        {-99, -1, 9, 0, false, false},
        {-99, -1, 9, 0, true, true},
        {5, -99, 5, 9, false, true},
        {5, -99, 6, 0, false, false},
        {5, 2, 5, 2, false, true},
        {5, 2, 6, 2, false, false},
        {5, 2, 5, 3, true, false},
        {-99, -99, 0, 0, false, false}}) {
    engine.lattice.params.tnorm.current = tnorm == -99 ? off : T(tnorm);
    engine.lattice.params.snorm.current = snorm == -99 ? off : T(snorm);
    engine.lattice.program.allTargetsFinite = allFinite;
    TargetVector<T> vector;
    vector.targetNorm = T(target);
    vector.slackNorm = T(slack);
    EXPECT_EQ(engine.lattice.isAcceptedStar(vector), accepted) << tnorm << " " << snorm;
  }
}

TYPED_TEST(Candidates, FailWithTheirTexts) {
  using T = typename TypeParam::T;
  Engine<TypeParam> engine(SHORTEST);
  auto& lattice = engine.lattice;
  const auto v = engine.latticeVector(vector<T>("[ 3 2 ]"));
  auto twice = v;
  twice += v;
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { lattice.embedding.checkMode = 0; },
       "checkSolution: You should set the check vectors!"},
      {[&] { lattice.embedding.r *= T(9); }, "is not within lattice1"},
      {[&] { lattice.tu = 1, lattice.embedding.r *= T(9); }, "is not within lattice2"},
      {[&] { lattice.found.stars.resize(1, false), lattice.found.stars[1].append(T(1)); },
       "lat_vec doesn't match lattice dimension"},
      {[&] {
         lattice.found.stars.resize(1, false);
         static_cast<Vector<T>&>(lattice.found.stars[1]) = twice;
       },
       "sol2star: lat2opt can not compute x_opt"}};
  for (const auto& [spoiler, text] : cases) {
    const auto& spoil = spoiler;
    const auto act = [&] {
      spoil();
      lattice.checkSolution(twice, false, 0, false);
      lattice.sol2star();
    };
    EXPECT_EXIT(act(), testing::ExitedWithCode(1), text);
  }
  lattice.checkSolution(v, false, 0, false);
  lattice.program.lrtu.right = NumberTraits<T>::infinity();
  lattice.found.bestTarget[1] += T(2);
  EXPECT_EXIT(lattice.checkSolution(v, false, 0, true), testing::ExitedWithCode(1),
              "This case should not happen between a backup / restore!");
}

}  // namespace
}  // namespace vexil
