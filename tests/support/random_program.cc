// Vexil - exact integer optimization on lattices.
#include "support/random_program.h"

#include <algorithm>
#include <cstdlib>

#include "support/programs.h"

namespace vexil::support {

namespace {

std::int64_t tenTo(int exponent) { return exponent == 0 ? 1 : 10 * tenTo(exponent - 1); }

/// A number of units as text: whole, a decimal where that is short, a fraction.
std::string text(std::int64_t units) {
  constexpr std::int64_t TENTH = RandomProgram::UNIT / 10;
  if (units % RandomProgram::UNIT == 0) return std::to_string(units / RandomProgram::UNIT);
  if (units % TENTH == 0 && units > 0)
    return std::to_string(units / RandomProgram::UNIT) + "." + std::to_string(units / TENTH % 10);
  return std::to_string(units) + "/" + std::to_string(RandomProgram::UNIT);
}

std::string vectorText(const std::vector<std::string>& elements) {
  std::string result = "[";
  for (const std::string& element : elements) result += " " + element;
  return result + " ]\n";
}

template <typename Rows, typename Text>
std::string listed(const Rows& rows, const Text& textOf) {
  std::vector<std::string> elements;
  for (const auto& row : rows) elements.push_back(textOf(row));
  return vectorText(elements);
}

template <typename Rows>
std::string matrixText(const Rows& rows) {
  std::string result = "[\n";
  for (const auto& row : rows) result += listed(row.a, text);
  return result + "]\n";
}

}  // namespace

std::uint64_t rounds() {
  const char* const text = std::getenv("VEXIL_ROUNDS");
  return text == nullptr ? 1 : std::stoull(text);
}

RandomProgram::RandomProgram(std::uint64_t seed) : generator_(seed) {
  drawVariables();
  drawEquations();
  drawInequations();
  drawTargets();
  const bool isBare = equations_.empty() && inequations_.empty() && targets_.empty();
  if (isBare) equations_.push_back({Point(lower.size())});  // a file needs a row to tell n
}

std::int64_t RandomProgram::draw(std::int64_t least, std::int64_t greatest) {
  const auto count = static_cast<std::uint64_t>(greatest - least + 1);
  return least + static_cast<std::int64_t>(generator_() % count);
}

void RandomProgram::drawVariables() {
  const bool allFixed = chance(3);
  const std::int64_t n = draw(1, 6);
  std::int64_t room = 3000;
  for (std::int64_t i = 0; i < n; ++i) {
    const std::int64_t widest = allFixed || chance(5) ? 0
                                : chance(50)          ? 1
                                                      : std::min<std::int64_t>(9, room);
    const std::int64_t width = widest == 1
                                   ? std::min<std::int64_t>(1, room - 1)
                                   : draw(0, std::max<std::int64_t>(0, std::min(widest, room - 1)));
    lower.push_back(chance(40) ? 0 : draw(-12, 12));
    upper.push_back(lower.back() + width);
    room /= width + 1;
    decimals_.push_back(chance(80) ? 0 : static_cast<int>(draw(1, 2)));
    freeBelow_.push_back(chance(10));
    freeAbove_.push_back(chance(10));
    inner_.push_back(draw(lower.back(), upper.back()));
  }
}

Point RandomProgram::coefficients() {
  const std::int64_t kind = draw(1, 10);
  Point a;
  for (std::size_t i = 0; i < lower.size(); ++i) {
    std::int64_t units = draw(-20, 30) * UNIT;
    if (kind == 1) units = 0;
    if (kind == 2) units *= 6;
    if (kind == 3) units = draw(-300, 300) * (UNIT / 10);
    if (kind == 4) units = draw(-300, 300);
    if (kind == 5) units = draw(-1, 1) * UNIT;
    if (kind == 6) units *= draw(1, 3000);
    a.push_back(chance(20) ? 0 : units);
  }
  return a;
}

void RandomProgram::drawEquations() {
  for (std::int64_t count = chance(40) ? 0 : draw(1, 2); count > 0; --count) {
    Row row{coefficients()};
    const std::int64_t exact = value(row.a, inner_);
    const std::int64_t units = VALUE_UNIT / UNIT;
    row.lower = chance(80) && exact % units == 0 ? exact / units : draw(-60, 60) * UNIT;
    row.upper = row.lower;
    equations_.push_back(row);
  }
}

void RandomProgram::drawInequations() {
  for (std::int64_t count = chance(30) ? 0 : draw(1, 3); count > 0; --count) {
    Row row{coefficients()};
    const std::int64_t middle = value(row.a, inner_) * UNIT / VALUE_UNIT;
    row.lower = middle - (chance(20) ? -draw(0, 5) : draw(0, 900));
    row.upper = chance(10) ? row.lower : row.lower + draw(0, 1800);
    row.hasLower = chance(60);
    row.hasUpper = !row.hasLower || chance(50);
    inequations_.push_back(row);
  }
  for (std::size_t i = 0; i < lower.size(); ++i) {
    if (!freeBelow_[i] && !freeAbove_[i]) continue;
    const std::int64_t factor = draw(1, 3) * (chance(50) ? 1 : -1);
    const std::int64_t scale = tenTo(decimals_[i]);
    Row row{Point(lower.size())};
    row.a[i] = factor * UNIT * scale;
    row.lower = std::min(factor * lower[i], factor * upper[i]) * UNIT;
    row.upper = std::max(factor * lower[i], factor * upper[i]) * UNIT;
    inequations_.push_back(row);
  }
}

void RandomProgram::drawTargets() {
  for (std::int64_t count = chance(25) ? 0 : draw(1, 3); count > 0; --count) {
    const std::int64_t kind = draw(1, 4);
    Target target{coefficients(), Kind::Goal, 0};
    if (kind == 1) target.kind = Kind::Minimum;
    if (kind == 2) target.kind = Kind::Maximum;
    target.wish = value(target.a, inner_) * UNIT / VALUE_UNIT + draw(-400, 400);
    targets_.push_back(target);
  }
}

std::int64_t RandomProgram::value(const Point& a, const Point& X) const {
  std::int64_t sum = 0;
  for (std::size_t i = 0; i < X.size(); ++i) sum += a[i] * tenTo(2 - decimals_[i]) * X[i];
  return sum;
}

bool RandomProgram::contains(const Point& X) const {
  constexpr std::int64_t SCALE = VALUE_UNIT / UNIT;
  for (std::size_t i = 0; i < X.size(); ++i) {
    if (X[i] < lower[i] || X[i] > upper[i]) return false;
  }
  const auto holds = [&](const Row& row) {
    const std::int64_t sum = value(row.a, X);
    return !(row.hasLower && sum < row.lower * SCALE) && !(row.hasUpper && sum > row.upper * SCALE);
  };
  return std::all_of(equations_.begin(), equations_.end(), holds) &&
         std::all_of(inequations_.begin(), inequations_.end(), holds);
}

std::int64_t RandomProgram::norm(const Point& X) const {
  std::int64_t sum = 0;
  for (const Target& target : targets_) {
    const std::int64_t t = value(target.a, X);
    if (target.kind == Kind::Minimum) sum += t;
    if (target.kind == Kind::Maximum) sum -= t;
    if (target.kind == Kind::Goal) sum += std::abs(t - target.wish * (VALUE_UNIT / UNIT));
  }
  return sum;
}

std::vector<Point> RandomProgram::points() const {
  std::vector<Point> result;
  Point X = lower;
  for (;;) {
    if (contains(X)) result.push_back(X);
    std::size_t i = 0;
    while (i < X.size() && X[i] == upper[i]) {
      X[i] = lower[i];
      ++i;
    }
    if (i == X.size()) return result;
    ++X[i];
  }
}

std::string RandomProgram::bounds(bool upperSide) const {
  std::vector<std::string> elements;
  for (std::size_t i = 0; i < lower.size(); ++i) {
    const std::int64_t X = upperSide ? upper[i] : lower[i];
    const bool isFree = upperSide ? freeAbove_[i] : freeBelow_[i];
    const std::string infinity = upperSide ? "inf" : "-inf";
    elements.push_back(
        isFree ? infinity
               : std::to_string(X) +
                     (decimals_[i] == 0 ? "" : "/" + std::to_string(tenTo(decimals_[i]))));
  }
  return vectorText(elements);
}

std::string RandomProgram::optText() const {
  return listed(targets_,
                [](const Target& target) {
                  if (target.kind == Kind::Minimum) return std::string("-inf");
                  return target.kind == Kind::Maximum ? "inf" : text(target.wish);
                }) +
         matrixText(targets_) + matrixText(equations_) +
         listed(equations_, [](const Row& row) { return text(row.lower); }) +
         matrixText(inequations_) +
         listed(inequations_,
                [](const Row& row) { return row.hasLower ? text(row.lower) : "-inf"; }) +
         listed(inequations_,
                [](const Row& row) { return row.hasUpper ? text(row.upper) : "inf"; }) +
         listed(decimals_, [](int places) { return std::to_string(places); }) + bounds(false) +
         bounds(true);
}

Vexil<QQ> RandomProgram::program() const { return programOf<QQ>(optText()); }

}  // namespace vexil::support
