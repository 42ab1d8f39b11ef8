// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <vector>

#include "solver/items.h"

namespace vexil::solver {

class Dictionary;
class Projection;

/// What a test sees of a search, to replay it in numbers of its own, and does to its floating
/// numbers. A search without one asks for nothing of this. Parameters and items count as in
/// `ItemSystem`, levels of the enumeration as in `FormSystem`.
class Probe {
 public:
  struct Multiple {
    std::size_t item = 0;
    ZZ factor;
  };
  /// c q, q >= 0 being a parameter from one of its bounds, or the distance of an item from its own.
  struct Term {
    std::size_t index = 0;
    bool isItem = false;
    bool fromUpper = false;
    ZZ c;
  };

  Probe() = default;
  Probe(const Probe&) = delete;
  Probe& operator=(const Probe&) = delete;
  virtual ~Probe() = default;

  /// May change what the linear program or the orthogonalisation came up with.
  virtual void disturb(Dictionary& /*solved*/) {}
  virtual void disturb(Projection& /*made*/) {}

  /// What all of the following is about; again when cuts came or went.
  virtual void takeItems(const ItemSystem<ZZ>& /*system*/) {}
  /// The objective of every point is congruent `residue` modulo `step`.
  virtual void takeCoset(const ZZ& /*step*/, const ZZ& /*residue*/) {}
  /// A point has this objective, and only lesser ones are wanted.
  virtual void takeBest(const ZZ& /*best*/) {}
  /// The search of this lattice is over: no wanted point is left.
  virtual void exhaust() {}

  /// What is concluded next is concluded from this combination.
  virtual void combine(const std::vector<Multiple>& /*parts*/) {}
  virtual void conclude(std::size_t /*item*/, const ZZ& /*lower*/, const ZZ& /*upper*/) {}
  virtual void concludeEmpty() {}
  /// Only points with an objective up to `cut` are wanted.
  virtual void takeCut(const ZZ& /*cut*/) {}
  /// Some search proved that none is below `bound`.
  virtual void takeBound(const ZZ& /*bound*/) {}
  /// Branches: nothing but these values of the item until `undo` with this mark or a lesser one.
  virtual void suppose(std::size_t /*mark*/, std::size_t /*item*/, const ZZ& /*lower*/,
                       const ZZ& /*upper*/) {}
  virtual void undo(std::size_t /*mark*/) {}
  /// The one point that is left was judged.
  virtual void judge() {}

  /// The cut after this one comes from sum of terms = r, rounded with a divisor.
  virtual void round(const std::vector<Term>& /*terms*/, const ZZ& /*r*/, const ZZ& /*divisor*/) {}
  /// The cut after this one comes from the upper or the lower side of a row.
  virtual void cover(std::size_t /*item*/, bool /*upward*/) {}
  /// sum a_k parameter_k <= bound, divided by `divisor`.
  virtual void cut(const std::vector<std::int64_t>& /*a*/, std::int64_t /*bound*/,
                   const ZZ& /*divisor*/) {}

  /// An enumeration begins, in a basis of its own.
  virtual void enumerate(const FormSystem<ZZ>& /*system*/, const CoordinateRanges<ZZ>& /*ranges*/) {
  }
  /// Points with an objective from `bottom` to `top` are enumerated, from the last level on.
  virtual void openSlice(const FormSystem<ZZ>& /*system*/, const CoordinateRanges<ZZ>& /*ranges*/,
                         const ZZ& /*bottom*/, const ZZ& /*top*/) {}
  virtual void lowerTop(const ZZ& /*top*/) {}
  /// The coordinate of a level is `value`.
  virtual void descend(std::size_t /*level*/, const ZZ& /*value*/) {}
  /// It is none of these values, as the forms times these weights, the linear part of the objective
  /// last, tell.
  virtual void exclude(std::size_t /*level*/, const ZZ& /*from*/, const ZZ& /*to*/,
                       const std::vector<double>& /*weights*/) {}
  /// All values of a level are done.
  virtual void ascend(std::size_t /*level*/) {}
};

/// A system in the numbers of a probe.
[[nodiscard]] ItemSystem<ZZ> forProbe(const ItemSystem<std::int64_t>& system);
[[nodiscard]] inline const ItemSystem<ZZ>& forProbe(const ItemSystem<ZZ>& system) { return system; }
[[nodiscard]] FormSystem<ZZ> forProbe(const FormSystem<std::int64_t>& system);
[[nodiscard]] inline const FormSystem<ZZ>& forProbe(const FormSystem<ZZ>& system) { return system; }

}  // namespace vexil::solver
