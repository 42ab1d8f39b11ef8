// Vexil - exact integer optimization on lattices.
#include "formats/remarks.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <unordered_map>

#include "foundation/failure.h"

namespace vexil::formats {

namespace {

constexpr std::string_view REMARK_HEAD = " vexil: ";

/// Takes the next word, up to a blank or the end, off the front of `text`.
std::string_view takeWord(std::string_view& text) {
  const std::size_t end = std::min(text.find(' '), text.size());
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return word;
}

/// Where a variable occurs in the rows.
struct Occurrence {
  std::int32_t row = -1;
  std::int32_t number = 0;  ///< of rows
  Coefficient factor;
};

class Remarks {
 public:
  Remarks(NamedModel& model, std::string_view path) : model_(model), path_(path) {}

  void apply();

 private:
  using Action = bool (Remarks::*)(std::string_view words);

  void applyAll(std::string_view kind, Action action);
  bool setTitle(std::string_view words);
  bool turnSense(std::string_view words);
  bool mergeRange(std::string_view words);
  bool dropEmptyRow(std::string_view words);
  bool takeConstant(std::string_view words);
  bool divideObjective(std::string_view words);
  bool noteDeviations(std::string_view words);
  bool makeGoal(std::string_view words);
  bool setDecimals(std::string_view words);
  bool keepObjective(std::string_view words);
  bool renameVariable(std::string_view words);
  bool renameRow(std::string_view words);

  void countOccurrences();
  void moveDecimals();
  void removeMarked();
  [[nodiscard]] NamedTarget* objective(std::string_view name);
  [[nodiscard]] std::int32_t find(const std::unordered_map<std::string, std::int32_t>& index,
                                  std::string_view name) const;

  NamedModel& model_;
  std::string_view path_;
  std::unordered_map<std::string, std::int32_t> variables_;
  std::unordered_map<std::string, std::int32_t> rows_;
  std::unordered_map<std::int32_t, Occurrence> deviations_;
  std::unordered_map<std::int32_t, Coefficient> objectiveFactors_;
  std::vector<NamedTarget> goals_;
  std::vector<std::int32_t> shifts_;  ///< places by which each variable's unit was moved
  std::vector<char> removedVariables_;
  std::vector<char> removedRows_;
  bool keepsObjective_ = false;
};

template <typename Named>
std::unordered_map<std::string, std::int32_t> indexOf(const std::vector<Named>& named) {
  std::unordered_map<std::string, std::int32_t> index;
  for (const Named& one : named) index.emplace(one.name, static_cast<std::int32_t>(index.size()));
  return index;
}

void Remarks::apply() {
  if (!model_.remarks.empty()) {
    variables_ = indexOf(model_.variables);
    rows_ = indexOf(model_.rows);
    shifts_.resize(model_.variables.size());
    removedVariables_.resize(model_.variables.size());
    removedRows_.resize(model_.rows.size());
    // In the order in which they undo one another.
    applyAll("model", &Remarks::setTitle);
    applyAll("maximize", &Remarks::turnSense);
    applyAll("range", &Remarks::mergeRange);
    applyAll("empty", &Remarks::dropEmptyRow);
    applyAll("constant", &Remarks::takeConstant);
    applyAll("scaled", &Remarks::divideObjective);
    applyAll("goal", &Remarks::noteDeviations);
    countOccurrences();
    applyAll("goal", &Remarks::makeGoal);
    applyAll("decimals", &Remarks::setDecimals);
    applyAll("target", &Remarks::keepObjective);
    applyAll("name", &Remarks::renameVariable);
    applyAll("row", &Remarks::renameRow);
    for (NamedTarget& goal : goals_) model_.targets.push_back(std::move(goal));
    moveDecimals();
    removeMarked();
    model_.remarks.clear();
  }
  const bool isTarget = keepsObjective_ || model_.targets.empty() ||
                        model_.targets.front().wish == Wish::GOAL ||
                        !model_.targets.front().form.empty();
  if (!isTarget) model_.targets.erase(model_.targets.begin());
}

void Remarks::applyAll(std::string_view kind, Action action) {
  for (const std::string& remark : model_.remarks) {
    std::string_view words = remark;
    if (takeWord(words) != kind || std::invoke(action, this, words)) continue;
    warn(path_, ": the comment \"vexil: ", remark, "\" does not fit the model and is left alone");
  }
}

bool Remarks::setTitle(std::string_view words) {
  model_.name = words;
  return true;
}

bool Remarks::turnSense(std::string_view words) {
  NamedTarget* const target = objective(words);
  if (target == nullptr || target->wish != Wish::MINIMIZE) return false;
  multiply(target->form, -1);
  target->constant = -target->constant;
  target->wish = Wish::MAXIMIZE;
  return true;
}

bool Remarks::mergeRange(std::string_view words) {
  const std::int32_t first = find(rows_, takeWord(words));
  const std::int32_t second = find(rows_, words);
  if (first < 0 || second < 0) return false;
  NamedRow& a = model_.rows[static_cast<std::size_t>(first)];
  const NamedRow& b = model_.rows[static_cast<std::size_t>(second)];
  const bool sameForm = std::equal(a.form.begin(), a.form.end(), b.form.begin(), b.form.end(),
                                   [](const Term& s, const Term& t) {
                                     return s.variable == t.variable && s.factor == t.factor;
                                   });
  if (!sameForm || !a.lower || a.upper || b.lower || !b.upper || *b.upper < *a.lower) return false;
  a.upper = b.upper;
  removedRows_[static_cast<std::size_t>(second)] = 1;
  return true;
}

bool Remarks::dropEmptyRow(std::string_view words) {
  const std::int32_t index = find(rows_, words);
  if (index < 0) return false;
  const NamedRow& row = model_.rows[static_cast<std::size_t>(index)];
  const bool holds = (!row.lower || !(Coefficient(0) < *row.lower)) &&
                     (!row.upper || !(*row.upper < Coefficient(0)));
  if (!row.form.empty() || !holds) return false;
  removedRows_[static_cast<std::size_t>(index)] = 1;
  return true;
}

bool Remarks::takeConstant(std::string_view words) {
  const std::int32_t variable = find(variables_, words);
  if (variable < 0 || model_.targets.empty()) return false;
  const NamedVariable& x = model_.variables[static_cast<std::size_t>(variable)];
  NamedTarget& target = model_.targets.front();
  const Coefficient one = 1;
  if (!x.lower || !x.upper || !(*x.lower == one) || !(*x.upper == one)) return false;
  for (const NamedRow& row : model_.rows) {
    for (const Term& term : row.form) {
      if (term.variable == variable) return false;
    }
  }
  const auto term = std::find_if(target.form.begin(), target.form.end(),
                                 [&](const Term& t) { return t.variable == variable; });
  if (term != target.form.end()) {
    target.constant = target.constant + term->factor;
    target.form.erase(term);
  }
  removedVariables_[static_cast<std::size_t>(variable)] = 1;
  return true;
}

bool Remarks::divideObjective(std::string_view words) {
  NamedTarget* const target = objective(takeWord(words));
  const auto divisor = parseDecimal(words);
  if (target == nullptr || !divisor || divisor->isZero()) return false;
  const Coefficient factor(QQ::ONE() / divisor->value());
  multiply(target->form, factor);
  target->constant = target->constant * factor;
  return true;
}

bool Remarks::noteDeviations(std::string_view words) {
  deviations_[find(variables_, takeWord(words))];
  deviations_[find(variables_, words)];
  return true;
}

/// Looks at the rows once for all deviation variables.
void Remarks::countOccurrences() {
  if (deviations_.empty()) return;
  for (std::size_t i = 0; i < model_.rows.size(); ++i) {
    for (const Term& term : model_.rows[i].form) {
      const auto found = deviations_.find(term.variable);
      if (found == deviations_.end()) continue;
      found->second.row = static_cast<std::int32_t>(i);
      found->second.factor = term.factor;
      ++found->second.number;
    }
  }
  if (model_.targets.empty()) return;
  for (const Term& term : model_.targets.front().form) {
    if (deviations_.contains(term.variable)) objectiveFactors_[term.variable] = term.factor;
  }
}

/// A row "form + s p - s q = value" with p and q in [0, inf) and in the objective with the factor 1
/// is the goal "form / s comes near to value / s".
bool Remarks::makeGoal(std::string_view words) {
  const std::int32_t p = find(variables_, takeWord(words));
  const std::int32_t q = find(variables_, words);
  if (p < 0 || q < 0 || p == q || model_.targets.empty()) return false;
  const auto isDeviation = [&](std::int32_t variable) {
    const NamedVariable& x = model_.variables[static_cast<std::size_t>(variable)];
    const auto cost = objectiveFactors_.find(variable);
    return !x.integer && x.lower && x.lower->isZero() && !x.upper &&
           deviations_[variable].number == 1 && cost != objectiveFactors_.end() &&
           cost->second == Coefficient(1);
  };
  if (model_.targets.front().wish != Wish::MINIMIZE || !isDeviation(p) || !isDeviation(q)) {
    return false;
  }
  const Occurrence& above = deviations_[p];
  const Occurrence& below = deviations_[q];
  const auto rowIndex = static_cast<std::size_t>(above.row);
  NamedRow& row = model_.rows[rowIndex];
  const bool isGoalRow = above.row == below.row && above.factor == -below.factor &&
                         row.isEquation() && removedRows_[rowIndex] == 0;
  if (!isGoalRow) return false;
  const Coefficient inverse(QQ::ONE() / above.factor.value());
  const auto isTheirs = [&](const Term& term) { return term.variable == p || term.variable == q; };
  std::erase_if(row.form, isTheirs);
  std::erase_if(model_.targets.front().form, isTheirs);
  multiply(row.form, inverse);
  goals_.push_back({.name = row.name,
                    .form = std::move(row.form),
                    .wish = Wish::GOAL,
                    .goal = *row.lower * inverse});
  removedRows_[rowIndex] = 1;
  removedVariables_[static_cast<std::size_t>(p)] = 1;
  removedVariables_[static_cast<std::size_t>(q)] = 1;
  return true;
}

bool Remarks::setDecimals(std::string_view words) {
  constexpr std::int32_t MOST = 9999;
  const std::int32_t variable = find(variables_, takeWord(words));
  std::int32_t places = 0;
  const auto end = std::from_chars(words.data(), words.data() + words.size(), places);
  const bool isNumber = end.ec == std::errc() && end.ptr == words.data() + words.size();
  if (variable < 0 || !isNumber || places < 1 || places > MOST) return false;
  const auto j = static_cast<std::size_t>(variable);
  if (!model_.variables[j].integer) return false;
  shifts_[j] = places;
  return true;
}

void Remarks::moveDecimals() {
  if (std::all_of(shifts_.begin(), shifts_.end(), [](auto shift) { return shift == 0; })) return;
  const auto power = [](std::int32_t places) {
    ZZ result;
    powerOfTen(places, result);
    return QQ(std::move(result));
  };
  const auto moveForm = [&](Form& form) {
    for (Term& term : form) {
      const std::int32_t shift = shifts_[static_cast<std::size_t>(term.variable)];
      if (shift > 0) term.factor = Coefficient(term.factor.value() * power(shift));
    }
  };
  for (NamedTarget& target : model_.targets) moveForm(target.form);
  for (NamedRow& row : model_.rows) moveForm(row.form);
  for (std::size_t j = 0; j < shifts_.size(); ++j) {
    if (shifts_[j] == 0) continue;
    NamedVariable& x = model_.variables[j];
    x.decimals = shifts_[j];
    for (Bound* const bound : {&x.lower, &x.upper}) {
      if (*bound) *bound = Coefficient((*bound)->value() / power(shifts_[j]));
    }
  }
}

bool Remarks::keepObjective(std::string_view words) {
  keepsObjective_ = objective(words) != nullptr;
  return keepsObjective_;
}

bool Remarks::renameVariable(std::string_view words) {
  const std::int32_t variable = find(variables_, takeWord(words));
  if (variable < 0) return false;
  model_.variables[static_cast<std::size_t>(variable)].name = words;
  return true;
}

bool Remarks::renameRow(std::string_view words) {
  const std::string_view name = takeWord(words);
  const std::int32_t row = find(rows_, name);
  const auto goal = std::find_if(goals_.begin(), goals_.end(),
                                 [&](const NamedTarget& target) { return target.name == name; });
  if (goal != goals_.end()) {
    goal->name = words;
  } else if (row >= 0) {
    model_.rows[static_cast<std::size_t>(row)].name = words;
  } else if (NamedTarget* const target = objective(name)) {
    target->name = words;
  } else {
    return false;
  }
  return true;
}

void Remarks::removeMarked() {
  std::vector<std::int32_t> place(model_.variables.size());
  std::size_t kept = 0;
  for (std::size_t j = 0; j < model_.variables.size(); ++j) {
    place[j] = static_cast<std::int32_t>(kept);
    if (removedVariables_[j] != 0) continue;
    if (kept != j) model_.variables[kept] = std::move(model_.variables[j]);
    ++kept;
  }
  model_.variables.resize(kept);
  kept = 0;
  for (std::size_t i = 0; i < model_.rows.size(); ++i) {
    if (removedRows_[i] != 0) continue;
    if (kept != i) model_.rows[kept] = std::move(model_.rows[i]);
    ++kept;
  }
  model_.rows.resize(kept);
  const auto renumber = [&](Form& form) {
    for (Term& term : form) term.variable = place[static_cast<std::size_t>(term.variable)];
  };
  for (NamedTarget& target : model_.targets) renumber(target.form);
  for (NamedRow& row : model_.rows) renumber(row.form);
}

NamedTarget* Remarks::objective(std::string_view name) {
  const bool found = !model_.targets.empty() && model_.targets.front().name == name;
  return found ? &model_.targets.front() : nullptr;
}

std::int32_t Remarks::find(const std::unordered_map<std::string, std::int32_t>& index,
                           std::string_view name) const {
  const auto found = index.find(std::string(name));
  return found == index.end() ? -1 : found->second;
}

}  // namespace

std::optional<std::string_view> remarkIn(std::string_view comment) {
  if (!comment.starts_with(REMARK_HEAD)) return std::nullopt;
  comment.remove_prefix(REMARK_HEAD.size());
  return comment.substr(0, comment.find_last_not_of(" \t\r") + 1);
}

void applyRemarks(NamedModel& model, std::string_view path) { Remarks(model, path).apply(); }

}  // namespace vexil::formats
