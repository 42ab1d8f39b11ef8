// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "formats/named_model.h"
#include "frontend/usage_exception.h"
#include "numbers/qq.h"

namespace vexil {

/// What a command line of `vexil-solve` asks for.
struct SolveOptions {
  enum class Action : std::uint8_t { SOLVE, SHOW_HELP, SHOW_VERSION };

  Action action = Action::SOLVE;
  String file;                    ///< the file that is named
  std::int64_t seconds = 0;       ///< `rtime`; 0: no limit
  std::int64_t wanted = 1;        ///< `sol`
  std::optional<QQ> tnorm;        ///< nothing: unset
  std::optional<QQ> snorm;        ///< nothing: unset
  bool enumeration = true;        ///< `eenum`
  std::int64_t blockSize = 20;    ///< `beta`
  bool deep = false;              ///< `deep`
  std::int64_t rounds = -1;       ///< `iters`
  std::int64_t verbosity = 0;     ///< `verb`
  formats::ReadSettings reading;  ///< `targets`, `decimals`
  bool names = true;              ///< `names`; print by name where names are known
  String line;                    ///< all words of the option table with their values
  std::vector<String> idle;       ///< the words that were given and have no effect here
};

/// Reads the words behind the program's name; each value is checked whole. Throws `UsageException`.
[[nodiscard]] SolveOptions parseSolveOptions(const std::vector<std::string>& words);

/// How the program is called, one line.
[[nodiscard]] String solveUsageLine();

/// The text of `--help`.
[[nodiscard]] String solveHelpText();

}  // namespace vexil
