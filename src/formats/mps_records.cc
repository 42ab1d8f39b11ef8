// Vexil - exact integer optimization on lattices.
#include "formats/mps_records.h"

#include <algorithm>

#include "formats/coefficient.h"
#include "formats/remarks.h"
#include "foundation/string.h"

namespace vexil::formats {

namespace {

constexpr std::string_view BETWEEN_FIELDS = " \t\r";

/// First column, from 0, and width of each field of the fixed form.
struct Field {
  std::size_t start;
  std::size_t width;
};
constexpr std::array<Field, MpsRecords::MOST_WORDS> FIELDS = {
    {{1, 2}, {4, 8}, {14, 8}, {24, 12}, {39, 8}, {49, 12}}};

using Columns = std::array<std::string_view, MpsRecords::MOST_WORDS>;

/// The fields of a line of the fixed form; nothing if something stands between or behind them.
std::optional<Columns> fieldsOf(std::string_view line) {
  if (line.find('\t') != std::string_view::npos) return std::nullopt;
  Columns columns;
  std::size_t end = 0;
  for (std::size_t i = 0; i < FIELDS.size(); ++i) {
    const auto [start, width] = FIELDS[i];
    const std::string_view gap = line.substr(std::min(end, line.size()), start - end);
    if (!trimmed(gap, BETWEEN_FIELDS).empty()) return std::nullopt;
    end = start + width;
    if (start < line.size()) columns[i] = trimmed(line.substr(start, width), BETWEEN_FIELDS);
  }
  if (line.size() > end && !trimmed(line.substr(end), BETWEEN_FIELDS).empty()) return std::nullopt;
  return columns;
}

bool isNumber(std::string_view text) { return parseBound(text).has_value(); }

bool fits(const Columns& f, std::string_view section) {
  const bool namesEnd = f[4].empty() && f[5].empty();
  if (section == "ROWS") return !f[0].empty() && !f[1].empty() && f[2].empty() && namesEnd;
  if (section == "BOUNDS") {
    return !f[0].empty() && !f[2].empty() && (f[3].empty() || isNumber(f[3])) && namesEnd;
  }
  return f[0].empty() && !f[2].empty() && isNumber(f[3]) && (namesEnd || isNumber(f[5]));
}

/// Marker lines are written in many columns; none of their words has a blank.
bool isMarker(std::string_view line) { return line.find("'MARKER'") != std::string_view::npos; }

bool hasBlank(std::string_view name) { return name.find(' ') != std::string_view::npos; }

}  // namespace

MpsRecords::MpsRecords(const SourceText& source) : source_(source) {
  fixed_ = keepsFixedColumns();
  position_ = 0;
}

bool MpsRecords::nextLine(std::string_view& line) {
  const std::string_view text = source_.text();
  if (position_ >= text.size()) return false;
  const std::size_t end = std::min(text.find('\n', position_), text.size());
  line = text.substr(position_, end - position_);
  position_ = end + 1;
  return true;
}

/// True if names may hold blanks: there is such a name, and all lines fit the fixed form.
bool MpsRecords::keepsFixedColumns() {
  bool found = false;
  std::string_view section;
  for (std::string_view line; nextLine(line);) {
    if (line.starts_with('*') || trimmed(line, BETWEEN_FIELDS).empty()) continue;
    if (line.front() != ' ') {
      section = trimmed(line.substr(0, line.find(' ')), BETWEEN_FIELDS);
      if (section == "ENDATA") break;
      continue;
    }
    if (section == "OBJSENSE" || isMarker(line)) continue;
    const auto fields = fieldsOf(line);
    if (!fields || !fits(*fields, section)) return false;
    found = found || hasBlank((*fields)[1]) || hasBlank((*fields)[2]) || hasBlank((*fields)[4]);
  }
  return found;
}

bool MpsRecords::next() {
  while (nextLine(line_)) {
    if (line_.starts_with('*')) {
      if (const auto remark = remarkIn(line_.substr(1))) remarks_.emplace_back(*remark);
      continue;
    }
    size_ = 0;
    header_ = !line_.empty() && BETWEEN_FIELDS.find(line_.front()) == std::string_view::npos;
    if (fixed_ && !header_ && !isMarker(line_)) {
      splitAtColumns(line_);
    } else {
      splitAtBlanks(line_);
    }
    if (size_ > 0) return true;
  }
  return false;
}

void MpsRecords::splitAtBlanks(std::string_view line) {
  std::size_t start = line.find_first_not_of(BETWEEN_FIELDS);
  while (start != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(BETWEEN_FIELDS, start), line.size());
    append(line.substr(start, end - start));
    start = line.find_first_not_of(BETWEEN_FIELDS, end);
  }
}

void MpsRecords::splitAtColumns(std::string_view line) {
  const Columns fields = *fieldsOf(line);
  for (const std::string_view field : fields) {
    if (!field.empty()) append(field);
  }
}

void MpsRecords::append(std::string_view word) {
  if (size_ == MOST_WORDS) {
    source_.expected(static_cast<std::size_t>(word.data() - source_.text().data()),
                     "the end of the line behind ", MOST_WORDS, " words");
  }
  words_[size_++] = word;
}

std::size_t MpsRecords::offset(std::size_t i) const {
  const char* const at =
      i < size_ ? words_[i].data() : words_[size_ - 1].data() + words_[size_ - 1].size();
  return static_cast<std::size_t>(at - source_.text().data());
}

}  // namespace vexil::formats
