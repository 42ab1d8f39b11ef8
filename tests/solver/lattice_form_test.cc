// Vexil - exact integer optimization on lattices.
//
// From the program to its forms on the lattice, against the points of the program one by one.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>

#include "reduction/floating_lll.h"
#include "solver/basis.h"
#include "solver/conversion.h"
#include "solver/kernel.h"
#include "solver/presolve.h"
#include "support/random_program.h"

namespace vexil::solver {
namespace {

using support::Point;
using support::RandomProgram;

struct Never : StopToken {
  bool stopRequested() override { return false; }
};
Never never;

ZZ product(const std::vector<ZZ>& a, const std::vector<ZZ>& X) {
  ZZ sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum = sum + a[i] * X[i];
  return sum;
}

bool holds(const Side& lower, const ZZ& value, const Side& upper) {
  return !(lower.finite && value < lower.value) && !(upper.finite && value > upper.value);
}

bool contains(const Model& model, const std::vector<ZZ>& X) {
  for (std::size_t i = 0; i < model.n; ++i) {
    if (!holds(model.lower[i], X[i], model.upper[i])) return false;
  }
  for (const ModelRow& row : model.rows) {
    if (!holds(row.lower, product(row.a, X), row.upper)) return false;
  }
  return true;
}

ZZ scaledNorm(const Model& model, const std::vector<ZZ>& X) {
  ZZ sum = model.constant + product(model.c, X);
  for (const ModelGoal& goal : model.goals) sum = sum + abs(product(goal.g, X) - goal.wish);
  return sum;
}

std::vector<ZZ> bigPoint(const Point& X) {
  std::vector<ZZ> result;
  for (const std::int64_t x : X) result.push_back(static_cast<long long>(x));
  return result;
}

/// All points of the box, and some beyond it on every side.
void forEachPoint(const RandomProgram& program, const std::function<void(const Point&)>& visit) {
  Point X = program.lower;
  for (;;) {
    visit(X);
    std::size_t i = 0;
    while (i < X.size() && X[i] == program.upper[i]) {
      X[i] = program.lower[i];
      ++i;
    }
    if (i == X.size()) break;
    ++X[i];
  }
  for (std::size_t i = 0; i < X.size(); ++i) {
    for (const std::int64_t step : {program.lower[i] - 1, program.upper[i] + 1}) {
      Point outside = X;
      outside[i] = step;
      visit(outside);
    }
  }
}

TEST(Model, HasThePointsAndNormsOfTheProgram) {
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE(RandomProgram(seed).optText());
    const RandomProgram random(seed);
    const Vexil<QQ> program = random.program();
    const Model model = makeModel(program);
    Model tight = model;
    const char* const contradiction = presolve(tight, never);
    forEachPoint(random, [&](const Point& X) {
      const std::vector<ZZ> big = bigPoint(X);
      const bool isPoint = random.contains(X);
      ASSERT_EQ(contains(model, big), isPoint);
      ASSERT_EQ(contradiction == nullptr && contains(tight, big), isPoint);
      if (!isPoint) return;
      const QQ norm(ZZ(static_cast<long long>(random.norm(X))), RandomProgram::VALUE_UNIT);
      ASSERT_EQ(QQ(scaledNorm(model, big), model.scale), norm);
      ASSERT_EQ(QQ(scaledNorm(tight, big), tight.scale), norm);
    });
    const Vector<QQ> corner = programPoint(model, bigPoint(random.upper));
    ASSERT_EQ(isPointOf(program, corner), random.contains(random.upper));
  }
}

/// The values of the model at a point of the lattice, as `formSystem` promises them.
template <typename Z>
void expectForms(const Model& model, const LatticeBasis& basis, const FormSystem<Z>& system,
                 const std::vector<long>& lambda) {
  std::vector<ZZ> X = basis.x0;
  ZZ objective = toZZ(system.objectiveOffset);
  for (std::size_t k = 0; k < system.dimension; ++k) {
    for (std::size_t i = 0; i < model.n; ++i) X[i] = X[i] + ZZ(lambda[k]) * basis.K[k][i];
    objective = objective + ZZ(lambda[k]) * toZZ(system.objective[k]);
  }
  for (const ModelRow& row : model.rows) {
    if (row.isEquation()) {
      EXPECT_EQ(product(row.a, X), row.lower.value);
    }
  }
  for (std::size_t f = 0; f < system.count; ++f) {
    ZZ value = toZZ(system.offset[f]);
    for (std::size_t k = 0; k < system.dimension; ++k) {
      value = value + ZZ(lambda[k]) * toZZ(system.entry(k, f));
    }
    const std::size_t source = system.source[f];
    if (system.kind[f] == FormKind::Variable) {
      EXPECT_EQ(value, X[source]);
    }
    if (system.kind[f] == FormKind::Row) {
      EXPECT_EQ(value, product(model.rows[source].a, X));
    }
    if (system.kind[f] == FormKind::Goal) {
      EXPECT_EQ(value, product(model.goals[source].g, X) - model.goals[source].wish);
      objective = objective + abs(value);
    }
    const bool isInside = value >= toZZ(system.lower[f]) && value <= toZZ(system.upper[f]);
    if (contains(model, X)) {
      EXPECT_TRUE(isInside);
    }
  }
  if (system.hasObjective) {
    EXPECT_EQ(objective, scaledNorm(model, X));
  }
}

/// True if X - x0 is an integral combination of the rows: Babai's plane finds it exactly.
bool isOnLattice(const LatticeBasis& basis, const std::vector<ZZ>& X) {
  WeightedRows rows;
  rows.weights.assign(X.size(), 1);
  for (const std::vector<ZZ>& row : basis.K) rows.rows.push_back(toIntegers(row));
  std::vector<Integer> rest = toIntegers(X);
  for (std::size_t i = 0; i < X.size(); ++i) rest[i] -= Integer(basis.x0[i]);
  WorkMeter meter;
  reducePoint(rest, rows, meter);
  return std::all_of(rest.begin(), rest.end(), [](const Integer& x) { return x.isZero(); });
}

TEST(Basis, HoldsEveryPointOfTheEquationsAndNothingElse) {
  std::mt19937_64 generator(5);
  int narrow = 0;
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    const RandomProgram random(seed);
    SCOPED_TRACE(random.optText());
    Model model = makeModel(random.program());
    if (presolve(model, never) != nullptr) continue;
    LatticeBasis basis = kernel(model, never);
    const std::vector<Point> points = random.points();
    ASSERT_TRUE(basis.contradiction == nullptr || points.empty()) << basis.contradiction;
    if (basis.contradiction != nullptr) continue;
    for (const int blockSize : {0, 2, 4}) {
      if (blockSize > 0) reduce(basis, model, blockSize, seed % 2 == 0, never);
      for (const Point& X : points) ASSERT_TRUE(isOnLattice(basis, bigPoint(X)));
    }
    for (int t = 0; t < 5; ++t) {
      std::vector<long> lambda(basis.K.size());
      for (long& x : lambda) x = static_cast<long>(generator() % 5) - 2;
      expectForms(model, basis, formSystem<ZZ>(model, basis), lambda);
      if (!isNarrowSystem(model, basis)) continue;
      ++narrow;
      expectForms(model, basis, formSystem<std::int64_t>(model, basis), lambda);
    }
  }
  EXPECT_GT(narrow, 500);
}

/// A program without targets over n variables from 0 to `upper`.
Model boxModel(const std::vector<std::vector<ZZ>>& equations, const std::vector<ZZ>& rightHandSides,
               const ZZ& upper) {
  Model model;
  model.n = equations[0].size();
  model.decimals.assign(model.n, 0);
  model.lower.assign(model.n, {true, false, 0});
  model.upper.assign(model.n, {true, false, upper});
  model.c.assign(model.n, 0);
  for (std::size_t i = 0; i < equations.size(); ++i) {
    const Side side{true, false, rightHandSides[i]};
    model.rows.push_back({equations[i], side, side});
  }
  return model;
}

TEST(Kernel, TellsWhyThereIsNoPoint) {
  const Model multiple = boxModel({{6, 10, 15}, {6, 10, 15}}, {30, 31}, 9);
  EXPECT_STREQ(kernel(multiple, never).contradiction, "equations contradict each other");
  const Model parity = boxModel({{1, 1, 0}, {1, -1, 0}}, {1, 0}, 9);
  EXPECT_STREQ(kernel(parity, never).contradiction, "the equations have no integral point");
  EXPECT_EQ(kernel(boxModel({{6, 10, 15}, {12, 20, 30}}, {31, 62}, 9), never).contradiction,
            nullptr);
}

TEST(Kernel, StaysShortUnderLongCoefficients) {
  constexpr std::size_t N = 40;
  std::mt19937_64 generator(3);
  std::vector<ZZ> row;
  for (std::size_t i = 0; i < N; ++i) {
    std::string digits = "1";
    while (digits.size() < 40) digits += static_cast<char>('0' + generator() % 10);
    ZZ number;
    fromString(number, digits);
    row.push_back(number);
  }
  const Model model = boxModel({row}, {row[3] + row[30]}, 1);
  LatticeBasis basis = kernel(model, never);
  reduce(basis, model, 20, false, never);
  ASSERT_EQ(basis.K.size(), N - 1);
  EXPECT_EQ(product(row, basis.x0), row[3] + row[30]);
  for (const std::vector<ZZ>& vector : basis.K) {
    EXPECT_EQ(product(row, vector), 0);
    EXPECT_LE(product(vector, vector), 2000);  // 10^40 spread over 39 rows makes some 11 of length
  }
  EXPECT_TRUE(isNarrowSystem(model, basis));
}

TEST(Presolve, BoundsVariablesByRowsAndMarksWhatItPutsIn) {
  Model model = boxModel({{2, 0, 0, 0}, {0, 1, 1, 0}}, {0, 7}, 5);
  model.rows[0].upper.value = 9;  // 0 <= 2 X_0 <= 9
  model.upper[0].finite = model.upper[2].finite = false;
  model.lower[3].finite = model.upper[3].finite = false;
  ASSERT_EQ(presolve(model, never), nullptr);
  EXPECT_EQ(model.upper[0].value, 4);
  EXPECT_EQ(model.upper[2].value, 7);
  EXPECT_FALSE(model.upper[2].artificial);
  EXPECT_EQ(model.lower[2].value, 2);
  EXPECT_TRUE(model.lower[3].artificial);
  EXPECT_EQ(model.upper[3].value, 1 << 20);
  EXPECT_EQ(model.rows.size(), 1U);  // the first row is the range of its variable

  Model creeping = boxModel({{1, -1, 0}}, {1}, 1'000'000);
  creeping.rows.push_back({{-1, 1, 0}, {true, false, 0}, {}});
  EXPECT_STREQ(presolve(creeping, never), nullptr);  // not before the rounds are over
  EXPECT_STREQ(kernel(creeping, never).contradiction, nullptr);
}

struct Always : StopToken {
  bool stopRequested() override { return true; }
};

TEST(Kernel, StopsWhenTold) {
  Always stop;
  std::vector<ZZ> row;
  for (long i = 0; i < 100; ++i) row.push_back(ZZ(1'000'000'000'007L) * ZZ(i * i + 3) + ZZ(i));
  const Model model = boxModel({row}, {row[0]}, 1);
  EXPECT_THROW(static_cast<void>(kernel(model, stop)), Stopped);
}

}  // namespace
}  // namespace vexil::solver
