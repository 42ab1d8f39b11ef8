// Vexil - exact integer optimization on lattices.
#include "foundation/file_text.h"

#include <fstream>

namespace vexil {

std::optional<std::string> readFileText(const String& path) {
  constexpr std::size_t CHUNK = 1 << 16;
  std::ifstream in(path, std::ios::binary);
  if (!in.is_open()) return std::nullopt;
  std::string text;
  while (in.good()) {
    const std::size_t length = text.size();
    text.resize(length + CHUNK);
    in.read(text.data() + length, CHUNK);
    text.resize(length + static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad()) return std::nullopt;
  return text;
}

}  // namespace vexil
