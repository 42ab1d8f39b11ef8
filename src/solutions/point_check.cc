// Vexil - exact integer optimization on lattices.
#include "solutions/point_check.h"

#include <algorithm>

#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// True if `value` has no more than `places` decimal places; 0 places and less mean a whole number.
bool isMultiple(const QQ& value, const QQ& places) {
  if (!(places > QQ(0))) return isZero(value.zaehler);
  // A power of ten that as many places as there are bits make divides all that any power does.
  const QQ enough = 4 * digitCount(value.nenner);
  ZZ scale;
  powerOfTen(static_cast<std::int64_t>(toWord(std::min(places, enough).ganze)), scale);
  return isZero((value * QQ(std::move(scale))).zaehler);
}

std::optional<String> faultOfVariable(const Vexil<QQ>& program, std::int64_t i, const QQ& value) {
  const auto said = [&](const auto&... what) {
    return String(joined("x[", i, "] = ", value, " is ", what...));
  };
  if (value.isInf) return said("not finite");
  if (value < program.lx[i]) return said("below its bound ", program.lx[i]);
  if (value > program.rx[i]) return said("above its bound ", program.rx[i]);
  const QQ& places = program.dx[i];
  if (isMultiple(value, places)) return std::nullopt;
  if (places > QQ(0)) return said("finer than its ", places, " decimal places");
  return said("not a whole number");
}

}  // namespace

std::optional<String> faultOfPoint(const Vexil<QQ>& program, const Vector<QQ>& x) {
  if (x.MN != program.lx.MN) {
    return String(joined("it has ", x.MN, " values instead of ", program.lx.MN));
  }
  for (std::int64_t i = 1; i <= x.MN; ++i) {
    if (auto fault = faultOfVariable(program, i, x[i])) return fault;
  }
  for (std::int64_t i = 1; i <= program.Ag.rowCount; ++i) {
    const QQ value = program.Ag[i] * x;
    if (value == program.bg[i]) continue;
    return String(joined("equation ", i, " gives ", value, " instead of ", program.bg[i]));
  }
  for (std::int64_t i = 1; i <= program.Au.rowCount; ++i) {
    const QQ value = program.Au[i] * x;
    const bool below = value < program.lu[i];
    if (!below && value <= program.ru[i]) continue;
    return String(joined("inequation ", i, " gives ", value, ", which is ",
                         below ? "below" : "above", " its bound ",
                         below ? program.lu[i] : program.ru[i]));
  }
  return std::nullopt;
}

}  // namespace vexil
