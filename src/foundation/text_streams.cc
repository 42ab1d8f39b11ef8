// Vexil - exact integer optimization on lattices.
#include "foundation/text_streams.h"

namespace vexil {

namespace {

using Traits = std::istream::traits_type;

constexpr int END = Traits::eof();

int seen(int character, int* peeked) {
  if (peeked != nullptr) *peeked = character;
  return character;
}

bool contains(const String& set, int character) {
  return character != END && set.find(Traits::to_char_type(character)) != String::npos;
}

}  // namespace

int lookAhead(std::istream& in) {
  if (!in.good()) {
    in.setstate(std::ios::failbit);
    return END;
  }
  try {
    const int next = in.rdbuf()->sgetc();
    if (next == END) in.setstate(std::ios::eofbit);
    return next;
  } catch (...) {
    in.setstate(std::ios::badbit);
    return END;
  }
}

bool peekChar(std::istream& in, int* peeked) { return seen(lookAhead(in), peeked) != END; }

bool skipComment(std::istream& in, int* peeked) {
  if (seen(lookAhead(in), peeked) != '/') return false;
  in.get();
  const int opening = seen(lookAhead(in), peeked);
  if (opening == '*') {
    in.get();
    for (int previous = 0, c = in.get(); previous != '*' || c != '/'; c = in.get()) previous = c;
    seen(lookAhead(in), peeked);
    return true;
  }
  if (opening == '/') {
    while (seen(lookAhead(in), peeked) != '\n') in.get();
    return true;
  }
  if (opening != END) in.putback(Traits::to_char_type(opening));
  return false;
}

bool skipChars(std::istream& in, const String& set, bool all, int* peeked) {
  int next = seen(lookAhead(in), peeked);
  if (!all) {
    const bool found = contains(set, next);
    if (found) in.get();
    return found;
  }
  while (contains(set, next)) {
    in.rdbuf()->sbumpc();
    next = seen(lookAhead(in), peeked);
  }
  return false;
}

void skipBlanks(std::istream& in, const String& set, int* peeked) {
  do {
    skipChars(in, set, true, peeked);
  } while (skipComment(in, peeked));
}

bool takeBar(std::istream& in) {
  skipBlanks(in);
  const bool bar = nextIs(in, '|');
  if (bar) in.get();
  return bar;
}

}  // namespace vexil
