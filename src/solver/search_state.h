// Vexil - exact integer optimization on lattices.
//
// What the searches of one lattice share.
#pragma once

#include <cstdint>
#include <vector>

#include "solver/form_system.h"

namespace vexil::solver {

class Probe;

/// The best point, the bound, and what is still wanted. All objective values are those of
/// `FormSystem`. A search may give up every point whose objective value is not in [bound, cut]
/// where these are set; both move inward only.
template <typename Z>
class SearchState {
 public:
  SearchState() = default;
  SearchState(const SearchState&) = delete;
  SearchState& operator=(const SearchState&) = delete;
  virtual ~SearchState() = default;

  /// Takes a lattice point of `system`, given by the exact values of its forms, all of which are
  /// within their boxes: checks it against the program as read, and keeps and reports it if it is
  /// wanted and new. May lower `cut`, may set `finished`. True if it was kept.
  virtual bool offer(const FormSystem<Z>& system, const std::vector<Z>& values) = 0;

  /// Proved: no wanted point has an objective value below `value`.
  void raiseBound(const Z& value) {
    if (!hasBound || value > bound) {
      hasBound = true;
      bound = value;
    }
    if (hasCut && bound > cut) finished = true;
  }

  bool hasCut = false;
  Z cut{};  ///< greatest objective value that is still wanted, on the coset of the objective
  bool hasBound = false;
  Z bound{};
  bool finished = false;  ///< nothing more is wanted

  /// The objective of every lattice point is congruent `residue` modulo `step`; step 0: every point
  /// has the value `residue`; with goals step is the gcd over the linear part and the goals.
  Z step{};
  Z residue{};

  Probe* probe = nullptr;  ///< of a test

  std::int64_t work = 0;  ///< counted work of both searches, about one multiplication each
};

/// The integral ranges of the coordinates of a system.
template <typename Z>
struct CoordinateRanges {
  std::vector<Z> lower;
  std::vector<Z> upper;
};

/// Why a run of a search came back.
enum class RunEnd : std::uint8_t {
  Exhausted,  ///< proved: no wanted point is left, or `SearchState::finished`
  Budget,     ///< the work is done; another run resumes
  Unusable    ///< this search cannot work on this system
};

}  // namespace vexil::solver
