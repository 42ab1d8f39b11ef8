// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "solver/search.h"

namespace vexil::solver {

/// The points of one search: checks each one against the program as read, keeps count and the best
/// norm, and passes on what is wanted and new.
class Incumbent {
 public:
  /// `known` points are taken over without a message. All are kept by reference.
  Incumbent(const Vexil<QQ>& inputProgram, const std::vector<Vector<QQ>>& known,
            const Settings& searchSettings, Listener& pointListener);

  /// True if the search is for points within limits or for any points, not for the best norm.
  [[nodiscard]] bool collects() const { return collecting; }

  /// Takes a point; true if it was wanted and new.
  bool take(const Vector<QQ>& x);

  /// As many points as wanted are there.
  [[nodiscard]] bool enough() const;

  [[nodiscard]] const std::optional<QQ>& best() const { return bestNorm; }
  [[nodiscard]] std::int64_t points() const { return count; }

 private:
  bool record(const Vector<QQ>& x);

  const Vexil<QQ>& program;
  const Settings& settings;
  Listener& listener;
  bool collecting;
  std::optional<QQ> bestNorm;
  std::int64_t count = 0;
  std::unordered_set<std::string> texts;  ///< of the points, where they have to be distinct
};

}  // namespace vexil::solver
