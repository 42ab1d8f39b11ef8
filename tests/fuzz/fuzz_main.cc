// Vexil - exact integer optimization on lattices.
//
// vexil_fuzz [--seconds N] [--seed S] [--runs N]
//
// Feeds changed opt and sol files to the tools, changed texts to the readers of models, and random
// programs to the engine, each in a process of its own. Any end is right but a crash, a hang, a
// report of a sanitizer, a file that is changed where it should not be, a model that is not read
// again as it was written and a star of the engine that the tool does not let pass: then the input
// is kept in fuzz-failure-<seed>/, and "--seed <seed> --runs 1" repeats it. Unless told, there are
// 10 seconds.
#include <csignal>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>

#include "fuzz/engine_run.h"
#include "fuzz/model_run.h"
#include "fuzz/mutation.h"
#include "support/random_program.h"
#include "support/tool_run.h"

namespace vexil::fuzz {
namespace {

const Texts SOLVE_OPTIONS = {"--rtime=1",
                             "--rtime=1 --sol=0",
                             "--rtime=1 --sol=3 --eenum=0",
                             "--iters=2 --rtime=3",
                             "--rtime=1 --tnorm=5 --snorm=2 --beta=2",
                             "--rtime=1 --deep=1 --verb=2"};

/// A run with the input that belongs to its seed.
class Attempt {
 public:
  explicit Attempt(std::uint64_t seed) : seed_(seed), random_(seed) {
    const std::size_t kind = below(random_, 4);
    if (kind == 0) {
      engine_ = EngineRun{below(random_, 4), below(random_, 3) == 0, below(random_, 2) == 0,
                          static_cast<long>(below(random_, 3))};
      files_ = {{"x.opt", support::RandomProgram(random_()).optText()}, {engine_->name(), ""}};
      support::writeFile(folder_ / "x.opt", files_["x.opt"]);
      child_.emplace([this] { return (*engine_)((folder_ / "x.sol").string()); });
      return;
    }
    if (kind == 1) {
      model_.emplace(random_);
      files_ = {{model_->name, model_->text}};
      child_.emplace([this] { return (*model_)(); });
      return;
    }
    // One of the two stays valid more often than not, so that runs get far.
    const std::size_t whole = below(random_, 3);
    const auto pick = [&](const Texts& texts, bool asItStands) {
      return asItStands ? texts[below(random_, texts.size())] : mutated(texts, random_);
    };
    static const Texts programs = corpus(".opt");
    static const Texts stars = corpus(".sol");
    files_ = {{"x.opt", pick(programs, whole == 0)}, {"x.sol", pick(stars, whole == 1)}};
    for (const auto& [name, text] : files_) support::writeFile(folder_ / name, text);
    support::ToolRun tool{.folder = folder_.path(), .arguments = {"x.sol"}};
    if (below(random_, 2) == 0) {
      solves_ = true;
      tool.program = VEXIL_SOLVE_TOOL;
      std::istringstream words(SOLVE_OPTIONS[below(random_, SOLVE_OPTIONS.size())]);
      tool.arguments.insert(tool.arguments.begin(), std::istream_iterator<std::string>(words), {});
    }
    child_.emplace(tool);
  }

  /// Waits for the end; true if it was a right one.
  bool finish(std::map<std::string, int>& ends) {
    const auto end = child_->finish(std::chrono::seconds(10));
    const std::string fault = engine_  ? faultOfEngine(end)
                              : model_ ? ModelRun::fault(end)
                                       : faultOf(end);
    ++ends[engine_           ? "engine runs"
           : model_          ? end.status == 0 ? "models" : "refused models"
           : end.signal != 0 ? "exceptions"
           : end.status != 0 ? "failures"
                             : "full runs"];
    if (fault.empty()) return true;
    const std::filesystem::path kept = "fuzz-failure-" + std::to_string(seed_);
    std::cout << "seed " << seed_ << ": " << fault << "; status " << end.status << ", signal "
              << end.signal << "; kept in " << kept << '\n';
    files_["stdout"] = end.out;
    files_["stderr"] = end.err;
    for (const auto& [name, text] : files_) support::writeFile(kept / name, text);
    return false;
  }

 private:
  [[nodiscard]] std::string faultOf(const support::ChildEnd& end) const {
    const std::string failure = "\n*** FAIL: ";
    const bool failed = end.status == 1 && end.err.starts_with(failure) &&
                        end.err.find('\n', failure.size()) == end.err.size() - 1;
    const bool threw =
        end.signal == SIGABRT &&
        end.err.starts_with("terminate called after throwing an instance of 'vexil::") &&
        end.err.find("Exception'\n") != end.err.npos && end.err.find("Sanitizer") == end.err.npos;
    if (end.timedOut) return "no end within the time limit";
    if (solves_) return faultOfSearch(end);
    if (!failed && !threw && !(end.status == 0 && end.err.empty())) return "a wrong end";
    if (!support::semaphoreNames(end.pid).empty()) return "semaphores are left";
    // A star that the check has passed over may lack values; the report is behind the write.
    const bool wrote = end.status == 0 || end.err == failure + "Array: index out of range\n";
    for (const auto& [name, text] : files_) {
      if (!name.starts_with("x.") || (name == "x.sol" && wrote)) continue;
      if (support::readFile(folder_ / name) != text) return name + " has changed";
    }
    return "";
  }

  /// The solver program gives an answer or one reason, and then has left the files alone.
  [[nodiscard]] std::string faultOfSearch(const support::ChildEnd& end) const {
    const bool failed = end.status == 1 && end.err.find("\n*** FAIL: ") != end.err.npos &&
                        end.err.find("Sanitizer") == end.err.npos;
    const bool answered = end.status == 0 || end.status == 2;
    if (!failed && !(answered && end.out.find(": ") != end.out.npos)) return "a wrong end";
    if (support::readFile(folder_ / "x.opt") != files_.at("x.opt")) return "x.opt has changed";
    if (failed && support::readFile(folder_ / "x.sol") != files_.at("x.sol"))
      return "x.sol has changed";
    return "";
  }

  /// The engine may also end by the signal that it raises, with a lost precision, and with
  /// warnings.
  [[nodiscard]] std::string faultOfEngine(const support::ChildEnd& end) const {
    const bool failed = end.status == 1 && end.err.find("\n*** FAIL: ") != end.err.npos;
    if (end.timedOut) return "no end within the time limit";
    if (!failed && end.status != 0 && end.status != 3 && end.signal != SIGTERM)
      return "a wrong end";
    if (!support::semaphoreNames(end.pid).empty()) return "semaphores are left";
    return starFault((folder_ / "x.sol").string(), engine_->force1 || engine_->force2);
  }

  std::uint64_t seed_;
  bool solves_ = false;
  Random random_;
  support::TemporaryFolder folder_;
  std::map<std::string, std::string> files_;
  std::optional<EngineRun> engine_;
  std::optional<ModelRun> model_;
  std::optional<support::Child> child_;
};

bool fuzz(std::uint64_t seed, std::uint64_t runs, std::chrono::seconds time) {
  std::cout << "seed " << seed << std::endl;
  std::map<std::string, int> ends;
  const auto deadline = std::chrono::steady_clock::now() + time;
  bool right = true;
  std::unique_ptr<Attempt> running;  // while the next one starts
  for (; right && runs > 0 && std::chrono::steady_clock::now() < deadline; --runs) {
    auto next = std::make_unique<Attempt>(seed++);
    right = running == nullptr || running->finish(ends);
    running = std::move(next);
  }
  if (running != nullptr && !running->finish(ends)) right = false;
  for (const auto& [end, number] : ends) std::cout << number << ' ' << end << '\n';
  return right;
}

}  // namespace
}  // namespace vexil::fuzz

int main(int count, char** words) {
  std::map<std::string, std::uint64_t> limits = {
      {"--seed", std::random_device()()}, {"--runs", ~std::uint64_t{0}}, {"--seconds", 10}};
  for (int i = 1; i + 1 < count; i += 2) limits[words[i]] = std::stoull(words[i + 1]);
  const std::chrono::seconds time(limits["--seconds"]);
  return vexil::fuzz::fuzz(limits["--seed"], limits["--runs"], time) ? 0 : 1;
}
