// Vexil - exact integer optimization on lattices.
//
// The whole run and its parts, on generated programs.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>

#include "frontend/run.h"
#include "frontend/ylattice.h"
#include "program/star.h"

namespace vexil {
namespace {

/// The variables that differ from star to star; the equations leave them alone.
constexpr long MOVING = 40;

/// A program with three targets and `rows` equations and inequations, and stars that fulfil it.
class Model {
 public:
  Model(long n, long rows, long stars, const std::string& coefficient = "")
      : folder_(std::filesystem::temp_directory_path() / "vexil-bench"), n_(n) {
    std::filesystem::create_directories(folder_);
    std::ofstream opt(folder_ / "x.opt");
    const long equations = rows / 7;
    std::vector<long> point(static_cast<std::size_t>(n));
    for (long& x : point) x = number(0, 9);
    opt << "[ inf -inf 100 ]\n";
    matrix(opt, 3, 0, point, coefficient);
    const auto sides = matrix(opt, equations, MOVING, point, "");
    opt << vector(sides) << '\n';
    matrix(opt, rows - equations, 0, point, "");
    constant(opt, rows - equations, -100000);
    constant(opt, rows - equations, 100000);
    for (const long value : {0L, 0L, 100L}) constant(opt, n, value);
    for (long i = 0; i < stars; ++i) {
      for (long j = 0; j < MOVING; ++j) point[static_cast<std::size_t>(j)] = number(0, 9);
      bare_ += vector(point) + "\n";
      full_ += vector(point) + " | 0 | [ ] | 0 | " + std::to_string(i) + " | --verb=0 | 2.2.3\n";
    }
  }
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;
  ~Model() { std::filesystem::remove_all(folder_); }

  [[nodiscard]] String solFile() const { return (folder_ / "x.sol").string(); }
  [[nodiscard]] std::size_t optBytes() const {
    return static_cast<std::size_t>(std::filesystem::file_size(folder_ / "x.opt"));
  }
  void writeStars(bool bare) const { std::ofstream(solFile()) << (bare ? bare_ : full_); }

 private:
  long number(long least, long greatest) {
    return std::uniform_int_distribution<long>(least, greatest)(random_);
  }

  static std::string vector(const std::vector<long>& numbers) {
    std::string text = "[ ";
    for (const long x : numbers) text += std::to_string(x) + " ";
    return text + "]";
  }

  static void constant(std::ostream& out, long count, long value) {
    out << vector(std::vector<long>(static_cast<std::size_t>(count), value)) << '\n';
  }

  /// Writes `rows` rows with `zeros` leading zeros, one of them with `coefficient` besides, and
  /// gives their values at `point`.
  std::vector<long> matrix(std::ostream& out, long rows, long zeros, const std::vector<long>& point,
                           const std::string& coefficient) {
    std::vector<long> values;
    out << "[\n";
    for (long i = 0; i < rows; ++i) {
      std::string text = "[ " + (coefficient.empty() ? "0" : coefficient) + " ";
      long value = 0;
      for (long j = 1; j < n_; ++j) {
        const long a = j < zeros ? 0 : number(-50, 50);
        text += std::to_string(a) + " ";
        value += a * point[static_cast<std::size_t>(j)];
      }
      out << text << "]\n";
      values.push_back(value);
    }
    out << "]\n";
    return values;
  }

  std::filesystem::path folder_;
  long n_;
  std::mt19937_64 random_{20261122};
  std::string full_;
  std::string bare_;
};

/// Swallows what a run prints.
class Silence {
 public:
  Silence() : earlier_(std::cout.rdbuf(sink_.rdbuf())) {}
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() { std::cout.rdbuf(earlier_); }

 private:
  std::ostringstream sink_;
  std::streambuf* earlier_;
};

void runAll(benchmark::State& state, const Model& model, bool bare) {
  for (auto step : state) {
    state.PauseTiming();
    model.writeStars(bare);
    state.ResumeTiming();
    const Silence silence;
    run(model.solFile());
  }
}

void wholeRun(benchmark::State& state) {
  runAll(state, Model(state.range(0), state.range(1), state.range(2)), false);
}
void wholeRunOfBareLines(benchmark::State& state) {
  runAll(state, Model(state.range(0), state.range(1), state.range(2)), true);
}
void wholeRunInExtendedPrecision(benchmark::State& state) {
  runAll(state, Model(state.range(0), state.range(1), state.range(2), "123456789012345678901"),
         false);
}
BENCHMARK(wholeRun)
    ->Args({300, 150, 1250})
    ->Args({300, 150, 2500})
    ->Args({300, 150, 5000})
    ->Args({150, 150, 5000})
    ->Args({300, 75, 5000})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(wholeRunOfBareLines)->Args({300, 150, 5000})->Unit(benchmark::kMillisecond);
BENCHMARK(wholeRunInExtendedPrecision)->Args({300, 150, 5000})->Unit(benchmark::kMillisecond);

void readOptFile(benchmark::State& state) {
  const Model model(state.range(0), state.range(1), 0);
  Lattice<QQ, dbl_t> lattice;
  lattice.setFileNames(model.solFile());
  for (auto step : state) lattice.program.readOptFile();
  state.SetBytesProcessed(state.iterations() * static_cast<long>(model.optBytes()));
}
BENCHMARK(readOptFile)
    ->Args({300, 150})
    ->Args({300, 1500})
    ->Args({3000, 1500})
    ->Unit(benchmark::kMillisecond);

void startAndEnd(benchmark::State& state) {
  for (auto step : state) {
    const YLattice<dbl_t> front;
    benchmark::DoNotOptimize(&front);
  }
}
BENCHMARK(startAndEnd)->Unit(benchmark::kMillisecond);

template <typename T>
void searchDuplicates(benchmark::State& state) {
  Array<Star<T>> stars;
  stars.resize(state.range(0), false);
  for (long i = 1; i <= stars.MN; ++i) {
    stars[i].resize(300, false);
    stars[i].fill(T(7));
    for (long j = 1, rest = i; j <= 4; ++j, rest /= 10) stars[i][j] = T(rest % 10);
  }
  for (auto step : state) removeDuplicates(stars, true);
}
BENCHMARK(searchDuplicates<dbl_t>)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(searchDuplicates<QQ>)->Arg(5000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vexil
