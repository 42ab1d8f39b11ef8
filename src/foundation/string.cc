// Vexil - exact integer optimization on lattices.
#include "foundation/string.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "foundation/array.h"

namespace vexil {

Array<String> String::split(char separator) const {
  Array<String> pieces;
  std::istringstream in(*this);
  for (std::string piece; std::getline(in, piece, separator);) {
    pieces.resize(pieces.MN + 1, true);
    pieces.data[pieces.MN] = std::move(piece);
  }
  return pieces;
}

String String::replaceAll(const String& what, const String& by) const {
  String result = *this;
  for (size_type at = 0; (at = result.find(what, at)) != npos; at += by.size()) {
    result.replace(at, what.size(), by);
  }
  return result;
}

String String::trimRight(const char* chars) const { return substr(0, find_last_not_of(chars) + 1); }

String String::trimLeft(const char* chars) const {
  const size_type first = find_first_not_of(chars);
  return first == npos ? String() : String(substr(first));
}

String String::trim(const char* chars) const { return trimLeft(chars).trimRight(chars); }

std::string_view trimmed(std::string_view text, std::string_view chars) {
  const std::size_t first = std::min(text.find_first_not_of(chars), text.size());
  return text.substr(first, text.find_last_not_of(chars) + 1 - first);
}

bool String::endsWith(const String& suffix) const {
  return size() >= suffix.size() && compare(size() - suffix.size(), npos, suffix) == 0;
}

String String::toLower() const {
  String result = *this;
  std::transform(begin(), end(), result.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return result;
}

String String::toUpper() const {
  String result = *this;
  std::transform(begin(), end(), result.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return result;
}

}  // namespace vexil
