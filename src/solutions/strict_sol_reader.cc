// Vexil - exact integer optimization on lattices.
#include "solutions/strict_sol_reader.h"

#include <algorithm>
#include <charconv>

#include "foundation/array.h"
#include "foundation/exceptions.h"
#include "foundation/text_streams.h"
#include "numbers/strict_number.h"

namespace vexil {

namespace {

constexpr const char* WORD_ENDS = " \t\r\n|[]";

/// A word of a message: one line of readable length.
std::string shown(std::string_view word) {
  constexpr std::size_t LONGEST = 40;
  std::string text(word.substr(0, LONGEST));
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < ' ') c = '?';
  }
  return word.size() > LONGEST ? text + "..." : text;
}

}  // namespace

void StrictSolReader::refuse(int field, const char* what, std::string_view word) const {
  throw ReadException(joined(name_, ":", line_, ": field ", field, ": ", what,
                             word.empty() ? "" : ": ", shown(word)));
}

void StrictSolReader::advance(std::size_t count) {
  const std::string_view passed = text_.substr(at_, count);
  line_ += std::count(passed.begin(), passed.end(), '\n');
  at_ += passed.size();
}

bool StrictSolReader::skipComment() {
  const std::string_view opening = text_.substr(at_, 2);
  if (opening != "/*" && opening != "//") return false;
  const bool block = opening == "/*";
  const std::size_t end = text_.find(block ? "*/" : "\n", at_ + 2);
  if (block && end == std::string_view::npos) {
    throw ReadException(joined(name_, ":", line_, ": the comment has no end"));
  }
  advance(std::min(end, text_.size()) - at_ + (block ? 2 : 0));
  lossless_ = false;
  return true;
}

void StrictSolReader::skip() {
  do {
    advance(std::min(text_.find_first_not_of(BLANKS, at_), text_.size()) - at_);
  } while (skipComment());
}

bool StrictSolReader::takeBar() {
  skip();
  if (!nextIs('|')) return false;
  advance(1);
  itemEnd_ = line_;
  return true;
}

/// The characters up to a blank, a bar, a bracket or a comment; the next one if it is one of these.
std::string_view StrictSolReader::takeWord() {
  const std::size_t start = at_;
  std::string_view word = text_.substr(start, text_.find_first_of(WORD_ENDS, start) - start);
  for (const char* const comment : {"/*", "//"}) word = word.substr(0, word.find(comment));
  advance(std::max<std::size_t>(word.size(), 1));
  itemEnd_ = line_;
  return text_.substr(start, at_ - start);
}

QQ StrictSolReader::takeNumber(int field) {
  std::string word(takeWord());
  if (word == "-" || word == "+") {  // a sign may stand apart
    skip();
    word.append(" ").append(takeWord());
  }
  const auto number = strictNumber(word);
  if (!number) refuse(field, "not a number", word);
  return *number;
}

void StrictSolReader::readVector(int field, Vector<QQ>& vector) {
  vector.resize(0, false);
  if (!nextIs('[')) refuse(field, "not a vector", takeWord());
  advance(1);
  for (skip(); !nextIs(']'); skip()) {
    if (atEnd()) refuse(field, "the vector has no end", "");
    vector.resize(vector.MN + 1, true);
    vector[vector.MN] = takeNumber(field);
  }
  advance(1);
  itemEnd_ = line_;
}

/// The star has no more fields: the file ends, or a line begins with the next one.
bool StrictSolReader::nextStarFollows() const {
  return atEnd() || (nextIs('[') && line_ > itemEnd_);
}

/// Tells whether the vector ahead, where target values may stand, is the next star: behind a star
/// stand the end, another star, or a norm and target values; behind target values a norm and a
/// time.
bool StrictSolReader::vectorIsStar() const {
  StrictSolReader ahead(*this);
  Vector<QQ> vector;
  ahead.readVector(3, vector);
  ahead.takeBar();
  ahead.skip();
  if (ahead.atEnd() || ahead.nextIs('[')) return vector.MN > 0;
  static_cast<void>(ahead.takeWord());
  ahead.takeBar();
  ahead.skip();
  return ahead.nextIs('[');
}

// The fields behind the first: each reads itself and the bar behind it, where there is one, and
// tells whether the star goes on.

bool StrictSolReader::readNorm(int field) {
  skip();
  if (nextStarFollows()) return false;
  if (!nextIs('|')) static_cast<void>(takeNumber(field));
  takeBar();
  return true;
}

bool StrictSolReader::readTargetValues() {
  skip();
  if (atEnd() || (nextStarFollows() && vectorIsStar())) return false;
  if (nextIs('[')) {
    Vector<QQ> values;
    readVector(3, values);
  } else if (!nextIs('|')) {
    const std::string_view word = StrictSolReader(*this).takeWord();
    if (!strictNumber(word)) refuse(3, "not a vector", word);
  }
  takeBar();
  return true;
}

bool StrictSolReader::readTime(std::int64_t& time) {
  skip();
  if (nextStarFollows()) return false;
  if (!nextIs('|')) {
    const std::string_view word = takeWord();
    const std::string_view digits = word.substr(word.front() == '+' ? 1 : 0);
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, time);
    if (!strictNumber(word)) refuse(5, "not a number", word);
    if (stop != end) refuse(5, "not a whole number", word);
    if (error != std::errc()) refuse(5, "out of range", word);
  }
  takeBar();
  return true;
}

/// Options and version, the rest of the line or, where that is empty, of the next one.
void StrictSolReader::readTexts(SolEntry& entry) {
  skip();
  if (nextStarFollows()) return;
  const std::size_t end = std::min(text_.find('\n', at_), text_.size());
  const Array<String> parts = String(std::string(text_.substr(at_, end - at_))).split('|');
  advance(end - at_);
  if (parts.MN >= 1) entry.paramText = parts[1].trim(WHITE_SPACE);
  if (parts.MN >= 2) entry.version = parts[2].trim(WHITE_SPACE);
  if (parts.MN > 2) lossless_ = false;
}

bool StrictSolReader::next(SolEntry& entry) {
  skip();
  if (atEnd()) return false;
  entry.line = line_;
  entry.time = -1;
  entry.paramText.clear();
  entry.version.clear();
  readVector(1, entry.elements);
  if (takeBar() && readNorm(2) && readTargetValues() && readNorm(4) && readTime(entry.time)) {
    readTexts(entry);
  }
  return true;
}

}  // namespace vexil
