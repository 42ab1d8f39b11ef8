// Vexil - exact integer optimization on lattices.
#include "solver/search.h"

#include "foundation/failure.h"
#include "solver/basis.h"
#include "solver/incumbent.h"
#include "solver/kernel.h"
#include "solver/lattice_search.h"
#include "solver/model.h"
#include "solver/presolve.h"
#include "solver/unbounded.h"

namespace vexil::solver {
namespace {

constexpr int MOST_LATTICES = 8;
constexpr std::int64_t ROUNDS_OF_A_SIDE_SEARCH = 4;
constexpr const char* IN_THE_BOX =
    "variables without bounds were searched up to 2^20 beyond their other bound or 0";

/// Keeps the one point that a search within the search is made for.
class SideListener : public Listener {
 public:
  explicit SideListener(Listener& mainListener) : listener(mainListener) {}
  void point(const Vector<QQ>& x) override { found = x; }
  void progress(const Progress& /*progress*/) override {}
  bool stopRequested() override { return listener.stopRequested(); }

  Vector<QQ> found;

 private:
  Listener& listener;
};

class Search : public StopToken {
 public:
  Search(const Vexil<QQ>& inputProgram, const std::vector<Vector<QQ>>& known,
         const Settings& searchSettings, Listener& searchListener)
      : program(inputProgram),
        settings(searchSettings),
        listener(searchListener),
        incumbent(program, known, settings, listener) {}

  [[nodiscard]] bool stopRequested() override { return listener.stopRequested(); }

  /// `within` another search nothing is said of what lies outside the box.
  Outcome run(bool within) {
    if (incumbent.enough()) return answer(true);
    try {
      enter("presolve");
      model = makeModel(program, this);
      if (const char* reason = presolve(model, *this)) return answer(proved(reason));
      boxed = hasArtificialSides(model);
      if (!boxed || within) return answer(exhaust());
      return answerUnbounded();
    } catch (const Stopped&) {
      return answer(false);
    }
  }

 private:
  /// True if no wanted point is left.
  bool exhaust() {
    for (int lattices = 1;; ++lattices) {
      enter("kernel");
      LatticeBasis basis = kernel(model, *this);
      if (basis.contradiction) {
        boxed = false;  // no bound has a part in this
        return lattices > 1 ? provedBySearch() : proved(basis.contradiction);
      }
      if (basis.K.empty()) {
        boxed = false;
        incumbent.take(programPoint(model, basis.x0));
        return lattices > 1 ? provedBySearch() : proved("the equations leave one point");
      }
      enter("reduction");
      reduce(basis, model, 2, settings.deep, *this);
      throwIfStopped(*this);
      const bool mayNarrow = lattices < MOST_LATTICES && !boxed;
      LatticeEnd end = LatticeEnd::Unusable;
      if (isNarrowSystem(model, basis)) end = searchLattice<std::int64_t>(basis, mayNarrow);
      if (end == LatticeEnd::Unusable) end = searchLattice<ZZ>(basis, mayNarrow);
      if (end == LatticeEnd::Exhausted) return provedBySearch();
      if (end != LatticeEnd::Narrowed) return false;
      enter("presolve");
      if (presolve(model, *this)) return provedBySearch();
    }
  }

  /// The search of a program with variables that nothing bounds: first for a ray that settles it,
  /// then within the box, then for a proof that nothing lies outside.
  Outcome answerUnbounded() {
    const bool asksForAll = program.dt.MN == 0 && settings.wanted == 0;
    Vector<QQ> ray;
    if (program.dt.MN > 0 ? !incumbent.collects() : asksForAll) {
      enter("rays");
      ray = findRay();
      if (ray.MN > 0 && takeAnyPoint()) return answerAlong(ray);
    }
    const Model whole = model;
    Outcome outcome = answerBox();
    if (outcome.limitation.empty()) return outcome;
    model = whole;
    if (!boundByPrograms(model, *this)) return outcome;
    enter("presolve");
    if (const char* reason = presolve(model, *this)) return answer(proved(reason));
    if (ray.MN > 0 && takeAnyPoint()) return answerAlong(ray);
    boxed = hasArtificialSides(model);
    return boxed ? answerBox() : answer(exhaust());
  }

  Outcome answerAlong(const Vector<QQ>& ray) {
    Outcome outcome = answer(false);
    outcome.status = program.dt.MN > 0 ? Status::Unbounded : Status::Feasible;
    outcome.ray = primitive(model, ray);
    return outcome;
  }

  Outcome answerBox() {
    const Model whole = model;
    const bool complete = exhaust();
    if (!complete || !boxed || incumbent.enough() || isWhole(whole)) return answer(complete);
    return answerBeyondBox(whole);
  }

  /// The answer where the box is searched, but may not hold all points.
  Outcome answerBeyondBox(const Model& whole) {
    const WithoutBox proved = provedWithoutBox(whole, *this);
    if (proved.bound) progress.bound = QQ(*proved.bound, whole.scale);
    if (proved.empty || (progress.bound && !isWantedAt(*progress.bound))) return answer(true);
    Outcome outcome = answer(false);
    outcome.limitation = IN_THE_BOX;
    return outcome;
  }

  /// A point with this norm, which none falls below, might be wanted yet.
  [[nodiscard]] bool isWantedAt(const QQ& norm) const {
    if (incumbent.collects()) return !settings.targetLimit || norm <= *settings.targetLimit;
    return !incumbent.best() || norm < *incumbent.best();
  }

  /// A point is known, and all points that are wanted are in the box.
  [[nodiscard]] bool isWhole(const Model& whole) {
    if (incumbent.points() == 0) return false;
    enter("box");
    std::optional<ZZ> greatest;
    if (incumbent.best()) greatest = wholeSigned(*incumbent.best() * QQ(whole.scale));
    if (incumbent.collects() && settings.targetLimit) {
      const QQ limit = *settings.targetLimit * QQ(whole.scale);
      greatest = wholeSigned(limit) + ZZ(1);
    } else if (incumbent.collects()) {
      greatest.reset();
    }
    return staysInBox(whole, greatest, *this);
  }

  /// A direction of descent, or without targets any that is not 0.
  Vector<QQ> findRay() {
    Vexil<QQ> directions = directionsOf(program);
    Settings sought;
    sought.rounds = ROUNDS_OF_A_SIDE_SEARCH;
    if (program.dt.MN > 0) {
      sought.targetLimit = QQ(ZZ(-1), model.scale);
      return findWithin(directions, sought);
    }
    for (std::int64_t i = 1; i <= program.lx.MN; ++i) {
      for (Vector<QQ>* const side : {&directions.lx, &directions.rx}) {
        const bool upward = side == &directions.lx;
        if (!(upward ? program.rx : program.lx)[i].isInf) continue;
        const QQ before = (*side)[i];
        (*side)[i] = upward ? 1 : -1;
        Vector<QQ> ray = findWithin(directions, sought);
        if (ray.MN > 0) return ray;
        (*side)[i] = before;
      }
    }
    return {};
  }

  /// True if a point is known, or one is found in the box of the model.
  bool takeAnyPoint() {
    Vexil<QQ> plain = program;
    plain.At.clear();
    plain.dt.clear();
    plain.kt.clear();
    const Vector<QQ> units = programPoint(model, std::vector<ZZ>(model.n, 1));
    for (std::size_t i = 0; i < model.n; ++i) {
      const QQ& unit = units.data[i + 1];
      if (model.lower[i].isProved()) plain.lx.data[i + 1] = QQ(model.lower[i].value) * unit;
      if (model.upper[i].isProved()) plain.rx.data[i + 1] = QQ(model.upper[i].value) * unit;
    }
    const Vector<QQ> point = findWithin(plain, Settings{});
    if (point.MN > 0) incumbent.take(point);
    return incumbent.points() > 0;
  }

  Vector<QQ> findWithin(const Vexil<QQ>& other, const Settings& sought) {
    SideListener keeper(listener);
    static_cast<void>(Search(other, {}, sought, keeper).run(true));
    throwIfStopped(*this);
    return keeper.found;
  }

  template <typename Z>
  LatticeEnd searchLattice(const LatticeBasis& basis, bool mayNarrow) {
    LatticeSearch<Z> search(model, basis, settings, incumbent, *this, progress, listener);
    return search.run(mayNarrow);
  }

  bool proved(const char* reason) {
    proof = reason;
    return true;
  }

  bool provedBySearch() {
    const auto [tree, enumeration] = std::pair(progress.treeNodes, progress.enumerationNodes);
    proof = tree + enumeration == 0
                ? "search, at its root"
                : joined("search, ", tree, tree == 1 ? " node" : " nodes", " of the tree and ",
                         enumeration, " of the enumeration");
    return true;
  }

  void enter(const char* phase) {
    progress.phase = phase;
    progress.best = incumbent.best();
    progress.points = incumbent.points();
    listener.progress(progress);
  }

  [[nodiscard]] Status status(bool complete) const {
    const bool found = incumbent.points() > 0;
    if (incumbent.collects()) {
      const bool limits = settings.targetLimit || settings.slackLimit;
      if (incumbent.enough() || (complete && found)) {
        return limits ? Status::Reached : Status::Feasible;
      }
    } else if (complete && found) {
      return Status::Optimal;
    }
    if (complete) return Status::Infeasible;
    return found ? Status::BestSoFar : Status::Unknown;
  }

  Outcome answer(bool complete) {
    Outcome outcome;
    outcome.status = status(complete);
    outcome.best = incumbent.best();
    outcome.bound = outcome.status == Status::Optimal ? incumbent.best() : progress.bound;
    outcome.points = incumbent.points();
    outcome.complete = complete && !incumbent.enough();
    if (outcome.complete) outcome.proof = proof;
    outcome.effort = progress;
    return outcome;
  }

  const Vexil<QQ>& program;
  const Settings& settings;
  Listener& listener;
  Incumbent incumbent;
  Model model;
  Progress progress;
  std::string proof;
  bool boxed = false;  ///< some variables have artificial sides
};

}  // namespace

Outcome solve(const Vexil<QQ>& program, const std::vector<Vector<QQ>>& known,
              const Settings& settings, Listener& listener) {
  return Search(program, known, settings, listener).run(false);
}

}  // namespace vexil::solver
