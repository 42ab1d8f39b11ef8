// Vexil - exact integer optimization on lattices.
//
// What every text format of the system shares: blanks, comments and the field bar. None of these
// helpers throws or reports. `skipBlanks` and `takeBar` leave the stream failed where they run into
// the end, and the next reader refuses it; `skipChars` alone only marks the end.
#pragma once

#include <istream>

#include "foundation/string.h"

namespace vexil {

/// The characters between the items of a text.
inline const String BLANKS = " \t\r\n";

/// The next character, not consumed; the end-of-stream value where there is none. Looking at the
/// end marks it, looking again behind it fails the stream.
[[nodiscard]] int lookAhead(std::istream& in);

/// Looks at the next character; false at the end of the stream.
bool peekChar(std::istream& in, int* peeked = nullptr);

/// True if the next character is `c`; nothing is consumed.
[[nodiscard]] inline bool nextIs(std::istream& in, char c) {
  return lookAhead(in) == std::istream::traits_type::to_int_type(c);
}

/// Skips one comment, "/*" to the next "*/" or "//" to the end of the line, and tells whether one
/// stood there. The end of a comment is awaited for ever: an unclosed one and a line comment that
/// no newline ends do not return. A "/" that opens no comment stays consumed, and the character
/// behind it is put back in its place.
bool skipComment(std::istream& in, int* peeked = nullptr);

/// With `all` skips for as long as the next character is in `set` and returns false; without it
/// skips at most one character and tells whether it did.
bool skipChars(std::istream& in, const String& set, bool all, int* peeked = nullptr);

/// Skips characters of `set` and comments in any mix.
void skipBlanks(std::istream& in, const String& set = BLANKS, int* peeked = nullptr);

/// Skips blanks and comments, then takes one "|" if it is next; tells whether it did.
bool takeBar(std::istream& in);

}  // namespace vexil
