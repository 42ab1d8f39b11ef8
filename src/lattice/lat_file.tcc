// Vexil - exact integer optimization on lattices.
//
// The dump of the lattice with its bounds, for whoever looks on; nothing reads it back.
#pragma once

#include <fstream>
#include <sstream>

#include "foundation/write_guard.h"
#include "lattice/lattice.h"

namespace vexil {

template <typename T, typename U>
void Lattice<T, U>::writeLatFile() const {
  if (!this->writeEnabled) return;
  if (latFile.empty()) {
    warn("latFile is not set - lattice write not possible");
    return;
  }
  std::ostringstream text;
  text.precision(17);
  text << unweightedMatrix(basis.B) << "\n\n"
       << embedding.l << '\n'
       << embedding.r << "\n\n"
       << embedding.c << '\n'
       << embedding.R << "\n\n"
       << program.lx << '\n'
       << program.rx << "\n\n"
       << program.tu << '\n'
       << program.lrtu << "\n\n"
       << run.secondsSinceStart() << "\n\n";
  const WriteGuard guard;
  std::ofstream out(latFile, std::ios::trunc);
  text << "// B -- l, r -- c, R -- lx, rx -- tu, lrtu\n";
  out << text.str();
}

}  // namespace vexil
