// Vexil - exact integer optimization on lattices.
//
// The face of the solver: from a program to a proved answer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/vector.h"
#include "numbers/qq.h"
#include "program/vexil.h"

namespace vexil::solver {

/// How a search ended.
enum class Status {
  Optimal,     ///< the best target norm, proved
  Feasible,    ///< no targets: as many points as wanted, or all of them
  Infeasible,  ///< proved: no point
  Reached,     ///< as many points within the limits of the norms as wanted, or all of them
  Unbounded,   ///< a ray along which the norm falls for ever, and an integral point
  BestSoFar,   ///< stopped, or the claim is limited; there is a point
  Unknown      ///< stopped, or the claim is limited; there is no point
};

class Probe;

/// What is wanted of a search. All counts that limit work count work, never time.
struct Settings {
  bool tree = true;               ///< branch and bound takes part
  bool enumeration = true;        ///< enumeration takes part
  int blockSize = 20;             ///< block size of the strongest reduction; 2: LLL alone
  bool deep = false;              ///< deep insertions in the reduction
  std::int64_t rounds = -1;       ///< rounds of the two searches; -1: any number
  std::int64_t wanted = 1;        ///< points wanted without targets or within the limits; 0: all
  std::optional<QQ> targetLimit;  ///< wanted points have a target norm up to this
  std::optional<QQ> slackLimit;   ///< wanted points have a slack norm up to this
  Probe* probe = nullptr;         ///< of a test
};

/// Where a search stands.
struct Progress {
  /// "presolve", "kernel", "reduction", "root", "tree", "enumeration", "rays", "box"
  const char* phase = "";
  std::optional<QQ> best;             ///< target norm of the best point
  std::optional<QQ> bound;            ///< proved: no point has a lesser norm
  std::int64_t points = 0;            ///< points found
  std::int64_t treeNodes = 0;         ///< nodes of branch and bound
  std::int64_t enumerationNodes = 0;  ///< nodes of the enumeration
  std::int64_t work = 0;              ///< counted work so far
};

/// Receives what a search finds, and can stop it. Called on the thread of the search.
class Listener {
 public:
  Listener() = default;
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  virtual ~Listener() = default;

  /// A point (components from 1) that satisfies the program as read, checked in exact numbers. With
  /// targets and without limits of the norms each one is better than all before and than the known
  /// ones; otherwise each one is new.
  virtual void point(const Vector<QQ>& x) = 0;
  /// At every change of phase, every improvement, and every few milliseconds of a search.
  virtual void progress(const Progress& progress) = 0;
  /// At phase `Progress::phase`, asked every few milliseconds of work; true ends the search.
  virtual bool stopRequested() = 0;
};

/// What a search ended with.
struct Outcome {
  Status status = Status::Unknown;
  std::optional<QQ> best;   ///< target norm of the best point, the known ones included
  std::optional<QQ> bound;  ///< proved lower bound of the target norm; none: minus infinity
  std::int64_t points =
      0;  ///< points without targets or within the limits, valid known ones included
  bool complete = false;  ///< these are all that there are
  /// An integral direction that may be added for ever to any point: behind `Unbounded`, and behind
  /// `Feasible` where there are infinitely many points. Empty: none.
  Vector<QQ> ray;
  std::string limitation;  ///< in words, what a claim is limited to; empty: it is not
  /// In words, why there is no other wanted point, e.g. "a row cannot come within its bounds" or
  /// "search, 5 nodes of the tree and 0 of the enumeration". Empty where that is not claimed.
  std::string proof;
  Progress effort;  ///< the counts at the end
};

/// Searches `program`, read and validated, `known` being points of its sol file that are known to
/// be valid (components from 1). The same arguments give the same calls of the listener, except for
/// what `stopRequested` changes.
[[nodiscard]] Outcome solve(const Vexil<QQ>& program, const std::vector<Vector<QQ>>& known,
                            const Settings& settings, Listener& listener);

}  // namespace vexil::solver
