// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>

namespace vexil::fuzz {

/// A run of the engine on the program that belongs to a sol file.
struct EngineRun {
  std::size_t numbers = 0;  ///< which of the four instantiations
  bool force1 = false;      ///< the arguments of `prepare`
  bool force2 = false;
  long sol = 0;  ///< so many stars end the process

  [[nodiscard]] std::string name() const;

  /// Prepares and generates, then two passes of the reduction with all files on. Returns 0, or 3
  /// where precision was lost. To be the body of a child process.
  [[nodiscard]] int operator()(const std::string& solFile) const;
};

/// What is wrong with the stars of a sol file, checked exactly; nothing if all is well. Without
/// targets a star may keep the slack variables of a `prepared` program behind its own.
[[nodiscard]] std::string starFault(const std::string& solFile, bool prepared);

}  // namespace vexil::fuzz
