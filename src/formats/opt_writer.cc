// Vexil - exact integer optimization on lattices.
#include "formats/opt_writer.h"

#include <sys/resource.h>
#include <unistd.h>

#include "foundation/failure.h"

namespace vexil::formats {

namespace {

/// Bytes of a number in a dense matrix, with its two shortest limb blocks on the heap.
constexpr double NUMBER_BYTES = sizeof(QQ) + 2 * 48;

/// What this process may hold in memory.
double memoryBytes() {
  const double physical =
      static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return physical;
  return std::min(physical, static_cast<double>(limit.rlim_cur));
}

class OptText {
 public:
  explicit OptText(const NamedModel& model) : model_(model) {}

  std::string make();

 private:
  void appendNames();
  void appendTargets();
  void appendRows(bool equations);
  void appendVariables();
  void appendRow(const Form& form);
  void appendBound(const Bound& bound, std::string_view infinity);

  void appendComment(std::string_view item, std::size_t index, std::string_view text) {
    text_ += joined("// ", item, '[', index, "]: ", text, '\n');
  }
  [[nodiscard]] bool isWritten(const NamedRow& row, bool asEquation) const {
    return (row.lower || row.upper) && row.isEquation() == asEquation;
  }

  const NamedModel& model_;
  std::string text_;
};

std::string OptText::make() {
  appendNames();
  appendTargets();
  appendRows(true);
  appendRows(false);
  appendVariables();
  return std::move(text_);
}

void OptText::appendNames() {
  if (!model_.name.empty()) text_ += joined("// model: ", model_.name, '\n');
  for (std::size_t j = 0; j < model_.variables.size(); ++j) {
    appendComment("x", j + 1, model_.variables[j].name);
  }
  for (std::size_t i = 0; i < model_.targets.size(); ++i) {
    const NamedTarget& target = model_.targets[i];
    appendComment("target", i + 1, target.name);
    if (!target.constant.isZero()) {
      appendComment("constant", i + 1, toString(target.constant.value()));
    }
  }
  for (const bool equations : {true, false}) {
    std::size_t index = 0;
    for (const NamedRow& row : model_.rows) {
      if (!isWritten(row, equations)) continue;
      appendComment(equations ? "equation" : "inequation", ++index, row.name);
    }
  }
}

void OptText::appendTargets() {
  text_ += "[";
  for (const NamedTarget& target : model_.targets) {
    text_ += ' ';
    if (target.wish == Wish::GOAL) {
      append(text_, target.goal.value());
    } else {
      text_ += target.wish == Wish::MINIMIZE ? "-inf" : "inf";
    }
  }
  text_ += " ]\n[\n";
  for (const NamedTarget& target : model_.targets) appendRow(target.form);
  text_ += "]\n";
}

void OptText::appendRows(bool equations) {
  text_ += "[\n";
  std::string left = "[ ";
  std::string right = "[ ";
  const auto side = [](const Bound& bound, std::string_view infinity) {
    return (bound ? toString(bound->value()) : std::string(infinity)) + ' ';
  };
  for (const NamedRow& row : model_.rows) {
    if (!isWritten(row, equations)) continue;
    appendRow(row.form);
    left += side(row.lower, "-inf");
    right += side(row.upper, "inf");
  }
  const bool nothingElse = model_.targets.empty() && model_.rows.empty();
  if (nothingElse && !equations) {
    appendRow({});
    left += "0 ";
    right += "0 ";
  }
  text_ += "]\n" + left + "]\n";
  if (!equations) text_ += right + "]\n";
}

void OptText::appendVariables() {
  text_ += "[ ";
  for (const NamedVariable& x : model_.variables) text_ += std::to_string(x.decimals) + ' ';
  text_ += "]\n[ ";
  for (const NamedVariable& x : model_.variables) appendBound(x.lower, "-inf");
  text_ += "]\n[ ";
  for (const NamedVariable& x : model_.variables) appendBound(x.upper, "inf");
  text_ += "]\n";
}

void OptText::appendRow(const Form& form) {
  std::vector<const Coefficient*> row(model_.variables.size(), nullptr);
  for (const Term& term : form) row[static_cast<std::size_t>(term.variable)] = &term.factor;
  text_ += "[ ";
  for (const Coefficient* const factor : row) {
    if (factor == nullptr) {
      text_ += '0';
    } else {
      append(text_, factor->value());
    }
    text_ += ' ';
  }
  text_ += "]\n";
}

void OptText::appendBound(const Bound& bound, std::string_view infinity) {
  if (bound) {
    append(text_, bound->value());
  } else {
    text_ += infinity;
  }
  text_ += ' ';
}

}  // namespace

void makeDiscrete(NamedModel& model, std::optional<std::int32_t> decimals, std::string_view path) {
  for (NamedVariable& x : model.variables) {
    if (x.integer) continue;
    if (!decimals) {
      fail(path, ": variable ", x.name,
           " is not integer (--decimals=k makes it a multiple of 10^-k)");
    }
    x.integer = true;
    x.decimals = *decimals;
  }
}

void checkDenseSize(const NamedModel& model, std::string_view path) {
  constexpr double GIGABYTE = 1e9;
  const std::size_t rows = model.targets.size() + model.rows.size();
  const std::size_t columns = model.variables.size();
  const double needed = static_cast<double>(rows) * static_cast<double>(columns) * NUMBER_BYTES;
  const double available = memoryBytes();
  if (needed <= available) return;
  fail(path, ": ", rows, " rows of ", columns, " variables take ", needed / GIGABYTE,
       " GB as dense matrices, and there are ", available / GIGABYTE, " GB of memory");
}

std::string optText(const NamedModel& model) { return OptText(model).make(); }

}  // namespace vexil::formats
