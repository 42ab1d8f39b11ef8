// Vexil - exact integer optimization on lattices.
#include "formats/named_report.h"

namespace vexil::formats {

namespace {

std::string number(const QQ& value) { return decimalText(value).value_or(toString(value)); }

std::string nameOf(const OptHead& head, std::string_view item, std::int64_t i,
                   std::string_view stem) {
  return head.find(joined(item, '[', i, ']')).value_or(joined(stem, i));
}

}  // namespace

std::string namedReport(const Vexil<QQ>& program, const OptHead& head, const Star<QQ>& star) {
  std::string text;
  for (std::int64_t i = 1; i <= program.dt.MN; ++i) {
    const QQ value = star.targetValues[i] + head.constant(i);
    text += joined(nameOf(head, "target", i, "t"), " = ", number(value));
    if (!program.dt[i].isInf) text += joined(" (wished: ", number(program.dt[i]), ')');
    text += '\n';
  }
  if (program.dt.MN > 0) text += '\n';
  for (std::int64_t j = 1; j <= star.MN; ++j) {
    if (star[j] == QQ()) continue;
    text += joined(nameOf(head, "x", j, "x"), " = ", number(star[j]), '\n');
  }
  return text;
}

}  // namespace vexil::formats
