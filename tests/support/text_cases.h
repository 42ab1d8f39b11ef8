// Vexil - exact integer optimization on lattices.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "foundation/string.h"
#include "support/tool_run.h"

namespace vexil::support {

/// What stands behind a line "== head", its parts parted by lines "--".
struct TextCase {
  std::string head;
  std::vector<String> parts;
};

/// The cases of a file in tests/. Lines that begin with '#' are comments. A backslash takes the
/// line break behind it away; \r and \t stand for their characters.
inline std::vector<TextCase> textCases(const std::string& file) {
  std::vector<TextCase> cases;
  std::istringstream in(readFile(VEXIL_SOURCE_DIR "/tests/" + file).value());
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("== ")) {
      cases.push_back({line.substr(3), {""}});
    } else if (line == "--") {
      cases.back().parts.emplace_back();
    } else if (!line.starts_with("#")) {
      cases.back().parts.back() += line + '\n';
    }
  }
  for (auto& [head, parts] : cases) {
    for (String& part : parts)
      part = part.replaceAll("\\\n", "").replaceAll("\\r", "\r").replaceAll("\\t", "\t");
  }
  return cases;
}

}  // namespace vexil::support
