// Vexil - exact integer optimization on lattices.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "formats/source_text.h"

namespace vexil::formats {

/// The lines of an MPS file as words, comments and empty lines left out.
///
/// A line is split at its blanks. Names with blanks are understood where every line of the file
/// keeps to the columns of the fixed form, 2-3, 5-12, 15-22, 25-36, 40-47 and 50-61.
class MpsRecords {
 public:
  static constexpr std::size_t MOST_WORDS = 6;

  explicit MpsRecords(const SourceText& source);

  /// Goes to the next record; false at the end of the text.
  [[nodiscard]] bool next();

  [[nodiscard]] bool isHeader() const { return header_; }   ///< it begins in the first column
  [[nodiscard]] std::size_t size() const { return size_; }  ///< number of words, 1 to 6
  [[nodiscard]] std::string_view operator[](std::size_t i) const { return words_[i]; }

  /// Where word `i` stands; for i = `size()` the end of the record.
  [[nodiscard]] std::size_t offset(std::size_t i) const;

  /// The comments that begin with "* vexil: ", without that, up to the record at hand.
  [[nodiscard]] const std::vector<std::string>& remarks() const { return remarks_; }

 private:
  [[nodiscard]] bool nextLine(std::string_view& line);
  [[nodiscard]] bool keepsFixedColumns();
  void splitAtBlanks(std::string_view line);
  void splitAtColumns(std::string_view line);
  void append(std::string_view word);

  const SourceText& source_;
  std::size_t position_ = 0;  ///< start of the line to come
  bool fixed_ = false;
  bool header_ = false;
  std::size_t size_ = 0;
  std::array<std::string_view, MOST_WORDS> words_;
  std::string_view line_;  ///< the record at hand
  std::vector<std::string> remarks_;
};

}  // namespace vexil::formats
