// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "solver/basis.h"
#include "solver/enumeration.h"
#include "solver/incumbent.h"
#include "solver/root.h"
#include "solver/tree.h"

namespace vexil::solver {

/// How the search of one lattice ended.
enum class LatticeEnd : std::uint8_t {
  Exhausted,  ///< proved: no wanted point is left, or enough were found
  Narrowed,   ///< the root narrowed the model to another lattice
  OutOfRounds,
  Unusable  ///< the numbers of this lattice are beyond floating arithmetic
};

/// The search of the points of one lattice: the root, then rounds of the tree and the enumeration.
template <typename Z>
class LatticeSearch : public SearchState<Z>, public StopToken {
 public:
  /// All but `settings` are kept by reference. `searched` is narrowed by the root.
  LatticeSearch(Model& searched, const LatticeBasis& latticeBasis, const Settings& searchSettings,
                Incumbent& points, StopToken& searchStop, Progress& searchProgress,
                Listener& searchListener);

  [[nodiscard]] LatticeEnd run(bool mayNarrow);

  bool offer(const FormSystem<Z>& system, const std::vector<Z>& values) override;

 private:
  /// The enumeration on a basis of its own, reduced more strongly.
  struct Enumerator {
    FormSystem<Z> forms;
    CoordinateRanges<Z> ranges;
    std::unique_ptr<Enumeration<Z>> search;
    std::int64_t work = 0;
  };

  void lowerCut();
  [[nodiscard]] bool exportSides(const Relaxation<Z>& relaxation);
  [[nodiscard]] LatticeEnd search(Relaxation<Z>& relaxation, bool mayNarrow);
  [[nodiscard]] NodeState cutRoot(Relaxation<Z>& relaxation);
  [[nodiscard]] LatticeEnd searchRounds(Relaxation<Z>& relaxation);
  void plant(Relaxation<Z>& relaxation);
  [[nodiscard]] bool isStuck(std::int64_t round) const;
  [[nodiscard]] NodeState replant(Relaxation<Z>& relaxation);
  [[nodiscard]] std::unique_ptr<Enumerator> makeEnumerator();
  void enter(const char* phase);
  void report();
  [[nodiscard]] bool stopRequested() override;

  Model& model;
  const LatticeBasis& basis;
  const Settings& settings;
  Incumbent& incumbent;
  StopToken& outerStop;
  Progress& progress;
  Listener& listener;
  FormSystem<Z> forms;
  std::unique_ptr<Tree<Z>> tree;
  std::unique_ptr<Enumerator> enumerator;  ///< while it is usable
  bool isBounded;                          ///< no side is artificial: bounds hold for the program
  std::int64_t earlierWork = 0;
  std::int64_t rootWork = 0;
  std::int64_t trialNodes = 0;  ///< of trees that were given up
};

extern template class LatticeSearch<std::int64_t>;
extern template class LatticeSearch<ZZ>;

}  // namespace vexil::solver
