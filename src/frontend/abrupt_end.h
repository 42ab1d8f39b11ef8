// Vexil - exact integer optimization on lattices.
#pragma once

namespace vexil {

/// Has the names of all semaphores released also where no normal process end comes: on the
/// signals by which users, terminals and pipes end a program, unless they are ignored or handled
/// otherwise, and on an exception that nobody handles. The process ends as it would have ended
/// without.
void releaseNamesOnAbruptEnd();

}  // namespace vexil
