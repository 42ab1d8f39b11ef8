// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <vector>

#include "solver/relaxation.h"
#include "solver/stop.h"

namespace vexil::solver {

/// Branch and bound (Land and Doig 1960), depth first on an explicit stack that resumes. Where
/// equations order the coordinates of the lattice basis it branches on the last one that is
/// fractional (Aardal, Hurkens and Lenstra 2000); without that order on a variable, and it learns
/// which ones move the objective (pseudo-costs, Benichou and others 1971).
///
/// A node is given up only where the relaxation proved it empty, or all its coordinates are fixed
/// and the one point was offered. What looks empty and cannot be proved so is split further.
template <typename Z>
class Tree {
 public:
  /// The relaxation is at the root, its trail the root's own. All are kept by reference.
  Tree(const FormSystem<Z>& formSystem, Relaxation<Z>& rootRelaxation, SearchState<Z>& searchState,
       StopToken& stopToken);

  /// Takes over what another tree of the same forms has learned.
  void learnFrom(const Tree& other);

  /// Goes on until about `budget` more work is counted. Exhausted: every wanted point was offered.
  /// Throws `Stopped`.
  [[nodiscard]] RunEnd run(std::int64_t budget);

  /// Takes the relaxation back to its root, with what was proved of it: this tree is given up.
  void abandon();

  [[nodiscard]] std::int64_t nodes() const { return nodeCount; }
  /// The part of the tree that is done, each child of a node having an equal share of it, 0 to 1.
  [[nodiscard]] double progress() const { return done; }

 private:
  /// A part of the range of an item.
  struct Child {
    Z lower;
    Z upper;
    bool upward;
  };
  struct Frame {
    std::size_t trail;
    std::size_t item;    ///< the one that is split
    double share;        ///< of each child
    double objective;    ///< of the linear program, where `learns`
    double distance[2];  ///< from the solution to the child below and above
    bool learns;
    int next;
    int count;
    Child children[3];
  };
  /// An item that is to be split, and its fractional value.
  struct Choice {
    std::size_t item = NONE;
    double value = 0;
    double score = 0;
    bool isNarrowed = false;  ///< nothing is to be split: bounds of the node have moved
  };
  /// Mean rise of the objective per unit, below (0) and above (1).
  struct PseudoCost {
    double sum[2] = {0, 0};
    int count[2] = {0, 0};
  };

  void processNode();
  void close();
  void descend();
  bool enterNextChild();
  void learn(const Frame& frame);
  [[nodiscard]] bool dives() const;
  [[nodiscard]] bool dive();
  void branch();
  [[nodiscard]] Choice chooseOrdered() const;
  [[nodiscard]] Choice chooseLearned();
  [[nodiscard]] bool tryChildren(const Choice& choice, double objective);
  [[nodiscard]] double score(const Choice& choice) const;
  [[nodiscard]] double pseudoCost(std::size_t item, int side) const;
  void split(const Choice& choice, const Z& below);
  void splitAround(std::size_t item, const Z& middle);
  [[nodiscard]] double fraction(std::size_t item) const;
  [[nodiscard]] std::size_t lastUnfixed() const;

  const FormSystem<Z>& forms;
  Relaxation<Z>& relaxation;
  SearchState<Z>& state;
  StopToken& stop;
  std::vector<Frame> frames;
  std::vector<PseudoCost> pseudoCosts;  ///< by item
  std::vector<std::size_t> candidates;  ///< the items that are branched on
  bool ended = false;
  double share = 1;
  double done = 0;
  std::int64_t nodeCount = 0;
  std::int64_t diveWork = 0;  ///< of the present run, beside its budget
  std::int64_t nextDive = 1;  ///< number of the node that dives
};

extern template class Tree<std::int64_t>;
extern template class Tree<ZZ>;

}  // namespace vexil::solver
