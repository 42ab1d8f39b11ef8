// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace vexil {

template <typename T>
class Array;

/// The text type of the system: the library string with a few operations, none of which changes the
/// text it is called on.
class String : public std::string {
 public:
  using std::string::string;
  String() = default;
  String(const std::string& text) : std::string(text) {}
  String(std::string&& text) noexcept : std::string(std::move(text)) {}
  String(const char* text) : std::string(text) {}

  /// The pieces between the separators, as the library's line reader delivers them: a trailing
  /// separator yields no empty last piece, an empty text yields no piece.
  [[nodiscard]] Array<String> split(char separator) const;

  /// Plain replacement of every `what`, which must not be empty; inserted text is not scanned
  /// again.
  [[nodiscard]] String replaceAll(const String& what, const String& by) const;

  /// Every match of the ECMAScript regular expression `pattern` replaced by `by`.
  [[nodiscard]] String regexReplace(const String& pattern, const String& by) const;

  /// The text without the characters of `chars` at its end, at its start, at both ends.
  [[nodiscard]] String trimRight(const char* chars) const;
  [[nodiscard]] String trimLeft(const char* chars) const;
  [[nodiscard]] String trim(const char* chars) const;

  /// Case-sensitive test of the end; an empty suffix ends every text.
  [[nodiscard]] bool endsWith(const String& suffix) const;

  /// Each character through the platform's `tolower`, `toupper`.
  [[nodiscard]] String toLower() const;
  [[nodiscard]] String toUpper() const;
};

/// All white space: what is trimmed from the fields of a star and from an option line.
inline constexpr const char* WHITE_SPACE = " \t\n\r\f\v";

/// The part of a text that `String::trim` would copy.
[[nodiscard]] std::string_view trimmed(std::string_view text, std::string_view chars = WHITE_SPACE);

/// A decimal digit, whatever the locale.
[[nodiscard]] constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace vexil
