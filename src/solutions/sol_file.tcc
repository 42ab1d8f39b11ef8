// Vexil - exact integer optimization on lattices.
//
// The sol file: read into the star array, rewritten in place from it.
#pragma once

#include <cstdio>
#include <fstream>
#include <sstream>

#include "foundation/file_text.h"
#include "foundation/write_guard.h"
#include "lattice/lattice.h"
#include "solutions/star_check.h"

namespace vexil {

/// One star object serves all lines and is not reset between them, so a bare line keeps the time,
/// norms and target values of the line before it where its check does not set them.
template <typename T, typename U>
bool Lattice<T, U>::readStarsFromSolFile(bool stopAtFirst) {
  auto text = readFileText(this->solFile);
  if (!text || text->empty()) return false;
  std::stringstream in(std::move(*text));
  Array<Star<T>>& collected = program.solStars;
  StarCheck<T> check(program);
  bool any = false;
  Star<T> star;
  while (in.good()) {
    if (!Star<T>::readStar(star, in)) static_cast<void>(check.isValid(star));
    if (!star.notEmpty()) continue;
    if (stopAtFirst) return true;
    collected.resize(collected.MN + 1, true);
    star.handOver(collected[collected.MN]);
    any = true;
  }
  return any;
}

template <typename T, typename U>
void Lattice<T, U>::writeSolFile(bool asTheyStand) {
  if (!this->writeEnabled) return;
  if (!asTheyStand) sol2star();
  if (this->solFile.empty()) {
    warn("solFile is not set - solution write not possible");
    return;
  }
  const WriteGuard guard;
  std::ofstream out(this->solFile, std::ios::trunc);
  for (const Star<T>& star : program.solStars.elements()) {
    out << program.starText(star) << '\n' << std::flush;
  }
  const bool nothingWritten = out.good() && out.tellp() == std::streampos(0);
  out.close();
  if (nothingWritten) static_cast<void>(std::remove(this->solFile.c_str()));
}

}  // namespace vexil
