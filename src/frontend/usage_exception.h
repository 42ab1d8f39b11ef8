// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/exceptions.h"

namespace vexil {

/// A command line that cannot be followed, with the reason.
class UsageException : public GeneralException {
 public:
  explicit UsageException(const String& reason) : GeneralException(reason) {}
};

}  // namespace vexil
