// Vexil - exact integer optimization on lattices.
//
// Small random programs of all kinds whose points can be counted one by one, and a judge of points
// that shares nothing with the solver: machine integers in a fixed unit.
#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "program/vexil.h"

namespace vexil::support {

using Point = std::vector<std::int64_t>;

/// How often the usual number of random programs is tried: VEXIL_ROUNDS of the environment, or
/// once.
[[nodiscard]] std::uint64_t rounds();

/// A program over X[i] = 10^decimals[i] x[i], counted from 0, with all its points in a box that the
/// solver may have to find out. Numbers of the program are whole in units of 1 / 60, values of rows
/// in units of 1 / 6000.
class RandomProgram {
 public:
  static constexpr std::int64_t UNIT = 60;
  static constexpr std::int64_t VALUE_UNIT = 6000;

  explicit RandomProgram(std::uint64_t seed);

  [[nodiscard]] std::string optText() const;
  [[nodiscard]] Vexil<QQ> program() const;

  [[nodiscard]] bool contains(const Point& X) const;
  /// The target norm in units of 1 / VALUE_UNIT.
  [[nodiscard]] std::int64_t norm(const Point& X) const;
  /// The points of the program, each as often as it is: once.
  [[nodiscard]] std::vector<Point> points() const;

  Point lower;  ///< the box
  Point upper;

 private:
  enum class Kind { Minimum, Maximum, Goal };
  struct Row {
    Point a;
    std::int64_t lower = 0;
    std::int64_t upper = 0;
    bool hasLower = true;
    bool hasUpper = true;
  };
  struct Target {
    Point a;
    Kind kind;
    std::int64_t wish;
  };

  std::int64_t draw(std::int64_t least, std::int64_t greatest);
  bool chance(int percent) { return draw(1, 100) <= percent; }
  Point coefficients();
  void drawVariables();
  void drawEquations();
  void drawInequations();
  void drawTargets();
  [[nodiscard]] std::int64_t value(const Point& a, const Point& X) const;
  [[nodiscard]] std::string bounds(bool upperSide) const;

  std::mt19937_64 generator_;
  std::vector<int> decimals_;
  std::vector<bool> freeBelow_;  ///< the bound is left to a row
  std::vector<bool> freeAbove_;
  Point inner_;  ///< some point of the box
  std::vector<Row> equations_;
  std::vector<Row> inequations_;
  std::vector<Target> targets_;
};

}  // namespace vexil::support
