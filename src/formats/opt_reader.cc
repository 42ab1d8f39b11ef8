// Vexil - exact integer optimization on lattices.
#include "formats/opt_reader.h"

#include "foundation/file_text.h"
#include "foundation/string.h"
#include "numbers/strict_number.h"
#include "program/vexil.h"

namespace vexil::formats {

namespace {

constexpr std::int64_t MOST_DECIMALS = 9999;

Bound finitePart(const QQ& value) { return value.isInf ? Bound() : Bound(std::in_place, value); }

/// Makes the model of a program; its items are named by their kind and index.
class OptModel {
 public:
  OptModel(const Vexil<QQ>& program, const OptHead& head, const String& path)
      : program_(program), head_(head), path_(path) {}

  NamedModel make();

 private:
  void addVariable(std::int64_t j);
  void addTarget(std::int64_t i);
  void addRow(const Vector<QQ>& row, const QQ& lower, const QQ& upper, std::string name);
  [[nodiscard]] std::string name(std::string_view item, std::int64_t i,
                                 std::string_view stem) const;
  [[nodiscard]] Form form(const Vector<QQ>& row) const;

  const Vexil<QQ>& program_;
  const OptHead& head_;
  const String& path_;
  NamedModel model_;
};

NamedModel OptModel::make() {
  model_.name = head_.find("model").value_or("");
  for (std::int64_t j = 1; j <= program_.lx.MN; ++j) addVariable(j);
  for (std::int64_t i = 1; i <= program_.dt.MN; ++i) addTarget(i);
  for (std::int64_t i = 1; i <= program_.bg.MN; ++i) {
    addRow(program_.Ag[i], program_.bg[i], program_.bg[i], name("equation", i, "e"));
  }
  for (std::int64_t i = 1; i <= program_.lu.MN; ++i) {
    addRow(program_.Au[i], program_.lu[i], program_.ru[i], name("inequation", i, "c"));
  }
  return std::move(model_);
}

std::string OptModel::name(std::string_view item, std::int64_t i, std::string_view stem) const {
  return head_.find(joined(item, '[', i, ']')).value_or(joined(stem, i));
}

void OptModel::addVariable(std::int64_t j) {
  const QQ& places = program_.dx[j];
  const bool isCount = isZero(places.zaehler) && !places.isInf;
  const bool isPossible = !places.positive || (isCount && places <= QQ(MOST_DECIMALS));
  if (!isPossible) fail(path_, ": x[", j, "]: expected decimal places of at most ", MOST_DECIMALS);
  const QQ& lower = program_.lx[j];
  const QQ& upper = program_.rx[j];
  if ((lower.isInf && lower.positive) || (upper.isInf && !upper.positive)) {
    fail(path_, ": x[", j, "]: expected bounds that leave a value");
  }
  NamedVariable x{.name = name("x", j, "x"),
                  .lower = finitePart(lower),
                  .upper = finitePart(upper),
                  .integer = true};
  if (places.positive) x.decimals = static_cast<std::int32_t>(std::stol(toString(places)));
  model_.variables.push_back(std::move(x));
}

void OptModel::addTarget(std::int64_t i) {
  const QQ& wish = program_.dt[i];
  NamedTarget target{.name = name("target", i, "t"), .form = form(program_.At[i])};
  if (!wish.isInf) {
    target.wish = Wish::GOAL;
    target.goal = Coefficient(wish);
  } else if (wish.positive) {
    target.wish = Wish::MAXIMIZE;
  }
  target.constant = Coefficient(head_.constant(i));
  model_.targets.push_back(std::move(target));
}

void OptModel::addRow(const Vector<QQ>& row, const QQ& lower, const QQ& upper, std::string name) {
  if ((lower.isInf && lower.positive) || (upper.isInf && !upper.positive)) {
    fail(path_, ": row ", name, ": expected sides that leave a value");
  }
  model_.rows.push_back({.name = std::move(name),
                         .form = form(row),
                         .lower = finitePart(lower),
                         .upper = finitePart(upper)});
}

Form OptModel::form(const Vector<QQ>& row) const {
  Form result;
  for (std::int64_t j = 1; j <= row.MN; ++j) {
    if (row[j] != QQ()) result.push_back({static_cast<std::int32_t>(j - 1), Coefficient(row[j])});
  }
  return result;
}

}  // namespace

OptHead::OptHead(const SourceText& source) {
  for (std::string_view text = source.text(); !text.empty();) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty()) continue;
    if (!line.starts_with("// ")) return;
    const std::size_t colon = line.find(": ");
    if (colon == std::string_view::npos) continue;
    namesVariables_ = namesVariables_ || line.starts_with("// x[");
    const std::string item(line.substr(3, colon - 3));
    const std::string_view value = trimmed(line.substr(colon + 2));
    items_.emplace(item, value);
    if (!item.starts_with("constant[")) continue;
    const auto number = strictNumber(value);
    if (!number || number->isInf) {
      source.expected(static_cast<std::size_t>(value.data() - source.text().data()),
                      "a number, not ", value);
    }
    constants_.emplace(item, *number);
  }
}

std::optional<std::string> OptHead::find(const std::string& item) const {
  const auto found = items_.find(item);
  if (found == items_.end()) return std::nullopt;
  return found->second;
}

QQ OptHead::constant(std::int64_t i) const {
  const auto found = constants_.find(joined("constant[", i, ']'));
  return found == constants_.end() ? QQ() : found->second;
}

void checkComments(const String& path) {
  const std::string text = readFileText(path).value_or("");
  for (std::size_t at = text.find('/'); at < text.size(); at = text.find('/', at)) {
    const bool block = text.compare(at, 2, "/*") == 0;
    if (!block && text.compare(at, 2, "//") != 0) {
      ++at;
      continue;
    }
    at = text.find(block ? "*/" : "\n", at + 2);
    if (at == std::string::npos) fail(path, ": the last comment has no end");
    at += block ? 2 : 1;
  }
}

NamedModel readOpt(const String& path) {
  checkComments(path);
  Vexil<QQ> program;
  program.optFile = path;
  program.readOptFile();
  return OptModel(program, OptHead(SourceText(path)), path).make();
}

}  // namespace vexil::formats
