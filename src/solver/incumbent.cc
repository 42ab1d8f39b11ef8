// Vexil - exact integer optimization on lattices.
#include "solver/incumbent.h"

#include "solver/model.h"

namespace vexil::solver {

Incumbent::Incumbent(const Vexil<QQ>& inputProgram, const std::vector<Vector<QQ>>& known,
                     const Settings& searchSettings, Listener& pointListener)
    : program(inputProgram),
      settings(searchSettings),
      listener(pointListener),
      collecting(program.dt.MN == 0 || settings.targetLimit || settings.slackLimit) {
  for (const Vector<QQ>& x : known) record(x);
}

/// Takes a point into the books.
bool Incumbent::record(const Vector<QQ>& x) {
  QQ norm;
  if (program.dt.MN > 0) {
    QQ slackNorm;
    norm = program.targetAndSlackNorm(program.At * x, x, slackNorm);
    if (settings.targetLimit && norm > *settings.targetLimit) return false;
    if (settings.slackLimit && slackNorm > *settings.slackLimit) return false;
  }
  if (collecting) {
    std::string text;
    for (std::int64_t i = 1; i <= x.MN; ++i) {
      append(text, x[i]);
      text += ' ';
    }
    if (!texts.insert(std::move(text)).second) return false;
  } else if (bestNorm && norm >= *bestNorm) {
    return false;
  }
  if (program.dt.MN > 0 && (!bestNorm || norm < *bestNorm)) bestNorm = norm;
  ++count;
  return true;
}

bool Incumbent::take(const Vector<QQ>& x) {
  if (enough() || !isPointOf(program, x) || !record(x)) return false;
  listener.point(x);
  return true;
}

bool Incumbent::enough() const {
  return collecting && settings.wanted > 0 && count >= settings.wanted;
}

}  // namespace vexil::solver
