// Vexil - exact integer optimization on lattices.
#include "frontend/ylattice.h"

#include <iostream>

#include "foundation/trace.h"

namespace vexil {

template <typename T>
void YLattice<T>::traceLine(const char* text) const {
  if (standard.params.verb.current >= 2) {
    std::cout << traceBegin() << ' ' << text << traceEnd(false);
  }
}

template <typename T>
void YLattice<T>::switchToExtended() {
  if (isExtended) return;
  traceLine("Switching to extended precision");
  extended.assign(standard, false);
  isExtended = true;
}

template <typename T>
void YLattice<T>::switchToStandard() {
  if (!isExtended) return;
  standard.assign(extended, false);
  isExtended = false;
  traceLine("Using standard precision");
}

template <typename T>
void YLattice<T>::tryStandard() {
  try {
    switchToStandard();
  } catch (const PrecisionException&) {
    // The run stays in extended precision.
  }
}

template <typename T>
void YLattice<T>::readOptFile() {
  const auto isVerbose = [](const auto& lattice) { return lattice.params.verb.current == 2; };
  if (onActive(isVerbose)) std::cout << traceBegin() << " Reading opt file ..." << traceNewline();
  switchToExtended();
  extended.program.readOptFile();
  tryStandard();
  if (onActive(isVerbose)) std::cout << traceEnd(true);
}

template <typename T>
bool YLattice<T>::readStarsFromSolFile(bool stopAtFirst) {
  return guarded([=](auto& lattice) { return lattice.readStarsFromSolFile(stopAtFirst); });
}

template <typename T>
bool YLattice<T>::checkStars() {
  return guarded([](auto& lattice) { return lattice.program.checkAllStars(); });
}

template <typename T>
void YLattice<T>::writeSolFile(bool asTheyStand) {
  guarded([=](auto& lattice) { lattice.writeSolFile(asTheyStand); });
}

template <typename T>
String YLattice<T>::report() {
  return guarded([](const auto& lattice) { return lattice.program.report(); });
}

template class YLattice<dbl_t>;

}  // namespace vexil
