// Vexil - exact integer optimization on lattices.
#include "formats/mps_writer.h"

#include "formats/plain_model.h"
#include "foundation/failure.h"

namespace vexil::formats {

namespace {

bool isMpsName(std::string_view name) {
  return !name.empty() && name.find_first_of(" \t\r") == std::string_view::npos &&
         name.front() != '$' && name.front() != '*' && name != "'MARKER'";
}

class MpsText {
 public:
  explicit MpsText(const NamedModel& model) : model_(model) {}

  std::string make();

 private:
  void appendRows();
  void appendColumns();
  void appendSides();
  void appendBounds(const NamedVariable& x);
  void appendMarker(bool begins);
  void appendBound(std::string_view type, const NamedVariable& x, const Bound& value = {});

  const NamedModel& model_;
  std::string text_;
  std::size_t markers_ = 0;
};

bool isRange(const NamedRow& row) { return row.lower && row.upper && !row.isEquation(); }

std::string MpsText::make() {
  for (const std::string& remark : model_.remarks) text_ += "* vexil: " + remark + '\n';
  // The third word keeps readers from taking the free form for the fixed one.
  text_ += joined("NAME ", isMpsName(model_.name) ? model_.name : "BLANK", " FREE\n");
  appendRows();
  appendColumns();
  appendSides();
  text_ += "BOUNDS\n";
  for (const NamedVariable& x : model_.variables) appendBounds(x);
  text_ += "ENDATA\n";
  return std::move(text_);
}

void MpsText::appendRows() {
  text_ += joined("ROWS\n N ", model_.targets.front().name, '\n');
  for (const NamedRow& row : model_.rows) {
    text_ += joined(row.isEquation() ? " E " : row.lower ? " G " : " L ", row.name, '\n');
  }
}

void MpsText::appendColumns() {
  struct Entry {
    const std::string* row;
    const Coefficient* factor;
  };
  std::vector<std::vector<Entry>> columns(model_.variables.size());
  const auto collect = [&](const std::string& name, const Form& form) {
    for (const Term& term : form) {
      columns[static_cast<std::size_t>(term.variable)].push_back({&name, &term.factor});
    }
  };
  const NamedTarget& objective = model_.targets.front();
  collect(objective.name, objective.form);
  for (const NamedRow& row : model_.rows) collect(row.name, row.form);

  text_ += "COLUMNS\n";
  bool integer = false;
  const Coefficient zero = 0;
  for (std::size_t j = 0; j < columns.size(); ++j) {
    const NamedVariable& x = model_.variables[j];
    if (x.integer != integer) appendMarker(x.integer);
    integer = x.integer;
    if (columns[j].empty()) columns[j].push_back({&objective.name, &zero});
    for (const Entry& entry : columns[j]) {
      text_ += joined(' ', x.name, ' ', *entry.row, ' ', decimalText(*entry.factor), '\n');
    }
  }
  if (integer) appendMarker(false);
}

void MpsText::appendMarker(bool begins) {
  text_ += joined(" MARKER", ++markers_, " 'MARKER' ", begins ? "'INTORG'" : "'INTEND'", '\n');
}

void MpsText::appendSides() {
  text_ += "RHS\n";
  for (const NamedRow& row : model_.rows) {
    const Coefficient& side = row.lower ? *row.lower : *row.upper;
    if (!side.isZero()) text_ += joined(" RHS ", row.name, ' ', decimalText(side), '\n');
  }
  text_ += "RANGES\n";
  for (const NamedRow& row : model_.rows) {
    if (!isRange(row)) continue;
    text_ += joined(" RNG ", row.name, ' ', decimalText(*row.upper + -*row.lower), '\n');
  }
}

/// Both bounds of an integer variable are written: what readers take for one that is missing
/// differs.
void MpsText::appendBounds(const NamedVariable& x) {
  if (!x.lower && !x.upper) return appendBound("FR", x);
  if (x.lower && x.upper && *x.lower == *x.upper) return appendBound("FX", x, x.lower);
  if (!x.lower) {
    appendBound("MI", x);
  } else if (x.integer || !x.lower->isZero()) {
    appendBound("LO", x, x.lower);
  }
  if (x.upper) {
    appendBound("UP", x, x.upper);
  } else if (x.integer) {
    appendBound("PL", x);
  }
}

void MpsText::appendBound(std::string_view type, const NamedVariable& x, const Bound& value) {
  text_ += joined(' ', type, " BND ", x.name);
  if (value) text_ += ' ' + decimalText(*value);
  text_ += '\n';
}

}  // namespace

std::string mpsText(const NamedModel& model) {
  return MpsText(plainModel(model, {.isLegalName = isMpsName, .ranges = true})).make();
}

}  // namespace vexil::formats
