// Vexil - exact integer optimization on lattices.
//
// Lattice reduction with the check of every visited row, on bases of integer relations; side by
// side with fplll where that is installed.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <random>
#include <vector>

#include "lattice/lattice.h"

#ifdef VEXIL_HAVE_FPLLL
#include <fplll.h>
#endif

namespace vexil {
namespace {

using Numbers = std::vector<long>;

constexpr int SEEDS = 10;
constexpr int BITS = 28;

/// The processor time of a step.
template <typename Step>
double seconds(Step step) {
  const std::clock_t start = std::clock();
  step();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// The numbers whose integer relations are sought.
Numbers relationNumbers(std::int64_t n, unsigned seed) {
  std::mt19937_64 random(seed);
  std::uniform_int_distribution<long> number(1L << (BITS - 1), (1L << BITS) - 1);
  Numbers result(static_cast<std::size_t>(n));
  for (long& x : result) x = number(random);
  return result;
}

/// The basis with one of the numbers in front of each unit vector, bounded as the lattice of an
/// equation over variables in 0..2 is.
template <typename T, typename U>
Lattice<T, U> relationLattice(const Numbers& numbers) {
  const auto n = static_cast<std::int64_t>(numbers.size());
  Matrix<T> base;
  base.setSize(n, n + 1);
  for (std::int64_t i = 1; i <= n; ++i) {
    base[i].fill(T{});
    base[i][1] = T(numbers[static_cast<std::size_t>(i - 1)]);
    base[i][i + 1] = T(1);
  }
  Lattice<T, U> lattice(&base);
  const auto setAll = [](Vector<T>& vector, std::int64_t count, long value) {
    vector.resize(count, false);
    vector.fill(T(value));
  };
  setAll(lattice.lx, n - 1, 0);
  setAll(lattice.rx, n - 1, 2);
  setAll(lattice.dx, n - 1, 0);
  lattice.freedomDegrees.resize(n - 1, false);
  for (FreedomDegree& degree : lattice.freedomDegrees.elements()) degree = FreedomDegree::BOUNDED;
  lattice.program.lx = lattice.lx;
  lattice.program.rx = lattice.rx;
  lattice.program.freedomDegrees = lattice.freedomDegrees;
  auto& embedding = lattice.embedding;
  embedding.resize(n + 1);
  embedding.R = T(1);
  setAll(embedding.c, n + 1, 1);
  setAll(embedding.r, n + 1, 1);
  embedding.r[1] = T{};
  embedding.l = -embedding.r;
  embedding.l[n + 1] = T(1);
  embedding.checkMode = 1;
  embedding.computeMaxNorm();
  return lattice;
}

/// Passes until one leaves the basis as it was.
template <typename L, typename Pass>
void reduceWholly(L& lattice, Pass pass) {
  Matrix<decltype(lattice.embedding.R)> before;
  do {
    before = lattice.basis.B;
    pass(lattice);
  } while (!lattice.basis.B.equalsExactly(before));
}

template <typename L>
void checkedPass(L& lattice) {
  lattice.lll(1, 0, 0);
}

/// The same steps without the check.
template <typename L>
void uncheckedPass(L& lattice) {
  std::int64_t steps = 0;
  std::int64_t skipped = 0;
  for (std::int64_t k = 1; k <= lattice.basis.latRows;) {
    lattice.sizeReduce(k, false);
    if (steps >= lattice.interval_tt) {
      ++skipped;
      ++k;
    } else {
      ++steps;
      k = lattice.swapStep(k);
    }
  }
  if (skipped > steps / 10) {
    lattice.interval_tt *= 2;
  } else if (skipped == 0) {
    --lattice.interval_tt;
  }
}

#ifdef VEXIL_HAVE_FPLLL
fplll::ZZ_mat<mpz_t> peerBasis(const Numbers& numbers) {
  const auto n = static_cast<int>(numbers.size());
  fplll::ZZ_mat<mpz_t> result(n, n + 1);
  for (int i = 0; i < n; ++i) {
    result(i, 0) = numbers[static_cast<std::size_t>(i)];
    result(i, i + 1) = 1L;
  }
  return result;
}

double squaredLength(fplll::ZZ_mat<mpz_t>& rows) {
  double sum = 0;
  for (int j = 0; j < rows.get_cols(); ++j) sum += std::pow(rows(0, j).get_d(), 2);
  return sum;
}
#endif

/// Ten bases, with the collecting of short rows or without. Counters: the time against fplll's,
/// with and without the check; the length of the first row against that of fplll's, on the
/// geometric mean; the time of the check against that of the rest.
void relationBases(benchmark::State& state) {
  std::vector<double> whole, unchecked, check;
  double logLength = 0;
  for (auto _ : state) {
    double ours = 0;
    double rest = 0;
    double theirs = 0;
    logLength = 0;
    for (unsigned seed = 1; seed <= SEEDS; ++seed) {
      const Numbers numbers = relationNumbers(state.range(0), seed);
      auto lattice = relationLattice<dbl_t, dbl_t>(numbers);
      lattice.params.pair.current = state.range(1) != 0;
      auto other = lattice;
      using L = Lattice<dbl_t, dbl_t>;
      ours += seconds([&] { reduceWholly(lattice, checkedPass<L>); });
      rest += seconds([&] { reduceWholly(other, uncheckedPass<L>); });
#ifdef VEXIL_HAVE_FPLLL
      auto peer = peerBasis(numbers);
      theirs += seconds(
          [&] { fplll::lll_reduction(peer, 0.99, 0.51, fplll::LM_FAST, fplll::FT_LONG_DOUBLE); });
      const auto& first = lattice.basis.B[1];
      logLength += std::log(static_cast<double>(first * first) / squaredLength(peer)) / 2;
#endif
    }
    state.SetIterationTime(ours);
    check.push_back(ours / rest - 1);
    whole.push_back(ours / theirs);
    unchecked.push_back(rest / theirs);
  }
  state.counters["check:rest"] = median(check);
#ifdef VEXIL_HAVE_FPLLL
  state.counters["fplll"] = median(whole);
  state.counters["fplll, no check"] = median(unchecked);
  state.counters["length"] = std::exp(logLength / SEEDS);
#endif
}
BENCHMARK(relationBases)
    ->Name("engine/lll/relations")
    ->ArgsProduct({{20, 40, 60, 80}, {0, 1}})
    ->ArgNames({"rows", "pair"})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// The way to a basis that a pass leaves as it is, in exact numbers.
template <typename T, typename U>
void exactRelations(benchmark::State& state) {
  const auto start = relationLattice<T, U>(relationNumbers(state.range(0), 1));
  for (auto _ : state) {
    auto lattice = start;
    state.SetIterationTime(seconds([&] { reduceWholly(lattice, checkedPass<Lattice<T, U>>); }));
  }
}
BENCHMARK(exactRelations<QQ, dbl_t>)
    ->Name("engine/lll/relations QQ, dbl_t")
    ->Arg(10)
    ->Arg(20)
    ->Arg(40)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(exactRelations<QQ, QQ>)
    ->Name("engine/lll/relations QQ, QQ")
    ->Arg(10)
    ->Arg(20)
    ->Arg(40)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// m equations over n variables that are 0 or 1, with coefficients up to `greatest`; half of the
/// sum of each row is its right-hand side.
template <typename T>
void setProgram(Vexil<T>& program, std::int64_t m, std::int64_t n, long greatest) {
  std::mt19937_64 random(1);
  std::uniform_int_distribution<long> number(1, greatest);
  program.Ag.setSize(m, n);
  program.bg.resize(m, false);
  for (std::int64_t i = 1; i <= m; ++i) {
    long sum = 0;
    for (T& a : program.Ag[i].elements()) {
      const long x = number(random);
      sum += x;
      a = T(x);
    }
    program.bg[i] = T(sum / 2);
  }
  for (auto* const vector : {&program.dx, &program.lx, &program.rx}) {
    vector->resize(n, false);
    vector->fill(T{});
  }
  program.rx.fill(T(1));
  program.freedomDegrees.resize(n, false);
  for (FreedomDegree& degree : program.freedomDegrees.elements()) degree = FreedomDegree::BOUNDED;
}

/// From a program to its generated lattice: equations, variables and the greatest coefficient are
/// the arguments.
template <typename T, typename U>
void generateLattice(benchmark::State& state) {
  for (auto _ : state) {
    Lattice<T, U> lattice;
    setProgram(lattice.program, state.range(0), state.range(1), state.range(2));
    state.SetIterationTime(seconds([&] {
      lattice.prepare(false, false);
      lattice.generate();
    }));
  }
}
void programSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->UseManualTime()->Unit(benchmark::kMillisecond);
  for (const long n : {25L, 50L, 100L}) benchmark->Args({1, n, 99999});
  for (const long m : {1L, 5L, 10L}) benchmark->Args({m, 60, 99});
  benchmark->Args({4, 30, 99});
}
BENCHMARK(generateLattice<dbl_t, dbl_t>)->Name("engine/generate dbl_t, dbl_t")->Apply(programSizes);
BENCHMARK(generateLattice<QQ, dbl_t>)->Name("engine/generate QQ, dbl_t")->Apply(programSizes);

}  // namespace
}  // namespace vexil
