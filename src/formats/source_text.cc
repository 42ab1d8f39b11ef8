// Vexil - exact integer optimization on lattices.
#include "formats/source_text.h"

#include <algorithm>

#include "foundation/file_text.h"

namespace vexil::formats {

SourceText::SourceText(String path) : path_(std::move(path)) {
  auto text = readFileText(path_);
  if (!text) fail("Could not read model file: ", path_);
  text_ = std::move(*text);
}

std::string SourceText::place(std::size_t offset) const {
  const std::string_view ahead = text().substr(0, offset);
  const auto line = 1 + std::count(ahead.begin(), ahead.end(), '\n');
  const std::size_t lineStart = ahead.rfind('\n') + 1;  // 0 where there is none
  return joined(path_, ':', line, ':', offset - lineStart + 1);
}

void Note::tell(const SourceText& source, std::string_view what) const {
  if (count_ == 0) return;
  const std::string times = count_ > 1 ? joined(" (", count_, " times)") : "";
  warn(source.place(first_), ": ", what, times);
}

}  // namespace vexil::formats
