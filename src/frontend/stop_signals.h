// Vexil - exact integer optimization on lattices.
#pragma once

namespace vexil {

/// From now on the first SIGINT, SIGTERM or SIGHUP is a request to stop, which `stopSignalled`
/// tells; the second one ends the process at once. Those that were ignored stay so.
void receiveStopSignals();

/// From now on pipes that nobody reads and files that grow too large are errors of the write alone.
void outliveFailedWrites();

/// A request to stop has come.
[[nodiscard]] bool stopSignalled();

}  // namespace vexil
