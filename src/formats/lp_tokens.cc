// Vexil - exact integer optimization on lattices.
#include "formats/lp_tokens.h"

#include <algorithm>
#include <array>

#include "formats/coefficient.h"
#include "formats/remarks.h"
#include "foundation/string.h"

namespace vexil::formats {

namespace {

struct SectionWord {
  std::string_view words;  ///< in lower case; a blank stands for blanks of any number
  LpSection section;
};

// A spelling stands ahead of those that it begins with.
constexpr std::array<SectionWord, 34> SECTION_WORDS = {{
    {"minimize", LpSection::MINIMIZE},
    {"minimum", LpSection::MINIMIZE},
    {"min", LpSection::MINIMIZE},
    {"maximize", LpSection::MAXIMIZE},
    {"maximum", LpSection::MAXIMIZE},
    {"max", LpSection::MAXIMIZE},
    {"subject to", LpSection::ROWS},
    {"such that", LpSection::ROWS},
    {"s.t.", LpSection::ROWS},
    {"st.", LpSection::ROWS},
    {"st", LpSection::ROWS},
    {"bounds", LpSection::BOUNDS},
    {"bound", LpSection::BOUNDS},
    {"generals", LpSection::INTEGER},
    {"general constraints", LpSection::REFUSED},
    {"general", LpSection::INTEGER},
    {"gen", LpSection::INTEGER},
    {"integers", LpSection::INTEGER},
    {"integer", LpSection::INTEGER},
    {"int", LpSection::INTEGER},
    {"binaries", LpSection::BINARY},
    {"binary", LpSection::BINARY},
    {"bin", LpSection::BINARY},
    {"semi-continuous", LpSection::REFUSED},
    {"semis", LpSection::REFUSED},
    {"semi", LpSection::REFUSED},
    {"sos1", LpSection::REFUSED},
    {"sos2", LpSection::REFUSED},
    {"sos", LpSection::REFUSED},
    {"lazy constraints", LpSection::REFUSED},
    {"user cuts", LpSection::REFUSED},
    {"pwlobj", LpSection::REFUSED},
    {"multi-objectives", LpSection::REFUSED},
    {"end", LpSection::END},
}};

constexpr std::string_view BLANKS = " \t\r\f\v";
constexpr std::string_view NAME_MARKS = "!\"#$%&(),.;?@_`'{}~|/";

bool isNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) ||
         NAME_MARKS.find(c) != std::string_view::npos || static_cast<unsigned char>(c) >= 0x80;
}

std::size_t nameLength(std::string_view text) {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isNameChar) -
                                  text.begin());
}

/// The length of `words` at the start of `text`, 0 if something else stands there.
std::size_t matchLength(std::string_view text, std::string_view words) {
  std::size_t end = 0;
  while (true) {
    const std::size_t length = std::min(words.find(' '), words.size());
    if (!equalsIgnoringCase(text.substr(end, length), words.substr(0, length))) return 0;
    end += length;
    if (length == words.size()) break;
    words.remove_prefix(length + 1);
    const std::size_t next = text.find_first_not_of(BLANKS, end);
    if (next == end || next == std::string_view::npos) return 0;
    end = next;
  }
  return end < text.size() && (isNameChar(text[end]) || text[end] == '-') ? 0 : end;
}

}  // namespace

bool isLpName(std::string_view name) {
  const bool isWord = !name.empty() && nameLength(name) == name.size() && name.front() != '.' &&
                      !isDigit(name.front()) && !isInfinityWord(name) &&
                      !equalsIgnoringCase(name, "free");
  return isWord && std::none_of(SECTION_WORDS.begin(), SECTION_WORDS.end(), [&](const auto& word) {
           return equalsIgnoringCase(name, word.words.substr(0, word.words.find(' ')));
         });
}

void LpTokens::skipBlanks() {
  const std::string_view text = source_.text();
  while (position_ < text.size()) {
    const char c = text[position_];
    if (c == '\\') {
      const std::size_t end = std::min(text.find('\n', position_), text.size());
      const auto remark = remarkIn(text.substr(position_ + 1, end - position_ - 1));
      if (remark) remarks_.emplace_back(*remark);
      position_ = end;
    } else if (c == '\n') {
      lineStart_ = true;
      ++position_;
    } else if (BLANKS.find(c) != std::string_view::npos) {
      ++position_;
    } else {
      return;
    }
  }
}

bool LpTokens::readSection() {
  const std::string_view rest = source_.text().substr(position_);
  for (const auto& [words, section] : SECTION_WORDS) {
    const std::size_t length = matchLength(rest, words);
    if (length == 0) continue;
    const std::size_t next = rest.find_first_not_of(" \t\r\n", length);
    if (next != std::string_view::npos && rest[next] == ':') return false;
    token_.kind = LpTokenKind::SECTION;
    token_.section = section;
    token_.text = rest.substr(0, length);
    return true;
  }
  return false;
}

void LpTokens::advance() {
  skipBlanks();
  const std::string_view rest = source_.text().substr(position_);
  token_ = {.offset = position_, .firstOfLine = lineStart_};
  lineStart_ = false;
  if (rest.empty()) return;
  const char c = rest.front();
  token_.text = rest.substr(0, 1);
  if (token_.firstOfLine && readSection()) {
    // its text is set
  } else if (const std::size_t digits = decimalLength(rest); digits > 0) {
    token_.kind = LpTokenKind::NUMBER;
    token_.text = rest.substr(0, digits);
  } else if (isNameChar(c) && c != '.') {
    token_.kind = LpTokenKind::NAME;
    token_.text = rest.substr(0, nameLength(rest));
  } else if (c == '<' || c == '>' || c == '=') {
    token_.kind = LpTokenKind::RELATION;
    const char second = rest.size() > 1 ? rest[1] : ' ';
    const bool isPair =
        (c == '=' && (second == '<' || second == '>')) || (c != '=' && second == '=');
    if (isPair && c == '=') token_.text = rest.substr(1, 1);
    position_ += isPair ? 2 : 1;
    return;
  } else if (c == '+' || c == '-') {
    const bool arrow = rest.starts_with("->");
    token_.kind = arrow ? LpTokenKind::OTHER : LpTokenKind::SIGN;
    if (arrow) token_.text = rest.substr(0, 2);
  } else {
    token_.kind = c == ':' ? LpTokenKind::COLON : LpTokenKind::OTHER;
  }
  position_ += token_.text.size();
}

}  // namespace vexil::formats
