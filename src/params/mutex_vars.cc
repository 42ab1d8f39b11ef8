// Vexil - exact integer optimization on lattices.
#include "params/mutex_vars.h"

#include <array>

namespace vexil {

MainMutexVars::MainMutexVars() {
  using enum MainMutexVariable;
  constexpr std::array keys = {SPARE_0,    SPARE_1,     SPARE_3, SPARE_5,
                               STAR_COUNT, NEWEST_STAR, SPARE_4, RUN_STATE};
  // One block that fits: every growth would make the cells of a new block.
  resize(keys.size() - 1, false);
  clear();
  for (const auto key : keys) (*this)[key].set("");
  (*this)[SPARE_4].set("0");
  (*this)[RUN_STATE].set("waiting");
}

}  // namespace vexil
