// Vexil - exact integer optimization on lattices.
//
// What can be said of programs with variables that nothing bounds, which are searched within a box.
#pragma once

#include <optional>

#include "solver/model.h"
#include "solver/search.h"
#include "solver/stop.h"

namespace vexil::solver {

/// Some variable of a presolved model has a side that was put in.
[[nodiscard]] bool hasArtificialSides(const Model& model);

/// The directions in which a point of `program` may go for ever, as a program: every finite bound
/// and every wish becomes 0.
[[nodiscard]] Vexil<QQ> directionsOf(const Vexil<QQ>& program);

/// The shortest integral direction along `ray`, an integral point of `directionsOf`.
[[nodiscard]] Vector<QQ> primitive(const Model& model, Vector<QQ> ray);

/// What holds of a model also outside its box.
struct WithoutBox {
  bool empty = false;       ///< it has no real point
  std::optional<ZZ> bound;  ///< no integral point has a lesser objective
};

/// What follows from linear programs by exact multipliers in which no artificial side has a part,
/// and from the coset of the objective. Throws `Stopped`.
[[nodiscard]] WithoutBox provedWithoutBox(const Model& model, StopToken& stop);

/// Puts what linear programs over a much larger box prove of variables by exact multipliers, as
/// `provedWithoutBox` has them, in the place of artificial sides; the others are left open. False,
/// with nothing changed, if nothing is proved. Throws `Stopped`.
[[nodiscard]] bool boundByPrograms(Model& model, StopToken& stop);

/// Tells whether every real point of the presolved `model`, with an objective up to `greatest` if
/// that is given, is within the box, which holds if the box contains one such point, as the caller
/// knows, and no artificial side is reached by such a point of the box: the set is convex. Nothing
/// here rests on the points being integral. False where that cannot be proved. Throws `Stopped`.
[[nodiscard]] bool staysInBox(const Model& model, const std::optional<ZZ>& greatest,
                              StopToken& stop);

}  // namespace vexil::solver
