// Vexil - exact integer optimization on lattices.
#include "frontend/run.h"

#include <iostream>

#include "frontend/ylattice.h"

namespace vexil {

namespace {

/// Sorts the stars of the active lattice and drops duplicates.
void arrange(YLattice<dbl_t>& front, bool compareParams) {
  front.onActive([=](auto& lattice) {
    sort(lattice.program.solStars);
    removeDuplicates(lattice.program.solStars, compareParams);
  });
}

}  // namespace

void run(const String& solFile) {
  YLattice<dbl_t> front;
  front.onActive([&](auto& lattice) { lattice.setFileNames(solFile); });
  front.readOptFile();
  front.switchToExtended();
  front.readStarsFromSolFile(false);
  front.tryStandard();
  front.checkStars();
  arrange(front, true);
  front.onActive([](auto& lattice) { lattice.writeEnabled = true; });
  front.writeSolFile(true);
  // The report also merges stars that differ in their options alone; the file keeps them apart.
  arrange(front, false);
  std::cout << front.report() << '\n';
}

}  // namespace vexil
