// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>
#include <vector>

#include "formats/named_model.h"
#include "foundation/string.h"

namespace vexil {

/// What a command line of vexil-convert asks for.
struct ConvertCommand {
  bool help = false;
  bool version = false;
  bool force = false;  ///< the file to write may exist
  formats::ReadSettings settings;
  String source;
  String target;
};

/// How the program is called, one line.
[[nodiscard]] std::string convertUsageLine();

/// The text of `--help`.
[[nodiscard]] std::string convertHelpText();

/// Reads the words behind the program's name; "--" ends the options. Throws `UsageException` for a
/// word that is no option, a value that does not fit, too few or too many files and an ending that
/// is none of ".opt", ".lp", ".mps".
[[nodiscard]] ConvertCommand convertCommand(const std::vector<std::string>& words);

/// Reads the source and replaces the target with the same model in the form of its ending, which
/// another process finds complete or untouched. A target that another process makes meanwhile is
/// replaced with `force` only. Fatal: what the readers report. Throws
/// `WriteException` "path: exists (--force replaces it)" and for what keeps the target from being
/// written.
void convert(const ConvertCommand& command);

}  // namespace vexil
