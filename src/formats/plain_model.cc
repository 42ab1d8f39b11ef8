// Vexil - exact integer optimization on lattices.
#include "formats/plain_model.h"

#include <algorithm>
#include <unordered_set>

#include "foundation/failure.h"

namespace vexil::formats {

namespace {

/// The least whole number that makes all numbers decimal.
class Denominator {
 public:
  void include(const Coefficient& number) {
    if (number.isDecimal()) return;
    value_ = lcm(value_, decimalDenominator(number.value()));
  }
  void include(const Bound& bound) {
    if (bound) include(*bound);
  }
  void include(const Form& form) {
    for (const Term& term : form) include(term.factor);
  }

  [[nodiscard]] bool isOne() const { return compare(value_, 1) == 0; }
  [[nodiscard]] Coefficient value() const { return Coefficient(QQ(value_)); }

 private:
  ZZ value_ = 1;
};

void multiply(Bound& bound, const Coefficient& factor) {
  if (bound) bound = *bound * factor;
}

void multiply(NamedRow& row, const Coefficient& factor) {
  multiply(row.form, factor);
  multiply(row.lower, factor);
  multiply(row.upper, factor);
}

/// The greatest whole number up to a value.
Coefficient wholeBelow(const Coefficient& number) {
  const QQ value = number.value();
  const QQ whole(wholeSigned(value));
  return Coefficient(whole > value ? whole - QQ::ONE() : whole);
}

Coefficient wholeAbove(const Coefficient& number) { return -wholeBelow(-number); }

/// True for a name that no reader is known to refuse for its characters or its length, also with
/// something behind it.
bool isPortable(std::string_view name) {
  constexpr std::size_t LONGEST = 100;
  return name.size() <= LONGEST &&
         std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c <= '~'; });
}

/// Names in use, and new ones.
class NameSupply {
 public:
  [[nodiscard]] bool take(const std::string& name) { return used_.insert(name).second; }
  std::string fresh(std::string name) {
    while (!take(name)) name += '_';
    return name;
  }

 private:
  std::unordered_set<std::string> used_;
};

class PlainModel {
 public:
  PlainModel(const NamedModel& model, const PlainSettings& settings)
      : settings_(settings), model_(model) {}

  NamedModel make();

 private:
  void forgetMergedNames();
  void makeNamesLegal();
  void dropFreeRows();
  void moveDecimals();
  void settleBounds();
  void mergeTargets();
  void addGoal(NamedTarget&& goal, NamedTarget& objective);
  void clearFractions();
  void moveConstant();
  void splitRanges();
  void addEmptyRow();
  void turnSense();

  void remark(std::string text) { model_.remarks.push_back(std::move(text)); }
  std::int32_t addVariable(const std::string& name);

  const PlainSettings& settings_;
  NamedModel model_;
  NameSupply variableNames_;
  NameSupply rowNames_;
};

NamedModel PlainModel::make() {
  model_.remarks.clear();
  forgetMergedNames();
  makeNamesLegal();
  dropFreeRows();
  moveDecimals();
  settleBounds();
  mergeTargets();
  clearFractions();
  moveConstant();
  if (!settings_.ranges) splitRanges();
  addEmptyRow();
  if (!settings_.maximize) turnSense();
  return std::move(model_);
}

/// Targets that the first one takes in leave no name.
void PlainModel::forgetMergedNames() {
  bool first = true;
  for (NamedTarget& target : model_.targets) {
    if (target.wish == Wish::GOAL) continue;
    if (!first) target.name.clear();
    first = false;
  }
}

void PlainModel::makeNamesLegal() {
  if (!model_.name.empty()) remark("model " + model_.name);
  const auto takeLegal = [&](auto& named, NameSupply& names) {
    std::vector<char> taken;
    taken.reserve(named.size());
    for (const auto& one : named) {
      const bool isLegal = isPortable(one.name) && settings_.isLegalName(one.name);
      taken.push_back(isLegal && names.take(one.name) ? 1 : 0);
    }
    return taken;
  };
  // Legal names stay; what is made up comes after all of them.
  const auto variables = takeLegal(model_.variables, variableNames_);
  const auto targets = takeLegal(model_.targets, rowNames_);
  const auto rows = takeLegal(model_.rows, rowNames_);
  const auto replace = [&](auto& named, const std::vector<char>& taken, std::string_view kind,
                           std::string_view stem, NameSupply& names) {
    for (std::size_t i = 0; i < named.size(); ++i) {
      if (taken[i] != 0 || named[i].name.empty()) continue;
      const std::string name = names.fresh(joined(stem, i + 1));
      remark(joined(kind, ' ', name, ' ', named[i].name));
      named[i].name = name;
    }
  };
  replace(model_.variables, variables, "name", "x", variableNames_);
  replace(model_.targets, targets, "row", "t", rowNames_);
  replace(model_.rows, rows, "row", "c", rowNames_);
}

void PlainModel::dropFreeRows() {
  std::erase_if(model_.rows, [](const NamedRow& row) { return !row.lower && !row.upper; });
}

void PlainModel::moveDecimals() {
  std::vector<Coefficient> units(model_.variables.size(), Coefficient(1));
  bool any = false;
  for (std::size_t j = 0; j < units.size(); ++j) {
    NamedVariable& x = model_.variables[j];
    if (x.decimals == 0) continue;
    any = true;
    ZZ power;
    powerOfTen(x.decimals, power);
    multiply(x.lower, Coefficient(QQ(power)));
    multiply(x.upper, Coefficient(QQ(power)));
    units[j] = Coefficient(QQ(1, std::move(power)));
    remark(joined("decimals ", x.name, ' ', x.decimals));
    x.decimals = 0;
  }
  if (!any) return;
  const auto move = [&](Form& form) {
    for (Term& term : form) {
      term.factor = term.factor * units[static_cast<std::size_t>(term.variable)];
    }
  };
  for (NamedTarget& target : model_.targets) move(target.form);
  for (NamedRow& row : model_.rows) move(row.form);
}

/// Readers differ about what a fractional bound makes of an integer variable. An upper bound that
/// gets below the lower one is told by a row, as no reader takes it for a bound.
void PlainModel::settleBounds() {
  for (std::size_t j = 0; j < model_.variables.size(); ++j) {
    NamedVariable& x = model_.variables[j];
    if (x.integer && x.lower) x.lower = wholeAbove(*x.lower);
    if (x.integer && x.upper) x.upper = wholeBelow(*x.upper);
    if (!x.lower || !x.upper || !(*x.upper < *x.lower)) continue;
    model_.rows.push_back({.name = rowNames_.fresh(joined("bound", j + 1)),
                           .form = {{static_cast<std::int32_t>(j), 1}},
                           .upper = std::move(x.upper)});
    x.upper.reset();
  }
}

/// The objective takes over all targets, unless it is the one target there is.
void PlainModel::mergeTargets() {
  std::vector<NamedTarget> targets = std::move(model_.targets);
  model_.targets.clear();
  bool isTarget = false;
  for (const NamedTarget& target : targets) isTarget = isTarget || target.wish != Wish::GOAL;
  if (targets.size() == 1 && targets.front().wish != Wish::GOAL) {
    model_.targets.push_back(std::move(targets.front()));
  } else {
    NamedTarget objective;
    std::vector<std::int32_t> place(model_.variables.size(), -1);
    for (NamedTarget& target : targets) {
      if (target.wish == Wish::GOAL) continue;
      if (objective.name.empty()) objective.name = target.name;
      const Coefficient sign = target.wish == Wish::MINIMIZE ? 1 : -1;
      objective.constant = objective.constant + sign * target.constant;
      for (const Term& term : target.form) {
        std::int32_t& at = place[static_cast<std::size_t>(term.variable)];
        if (at < 0) {
          at = static_cast<std::int32_t>(objective.form.size());
          objective.form.push_back({term.variable, 0});
        }
        Coefficient& factor = objective.form[static_cast<std::size_t>(at)].factor;
        factor = factor + sign * term.factor;
      }
    }
    std::erase_if(objective.form, [](const Term& term) { return term.factor.isZero(); });
    model_.targets.push_back(std::move(objective));
  }
  NamedTarget& objective = model_.targets.front();
  if (objective.name.empty()) objective.name = rowNames_.fresh("obj");
  if (isTarget && objective.form.empty()) remark("target " + objective.name);
  for (NamedTarget& target : targets) {
    if (target.wish == Wish::GOAL) addGoal(std::move(target), objective);
  }
}

void PlainModel::addGoal(NamedTarget&& goal, NamedTarget& objective) {
  const std::int32_t below = addVariable(goal.name + "_below");
  const std::int32_t above = addVariable(goal.name + "_above");
  NamedRow row{.name = std::move(goal.name), .form = std::move(goal.form)};
  row.form.push_back({below, 1});
  row.form.push_back({above, -1});
  row.lower = row.upper = std::move(goal.goal);
  model_.rows.push_back(std::move(row));
  objective.form.push_back({below, 1});
  objective.form.push_back({above, 1});
  const auto& variables = model_.variables;
  remark(joined("goal ", variables[static_cast<std::size_t>(below)].name, ' ',
                variables[static_cast<std::size_t>(above)].name));
}

void PlainModel::clearFractions() {
  for (NamedRow& row : model_.rows) {
    Denominator denominator;
    denominator.include(row.form);
    denominator.include(row.lower);
    denominator.include(row.upper);
    if (!denominator.isOne()) multiply(row, denominator.value());
  }
  NamedTarget& objective = model_.targets.front();
  Denominator denominator;
  denominator.include(objective.form);
  denominator.include(objective.constant);
  if (denominator.isOne()) return;
  multiply(objective.form, denominator.value());
  objective.constant = objective.constant * denominator.value();
  remark(joined("scaled ", objective.name, ' ', toString(denominator.value().value())));
}

void PlainModel::moveConstant() {
  NamedTarget& objective = model_.targets.front();
  if (objective.constant.isZero()) return;
  const std::int32_t one = addVariable("constant");
  NamedVariable& x = model_.variables[static_cast<std::size_t>(one)];
  x.lower = x.upper = 1;
  objective.form.push_back({one, objective.constant});
  objective.constant = 0;
  remark("constant " + x.name);
}

void PlainModel::splitRanges() {
  std::vector<NamedRow> rows = std::move(model_.rows);
  model_.rows.clear();
  for (NamedRow& row : rows) {
    const bool isRange = row.lower && row.upper && !row.isEquation();
    if (!isRange) {
      model_.rows.push_back(std::move(row));
      continue;
    }
    NamedRow upper = row;
    upper.name = rowNames_.fresh(row.name + "_upper");
    upper.lower.reset();
    row.upper.reset();
    remark(joined("range ", row.name, ' ', upper.name));
    model_.rows.push_back(std::move(row));
    model_.rows.push_back(std::move(upper));
  }
}

/// Some readers take no model without rows.
void PlainModel::addEmptyRow() {
  if (!model_.rows.empty()) return;
  model_.rows.push_back({.name = rowNames_.fresh("empty"), .lower = 0});
  remark("empty " + model_.rows.front().name);
}

void PlainModel::turnSense() {
  NamedTarget& objective = model_.targets.front();
  if (objective.wish != Wish::MAXIMIZE) return;
  multiply(objective.form, -1);
  objective.wish = Wish::MINIMIZE;
  remark("maximize " + objective.name);
}

std::int32_t PlainModel::addVariable(const std::string& name) {
  model_.variables.push_back({.name = variableNames_.fresh(name)});
  return static_cast<std::int32_t>(model_.variables.size() - 1);
}

}  // namespace

NamedModel plainModel(const NamedModel& model, const PlainSettings& settings) {
  return PlainModel(model, settings).make();
}

}  // namespace vexil::formats
