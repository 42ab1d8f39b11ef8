// Vexil - exact integer optimization on lattices.
#include "formats/lp_reader.h"

#include <unordered_map>
#include <unordered_set>

#include "formats/lp_tokens.h"

namespace vexil::formats {

namespace {

/// What stands between two relations, but for its terms: those go to the form of the row.
struct Side {
  Coefficient constant = 0;
  int infinite = 0;  ///< -1 or 1: the side is -inf or +inf
  bool hasVariables = false;
  std::size_t offset = 0;
};

class LpReader {
 public:
  explicit LpReader(const SourceText& source) : source_(source), tokens_(source) {}

  NamedModel read();

 private:
  void readObjective();
  void readRow();
  void readBound();
  void readIntegerNames(bool binary);
  void finish();

  /// Takes "name:" and gives the name; gives a name that is none of a row to `first`.
  std::string_view takeLabel(std::optional<LpToken>& first);
  Side readSide(std::optional<LpToken> first, Form& form, bool negated, bool endsWithLine);
  void readElement(std::optional<LpToken>& first, Side& side, Form& form, bool negated,
                   bool endsWithLine);
  void addTerm(Form& form, std::string_view name, Coefficient factor);
  void setSide(NamedRow& row, std::string_view relation, const Side& side, Coefficient value);
  StatedBound takeBoundNumber();
  void setBound(NamedVariable& x, std::string_view relation, const StatedBound& bound);

  bool takeSigns();
  [[nodiscard]] std::string_view takeRelation();
  [[nodiscard]] Coefficient takeNumber();
  [[nodiscard]] std::size_t takeVariable();
  [[nodiscard]] bool nextIsNumber() const;
  [[noreturn]] void expectedHere(std::string_view what) const;

  const SourceText& source_;
  LpTokens tokens_;
  NamedModel model_;
  std::unordered_map<std::string_view, std::int32_t> index_;
  std::unordered_set<std::string_view> rowNames_;
  std::vector<std::size_t> lastBound_;  ///< place of the last bound of each variable
  std::vector<std::size_t> lastTerm_;   ///< place of each variable in the form that named it last
  Note droppedRows_;
};

/// The relation seen from its other side.
std::string_view mirrored(std::string_view relation) {
  return relation == "<" ? ">" : relation == ">" ? "<" : "=";
}

void eraseZeros(Form& form) {
  std::erase_if(form, [](const Term& term) { return term.factor.isZero(); });
}

NamedModel LpReader::read() {
  readObjective();
  LpSection section = LpSection::MINIMIZE;
  while (section != LpSection::END) {
    if (tokens_.nextIs(LpTokenKind::SECTION)) {
      const LpToken token = tokens_.take();
      section = token.section;
      if (section == LpSection::REFUSED || section <= LpSection::MAXIMIZE) {
        source_.expected(token.offset,
                         "Subject To, Bounds, General, Binary or End, not the section ",
                         token.text);
      }
    } else if (section == LpSection::ROWS && !tokens_.nextIs(LpTokenKind::END)) {
      readRow();
    } else if (section == LpSection::BOUNDS && !tokens_.nextIs(LpTokenKind::END)) {
      readBound();
    } else if (section >= LpSection::INTEGER && tokens_.nextIs(LpTokenKind::NAME)) {
      readIntegerNames(section == LpSection::BINARY);
    } else {
      expectedHere(section == LpSection::MINIMIZE ? "a sign, a term or Subject To"
                                                  : "a section or End");
    }
  }
  finish();
  return std::move(model_);
}

void LpReader::readObjective() {
  const LpToken head = tokens_.take();
  if (head.kind != LpTokenKind::SECTION || head.section > LpSection::MAXIMIZE) {
    source_.expected(head.offset, "Minimize or Maximize");
  }
  NamedTarget target;
  target.wish = head.section == LpSection::MAXIMIZE ? Wish::MAXIMIZE : Wish::MINIMIZE;
  std::optional<LpToken> first;
  const std::string_view label = takeLabel(first);
  target.name = label.empty() ? "obj" : label;
  if (first || !tokens_.nextIs(LpTokenKind::SECTION)) {
    const Side side = readSide(first, target.form, false, false);
    if (side.infinite != 0) source_.expected(side.offset, "a finite objective");
    target.constant = side.constant;
    eraseZeros(target.form);
  }
  model_.targets.push_back(std::move(target));
}

void LpReader::readRow() {
  NamedRow row;
  std::optional<LpToken> first;
  const std::size_t start = tokens_.peek().offset;
  row.name = takeLabel(first);
  const Side left = readSide(first, row.form, false, false);
  std::string_view relation = takeRelation();
  const Side middle = readSide({}, row.form, left.hasVariables, left.hasVariables);
  const bool three = tokens_.nextIs(LpTokenKind::RELATION);
  if (!left.hasVariables && !middle.hasVariables) {
    source_.expected(middle.offset, "a variable on one side of the row");
  }
  if (left.hasVariables && !three) {
    if (left.infinite != 0) source_.expected(left.offset, "a finite sum");
    setSide(row, relation, middle, middle.constant + -left.constant);
  } else if (left.hasVariables || middle.infinite != 0) {
    source_.expected(middle.offset,
                     left.hasVariables ? "a number on the left side of a range" : "a finite sum");
  } else {
    setSide(row, mirrored(relation), left, left.constant + -middle.constant);
  }
  if (three) {
    const std::size_t offset = tokens_.peek().offset;
    const std::string_view second = takeRelation();
    if (second != relation || second == "=") {
      source_.expected(offset, "the relation of the left side again");
    }
    Form none;
    const Side right = readSide({}, none, false, true);
    if (right.hasVariables) source_.expected(right.offset, "a number on the right side of a range");
    setSide(row, second, right, right.constant + -middle.constant);
  }
  if (row.lower && row.upper && *row.upper < *row.lower) {
    source_.expected(start, "sides that leave a value to the row");
  }
  eraseZeros(row.form);
  if (row.lower || row.upper) {
    model_.rows.push_back(std::move(row));
  } else {
    droppedRows_.add(start);
  }
}

std::string_view LpReader::takeLabel(std::optional<LpToken>& first) {
  if (!tokens_.nextIs(LpTokenKind::NAME)) return {};
  const LpToken name = tokens_.take();
  if (!tokens_.nextIs(LpTokenKind::COLON)) {
    first = name;
    return {};
  }
  tokens_.take();
  if (!rowNames_.insert(name.text).second) {
    source_.expected(name.offset, "a new name, not ", name.text, " again");
  }
  return name.text;
}

/// Reads elements until something follows that does not continue them. With `endsWithLine` a side
/// of numbers ends with its line, as what follows may be the next row.
Side LpReader::readSide(std::optional<LpToken> first, Form& form, bool negated, bool endsWithLine) {
  Side side{.offset = first ? first->offset : tokens_.peek().offset};
  do {
    readElement(first, side, form, negated, endsWithLine);
  } while (tokens_.nextIs(LpTokenKind::SIGN) &&
           !(endsWithLine && !side.hasVariables && tokens_.peek().firstOfLine));
  return side;
}

void LpReader::readElement(std::optional<LpToken>& first, Side& side, Form& form, bool negated,
                           bool endsWithLine) {
  const bool minus = !first && takeSigns();
  Coefficient factor = 1;
  bool number = false;
  if (!first && tokens_.nextIs(LpTokenKind::NUMBER)) {
    factor = takeNumber();
    number = true;
    const bool nextRow = endsWithLine && !side.hasVariables && tokens_.peek().firstOfLine;
    if (!tokens_.nextIs(LpTokenKind::NAME) || nextRow) {
      side.constant = side.constant + (minus ? -factor : factor);
      return;
    }
  }
  if (!first && !tokens_.nextIs(LpTokenKind::NAME)) expectedHere("a number or a variable");
  const std::string_view name = first ? first->text : tokens_.take().text;
  first.reset();
  if (isInfinityWord(name) && !number) {
    side.infinite = minus ? -1 : 1;
    return;
  }
  side.hasVariables = true;
  addTerm(form, name, minus != negated ? -factor : factor);
}

void LpReader::addTerm(Form& form, std::string_view name, Coefficient factor) {
  const auto [place, isNew] = index_.emplace(name, static_cast<std::int32_t>(index_.size()));
  if (isNew) {
    model_.variables.push_back({.name = std::string(name)});
    lastBound_.push_back(0);
    lastTerm_.push_back(0);
  }
  std::size_t& at = lastTerm_[static_cast<std::size_t>(place->second)];
  if (at < form.size() && form[at].variable == place->second) {
    form[at].factor = form[at].factor + factor;
    return;
  }
  at = form.size();
  form.push_back({place->second, std::move(factor)});
}

void LpReader::setSide(NamedRow& row, std::string_view relation, const Side& side,
                       Coefficient value) {
  const bool isRightOpen =
      (relation == "<" && side.infinite > 0) || (relation == ">" && side.infinite < 0);
  if (isRightOpen) return;
  if (side.infinite != 0) source_.expected(side.offset, "a finite side");
  if (relation != ">") row.upper = value;
  if (relation != "<") row.lower = std::move(value);
}

void LpReader::readBound() {
  if (!nextIsNumber()) {
    const std::size_t j = takeVariable();
    NamedVariable& x = model_.variables[j];
    lastBound_[j] = tokens_.peek().offset;
    if (tokens_.nextIs(LpTokenKind::NAME) && equalsIgnoringCase(tokens_.peek().text, "free")) {
      tokens_.take();
      x.lower.reset();
      x.upper.reset();
      return;
    }
    const std::string_view relation = takeRelation();
    setBound(x, relation, takeBoundNumber());
    return;
  }
  const StatedBound left = takeBoundNumber();
  const std::string_view relation = takeRelation();
  const std::size_t j = takeVariable();
  lastBound_[j] = tokens_.peek().offset;
  setBound(model_.variables[j], mirrored(relation), left);
  if (!tokens_.nextIs(LpTokenKind::RELATION)) return;
  const std::string_view second = takeRelation();
  setBound(model_.variables[j], second, takeBoundNumber());
}

void LpReader::setBound(NamedVariable& x, std::string_view relation, const StatedBound& bound) {
  const bool fits = bound.infinite == 0 || (relation == "<" && bound.infinite > 0) ||
                    (relation == ">" && bound.infinite < 0);
  if (!fits) expectedHere("a finite bound ahead of this");
  for (Bound* const side :
       {relation != ">" ? &x.upper : nullptr, relation != "<" ? &x.lower : nullptr}) {
    if (side == nullptr) continue;
    side->reset();
    if (bound.infinite == 0) side->emplace(bound.value);
  }
}

void LpReader::readIntegerNames(bool binary) {
  NamedVariable& x = model_.variables[takeVariable()];
  x.integer = true;
  if (!binary) return;
  x.lower = 0;
  x.upper = 1;
}

void LpReader::finish() {
  for (std::size_t j = 0; j < model_.variables.size(); ++j) {
    const NamedVariable& x = model_.variables[j];
    if (x.lower && x.upper && *x.upper < *x.lower) {
      source_.expected(lastBound_[j], "bounds that leave a value to ", x.name);
    }
  }
  for (std::size_t i = 0; i < model_.rows.size(); ++i) {
    std::string& name = model_.rows[i].name;
    if (!name.empty()) continue;
    name = joined('c', i + 1);
    while (rowNames_.contains(name)) name += '_';
  }
  droppedRows_.tell(source_, "a row without a finite side is left out");
  model_.remarks = tokens_.remarks();
}

bool LpReader::takeSigns() {
  bool minus = false;
  while (tokens_.nextIs(LpTokenKind::SIGN)) minus ^= tokens_.take().text == "-";
  return minus;
}

std::string_view LpReader::takeRelation() {
  if (!tokens_.nextIs(LpTokenKind::RELATION)) expectedHere("<=, >= or =");
  return tokens_.take().text;
}

Coefficient LpReader::takeNumber() {
  const LpToken token = tokens_.take();
  auto number = parseDecimal(token.text);
  if (!number) source_.expected(token.offset, "a number, not ", token.text);
  return std::move(*number);
}

StatedBound LpReader::takeBoundNumber() {
  const bool minus = takeSigns();
  if (!nextIsNumber()) expectedHere("a number");
  const LpToken token = tokens_.take();
  auto bound = parseBound(token.text);
  if (!bound) source_.expected(token.offset, "a number, not ", token.text);
  if (!minus) return std::move(*bound);
  return {.value = -bound->value, .infinite = -bound->infinite};
}

bool LpReader::nextIsNumber() const {
  return tokens_.nextIs(LpTokenKind::NUMBER) || tokens_.nextIs(LpTokenKind::SIGN) ||
         (tokens_.nextIs(LpTokenKind::NAME) && isInfinityWord(tokens_.peek().text));
}

std::size_t LpReader::takeVariable() {
  if (!tokens_.nextIs(LpTokenKind::NAME)) expectedHere("a variable");
  const LpToken token = tokens_.take();
  const auto found = index_.find(token.text);
  if (found == index_.end()) {
    source_.expected(token.offset, "a variable of the objective or of a row, not ", token.text);
  }
  return static_cast<std::size_t>(found->second);
}

void LpReader::expectedHere(std::string_view what) const {
  const LpToken& token = tokens_.peek();
  if (token.kind == LpTokenKind::END) source_.expected(token.offset, what);
  const bool quadratic = token.text == "[" || token.text == "*" || token.text == "^";
  source_.expected(token.offset, what, ", not ", token.text,
                   quadratic            ? " (quadratic terms are not read)"
                   : token.text == "->" ? " (indicator rows are not read)"
                                        : "");
}

}  // namespace

NamedModel readLp(const SourceText& source) { return LpReader(source).read(); }

}  // namespace vexil::formats
