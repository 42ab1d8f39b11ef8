// Vexil - exact integer optimization on lattices.
#include "solver/basis.h"

#include <algorithm>
#include <utility>

#include "foundation/work_meter.h"
#include "reduction/bkz.h"
#include "reduction/floating_lll.h"
#include "solver/conversion.h"
#include "solver/integers.h"

namespace vexil::solver {

namespace {

struct Term {
  std::size_t variable;
  Integer a;
};

/// The form sum of a X - shift, and its box.
struct Form {
  FormKind kind;
  std::size_t source;
  std::vector<Term> terms;
  Integer shift;
  Side lower;
  Side upper;

  [[nodiscard]] Integer linear(const std::vector<Integer>& X) const {
    Integer sum;
    for (const auto& [variable, a] : terms) sum.addProduct(a, X[variable]);
    return sum;
  }
  [[nodiscard]] Integer value(const std::vector<Integer>& X) const { return linear(X) - shift; }
};

std::vector<Term> terms(const std::vector<ZZ>& row) {
  std::vector<Term> result;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!vexil::isZero(row[i])) result.push_back({i, Integer(row[i])});
  }
  return result;
}

/// The least value of a form over the box of the variables, or the greatest.
Side activity(const Model& model, const Form& form, bool greatest) {
  Integer sum = -form.shift;
  bool artificial = false;
  for (const auto& [variable, a] : form.terms) {
    const Side& side = (a.sign() > 0) == greatest ? model.upper[variable] : model.lower[variable];
    sum.addProduct(a, Integer(side.value));
    artificial = artificial || side.artificial;
  }
  return {true, artificial, sum.zz()};
}

/// All forms of a model: the variables in their order, the inequations, the goals.
std::vector<Form> formsOf(const Model& model) {
  std::vector<Form> forms;
  for (std::size_t i = 0; i < model.n; ++i) {
    forms.push_back({FormKind::Variable, i, {{i, 1}}, 0, model.lower[i], model.upper[i]});
  }
  for (std::size_t i = 0; i < model.rows.size(); ++i) {
    const ModelRow& row = model.rows[i];
    if (row.isEquation()) continue;
    Form form{FormKind::Row, i, terms(row.a), 0, row.lower, row.upper};
    if (!row.lower.finite) form.lower = activity(model, form, false);
    if (!row.upper.finite) form.upper = activity(model, form, true);
    forms.push_back(std::move(form));
  }
  for (std::size_t i = 0; i < model.goals.size(); ++i) {
    const ModelGoal& goal = model.goals[i];
    Form form{FormKind::Goal, i, terms(goal.g), Integer(goal.wish), {}, {}};
    form.lower = activity(model, form, false);
    form.upper = activity(model, form, true);
    forms.push_back(std::move(form));
  }
  return forms;
}

/// One step of a variable can leap over the range of a row.
bool hasThinRow(const std::vector<Form>& forms) {
  return std::any_of(forms.begin(), forms.end(), [](const Form& form) {
    if (form.kind != FormKind::Row) return false;
    const Integer width = Integer(form.upper.value) - Integer(form.lower.value);
    return std::any_of(form.terms.begin(), form.terms.end(),
                       [&](const Term& term) { return abs(term.a) > width; });
  });
}

Integer middle(const Form& form) {
  return floorQuotient(Integer(form.lower.value) + Integer(form.upper.value), 2);
}

void extend(Integer& reach, const Integer& value) { reach = std::max(reach, abs(value)); }

Integer reach(const Side& lower, const Side& upper) {
  return std::max(abs(Integer(lower.value)), abs(Integer(upper.value)));
}

/// The system in exact numbers of any size, from which those of both types are made.
class SystemBuilder {
 public:
  SystemBuilder(const Model& model, const LatticeBasis& basis)
      : model_(model), x0_(toIntegers(basis.x0)) {
    uses_.resize(model.n);
    for (const std::vector<ZZ>& row : basis.K) {
      for (std::size_t i = 0; i < model.n; ++i) {
        if (!vexil::isZero(row[i])) uses_[i].emplace_back(dimension_, row[i]);
      }
      ++dimension_;
    }
    system_.dimension = dimension_;
    system_.ordered = basis.ordered;
    system_.hasObjective = model.hasObjective;
    addObjective();
    for (const Form& form : formsOf(model)) add(form);
    arrangeMatrix();
  }

  [[nodiscard]] const FormSystem<Integer>& system() const { return system_; }

  /// The greatest magnitude of all entries, boxes and values within the boxes.
  [[nodiscard]] Integer greatest() const {
    Integer result = objectiveReach();
    for (const auto* const numbers :
         {&system_.matrix, &system_.offset, &system_.lower, &system_.upper, &system_.objective}) {
      for (const Integer& number : *numbers) extend(result, number);
    }
    return result;
  }

 private:
  void addObjective() {
    const std::vector<Integer> c = toIntegers(model_.c);
    system_.objectiveOffset = Integer(model_.constant);
    if (!model_.hasObjective) {
      system_.objective.resize(dimension_);
      return;
    }
    for (std::size_t i = 0; i < model_.n; ++i) system_.objectiveOffset.addProduct(c[i], x0_[i]);
    system_.objective = inCoordinates(terms(model_.c));
  }

  /// The values of the terms on the rows of K.
  [[nodiscard]] std::vector<Integer> inCoordinates(const std::vector<Term>& terms) const {
    std::vector<Integer> values(dimension_);
    for (const auto& [variable, a] : terms) {
      for (const auto& [k, y] : uses_[variable]) values[k].addProduct(a, y);
    }
    return values;
  }

  void add(const Form& form) {
    std::vector<Integer> column = inCoordinates(form.terms);
    const Integer offset = form.value(x0_);
    const bool isConstant = std::all_of(column.begin(), column.end(),
                                        [](const Integer& entry) { return entry.isZero(); });
    const Integer lower(form.lower.value);
    const Integer upper(form.upper.value);
    if (isConstant && form.kind == FormKind::Goal) {
      system_.objectiveOffset += abs(offset);
      return;
    }
    if (isConstant && offset >= lower && offset <= upper) return;
    columns_.push_back(std::move(column));
    system_.offset.push_back(offset);
    system_.lower.push_back(lower);
    system_.upper.push_back(upper);
    system_.artificialLower.push_back(form.lower.artificial ? 1 : 0);
    system_.artificialUpper.push_back(form.upper.artificial ? 1 : 0);
    system_.kind.push_back(form.kind);
    system_.source.push_back(form.source);
  }

  void arrangeMatrix() {
    system_.count = columns_.size();
    for (std::size_t k = 0; k < dimension_; ++k) {
      for (const std::vector<Integer>& column : columns_) system_.matrix.push_back(column[k]);
    }
  }

  [[nodiscard]] Integer objectiveReach() const {
    Integer result = abs(Integer(model_.constant)) + abs(system_.objectiveOffset);
    for (std::size_t i = 0; i < model_.n; ++i) {
      result.addProduct(abs(Integer(model_.c[i])), reach(model_.lower[i], model_.upper[i]));
    }
    for (const Form& form : formsOf(model_)) {
      if (form.kind == FormKind::Goal) result += reach(form.lower, form.upper);
    }
    return result;
  }

  const Model& model_;
  std::vector<Integer> x0_;
  std::size_t dimension_ = 0;
  /// By variable the rows k of K where it is not 0, with its value there.
  std::vector<std::vector<std::pair<std::size_t, Integer>>> uses_;
  std::vector<std::vector<Integer>> columns_;
  FormSystem<Integer> system_;
};

template <typename Z>
Z to(const Integer& a) {
  if constexpr (std::is_same_v<Z, ZZ>) {
    return a.zz();
  } else {
    return a.word();
  }
}

template <typename Z>
std::vector<Z> to(const std::vector<Integer>& row) {
  std::vector<Z> result;
  result.reserve(row.size());
  for (const Integer& element : row) result.push_back(to<Z>(element));
  return result;
}

}  // namespace

void reduce(LatticeBasis& basis, const Model& model, int blockSize, bool deep, StopToken& stop) {
  const std::vector<Form> forms = formsOf(model);
  if (!basis.ordered && !hasThinRow(forms)) return;
  basis.ordered = true;
  WorkMeter meter([&stop] { throwIfStopped(stop); });

  const std::vector<Integer> x0 = toIntegers(basis.x0);
  std::vector<Integer> point;
  WeightedRows lattice;
  for (const Form& form : forms) {
    lattice.weights.push_back(2 / formWidth(form.lower, form.upper));
    point.push_back(form.value(x0) - middle(form));
  }
  for (const std::vector<ZZ>& row : basis.K) {
    throwIfStopped(stop);
    const std::vector<Integer> X = toIntegers(row);
    std::vector<Integer>& values = lattice.rows.emplace_back();
    for (const Form& form : forms) values.push_back(form.linear(X));
  }

  const LllSettings settings{.deep = deep};
  lllReduce(lattice, settings, meter);
  if (blockSize > 2) bkzReduce(lattice, static_cast<std::size_t>(blockSize), settings, meter);
  reducePoint(point, lattice, meter);

  for (std::size_t i = 0; i < model.n; ++i) basis.x0[i] = (point[i] + middle(forms[i])).zz();
  for (std::size_t k = 0; k < basis.K.size(); ++k) {
    for (std::size_t i = 0; i < model.n; ++i) basis.K[k][i] = lattice.rows[k][i].zz();
  }
}

bool isNarrowSystem(const Model& model, const LatticeBasis& basis) {
  return SystemBuilder(model, basis).greatest() < NARROW_LIMIT;
}

template <typename Z>
FormSystem<Z> formSystem(const Model& model, const LatticeBasis& basis) {
  const SystemBuilder builder(model, basis);
  const FormSystem<Integer>& exact = builder.system();
  FormSystem<Z> system;
  system.dimension = exact.dimension;
  system.count = exact.count;
  system.matrix = to<Z>(exact.matrix);
  system.offset = to<Z>(exact.offset);
  system.lower = to<Z>(exact.lower);
  system.upper = to<Z>(exact.upper);
  system.artificialLower = exact.artificialLower;
  system.artificialUpper = exact.artificialUpper;
  system.kind = exact.kind;
  system.source = exact.source;
  system.hasObjective = exact.hasObjective;
  system.objective = to<Z>(exact.objective);
  system.objectiveOffset = to<Z>(exact.objectiveOffset);
  system.ordered = exact.ordered;
  return system;
}

template FormSystem<std::int64_t> formSystem(const Model&, const LatticeBasis&);
template FormSystem<ZZ> formSystem(const Model&, const LatticeBasis&);

}  // namespace vexil::solver
