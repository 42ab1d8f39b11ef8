// Vexil - exact integer optimization on lattices.
#include "formats/mps_reader.h"

#include <algorithm>
#include <unordered_map>

#include "formats/mps_records.h"

namespace vexil::formats {

namespace {

/// A row of the ROWS section: where it went, and what later sections say about it.
struct DeclaredRow {
  char type = 'N';
  std::int32_t index = -1;       ///< into the targets for 'N', else into the rows; -1: dropped
  std::int32_t lastColumn = -1;  ///< the column that named it last
  Bound side = {};               ///< of the RHS section
  Bound range = {};
};

/// What the BOUNDS section said of a column.
struct StatedBounds {
  bool marked = false;   ///< between the markers of integer columns
  bool any = false;      ///< a record names it
  bool lower = false;    ///< a record sets its lower bound
  std::size_t last = 0;  ///< place of the last record
};

class MpsReader {
 public:
  MpsReader(const SourceText& source, const ReadSettings& settings)
      : source_(source), settings_(settings), records_(source) {}

  NamedModel read();

 private:
  void readHeader();
  void readSense(std::size_t word);
  void readRow();
  void readColumnEntries();
  void readMarker();
  void startColumn();
  void addEntry(std::size_t rowWord);
  void readSides(Bound DeclaredRow::*side);
  void readBoundRecord();
  void applyBound(std::string_view type, std::int32_t column, std::size_t valueWord);
  void finishRows();
  void finishBounds();

  [[nodiscard]] DeclaredRow& rowAt(std::size_t word);
  [[nodiscard]] Coefficient numberAt(std::size_t word) const;
  [[nodiscard]] Bound boundAt(std::size_t word, int infinite) const;
  [[nodiscard]] bool isOfFirstSet(std::string_view set, std::size_t word);
  void expectSize(std::size_t least, std::size_t most, std::string_view what) const;

  const SourceText& source_;
  const ReadSettings& settings_;
  MpsRecords records_;
  NamedModel model_;
  std::string_view section_;
  bool maximize_ = false;
  bool integer_ = false;  ///< behind the marker 'INTORG'
  std::vector<DeclaredRow> rows_;
  std::vector<StatedBounds> bounds_;  ///< one for each variable
  std::unordered_map<std::string_view, std::int32_t> rowIndex_;
  std::unordered_map<std::string_view, std::int32_t> columnIndex_;
  std::unordered_map<std::string_view, std::string_view> firstSet_;  ///< by section
  Note droppedTargets_;
  Note droppedSets_;
  Note freedBounds_;
};

NamedModel MpsReader::read() {
  while (records_.next()) {
    if (records_.isHeader()) {
      readHeader();
      if (section_ == "ENDATA") break;
    } else if (section_ == "OBJSENSE") {
      readSense(0);
    } else if (section_ == "ROWS") {
      readRow();
    } else if (section_ == "COLUMNS") {
      readColumnEntries();
    } else if (section_ == "RHS") {
      readSides(&DeclaredRow::side);
    } else if (section_ == "RANGES") {
      readSides(&DeclaredRow::range);
    } else if (section_ == "BOUNDS") {
      readBoundRecord();
    } else {
      source_.expected(records_.offset(0), "a section, as ROWS");
    }
  }
  if (section_ != "ENDATA") source_.expected(source_.text().size(), "the section ENDATA");
  finishRows();
  finishBounds();
  droppedTargets_.tell(source_, "a target row behind the first one is left out (see --targets)");
  droppedSets_.tell(source_, "a record of another set than the first of its section is left out");
  freedBounds_.tell(source_, "an upper bound below 0 without a lower bound: the lower one is -inf");
  model_.remarks = records_.remarks();
  return std::move(model_);
}

void MpsReader::readHeader() {
  static const std::vector<std::string_view> ORDER = {"NAME", "OBJSENSE", "ROWS",   "COLUMNS",
                                                      "RHS",  "RANGES",   "BOUNDS", "ENDATA"};
  static const std::string KNOWN = "NAME, OBJSENSE, ROWS, COLUMNS, RHS, RANGES, BOUNDS or ENDATA";
  const std::string_view name = records_[0];
  const auto found = std::find(ORDER.begin(), ORDER.end(), name);
  if (found == ORDER.end()) {
    source_.expected(records_.offset(0), KNOWN, ", not the section ", name);
  }
  // RHS, RANGES and BOUNDS come in any order, all else as listed.
  const auto rank = [](std::string_view section) {
    const auto place = std::find(ORDER.begin(), ORDER.end(), section) - ORDER.begin();
    return place >= 4 && place <= 6 ? 4 : place;
  };
  const bool first = section_.empty();
  const bool repeated = !first && (rank(name) < rank(section_) || name == section_);
  if (repeated) source_.expected(records_.offset(0), "a section that may follow ", section_);
  if (rank(name) > rank("ROWS") && (first || rank(section_) < rank("ROWS"))) {
    source_.expected(records_.offset(0), "the section ROWS ahead of ", name);
  }
  section_ = name;
  if (name == "NAME") {
    if (records_.size() > 1 && records_[1] != "BLANK") model_.name = records_[1];
  } else if (name == "OBJSENSE" && records_.size() > 1) {
    readSense(1);
  } else if (records_.size() > 1 && name != "RHS" && name != "RANGES" && name != "BOUNDS") {
    source_.expected(records_.offset(1), "the end of the line behind ", name);
  }
}

void MpsReader::readSense(std::size_t word) {
  const std::string_view sense = records_[word];
  maximize_ = equalsIgnoringCase(sense, "max") || equalsIgnoringCase(sense, "maximize");
  if (!maximize_ && !equalsIgnoringCase(sense, "min") && !equalsIgnoringCase(sense, "minimize")) {
    source_.expected(records_.offset(word), "MIN or MAX");
  }
}

void MpsReader::readRow() {
  expectSize(2, 2, "a type and a name");
  const std::string_view type = records_[0];
  if (type != "N" && type != "L" && type != "G" && type != "E") {
    source_.expected(records_.offset(0), "a row type N, L, G or E");
  }
  const std::string_view name = records_[1];
  if (!rowIndex_.emplace(name, static_cast<std::int32_t>(rows_.size())).second) {
    source_.expected(records_.offset(1), "a new name, not ", name, " again");
  }
  DeclaredRow row{.type = type.front()};
  if (row.type != 'N') {
    row.index = static_cast<std::int32_t>(model_.rows.size());
    model_.rows.push_back({.name = std::string(name)});
  } else if (model_.targets.empty() || settings_.furtherTargets) {
    row.index = static_cast<std::int32_t>(model_.targets.size());
    model_.targets.push_back(
        {.name = std::string(name), .wish = maximize_ ? Wish::MAXIMIZE : Wish::MINIMIZE});
  } else {
    droppedTargets_.add(records_.offset(1));
  }
  rows_.push_back(std::move(row));
}

void MpsReader::readColumnEntries() {
  if (records_.size() > 1 && records_[1] == "'MARKER'") return readMarker();
  expectSize(3, 5, "a column and one or two rows with their numbers");
  if (model_.variables.empty() || model_.variables.back().name != records_[0]) startColumn();
  addEntry(1);
  if (records_.size() >= 4) {
    if (records_.size() == 4) source_.expected(records_.offset(4), "a number");
    addEntry(3);
  }
}

void MpsReader::readMarker() {
  const std::string_view kind = records_.size() == 3 ? records_[2] : "";
  if (kind != "'INTORG'" && kind != "'INTEND'") {
    source_.expected(records_.offset(2), "'INTORG' or 'INTEND' behind 'MARKER'");
  }
  integer_ = kind == "'INTORG'";
}

void MpsReader::startColumn() {
  const auto index = static_cast<std::int32_t>(model_.variables.size());
  if (!columnIndex_.emplace(records_[0], index).second) {
    source_.expected(records_.offset(0), "the entries of column ", records_[0], " in one place");
  }
  model_.variables.push_back({.name = std::string(records_[0]), .integer = integer_});
  bounds_.push_back({.marked = integer_});
}

void MpsReader::addEntry(std::size_t rowWord) {
  DeclaredRow& row = rowAt(rowWord);
  const auto column = static_cast<std::int32_t>(model_.variables.size() - 1);
  if (row.lastColumn == column) {
    source_.expected(records_.offset(rowWord), "another row than ", records_[rowWord],
                     ", which this column has named already");
  }
  row.lastColumn = column;
  Coefficient factor = numberAt(rowWord + 1);
  if (row.index < 0 || factor.isZero()) return;
  const auto index = static_cast<std::size_t>(row.index);
  Form& form = row.type == 'N' ? model_.targets[index].form : model_.rows[index].form;
  form.push_back({column, std::move(factor)});
}

/// A record of RHS or RANGES, whose set name may be missing.
void MpsReader::readSides(Bound DeclaredRow::*side) {
  expectSize(2, 5, "one or two rows with their numbers");
  const std::size_t first = records_.size() % 2;
  if (!isOfFirstSet(first == 1 ? records_[0] : "", 0)) return;
  for (std::size_t word = first; word < records_.size(); word += 2) {
    DeclaredRow& row = rowAt(word);
    if (row.*side) source_.expected(records_.offset(word), "one number for ", records_[word]);
    if (row.type == 'N' && side == &DeclaredRow::range) {
      source_.expected(records_.offset(word), "a row of the type L, G or E");
    }
    row.*side = numberAt(word + 1);
  }
}

void MpsReader::readBoundRecord() {
  static const std::vector<std::string_view> WITH_VALUE = {"LO", "UP", "FX", "LI", "UI"};
  static const std::vector<std::string_view> WITHOUT_VALUE = {"FR", "MI", "PL", "BV"};
  const auto isAmong = [&](const std::vector<std::string_view>& types) {
    return std::find(types.begin(), types.end(), records_[0]) != types.end();
  };
  const bool withValue = isAmong(WITH_VALUE);
  if (!withValue && !isAmong(WITHOUT_VALUE)) {
    source_.expected(records_.offset(0), "a bound type LO, UP, FX, FR, MI, PL, BV, LI or UI, not ",
                     records_[0]);
  }
  expectSize(withValue ? 3 : 2, 4, withValue ? "a column and a number" : "a column");
  std::size_t column = records_.size() - (withValue ? 2 : 1);
  const bool valueToIgnore = !withValue && records_.size() > 2 &&
                             (records_.size() == 4 || !columnIndex_.contains(records_[column]));
  if (valueToIgnore) --column;
  if (!isOfFirstSet(column == 2 ? records_[1] : "", 1)) return;
  const auto found = columnIndex_.find(records_[column]);
  if (found == columnIndex_.end()) {
    source_.expected(records_.offset(column), "a column, not ", records_[column]);
  }
  applyBound(records_[0], found->second, column + 1);
}

void MpsReader::applyBound(std::string_view type, std::int32_t column, std::size_t valueWord) {
  NamedVariable& x = model_.variables[static_cast<std::size_t>(column)];
  StatedBounds& stated = bounds_[static_cast<std::size_t>(column)];
  stated.any = true;
  stated.last = records_.offset(0);
  if (type == "LI" || type == "UI" || type == "BV") x.integer = true;
  if (type == "LO" || type == "LI") {
    x.lower = boundAt(valueWord, -1);
  } else if (type == "UP" || type == "UI") {
    x.upper = boundAt(valueWord, 1);
    return;
  } else if (type == "FX") {
    x.lower = x.upper = boundAt(valueWord, 0);
  } else if (type == "MI") {
    x.lower.reset();
  } else if (type == "PL") {
    x.upper.reset();
    return;
  } else if (type == "FR") {
    x.lower.reset();
    x.upper.reset();
  } else {
    x.lower = 0;
    x.upper = 1;
  }
  stated.lower = true;
}

void MpsReader::finishRows() {
  for (const DeclaredRow& declared : rows_) {
    if (declared.index < 0) continue;
    const auto index = static_cast<std::size_t>(declared.index);
    const Coefficient side = declared.side.value_or(0);
    if (declared.type == 'N') {
      model_.targets[index].constant = -side;
      continue;
    }
    NamedRow& row = model_.rows[index];
    if (declared.type != 'L') row.lower = side;
    if (declared.type != 'G') row.upper = side;
    if (!declared.range) continue;
    const Coefficient& range = *declared.range;
    const Coefficient width = range.isNegative() ? -range : range;
    const bool downward = declared.type == 'L' || (declared.type == 'E' && range.isNegative());
    (downward ? row.lower : row.upper) = side + (downward ? -width : width);
  }
}

void MpsReader::finishBounds() {
  for (std::size_t j = 0; j < bounds_.size(); ++j) {
    NamedVariable& x = model_.variables[j];
    const StatedBounds& stated = bounds_[j];
    if (stated.marked && !stated.any) x.upper = 1;
    if (x.upper && x.upper->isNegative() && !stated.lower) {
      x.lower.reset();
      freedBounds_.add(stated.last);
    }
    if (x.lower && x.upper && *x.upper < *x.lower) {
      source_.expected(stated.last, "bounds that leave a value to ", x.name);
    }
  }
}

DeclaredRow& MpsReader::rowAt(std::size_t word) {
  const auto found = rowIndex_.find(records_[word]);
  if (found == rowIndex_.end()) {
    source_.expected(records_.offset(word), "a row of the section ROWS, not ", records_[word]);
  }
  return rows_[static_cast<std::size_t>(found->second)];
}

Coefficient MpsReader::numberAt(std::size_t word) const {
  auto number = parseDecimal(records_[word]);
  if (!number) source_.expected(records_.offset(word), "a number, not ", records_[word]);
  return std::move(*number);
}

/// A finite bound, or nothing for the infinity of the sign `infinite`.
Bound MpsReader::boundAt(std::size_t word, int infinite) const {
  const auto stated = parseBound(records_[word]);
  if (!stated || (stated->infinite != 0 && stated->infinite != infinite)) {
    source_.expected(records_.offset(word), "a bound, not ", records_[word]);
  }
  if (stated->infinite != 0) return std::nullopt;
  return stated->value;
}

bool MpsReader::isOfFirstSet(std::string_view set, std::size_t word) {
  if (firstSet_.emplace(section_, set).first->second == set) return true;
  droppedSets_.add(records_.offset(word));
  return false;
}

void MpsReader::expectSize(std::size_t least, std::size_t most, std::string_view what) const {
  const std::size_t size = records_.size();
  if (size < least) source_.expected(records_.offset(size), what);
  if (size > most) source_.expected(records_.offset(most), "the end of the line");
}

}  // namespace

NamedModel readMps(const SourceText& source, const ReadSettings& settings) {
  return MpsReader(source, settings).read();
}

}  // namespace vexil::formats
