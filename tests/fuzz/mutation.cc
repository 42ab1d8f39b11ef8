// Vexil - exact integer optimization on lattices.
#include "fuzz/mutation.h"

#include <algorithm>
#include <cctype>

namespace vexil::fuzz {

namespace {

constexpr std::size_t LONGEST = 1 << 14;

/// What the readers know, between blanks.
constexpr std::string_view DICTIONARY =
    "[ ] [] [[1,1]] | = inf -inf i in nan - + 0 1 -1 2 9 10 -0 007 1/3 -7:1/3 3/2 0.25 0,5 .5 1.0 "
    "1. 1/0 1:0 1:3/2 : / . , e 1e17 99999999999999999 123456789012345678 9223372036854775808 "
    "-1234567890123456789012345678901234567890 0.000000000000000000000000000001 /*c*/ /**/ */ "
    "//c\n "
    "\n \r\n \t \\ \\, --a=1 --verb=2 --tnorm=-inf 2.2.3 \xff";

std::vector<std::string> split(std::string_view text) {
  std::vector<std::string> words = {" ", std::string(1, '\0'), "[ 1 1 ]", "[ [ 1 1 ] ]"};
  for (std::size_t end = 0; end != text.npos; text.remove_prefix(std::min(end + 1, text.size()))) {
    end = text.find(' ');
    words.emplace_back(text.substr(0, end));
  }
  return words;
}

const std::vector<std::string> WORDS = split(DICTIONARY);

/// A piece of a text by its start and length.
struct Piece {
  std::size_t start;
  std::size_t length;
};

Piece anyPiece(const std::string& text, Random& random) {
  const std::size_t start = below(random, text.size() + 1);
  return {start, below(random, std::min<std::size_t>(text.size() - start, 64) + 1)};
}

/// A run of characters without white space.
Piece anyWord(const std::string& text, Random& random) {
  const auto isBlank = [&](std::size_t i) {
    return std::isspace(static_cast<unsigned char>(text[i])) != 0;
  };
  std::size_t start = below(random, text.size() + 1);
  while (start < text.size() && isBlank(start)) ++start;
  while (start > 0 && !isBlank(start - 1)) --start;
  std::size_t end = start;
  while (end < text.size() && !isBlank(end)) ++end;
  return {start, end - start};
}

std::string cut(const std::string& text, const Piece& piece) {
  return text.substr(piece.start, piece.length);
}

void mutate(std::string& text, const std::vector<std::string>& corpus, Random& random) {
  const Piece piece = anyPiece(text, random);
  const Piece word = anyWord(text, random);
  const std::string& newWord = WORDS[below(random, WORDS.size())];
  switch (below(random, 10)) {
    case 0:
      if (piece.start < text.size()) text[piece.start] ^= static_cast<char>(1U << below(random, 8));
      break;
    case 1:
      text.insert(piece.start, newWord);
      break;
    case 2:
      text.replace(word.start, word.length, newWord);
      break;
    case 3:
      text.erase(word.start, word.length);
      break;
    case 4:
      text.insert(word.start, cut(text, word) + " ");
      break;
    case 5: {
      const Piece other = anyWord(text, random);
      const auto [first, second] = std::minmax(
          word, other, [](const Piece& a, const Piece& b) { return a.start < b.start; });
      const std::string moved = cut(text, second);
      text.replace(second.start, second.length, cut(text, first));
      text.replace(first.start, first.length, moved);
      break;
    }
    case 6:
      text.erase(piece.start, piece.length);
      break;
    case 7:
      text.resize(piece.start);
      break;
    case 8: {
      const std::string repeated = cut(text, piece);
      for (std::size_t i = below(random, 20); i > 0; --i) text.insert(piece.start, repeated);
      break;
    }
    default: {
      const std::string& other = corpus[below(random, corpus.size())];
      text = text.substr(0, piece.start) + other.substr(below(random, other.size() + 1));
    }
  }
  text.resize(std::min(text.size(), LONGEST));
}

}  // namespace

std::size_t below(Random& random, std::size_t limit) {
  return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

std::string mutated(const std::vector<std::string>& corpus, Random& random) {
  const std::string original = corpus[below(random, corpus.size())];
  std::string text = original;
  for (std::size_t i = below(random, 5); i > 0; --i) mutate(text, corpus, random);
  return comesToItsEnd(text) ? text : original;
}

bool comesToItsEnd(std::string_view text) {
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != '/') continue;
    if (text[i + 1] == '*' && text.find("*/", i + 2) == text.npos) return false;
    if (text[i + 1] == '/' && text.find('\n', i + 2) == text.npos) return false;
  }
  return true;
}

}  // namespace vexil::fuzz
