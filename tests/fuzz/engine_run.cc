// Vexil - exact integer optimization on lattices.
#include "fuzz/engine_run.h"

#include "foundation/exceptions.h"
#include "frontend/abrupt_end.h"
#include "lattice/lattice.h"

namespace vexil::fuzz {
namespace {

Lattice<QQ, QQ> exactProgram(const std::string& solFile) {
  Lattice<QQ, QQ> lattice;
  lattice.setFileNames(solFile);
  lattice.program.readOptFile();
  return lattice;
}

template <typename T, typename U>
int runLattice(const EngineRun& run, const std::string& solFile) {
  Lattice<T, U> lattice;
  lattice.setFileNames(solFile);
  lattice.params.sol.current = run.sol;
  try {
    lattice.program.assign(exactProgram(solFile).program);
    lattice.prepare(run.force1, run.force2);
    lattice.generate();
    lattice.writeEnabled = lattice.reportEnabled = true;
    for (int pass = 0; pass < 2; ++pass) {
      try {
        lattice.lll(1, 0, 0);
      } catch (const RestartException&) {
        continue;
      }
    }
  } catch (const PrecisionException&) {
    return 3;
  }
  return 0;
}

}  // namespace

std::string EngineRun::name() const {
  return "numbers" + std::to_string(numbers) + (force1 ? "t" : "f") + (force2 ? "t" : "f") + "sol" +
         std::to_string(sol);
}

int EngineRun::operator()(const std::string& solFile) const {
  releaseNamesOnAbruptEnd();
  const decltype(&runLattice<QQ, QQ>) runs[] = {runLattice<dbl_t, dbl_t>, runLattice<QQ, dbl_t>,
                                                runLattice<dbl_t, QQ>, runLattice<QQ, QQ>};
  return runs[numbers](*this, solFile);
}

std::string starFault(const std::string& solFile, bool prepared) {
  Lattice<QQ, QQ> lattice = exactProgram(solFile);
  lattice.readStarsFromSolFile(false);
  for (Star<QQ>& star : lattice.program.solStars.elements()) {
    const bool isLong = star.MN > lattice.program.lx.MN;
    if (isLong && prepared && lattice.program.At.rowCount == 0) continue;
    if (isLong || !lattice.program.starIsValid(star)) return "no star: " + joined(star);
  }
  return "";
}

}  // namespace vexil::fuzz
