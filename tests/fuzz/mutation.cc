// Vexil - exact integer optimization on lattices.
#include "fuzz/mutation.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>

#include "support/tool_run.h"

namespace vexil::fuzz {
namespace {

constexpr std::size_t LONGEST = 1 << 14;

/// What the readers know.
std::vector<std::string> makeWords() {
  std::istringstream in(
      "[ ] [] [[1,1]] | = inf -inf i in nan - + 0 1 -1 2 9 10 -0 007 1/3 -7:1/3 3/2 0.25 0,5 .5 "
      "1.0 1. 1/0 1:0 1:3/2 : / . , e 1e17 99999999999999999 123456789012345678 \\ \\, /*c*/ /**/ "
      "9223372036854775808 -1234567890123456789012345678901234567890 --a=1 --verb=2 --tnorm=-inf "
      "0.000000000000000000000000000001 */ 2.2.3 \xff");
  std::vector<std::string> words = {"",   " ",    "\t",    std::string(1, '\0'), "[ 1 1 ]",
                                    "\n", "\r\n", "//c\n", "[ [ 1 1 ] ]"};
  words.insert(words.end(), std::istream_iterator<std::string>(in), {});
  return words;
}

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
  constexpr const char* BLANKS = " \t\n\v\f\r";
  const auto any = below(random, text.size() + 1);
  const auto inside = std::min(text.find_first_not_of(BLANKS, any), text.size());
  const auto start = inside == 0 ? 0 : text.find_last_of(BLANKS, inside - 1) + 1;
  return {start, std::min(text.find_first_of(BLANKS, inside), text.size()) - start};
}

void mutate(std::string& text, const Texts& texts, Random& random) {
  static const std::vector<std::string> WORDS = makeWords();
  const auto cut = [&](const Piece& piece) { return text.substr(piece.start, piece.length); };
  const Piece piece = anyPiece(text, random);
  const Piece word = anyWord(text, random);
  const std::string& newWord = WORDS[below(random, WORDS.size())];
  const std::string& other = texts[below(random, texts.size())];
  const std::function<void()> changes[] = {
      [&] { text.insert(piece.start, newWord); },
      [&] { text.replace(word.start, word.length, newWord); },
      [&] { text.replace(word.start, word.length, cut(anyWord(text, random))); },
      [&] { text.insert(word.start, cut(word) + " "); },
      [&] {
        for (std::size_t i = below(random, 20); i > 0; --i) text.insert(piece.start, cut(piece));
      },
      [&] { text.erase(piece.start, piece.length); },
      [&] { text.resize(piece.start); },
      [&] { text.replace(piece.start, text.npos, other.substr(below(random, other.size() + 1))); },
      [&] { text.replace(piece.start, 1, 1, static_cast<char>(below(random, 256))); },
  };
  changes[below(random, std::size(changes))]();
  text.resize(std::min(text.size(), LONGEST));
}

/// True if an `end` is behind every `start` of a comment.
bool isClosed(const std::string& text, const char* start, const char* end) {
  const auto last = text.rfind(start);
  return last == text.npos || text.find(end, last + 2) != text.npos;
}

}  // namespace

std::size_t below(Random& random, std::size_t limit) {
  return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

Texts corpus(const std::string& extension) {
  std::map<std::string, std::string> texts;
  for (const auto& entry :
       std::filesystem::directory_iterator(VEXIL_SOURCE_DIR "/tests/fuzz/corpus"))
    if (entry.path().extension() == extension)
      texts[entry.path().filename().string()] = support::readFile(entry.path()).value();
  Texts result;
  for (const auto& [name, text] : texts) result.push_back(text);
  return result;
}

std::string mutated(const Texts& texts, Random& random) {
  const std::string original = texts[below(random, texts.size())];
  std::string text = original;
  for (std::size_t i = below(random, 5); i > 0; --i) mutate(text, texts, random);
  return isClosed(text, "/*", "*/") && isClosed(text, "//", "\n") ? text : original;
}

}  // namespace vexil::fuzz
