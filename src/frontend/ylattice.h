// Vexil - exact integer optimization on lattices.
#pragma once

#include <type_traits>

#include "foundation/trace_state.h"
#include "lattice/lattice.h"

namespace vexil {

/// The front object of a run: one lattice in two arithmetics. Every operation runs in standard
/// precision T for as long as that holds. Where it does not, which a `PrecisionException` tells,
/// the state goes back to what it was before the operation, and the operation runs from its start
/// in exact rationals; behind each such operation there is an attempt to come back.
///
/// The state is in exactly one place at any time: the lattice that is not active is stale.
template <typename T>
class YLattice {
 public:
  Lattice<T, T> standard;   ///< the working lattice in standard precision
  Lattice<T, T> backup;     ///< `standard` as it was before an attempt
  Lattice<QQ, T> extended;  ///< the working lattice in extended precision
  bool isExtended = false;  ///< `extended` is the active lattice

  YLattice() = default;
  YLattice(const YLattice&) = delete;
  YLattice& operator=(const YLattice&) = delete;
  virtual ~YLattice() = default;

  /// Makes `extended` active.
  void switchToExtended();

  /// Makes `standard` active. Throws `PrecisionException` where a number does not survive;
  /// `extended` then stays active and whole.
  void switchToStandard();

  /// `switchToStandard` where that is possible.
  void tryStandard();

  /// Reads the opt file, exactly.
  void readOptFile();

  /// Appends the stars of the sol file; true if there is at least one.
  bool readStarsFromSolFile(bool stopAtFirst);

  /// Checks all stars and removes those that fail; true if none failed.
  bool checkStars();

  /// Rewrites the sol file.
  void writeSolFile(bool asTheyStand);

  /// The final report.
  [[nodiscard]] String report();

  /// The result of `operation` on the active lattice.
  template <typename Operation>
  auto onActive(Operation operation) {
    return isExtended ? operation(extended) : operation(standard);
  }

  /// Carries `operation`, which takes a lattice of either arithmetic, out under the guard. The
  /// trace level is put back after a roll-back, since an exception leaves levels open.
  template <typename Operation>
  auto guarded(Operation operation) {
    if (!isExtended) {
      const std::int64_t depth = traceDepth;
      backup.assign(standard, false);
      try {
        return operation(standard);
      } catch (const PrecisionException&) {
        standard.assign(backup, false);
        switchToExtended();
        traceDepth = depth;
      }
    }
    if constexpr (std::is_void_v<decltype(operation(extended))>) {
      operation(extended);
      tryStandard();
    } else {
      auto result = operation(extended);
      tryStandard();
      return result;
    }
  }

 private:
  void traceLine(const char* text) const;
};

extern template class YLattice<dbl_t>;

}  // namespace vexil
