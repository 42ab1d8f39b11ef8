// Vexil - exact integer optimization on lattices.
#pragma once

#include <algorithm>
#include <sstream>

#include "lattice/lattice.h"
#include "solutions/write_time.h"

namespace vexil {

template <typename T, typename U>
String Lattice<T, U>::statistics() const {
  constexpr std::int64_t TIMES_SHOWN = 3;
  std::ostringstream out;
  if (program.tu != 0) {
    out << '\n';
    found.bestTarget.writeBestTarget(out);
    out << '\n';
  }
  if (params.bench.current == 0 && found.stars.notEmpty()) {
    out << "\nSolutions found: " << found.stars.MN << '\n';
  }
  if (found.stars.notEmpty()) {
    out << "\n{ The first solution/s was/were found after: ";
    for (std::int64_t i = 1; i <= std::min(found.stars.MN, TIMES_SHOWN); ++i) {
      writeTime(out, found.stars[i].time);
      out << ' ';
    }
    out << "}\n";
  }
  return out.str();
}

}  // namespace vexil
