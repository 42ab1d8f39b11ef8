// Vexil - exact integer optimization on lattices.
//
// The strict reader of sol files. It takes what the tool's own reader takes - bare lines, comments,
// bars left out, fields over lines - and numbers with an exponent besides; but it refuses what that
// reader drops or misreads, and an empty or missing field never takes the next star for its text.
#pragma once

#include <cstdint>
#include <string_view>

#include "numbers/qq_vectors.h"

namespace vexil {

/// What a sol file says of one star. Norms and target values are passed over: they are worked out
/// anew.
struct SolEntry {
  std::int64_t line = 0;   ///< where the star starts, from 1
  Vector<QQ> elements;     ///< field 1
  std::int64_t time = -1;  ///< field 5; -1 also where it is missing
  String paramText;        ///< field 6; empty where it is missing
  String version;          ///< field 7; empty where it is missing
};

/// Reads a sol file star by star. A fault throws `ReadException` with file, line and field, such as
/// "model.sol:3: field 5: not a number: abc".
class StrictSolReader {
 public:
  /// `name` is what messages call the file; `text`, its content, has to outlive the reader.
  StrictSolReader(String name, std::string_view text) : name_(std::move(name)), text_(text) {}

  /// Reads the next star; false at the end of the file.
  bool next(SolEntry& entry);

  /// So far the file has held nothing but what its entries tell: no comment and no eighth field.
  [[nodiscard]] bool isLossless() const { return lossless_; }

 private:
  [[nodiscard]] bool atEnd() const { return at_ == text_.size(); }
  [[nodiscard]] bool nextIs(char c) const { return !atEnd() && text_[at_] == c; }
  void advance(std::size_t count);
  void skip();
  bool skipComment();
  bool takeBar();
  [[nodiscard]] std::string_view takeWord();
  [[nodiscard]] bool nextStarFollows() const;
  [[nodiscard]] bool vectorIsStar() const;
  [[nodiscard]] QQ takeNumber(int field);
  void readVector(int field, Vector<QQ>& vector);
  bool readNorm(int field);
  bool readTargetValues();
  bool readTime(std::int64_t& time);
  void readTexts(SolEntry& entry);
  [[noreturn]] void refuse(int field, const char* what, std::string_view word) const;

  String name_;
  std::string_view text_;
  std::size_t at_ = 0;
  std::int64_t line_ = 1;
  std::int64_t itemEnd_ = 1;  ///< line on which the last word, vector or bar ended
  bool lossless_ = true;
};

}  // namespace vexil
