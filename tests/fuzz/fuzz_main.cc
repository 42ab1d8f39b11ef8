// Vexil - exact integer optimization on lattices.
//
// vexil_fuzz [--seconds N] [--seed S] [--runs N]
//
// Feeds changed opt and sol files to the tool and changed texts to the readers that the tool does
// not reach, each in a process of its own. Any end is right but a crash, a hang, a report of a
// sanitizer and a file that is changed where it should not be: then the input is kept in
// fuzz-failure-<seed>/, and "--seed <seed> --runs 1" repeats it.
#include <csignal>
#include <iostream>
#include <map>
#include <sstream>

#include "foundation/matrix.h"
#include "foundation/serializable_array.h"
#include "frontend/abrupt_end.h"
#include "fuzz/mutation.h"
#include "numbers/qq_vectors.h"
#include "params/extended_params.h"
#include "support/tool_run.h"

namespace vexil::fuzz {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Files = std::map<std::string, std::string>;
using Texts = std::vector<std::string>;

const Texts OPT_FILES = {
    "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ 9 9 ]\n",
    "[ -inf inf 5 ] = [ 0 9 5 ] [ [ 1 2 ] [ 3 1 ] [ 1 1 ] ] [ [ 1 -1 ] ] [ 1 ]\n"
    "[ [ 1 1 ] [ 2 0 ] ] [ -inf 0 ] [ 9 inf ] [ 0 0 ] [ 0 0 ] [ 9 9 ]\n",
    "// no targets\n[ ] [ ] [ ] [ ] [ [ 1 1 ] ] [ -inf ] [ 999 ] [ 0 0 ] [ -inf -9 ] [ inf 99 ]\n",
    "[ 1/2 -7:1/3 ] /* two */ [ [ 1/3 0.25 ] [ .5 123456789012345678 ] ] [ ] [ ] [ ] [ ] [ ]\n"
    "[ 0 2 ] [ 0,5 0 ] [ 9 123456789012345678901 ]\n",
    "[ inf ] [ [ 1234567 1e17 ] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ 9 9 ]\n",
    "[ ] [ ] [ [ 1 2 3 ] [ 4 5 ] ] [ 6 7 ] [ ] [ ] [ ] [ 0 0 0 ] [ 0 0 0 ] [ 9 9 9 ]\n",
};

const Texts SOL_FILES = {
    "[ 2 1 ] | 3 | [ 3 ] | 0 | 7 | --a=1 | 2.2.3\n[ 3 1 ] | 4 | [ 4 ] | 0 | -1 | --b=2 | 2.2.3\n",
    "[ 2 1 ]\n[ 3 2 ]\n[ 2 1 ]\n[ 10 0 ]\n[ 11 0 ]\n",
    "[ 2 1 ] | 1/3 | [ ] | -1:1/2 | 3661 | --a=1\n[ 1 0 ] | 0 | [ 1 2 3 ] | -1 | 5 | --a=1 | "
    "2.10\n",
    "/* c */ [ 1/3 0.5 ] // c\n | 0 /* c */ | [ 1/7 ] | 0 | 60 | // c\n --a=1 // kept | 2.2.3\n",
    "[ 3 123456789012345678 ] | 99999999999999999/100000000000000000 | [ ] | 0 | -1 | --a=1\n",
    "[ inf 1 ] | inf | [ inf ] | 0 | -1 | \n[ -inf 99999999999999999 ] | -inf | [ ] | 0 | 0 | x | "
    "y | z\n",
    "",
};

const Texts READER_TEXTS = {
    "[ 1 2 3 ]",
    "[ inf -inf 0.5 -7:1/3 ]",
    "[\n[ 1 2 ]\n[ 3 4 ]\n]",
    "[ [ 1 ] [ 2 3 ] /* c */ [ ] ]",
    "[ a,b\\,c, d\\ e\\\\ ]",
    "[\nfirst\\\nline\nsecond // c\n]",
    "--verb=2 --beta=10 /* c */ --tnorm=-7:1/3 --rtime=9223372036854775807 --bench=0.5\n",
    "--snorm=inf --deep=1 --eenum=0 --sol=-1 --sampleLimit=18446744073709551615",
};

/// The options without a lattice.
struct Options : ExtendedParams<QQ> {
  Options() = default;
};

template <typename T>
void readAndWrite(std::stringstream& in, T object) {
  object.read(in);
  object.write(std::cout);
}

/// Has one of the readers read `text`.
void readText(std::size_t reader, const std::string& text) {
  std::stringstream in(text);
  switch (reader) {
    case 0:
      return readAndWrite(in, SerializableArray<String>(", ", false, false));
    case 1:
      return readAndWrite(in, SerializableArray<String>(",\n", true, false));
    case 2:
      return readAndWrite(in, Vector<long>());
    case 3:
      return readAndWrite(in, Vector<dbl_t>());
    case 4:
      return readAndWrite(in, Matrix<dbl_t>());
    case 5:
      return readAndWrite(in, Matrix<QQ>());
    default:
      break;
  }
  releaseNamesOnAbruptEnd();
  Options options;
  options.read(in);
  options.write(std::cout);
}
constexpr std::size_t READERS = 7;

/// Powers are as large as the exponent of an option says: those stay out.
bool hasExponent(const std::string& text) {
  for (std::size_t i = text.find_first_of("eE"); i != text.npos;
       i = text.find_first_of("eE", i + 1)) {
    if (text.find_first_of("0123456789+-.,/:", i + 1) == i + 1) return true;
  }
  return false;
}

/// A run with the input that belongs to its seed.
class Attempt {
 public:
  explicit Attempt(std::uint64_t seed) : seed_(seed), random_(seed) {
    if (below(random_, 4) == 0) {
      const std::size_t reader = below(random_, READERS);
      std::string text = mutated(READER_TEXTS, random_);
      if (hasExponent(text)) text = READER_TEXTS.back();
      files_ = {{"text" + std::to_string(reader), text}};
      child_.emplace([&] { return readText(reader, text), 0; });
      return;
    }
    // One of the two stays valid more often than not, so that runs get far.
    const std::size_t whole = below(random_, 3);
    const auto pick = [&](const Texts& texts, bool asItStands) {
      return asItStands ? texts[below(random_, texts.size())] : mutated(texts, random_);
    };
    files_ = {{"x.opt", pick(OPT_FILES, whole == 0)}, {"x.sol", pick(SOL_FILES, whole == 1)}};
    for (const auto& [name, text] : files_) support::writeFile(folder_ / name, text);
    child_.emplace(support::ToolRun{.folder = folder_.path(), .arguments = {"x.sol"}});
  }

  /// Waits for the end; true if it was a right one.
  bool finish(std::map<std::string, int>& ends) {
    const auto end = child_->finish(std::chrono::seconds(10));
    const std::string fault = faultOf(end);
    ++ends[end.signal != 0 ? "exceptions" : end.status != 0 ? "failures" : "full runs"];
    if (fault.empty()) return true;
    const fs::path kept = "fuzz-failure-" + std::to_string(seed_);
    std::cout << "seed " << seed_ << ": " << fault << "; status " << end.status << ", signal "
              << end.signal << "; kept in " << kept << '\n';
    files_["stdout"] = end.out;
    files_["stderr"] = end.err;
    for (const auto& [name, text] : files_) {
      support::writeFile(kept / name, text);
      std::cout << "---- " << name << '\n' << text << '\n';
    }
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

  std::uint64_t seed_;
  Random random_;
  support::TemporaryFolder folder_;
  Files files_;
  std::optional<support::Child> child_;
};

struct Limits {
  std::uint64_t seed = std::random_device()();
  std::uint64_t runs = 0;  ///< 0: as many as the time allows
  std::chrono::seconds time{0};
};

Limits readArguments(int count, char** words) {
  Limits limits;
  for (int i = 1; i + 1 < count; i += 2) {
    const std::string word = words[i];
    const std::uint64_t value = std::stoull(words[i + 1]);
    if (word == "--seed") limits.seed = value;
    if (word == "--runs") limits.runs = value;
    if (word == "--seconds") limits.time = std::chrono::seconds(value);
  }
  if (limits.runs == 0 && limits.time.count() == 0) limits.time = std::chrono::seconds(10);
  return limits;
}

bool fuzz(const Limits& limits) {
  std::cout << "seed " << limits.seed << std::endl;
  std::map<std::string, int> ends;
  const auto start = Clock::now();
  const auto goesOn = [&](std::uint64_t run) {
    return (limits.runs == 0 || run < limits.runs) &&
           (limits.time.count() == 0 || Clock::now() - start < limits.time);
  };
  bool right = true;
  for (std::uint64_t run = 0; right && goesOn(run); run += 2) {
    Attempt one(limits.seed + run);
    std::optional<Attempt> two;
    if (goesOn(run + 1)) two.emplace(limits.seed + run + 1);
    right = one.finish(ends);
    if (two && !two->finish(ends)) right = false;
  }
  for (const auto& [end, number] : ends) std::cout << number << ' ' << end << '\n';
  return right;
}

}  // namespace
}  // namespace vexil::fuzz

int main(int count, char** words) {
  return vexil::fuzz::fuzz(vexil::fuzz::readArguments(count, words)) ? 0 : 1;
}
