// Vexil - exact integer optimization on lattices.
#include "formats/lp_writer.h"

#include "formats/lp_tokens.h"
#include "formats/plain_model.h"

namespace vexil::formats {

namespace {

constexpr std::size_t LINE_WIDTH = 78;

class LpText {
 public:
  explicit LpText(const NamedModel& model) : model_(model) {}

  std::string make();

 private:
  void appendForm(std::string_view name, const Form& form);
  void appendRow(const NamedRow& row);
  void appendBounds(const NamedVariable& x);
  [[nodiscard]] Form objectiveForm() const;

  const NamedModel& model_;
  std::string text_;
};

std::string LpText::make() {
  for (const std::string& remark : model_.remarks) text_ += "\\ vexil: " + remark + '\n';
  const NamedTarget& objective = model_.targets.front();
  text_ += objective.wish == Wish::MAXIMIZE ? "Maximize\n" : "Minimize\n";
  appendForm(objective.name, objectiveForm());
  text_ += "\nSubject To\n";
  for (const NamedRow& row : model_.rows) appendRow(row);
  text_ += "Bounds\n";
  for (const NamedVariable& x : model_.variables) appendBounds(x);
  text_ += "General\n";
  for (const NamedVariable& x : model_.variables) {
    if (x.integer) text_ += ' ' + x.name + '\n';
  }
  text_ += "End\n";
  return std::move(text_);
}

/// The objective, with a term for every variable if the variables would otherwise be named for the
/// first time in another order than theirs, or not at all. It has a term at any rate.
Form LpText::objectiveForm() const {
  const Form& form = model_.targets.front().form;
  std::vector<const Coefficient*> factors(model_.variables.size(), nullptr);
  for (const Term& term : form) factors[static_cast<std::size_t>(term.variable)] = &term.factor;
  std::int32_t next = 0;
  bool inOrder = !form.empty();
  const auto look = [&](const Form& terms) {
    for (const Term& term : terms) {
      inOrder = inOrder && term.variable <= next;
      if (term.variable == next) ++next;
    }
  };
  look(form);
  for (const NamedRow& row : model_.rows) look(row.form);
  if (inOrder && static_cast<std::size_t>(next) == factors.size()) return form;
  Form all;
  for (std::size_t j = 0; j < factors.size(); ++j) {
    all.push_back({static_cast<std::int32_t>(j), factors[j] == nullptr ? 0 : *factors[j]});
  }
  return all;
}

/// Appends " name: + 2 x - 3 y"; lines are broken ahead of a sign, so that none begins with a name.
void LpText::appendForm(std::string_view name, const Form& form) {
  std::size_t lineStart = text_.size();
  text_ += joined(' ', name, ':');
  for (const Term& term : form) {
    const bool negative = term.factor.isNegative();
    const std::string factor = decimalText(negative ? -term.factor : term.factor);
    const std::string& variable = model_.variables[static_cast<std::size_t>(term.variable)].name;
    const std::string piece = joined(negative ? " - " : " + ", factor, ' ', variable);
    if (text_.size() - lineStart + piece.size() > LINE_WIDTH) {
      text_ += "\n ";
      lineStart = text_.size() - 1;
    }
    text_ += piece;
  }
}

void LpText::appendRow(const NamedRow& row) {
  appendForm(row.name, row.form.empty() ? Form{{0, 0}} : row.form);
  const std::string_view relation = row.isEquation() ? " = " : row.lower ? " >= " : " <= ";
  text_ += joined(relation, decimalText(row.lower ? *row.lower : *row.upper), '\n');
}

void LpText::appendBounds(const NamedVariable& x) {
  if (!x.lower && !x.upper) {
    text_ += joined(' ', x.name, " free\n");
  } else if (x.lower && x.upper && *x.lower == *x.upper) {
    text_ += joined(' ', x.name, " = ", decimalText(*x.lower), '\n');
  } else if (x.upper) {
    const std::string lower = x.lower ? decimalText(*x.lower) : "-inf";
    text_ += joined(' ', lower, " <= ", x.name, " <= ", decimalText(*x.upper), '\n');
  } else if (!x.lower->isZero()) {
    text_ += joined(' ', x.name, " >= ", decimalText(*x.lower), '\n');
  }
}

}  // namespace

std::string lpText(const NamedModel& model) {
  return LpText(plainModel(model, {.isLegalName = isLpName, .maximize = true})).make();
}

}  // namespace vexil::formats
