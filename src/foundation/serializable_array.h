// Vexil - exact integer optimization on lattices.
#pragma once

#include <sstream>
#include <type_traits>

#include "foundation/array.h"
#include "foundation/serializable.h"
#include "foundation/text_streams.h"

namespace vexil {

/// Array with a bracketed text form. The first character of `delimiters` separates the elements.
///
/// Escaping covers the delimiters behind the first one and the character NUL, in both directions:
/// an element that holds the separator itself is written as it stands and comes back as two.
template <typename T>
class SerializableArray : public ConversionArray<T>, public Serializable {
 public:
  explicit SerializableArray(const String& separators = ",", bool comments = false,
                             bool second = false)
      : Serializable(separators, comments, second) {}

  /// "[", a line break (a newline if `delimiters` holds one, else a blank), the escaped elements,
  /// behind the last one the line break again, "]".
  std::ostream& write(std::ostream& out) const override {
    const char lineBreak = delimiters.find('\n') == String::npos ? ' ' : '\n';
    out << '[' << lineBreak;
    std::ostringstream element;
    for (std::int64_t i = 1; i <= this->MN; ++i) {
      element.str("");
      element << this->data[i];
      out << escaped(element.str());
      if (i < this->MN) out << delimiters.front();
    }
    if (this->MN != 0) out << lineBreak;
    return out << ']';
  }

  /// Reads the text form. Without `skipComments` a token ends at a delimiter or at "]"; with it,
  /// delimiters and comments are skipped and only "]" ends a token. A backslash takes the character
  /// behind it into the token. The end of the stream ends the reading. That, or an element that
  /// could not be converted, leaves the stream failed. Fatal: "SerializableArray: no start found".
  void read(std::istream& in) override {
    skipChars(in, BLANKS, true);
    if (!nextIs(in, '[')) fail("SerializableArray: no start found");
    this->clear();
    in.get();
    char previous = '[';
    int end = 0;
    bool sound = true;
    for (bool first = true; end != ']' && end != END; first = false) {
      String token;
      end = readToken(in, token, previous);
      const bool ignored = token.empty() && (first || end == ']' || end == END);
      if (!ignored) sound = appendElement(unescaped(token)) && sound;
    }
    if (end == ']') in.get();
    if (end == END || !sound) in.setstate(std::ios::failbit);
  }

 private:
  static constexpr int END = std::istream::traits_type::eof();

  /// The escapes "\\x" for the delimiters from the second on and for the NUL behind the last one.
  template <typename Step>
  void forEachEscape(Step step) const {
    for (std::size_t k = 1; k <= delimiters.size(); ++k) {
      const String plain(1, delimiters.c_str()[k]);
      step(plain, String("\\") + plain);
    }
  }

  [[nodiscard]] String escaped(String text) const {
    forEachEscape(
        [&](const String& plain, const String& escape) { text = text.replaceAll(plain, escape); });
    return text;
  }

  [[nodiscard]] String unescaped(String text) const {
    forEachEscape(
        [&](const String& plain, const String& escape) { text = text.replaceAll(escape, plain); });
    return text;
  }

  /// Collects one token; `previous` is the last character consumed. Returns what ended the token:
  /// "]", which stays in the stream, a consumed delimiter, or the end of the stream.
  int readToken(std::istream& in, String& token, char& previous) const {
    for (;;) {
      const bool escapedCharacter = previous == '\\';
      if (!escapedCharacter && skipComments) skipBlanks(in, delimiters);
      const int next = lookAhead(in);
      if (next == END) return END;
      const char c = std::istream::traits_type::to_char_type(next);
      if (!escapedCharacter && c == ']') return next;
      previous = c;
      in.get();
      if (!escapedCharacter && !skipComments && delimiters.find(c) != String::npos) return next;
      token += c;
    }
  }

  /// Converts a token into a new last element and tells whether that went well.
  bool appendElement(const String& token) {
    this->resize(this->MN + 1, false);
    T& element = this->data[this->MN];
    if constexpr (std::is_base_of_v<std::string, T>) {
      element = token;
      return true;
    } else {
      std::istringstream text(token);
      text >> element;
      return !text.fail();
    }
  }
};

}  // namespace vexil
