// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>
#include <vector>

#include "fuzz/mutation.h"
#include "support/tool_run.h"

namespace vexil::fuzz {

/// A text for one of the readers of models.
struct ModelRun {
  std::string name;  ///< "m.lp", "m.mps" or, for the head alone, "m.opt"
  std::string text;

  /// A text that has been changed at random.
  explicit ModelRun(Random& random);

  /// Reads the text. What a model is written as has to be read again and written the same. To be
  /// the body of a child process.
  [[nodiscard]] int operator()() const;

  /// What is wrong with the end of that; nothing if all is well.
  [[nodiscard]] static std::string fault(const support::ChildEnd& end);
};

}  // namespace vexil::fuzz
