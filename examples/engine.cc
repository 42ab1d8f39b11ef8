// Looks for ways to pay 41 in coins of 3, 5 and 7, at most nine of each, by the engine.
#include <iostream>

#include "foundation/exceptions.h"
#include "lattice/lattice.h"

int main() {
  vexil::Lattice<vexil::QQ, vexil::QQ> lattice;
  lattice.setFileNames("coins.sol");  // reads coins.opt, writes coins.sol and coins.lat
  lattice.program.readOptFile();
  lattice.params.sol.current = 0;  // the default, 1, ends the process at the first star
  lattice.prepare(false, false);   // to normal form
  lattice.generate();              // to a lattice that satisfies the equations
  lattice.writeEnabled = true;
  lattice.reportEnabled = true;
  for (int pass = 0; pass < 4; ++pass) {
    try {
      lattice.lll(1, 0, 0);  // every row that it visits is judged as a solution
    } catch (const vexil::RestartException&) {
      // A free variable has gone beyond what was seen of it; the lattice was built anew.
    }
  }
  std::cout << "stars: " << lattice.found.stars.MN << '\n' << lattice.program.report();
}
