// Vexil - exact integer optimization on lattices.
//
// The cells through which a run can be watched.
#pragma once

#include <cstdint>

#include "foundation/map.h"
#include "params/mutex_type.h"

namespace vexil {

/// Table of text cells.
template <typename K>
class MutexVars : public Map<K, MutexType<String>> {};

/// Keys of the status cells. The spare ones have a cell and no meaning.
enum class MainMutexVariable : std::uint8_t {
  SPARE_0,
  SPARE_1,
  RUN_STATE,  ///< "waiting", at the end of a run "stopped"
  SPARE_3,
  SPARE_4,      ///< "0"
  SPARE_5,      ///< emptied with a new basis
  STAR_COUNT,   ///< number of stars found
  NEWEST_STAR,  ///< text of the star found last
};

/// The table of status cells in its starting state.
class MainMutexVars : public MutexVars<MainMutexVariable> {
 public:
  MainMutexVars();
};

}  // namespace vexil
