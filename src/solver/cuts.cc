// Vexil - exact integer optimization on lattices.
#include "solver/cuts.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "solver/probe.h"

namespace vexil::solver {
namespace {

constexpr double FRACTIONAL = 1e-3;
constexpr double LEAST_SCORE = 1e-3;     ///< distance of the solution from the cut
constexpr double GREATEST_COSINE = 0.9;  ///< between cuts that are taken together
constexpr std::int64_t GREATEST_TERM = std::int64_t{1} << 36;
constexpr std::int64_t GREATEST_SIDE = std::int64_t{1} << 50;
constexpr std::int64_t GREATEST_RANGE = std::int64_t{1} << 40;
constexpr std::int64_t GREATEST_WIDTH = std::int64_t{1} << 16;
constexpr std::int64_t GREATEST_COEFFICIENT = std::int64_t{1} << 11;
constexpr std::int64_t GREATEST_DENOMINATOR = 1 << 12;
constexpr std::size_t MOST_DIVISORS = 12;
constexpr int MOST_COMPLEMENTS = 8;

[[nodiscard]] std::int64_t modulo(std::int64_t a, std::int64_t b) {
  const std::int64_t rest = a % b;
  return rest < 0 ? rest + b : rest;
}

/// The rounding function F of `CutFinder`, which is superadditive with F(0) = 0; |F(c)| is at most
/// |c| + delta.
struct Rounding {
  std::int64_t delta;
  std::int64_t rho;

  [[nodiscard]] std::int64_t operator()(std::int64_t c) const {
    const std::int64_t quotient = c / delta - (c % delta < 0 ? 1 : 0);
    return (delta - rho) * quotient + std::max<std::int64_t>(0, c - quotient * delta - rho);
  }
};

/// The least denominator up to `most` that makes |x| nearly integral, by its continued fraction; 0:
/// none.
std::int64_t denominatorOf(double x, std::int64_t most) {
  x = std::fabs(x);
  double before = 0;
  double denominator = 1;
  double rest = x;
  while (std::fabs(x * denominator - std::rint(x * denominator)) > 1e-6) {
    rest = 1 / (rest - static_cast<double>(static_cast<std::int64_t>(rest)));
    if (!(rest >= 1 && rest < 1e6)) return 0;  // -inf where zero came out negative
    const double next = static_cast<double>(static_cast<std::int64_t>(rest)) * denominator + before;
    before = denominator;
    denominator = next;
    if (denominator > static_cast<double>(most)) return 0;
  }
  return static_cast<std::int64_t>(denominator);
}

double cosine(const Cut& x, const Cut& y) {
  double product = 0;
  double xx = 0;
  double yy = 0;
  for (std::size_t k = 0; k < x.a.size(); ++k) {
    const auto xk = static_cast<double>(x.a[k]);
    const auto yk = static_cast<double>(y.a[k]);
    product += xk * yk;
    xx += xk * xk;
    yy += yk * yk;
  }
  return product / std::sqrt(xx * yy);
}

}  // namespace

CutFinder::CutFinder(const ItemSystem<std::int64_t>& itemSystem,
                     const Boxes<std::int64_t>& rootBoxes, const Dictionary& solvedProgram,
                     Probe* testProbe)
    : system(itemSystem),
      boxes(rootBoxes),
      dictionary(solvedProgram),
      probe(testProbe),
      D(itemSystem.parameters),
      point(D) {}

CutFinder::Range CutFinder::rangeOf(std::size_t parameter) const {
  if (parameter >= system.coordinates) {
    return {system.ranges.lower[parameter], system.ranges.upper[parameter]};
  }
  const std::size_t item = system.parameterItem[parameter];
  return {boxes.lower[item] - system.offset[item], boxes.upper[item] - system.offset[item]};
}

/// The item is more than a coordinate, and its bounds say something.
bool CutFinder::isRow(std::size_t item) const {
  return !namesParameter[item] && item != system.objective;
}

void CutFinder::takeSolution() {
  namesParameter.assign(system.count, false);
  for (std::size_t k = 0; k < system.coordinates; ++k) {
    const std::size_t item = system.parameterItem[k];
    namesParameter[item] = true;
    point[k] = dictionary.value(item) - static_cast<double>(system.offset[item]);
  }
  for (std::size_t g = 0; g < system.goalForm.size(); ++g) {
    point[system.coordinates + g] =
        dictionary.value(system.goalSide[g]) + dictionary.value(system.goalForm[g]);
  }
}

std::vector<Cut> CutFinder::find() {
  found.clear();
  for (std::size_t k = 0; k < D; ++k) {
    const Range range = rangeOf(k);
    if (range.lower < -GREATEST_RANGE || range.upper > GREATEST_RANGE) return {};
  }
  takeSolution();
  for (std::size_t item = 0; item < system.count; ++item) {
    if (isRow(item)) {
      fromRow(item);
      cover(item, true);
      cover(item, false);
    }
    if (dictionary.isBasic(item)) fromDictionary(item);
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const Scored& x, const Scored& y) { return x.score > y.score; });
  std::vector<Cut> chosen;
  const std::size_t most = 10 + D / 4;
  for (const Scored& scored : found) {
    if (chosen.size() >= most) break;
    workDone += static_cast<std::int64_t>(chosen.size() * D);
    const bool isLike = std::any_of(chosen.begin(), chosen.end(), [&](const Cut& other) {
      return cosine(scored.cut, other) > GREATEST_COSINE;
    });
    if (!isLike) chosen.push_back(scored.cut);
  }
  return chosen;
}

/// Cuts from a row of the system by itself.
void CutFinder::fromRow(std::size_t item) {
  const double value = dictionary.value(item);
  const double room = std::min(value - dictionary.lower(item), dictionary.upper(item) - value);
  if (room > dictionary.tolerance(item)) return;
  fromMultiples({{item, 1}}, 0);
}

/// Gomory's cut of an item that is fractional.
void CutFinder::fromDictionary(std::size_t item) {
  const double value = dictionary.value(item);
  if (std::fabs(value - std::rint(value)) < FRACTIONAL) return;
  const double* a = dictionary.row(item);
  std::int64_t scale = 1;
  std::vector<std::pair<std::size_t, double>> parts;
  for (std::size_t j = 0; j < D; ++j) {
    const std::size_t other = dictionary.columnItems()[j];
    if (std::fabs(a[j]) < 1e-9 || !isRow(other)) continue;
    parts.emplace_back(other, a[j]);
    if (scale == 0) continue;
    const std::int64_t denominator =
        denominatorOf(a[j] * static_cast<double>(scale), GREATEST_DENOMINATOR / scale);
    scale = denominator * scale;
  }
  if (scale == 0) scale = GREATEST_DENOMINATOR;
  std::vector<Multiple> multiples;
  for (const auto& [other, factor] : parts) {
    const double scaled = factor * static_cast<double>(scale);
    if (!(std::fabs(scaled) < 1e9)) return;
    multiples.push_back({other, nearestInteger<std::int64_t>(scaled)});
  }
  if (isRow(item)) multiples.push_back({item, -scale});
  if (scale > 1) fromMultiples(multiples, scale);
}

/// Rounds the sum of these multiples of items, with this divisor and with others that suit it.
void CutFinder::fromMultiples(const std::vector<Multiple>& multiples, std::int64_t divisor) {
  Equation equation;
  if (!aggregate(multiples, equation)) return;
  workDone += static_cast<std::int64_t>(multiples.size() * D);
  round(equation, divisor);
  for (Term& term : equation.terms) term.c = -term.c;
  equation.r = -equation.r;
  round(std::move(equation), divisor);
}

/// The equation of parameters and slacks, each from the bound that is nearer to the solution. False
/// if its numbers are too long.
bool CutFinder::aggregate(const std::vector<Multiple>& multiples, Equation& equation) const {
  std::vector<Int128> sum(D, 0);
  Int128 r = 0;
  for (const auto& [item, factor] : multiples) {
    if (factor == 0) continue;
    const std::int64_t* row = system.coefficient.data() + (item * D);
    for (std::size_t k = 0; k < D; ++k) sum[k] += Int128{factor} * row[k];
    r -= Int128{factor} * system.offset[item];
    const double value = dictionary.value(item);
    const double below = value - dictionary.lower(item);
    const double above = dictionary.upper(item) - value;
    const bool fromUpper = above < below;
    r += Int128{factor} * (fromUpper ? boxes.upper : boxes.lower)[item];
    equation.terms.push_back({item, true, fromUpper, fromUpper ? factor : -factor,
                              std::max(0.0, std::min(above, below))});
  }
  for (std::size_t k = 0; k < D; ++k) {
    if (sum[k] == 0) continue;
    const Range range = rangeOf(k);
    const double below = point[k] - static_cast<double>(range.lower);
    const double above = static_cast<double>(range.upper) - point[k];
    const bool fromUpper = above < below;
    if (sum[k] > GREATEST_TERM || sum[k] < -GREATEST_TERM) return false;
    const auto c = static_cast<std::int64_t>(sum[k]);
    r -= sum[k] * (fromUpper ? range.upper : range.lower);
    equation.terms.push_back(
        {k, false, fromUpper, fromUpper ? -c : c, std::max(0.0, std::min(above, below))});
  }
  if (r > GREATEST_SIDE || r < -GREATEST_SIDE) return false;
  equation.r = static_cast<std::int64_t>(r);
  return !equation.terms.empty();
}

/// By how much the solution violates the rounded equation, in units of its coefficients' norm.
double CutFinder::violation(const Equation& equation, std::int64_t divisor) const {
  const Rounding rounding{divisor, modulo(equation.r, divisor)};
  if (rounding.rho == 0) return 0;
  double left = -static_cast<double>(rounding(equation.r));
  double norm = 0;
  for (const Term& term : equation.terms) {
    const auto c = static_cast<double>(rounding(term.c));
    left += c * term.q;
    if (term.q > 0 || !term.isSlack) norm += c * c;
  }
  workDone += static_cast<std::int64_t>(4 * equation.terms.size());
  return norm > 0 ? left / std::sqrt(norm) : 0;
}

/// Goes over to the other bound of a parameter.
void CutFinder::complement(Equation& equation, Term& term) const {
  const Range range = rangeOf(term.index);
  const std::int64_t width = range.upper - range.lower;
  equation.r -= term.c * width;
  term.c = -term.c;
  term.q = static_cast<double>(width) - term.q;
  term.fromUpper = !term.fromUpper;
}

/// Tries the divisor, or where it is 0 the coefficients of terms that are between their bounds; for
/// the best one also multiples of the equation and other bounds.
void CutFinder::round(Equation equation, std::int64_t divisor) {
  std::vector<std::int64_t> divisors;
  if (divisor > 0) divisors.push_back(divisor);
  for (const Term& term : equation.terms) {
    if (divisor > 0 || divisors.size() >= MOST_DIVISORS) break;
    const std::int64_t c = std::abs(term.c);
    if (c > 1 && term.q > FRACTIONAL && !term.isSlack &&
        std::find(divisors.begin(), divisors.end(), c) == divisors.end()) {
      divisors.push_back(c);
    }
  }
  std::int64_t best = 0;
  double greatest = divisor > 0 ? 1e-6 : -0.05;
  for (const std::int64_t candidate : divisors) {
    const double value = violation(equation, candidate);
    if (value > greatest) {
      greatest = value;
      best = candidate;
    }
  }
  if (best == 0) return;
  int complements = 0;
  for (Term& term : equation.terms) {
    if (term.isSlack || term.q < FRACTIONAL) continue;
    if (++complements > MOST_COMPLEMENTS) break;
    const Range range = rangeOf(term.index);
    if (range.upper - range.lower > GREATEST_WIDTH || std::abs(equation.r) > GREATEST_SIDE)
      continue;
    complement(equation, term);
    const double value = violation(equation, best);
    if (value > greatest) {
      greatest = value;
    } else {
      complement(equation, term);
    }
  }
  Equation multiple = equation;
  Equation bestMultiple = equation;
  for (int doublings = 1; doublings <= 3 && std::abs(equation.r) < GREATEST_SIDE; ++doublings) {
    for (Term& term : multiple.terms) term.c *= 2;
    multiple.r *= 2;
    const double value = violation(multiple, best);
    if (value > greatest) {
      greatest = value;
      bestMultiple = multiple;
    }
  }
  if (greatest > LEAST_SCORE) addRounded(bestMultiple, best);
}

/// The rounded equation in the parameters.
void CutFinder::addRounded(const Equation& equation, std::int64_t divisor) {
  const Rounding rounding{divisor, modulo(equation.r, divisor)};
  std::vector<Int128> a(D, 0);
  Int128 bound = rounding(equation.r);
  for (const Term& term : equation.terms) {
    const Int128 c = rounding(term.c);
    if (c == 0) continue;
    if (c > GREATEST_TERM || c < -GREATEST_TERM) return;
    const Int128 sign = term.fromUpper ? -c : c;
    if (term.isSlack) {
      const std::size_t item = term.index;
      const std::int64_t* row = system.coefficient.data() + (item * D);
      for (std::size_t k = 0; k < D; ++k) a[k] += sign * row[k];
      bound += sign * ((term.fromUpper ? boxes.upper : boxes.lower)[item] - system.offset[item]);
    } else {
      const Range range = rangeOf(term.index);
      a[term.index] += sign;
      bound += sign * (term.fromUpper ? range.upper : range.lower);
    }
  }
  if (probe != nullptr) tellRounding(equation, divisor);
  keep(std::move(a), bound);
}

void CutFinder::tellRounding(const Equation& equation, std::int64_t divisor) const {
  std::vector<Probe::Term> terms;
  for (const Term& term : equation.terms) {
    terms.push_back({term.index, term.isSlack, term.fromUpper, ZZ(term.c)});
  }
  probe->round(terms, ZZ(equation.r), ZZ(divisor));
}

namespace {

/// A 0/1 variable of a knapsack: 1 where a parameter is at its `high` bound, or else at the other.
struct Choice {
  std::size_t parameter;
  std::int64_t weight;
  bool high;
  double value;  ///< in the solution
  std::int64_t factor = 0;
};

/// The choices of a cover of the knapsack, which is minimal, to the front; their number, 0 without
/// one.
std::size_t coverOf(std::vector<Choice>& choices, std::int64_t capacity) {
  std::stable_sort(choices.begin(), choices.end(), [](const Choice& x, const Choice& y) {
    return (1 - x.value) * static_cast<double>(y.weight) <
           (1 - y.value) * static_cast<double>(x.weight);
  });
  std::int64_t weight = 0;
  std::size_t size = 0;
  while (size < choices.size() && weight <= capacity) weight += choices[size++].weight;
  if (weight <= capacity) return 0;
  const auto begin = choices.begin();
  std::stable_sort(begin, begin + static_cast<std::ptrdiff_t>(size),
                   [](const Choice& x, const Choice& y) { return x.value > y.value; });
  for (std::size_t i = size; i-- > 0;) {
    if (weight - choices[i].weight <= capacity) continue;
    weight -= choices[i].weight;
    std::rotate(begin + static_cast<std::ptrdiff_t>(i), begin + static_cast<std::ptrdiff_t>(i) + 1,
                begin + static_cast<std::ptrdiff_t>(size));
    --size;
  }
  return size;
}

/// Gives all other choices the greatest factors with which sum of factors <= size - 1 stays valid,
/// one after the other.
void lift(std::vector<Choice>& choices, std::size_t size, std::int64_t capacity) {
  std::stable_sort(choices.begin() + static_cast<std::ptrdiff_t>(size), choices.end(),
                   [](const Choice& x, const Choice& y) { return x.value > y.value; });
  // The least weight of choices whose factors sum up to v or more.
  std::vector<std::int64_t> least(size, 0);
  std::vector<std::int64_t> weights;
  for (std::size_t i = 0; i < size; ++i) {
    choices[i].factor = 1;
    weights.push_back(choices[i].weight);
  }
  std::sort(weights.begin(), weights.end());
  for (std::size_t v = 1; v < size; ++v) least[v] = least[v - 1] + weights[v - 1];
  for (std::size_t i = size; i < choices.size(); ++i) {
    Choice& choice = choices[i];
    std::size_t v = size;
    while (v > 0 && least[v - 1] > capacity - choice.weight) --v;
    choice.factor = static_cast<std::int64_t>(size - v);
    if (choice.factor == 0) continue;
    for (std::size_t sum = size - 1; sum > 0; --sum) {
      const std::size_t rest = sum - std::min(sum, size - v);
      least[sum] = std::min(least[sum], least[rest] + choice.weight);
    }
  }
}

}  // namespace

/// A lifted cover inequality of a row of 0/1 variables, from its upper side or its lower one.
void CutFinder::cover(std::size_t item, bool upward) {
  const std::int64_t* row = system.coefficient.data() + (item * D);
  Int128 room = upward ? Int128{boxes.upper[item]} - system.offset[item]
                       : Int128{system.offset[item]} - boxes.lower[item];
  std::vector<Choice> choices;
  bool isSplit = false;
  for (std::size_t k = 0; k < D; ++k) {
    if (row[k] == 0) continue;
    const Range range = rangeOf(k);
    const std::int64_t c = upward ? row[k] : -row[k];
    const std::int64_t width = range.upper - range.lower;
    room -= Int128{c} * (c > 0 ? range.lower : range.upper);
    if (width == 0) continue;
    if (width > 1) return;
    const double value = c > 0 ? point[k] - static_cast<double>(range.lower)
                               : static_cast<double>(range.upper) - point[k];
    choices.push_back({k, std::abs(c), c > 0, std::clamp(value, 0.0, 1.0)});
    isSplit = isSplit || (value > FRACTIONAL && value < 1 - FRACTIONAL);
  }
  if (!isSplit || room < 0 || room > GREATEST_TERM) return;
  const auto capacity = static_cast<std::int64_t>(room);
  const std::size_t size = coverOf(choices, capacity);
  workDone += static_cast<std::int64_t>(D + choices.size() * (size + 8));
  if (size < 2) return;
  lift(choices, size, capacity);
  std::vector<Int128> a(D, 0);
  Int128 bound = Int128(size) - 1;
  for (const Choice& choice : choices) {
    const Range range = rangeOf(choice.parameter);
    a[choice.parameter] = choice.high ? choice.factor : -choice.factor;
    bound += a[choice.parameter] * (choice.high ? range.lower : range.upper);
  }
  if (probe != nullptr) probe->cover(item, upward);
  keep(std::move(a), bound);
}

/// Takes a valid inequality, its coefficients shortened, if the solution violates it.
void CutFinder::keep(std::vector<Int128> a, Int128 bound) {
  constexpr Int128 GREATEST = Int128{1} << 70;
  Int128 divisor = 0;
  Int128 greatest = 0;
  for (const Int128 c : a) {
    const Int128 size = c < 0 ? -c : c;
    greatest = std::max(greatest, size);
    Int128 x = size;
    while (x != 0) {
      const Int128 rest = divisor % x;
      divisor = x;
      x = rest;
    }
  }
  if (greatest == 0 || greatest > GREATEST || bound > GREATEST || bound < -GREATEST) return;
  // Every parameter from one of its bounds is at least 0, so that all may be rounded down together.
  divisor = std::max(divisor, (greatest + GREATEST_COEFFICIENT - 1) / GREATEST_COEFFICIENT);
  Scored scored{{std::vector<std::int64_t>(D), 0}, 0};
  Int128 rest = bound;
  Int128 shift = 0;
  double left = 0;
  double norm = 0;
  for (std::size_t k = 0; k < D; ++k) {
    if (a[k] == 0) continue;
    const Range range = rangeOf(k);
    const bool fromUpper =
        static_cast<double>(range.upper) - point[k] < point[k] - static_cast<double>(range.lower);
    const Int128 origin = fromUpper ? range.upper : range.lower;
    const Int128 rounded =
        fromUpper ? ceilDivide<Int128>(a[k], divisor) : floorDivide<Int128>(a[k], divisor);
    rest -= a[k] * origin;
    shift += rounded * origin;
    scored.cut.a[k] = static_cast<std::int64_t>(rounded);
    const auto c = static_cast<double>(rounded);
    left += c * point[k];
    norm += c * c;
  }
  const Int128 shortened = floorDivide<Int128>(rest, divisor) + shift;
  if (norm == 0 || shortened > NARROW_LIMIT || shortened < -Int128{NARROW_LIMIT}) return;
  scored.cut.bound = static_cast<std::int64_t>(shortened);
  scored.score = (left - static_cast<double>(shortened)) / std::sqrt(norm);
  workDone += static_cast<std::int64_t>(4 * D);
  if (scored.score <= LEAST_SCORE) return;
  if (probe != nullptr) probe->cut(scored.cut.a, scored.cut.bound, toZZ(divisor));
  found.push_back(std::move(scored));
}

}  // namespace vexil::solver
