// Vexil - exact integer optimization on lattices.
//
// Small programs with what each step has to leave, number for number: lines "form.step.field value"
// in tests/lattice/states, with the whole state as it was worked out in exact arithmetic, and in
// tests/lattice/worked_values.txt, with what was worked out by hand. The form tells the arguments
// of `prepare`: "tf" is prepare(true, false). A step may end with a "failure", or in standard
// precision with an "overflow".
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "numbers/strict_number.h"
#include "support/engine.h"
#include "support/pairs.h"
#include "support/parsed.h"
#include "support/tool_run.h"

namespace vexil {
namespace {

using State = std::map<std::string, std::string>;

const std::filesystem::path FOLDER = std::filesystem::path(VEXIL_SOURCE_DIR) / "tests" / "lattice";

/// The states of a file, each with the text of its opt file at "opt".
std::vector<State> readStates(const std::filesystem::path& file) {
  std::vector<State> states(1);
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    if (line.empty()) {
      states.emplace_back();
      continue;
    }
    const std::size_t end = line.find(' ');
    states.back()[line.substr(0, end)] = String(line.substr(end + 1)).replaceAll("|", " | ");
  }
  const auto opt = support::readFile(std::filesystem::path(file).replace_extension(".opt"));
  if (opt) states[0]["opt"] = *opt;
  return states;
}

std::string plain(std::integral auto number) { return std::to_string(number); }
std::string plain(FreedomDegree degree) { return joined(degree); }
template <Number T>
std::string plain(const T& number) {
  std::string text;
  NumberTraits<T>::append(text, number, FILE_DIGITS);
  return text;
}
template <typename T>
std::string plain(const Pair<long, T>& pair) {
  return "[ " + plain(pair.left) + ' ' + plain(pair.right) + " ]";
}
template <typename T>
std::string plain(const Array<T>& array) {
  std::string text = "[ ";
  for (const T& element : array.elements()) text += plain(element) + ' ';
  return text + ']';
}

/// The fields by their names, which stand parted by blanks, each behind `prefix`.
template <typename... Fields>
State stateOf(const std::string& prefix, const char* names, const Fields&... fields) {
  std::istringstream in(names);
  State state;
  std::string name;
  ((in >> name, state[prefix + name] = plain(fields)), ...);
  return state;
}

template <typename T>
State programState(const std::string& prefix, const Vexil<T>& p) {
  return stateOf(
      prefix,
      "Ag At Au allTargetsFinite atu bg dt dx fixedVariables freedomDegrees kt ltu lu lx rtu ru rx "
      "sdim starsPrepared swappedVariables tdim tu",
      p.Ag, p.At, p.Au, p.allTargetsFinite, p.atu, p.bg, p.dt, p.dx, p.fixedVariables,
      p.freedomDegrees, p.kt, p.lrtu.left, p.lu, p.lx, p.lrtu.right, p.ru, p.rx, p.sdim,
      p.starsPrepared, p.swappedVariables, p.tdim, p.tu);
}

/// One number or word of a state, rounded where `rounded`.
bool agrees(const String& expected, const String& actual, bool rounded) {
  if (expected == actual) return true;
  const auto left = strictNumber(expected.trim("(,)"));
  const auto right = strictNumber(actual.trim("(,)"));
  return rounded && left && right && abs(*left - *right) <= QQ::EPSILON() * (1 + abs(*left));
}

/// A lattice that is brought from the opt file to the states.
template <typename Pair>
class States : public testing::Test {
 protected:
  using T = typename Pair::T;
  static constexpr bool ROUNDED = std::is_same_v<T, dbl_t>;

  support::TemporaryFolder folder;
  Lattice<T, typename Pair::U> lattice;
  State expected;
  std::size_t compared = 0;

  [[nodiscard]] bool isWanted(const std::string& step) const {
    const auto first = expected.lower_bound(step + '.');
    return first != expected.end() && first->first.starts_with(step + '.');
  }

  /// Compares what a step leaves, or its end.
  template <typename Act, typename After>
  void check(const std::string& step, Act act, After after) {
    if (const auto failure = expected.find(step + ".failure"); failure != expected.end()) {
      ++compared;
      const String text = failure->second;
      EXPECT_EXIT(act(), testing::ExitedWithCode(1), text.replaceAll("(", "\\("));
      return;
    }
    if (const auto overflow = expected.find(step + ".overflow"); overflow != expected.end()) {
      ++compared;
      if (ROUNDED) {
        EXPECT_EQ(thrown(act), overflow->second);
      }
      return;
    }
    act();
    for (const auto& [field, value] : after()) {
      const auto wanted = expected.find(step + '.' + field);
      if (wanted == expected.end()) continue;
      ++compared;
      std::istringstream left(wanted->second), right(value);
      bool same = true;
      std::string a, b;
      while (left >> a && right >> b) same = same && agrees(a, b, ROUNDED);
      same = same && left.fail() && !(right >> b);
      if (!same && std::is_same_v<typename Pair::U, dbl_t>) {
        // Where a coefficient is a half, rounding decides on the rows, but not on their lattice.
        same = field == "latText" || field == "lat2opt_rows" || field == "bestHeuristic" ||
               (field[0] == 'B' && spanTheSame(matrix<QQ>(wanted->second), matrix<QQ>(value)));
      }
      EXPECT_TRUE(same) << step << '.' << field << ": " << value;
    }
  }

  void prepare(const std::string& form) {
    support::writeFile(folder / "p.opt", expected.at("opt"));
    Vexil<QQ> program;
    program.optFile = (folder / "p.opt").string();
    program.readOptFile();
    program.optFile = "p.opt";
    lattice = Lattice<T, typename Pair::U>();
    lattice.program.assign(program);
    lattice.prepare(form[0] == 't', form[1] == 't');
  }

  State latticeState() const {
    const auto& [basis, e] = std::tie(lattice.basis, lattice.embedding);
    return stateOf("", "B B_save R TT c checkMode l latDim latRows ltu maxNorm r rtu rx symmetric",
                   basis.B, basis.B_save, e.R, basis.TT, e.c, e.checkMode, e.l, basis.latDim,
                   basis.latRows, lattice.lrtu.left, e.maxNorm, e.r, lattice.lrtu.right, lattice.rx,
                   e.symmetric);
  }

  State generatedState() {
    State state = stateOf("", "bestHeuristic observed.lx observed.rx", lattice.found.bestHeuristic,
                          lattice.program.lx, lattice.program.rx);
    state.merge(latticeState());
    for (const Vector<T>& row : lattice.basis.B.elements()) {
      Vector<T> x;
      const int status = lattice.lat2opt(row, x, true, true);
      state["lat2opt_rows"] += joined("[ ", status, ' ', plain(x), " ] ");
    }
    state["lat2opt_rows"] = "[ " + state["lat2opt_rows"] + "]";
    testing::internal::CaptureStdout();
    lattice.printProgramSizes();
    state["programSizes"] = testing::internal::GetCapturedStdout().substr(4);
    lattice.latFile = (folder / "x.lat").string();
    lattice.writeEnabled = true;
    lattice.writeLatFile();
    const String text = support::readFile(folder / "x.lat").value_or("");
    state["latText"] = text.replaceAll("\n", " | ").regexReplace("[0-9]+ \\|  \\| //", "0 |  | //");
    return state;
  }

  void checkForm(const std::string& form) {
    check(
        form, [&] { prepare(form); },
        [&] {
          State state = programState("program.", lattice.program);
          state.merge(programState<T>("normalForm.", lattice));
          return state;
        });
    const auto built = [this] { return latticeState(); };
    for (const bool equationsOnly : {true, false}) {
      const std::string step = form + ".buildBase." + (equationsOnly ? "true" : "false");
      if (isWanted(step))
        check(
            step, [&] { lattice.buildBase(equationsOnly); }, built);
    }
    if (isWanted(form + ".reduced")) {
      prepare(form);
      lattice.buildBase(true);
      check(
          form + ".reduced", [&] { lattice.reduce(); }, built);
    }
    if (isWanted(form + ".generated")) {
      prepare(form);
      check(
          form + ".generated", [&] { lattice.generate(); }, [&] { return generatedState(); });
    }
  }

  /// Whether a third, which is no short decimal fraction, was in the way.
  bool checkAll(const State& state) {
    SCOPED_TRACE(state.at("opt"));
    expected = state;
    compared = 0;
    bool overflown = false;
    for (const std::string form : {"ff", "ft", "tf"}) {
      if (isWanted(form)) overflown |= thrown([&] { checkForm(form); }) == "iMF overflow2";
    }
    EXPECT_TRUE(overflown || compared == state.size() - 1) << compared << " of " << state.size();
    return overflown;
  }
};
TYPED_TEST_SUITE(States, Pairs);

TYPED_TEST(States, AreReachedStepByStep) {
  int files = 0;
  int overflows = 0;
  for (const auto& file : std::filesystem::directory_iterator(FOLDER / "states")) {
    if (file.path().extension() == ".opt") continue;
    ++files;
    overflows += this->checkAll(readStates(file.path())[0]) ? 1 : 0;
  }
  EXPECT_EQ(files, 21);
  EXPECT_EQ(overflows, this->ROUNDED ? 1 : 0);
}

TYPED_TEST(States, HaveTheWorkedValues) {
  for (const State& state : readStates(FOLDER / "worked_values.txt"))
    EXPECT_FALSE(this->checkAll(state));
}

}  // namespace
}  // namespace vexil
