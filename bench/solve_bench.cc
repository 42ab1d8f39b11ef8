// Vexil - exact integer optimization on lattices.
//
// The search for a proved answer on the programs of bench/instances, a benchmark for each; counters
// tell the nodes and the counted work, which are the same on every machine.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <set>

#include "solver/search.h"

namespace vexil {
namespace {

/// Takes what comes and never stops.
class Silence : public solver::Listener {
 public:
  void point(const Vector<QQ>& /*x*/) override {}
  void progress(const solver::Progress& /*progress*/) override {}
  bool stopRequested() override { return false; }
};

void solve(benchmark::State& state, const std::filesystem::path& file) {
  Vexil<QQ> program;
  program.optFile = file.string();
  program.readOptFile();
  solver::Outcome outcome;
  for (auto _ : state) {
    Silence silence;
    outcome = solver::solve(program, {}, {}, silence);
  }
  state.counters["tree"] = static_cast<double>(outcome.effort.treeNodes);
  state.counters["enumeration"] = static_cast<double>(outcome.effort.enumerationNodes);
  state.counters["work"] = static_cast<double>(outcome.effort.work);
}

const bool registered = [] {
  std::set<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(VEXIL_INSTANCES)) {
    if (entry.path().extension() == ".opt") files.insert(entry.path());
  }
  for (const auto& file : files) {
    benchmark::RegisterBenchmark(("solve/" + file.stem().string()).c_str(), solve, file)
        ->Unit(benchmark::kMillisecond);
  }
  return true;
}();

}  // namespace
}  // namespace vexil
