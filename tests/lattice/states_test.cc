// Vexil - exact integer optimization on lattices.
//
// Small programs with the state that each step has to leave, number for number: lines "step.field
// value" in tests/lattice/states, worked out in exact arithmetic. The first part of a step tells
// the arguments of `prepare`.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "lattice/lattice.h"
#include "support/parsed.h"

namespace vexil {
namespace {

using testing::ExitedWithCode;

const std::filesystem::path FOLDER =
    std::filesystem::path(VEXIL_SOURCE_DIR) / "tests" / "lattice" / "states";

using State = std::map<std::string, std::string>;

State readState(const std::string& name) {
  State state;
  std::ifstream in(FOLDER / (name + ".txt"));
  for (std::string key, value; in >> key && in.get() && std::getline(in, value);) {
    state[key] = value;
  }
  return state;
}

std::vector<std::string> programNames() {
  std::set<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(FOLDER)) {
    names.insert(file.path().stem().string());
  }
  return {names.begin(), names.end()};
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

/// One number or word of a state, rounded where `rounded`.
bool agrees(const std::string& expected, const std::string& actual, bool rounded) {
  if (expected == actual) return true;
  if (!rounded || std::string("-0123456789").find(expected.front()) == std::string::npos) {
    return false;
  }
  const QQ value(expected);
  return abs(value - QQ(actual)) <= QQ::EPSILON() * (1 + abs(value));
}

/// Compares the fields of `actual` with those of the step in the expected state.
void expectState(const State& expected, const std::string& step, const State& actual,
                 bool rounded) {
  std::size_t count = 0;
  for (const auto& [key, value] : expected) {
    if (!key.starts_with(step + '.')) continue;
    ++count;
    const auto field = actual.find(key.substr(step.size() + 1));
    ASSERT_NE(field, actual.end()) << key;
    std::istringstream left(value), right(field->second);
    std::string a, b;
    while (left >> a && right >> b) {
      EXPECT_TRUE(agrees(a, b, rounded)) << key << ": " << value << " not " << field->second;
    }
    EXPECT_EQ(left.fail(), !(right >> b)) << key << ": " << value << " not " << field->second;
  }
  EXPECT_EQ(count, actual.size()) << step;
}

template <typename T>
State programState(const Vexil<T>& p) {
  return {{"Ag", plain(p.Ag)},
          {"At", plain(p.At)},
          {"Au", plain(p.Au)},
          {"allTargetsFinite", plain(p.allTargetsFinite)},
          {"atu", plain(p.atu)},
          {"bg", plain(p.bg)},
          {"dt", plain(p.dt)},
          {"dx", plain(p.dx)},
          {"fixedVariables", plain(p.fixedVariables)},
          {"freedomDegrees", plain(p.freedomDegrees)},
          {"kt", plain(p.kt)},
          {"ltu", plain(p.lrtu.left)},
          {"lu", plain(p.lu)},
          {"lx", plain(p.lx)},
          {"rtu", plain(p.lrtu.right)},
          {"ru", plain(p.ru)},
          {"rx", plain(p.rx)},
          {"sdim", plain(p.sdim)},
          {"starsPrepared", plain(p.starsPrepared)},
          {"swappedVariables", plain(p.swappedVariables)},
          {"tdim", plain(p.tdim)},
          {"tu", plain(p.tu)}};
}

template <typename T, typename U>
State latticeState(const Lattice<T, U>& lattice) {
  const auto& [basis, embedding] = std::tie(lattice.basis, lattice.embedding);
  return {{"B", plain(basis.B)},
          {"B_save", plain(basis.B_save)},
          {"R", plain(embedding.R)},
          {"TT", plain(basis.TT)},
          {"c", plain(embedding.c)},
          {"checkMode", plain(embedding.checkMode)},
          {"l", plain(embedding.l)},
          {"latDim", plain(basis.latDim)},
          {"latRows", plain(basis.latRows)},
          {"ltu", plain(lattice.lrtu.left)},
          {"maxNorm", plain(embedding.maxNorm)},
          {"r", plain(embedding.r)},
          {"rtu", plain(lattice.lrtu.right)},
          {"rx", plain(lattice.rx)},
          {"symmetric", plain(embedding.symmetric)}};
}

template <typename First, typename Second>
struct Numbers {
  using T = First;
  using U = Second;
};
using Pairs =
    testing::Types<Numbers<dbl_t, dbl_t>, Numbers<QQ, dbl_t>, Numbers<dbl_t, QQ>, Numbers<QQ, QQ>>;

/// A lattice that is brought from the opt file to the states.
template <typename Pair>
class States : public testing::Test {
 protected:
  using T = typename Pair::T;
  using U = typename Pair::U;
  static constexpr bool ROUNDED = std::is_same_v<T, dbl_t>;

  /// The lattice of a program, prepared as the form says: "tf" is prepare(true, false).
  static Lattice<T, U> prepared(const std::string& name, const std::string& form) {
    Vexil<QQ> program;
    program.optFile = (FOLDER / (name + ".opt")).string();
    program.readOptFile();
    Lattice<T, U> lattice;
    lattice.program.assign(program);
    lattice.prepare(form[0] == 't', form[1] == 't');
    return lattice;
  }

  static void check(const std::string& name, const std::string& form, const State& expected) {
    SCOPED_TRACE(name + ' ' + form);
    if (const auto failure = expected.find(form + ".failure"); failure != expected.end()) {
      EXPECT_EXIT(prepared(name, form), ExitedWithCode(1), failure->second);
      return;
    }
    auto lattice = prepared(name, form);
    expectState(expected, form + ".program", programState(lattice.program), ROUNDED);
    expectState(expected, form + ".normalForm", programState<T>(lattice), ROUNDED);
    for (const bool equationsOnly : {true, false}) {
      if (equationsOnly && lattice.Ag.rowCount == 0) continue;
      const std::string step = form + ".buildBase." + (equationsOnly ? "true" : "false");
      if (const auto failure = expected.find(step + ".failure"); failure != expected.end()) {
        EXPECT_EXIT(lattice.buildBase(equationsOnly), ExitedWithCode(1), failure->second);
        continue;
      }
      lattice.buildBase(equationsOnly);
      expectState(expected, step, latticeState(lattice), ROUNDED);
    }
  }
};
TYPED_TEST_SUITE(States, Pairs);

TYPED_TEST(States, AreReachedStepByStep) {
  const auto names = programNames();
  ASSERT_EQ(names.size(), 21U);
  for (const std::string& name : names) {
    const State expected = readState(name);
    for (const char* const form : {"ff", "ft", "tf"}) {
      try {
        this->check(name, form, expected);
      } catch (const PrecisionException& exception) {
        // A third is no short decimal fraction.
        EXPECT_EQ(name, "eq_fraction");
        EXPECT_STREQ(exception.what(), "iMF overflow2");
        EXPECT_TRUE(this->ROUNDED);
      }
    }
  }
}

}  // namespace
}  // namespace vexil
