// Vexil - exact integer optimization on lattices.
//
// Defers the signals by which users, terminals and pipes end a program around the writing of a
// file, so that none of them leaves it half-written.
#pragma once

namespace vexil {

/// Installs the deferring handler for SIGINT and then for SIGTERM and keeps both earlier handlers.
/// SIGHUP, SIGQUIT and SIGPIPE are blocked.
void beginGuardedWrite();

/// Puts the earlier handlers back, SIGINT's first. Where a signal came in between, whichever of the
/// two, the process receives SIGTERM now; a blocked one acts now as it would have acted before.
void endGuardedWrite();

/// A guarded write as a scope.
class WriteGuard {
 public:
  WriteGuard() { beginGuardedWrite(); }
  ~WriteGuard() { endGuardedWrite(); }
  WriteGuard(const WriteGuard&) = delete;
  WriteGuard& operator=(const WriteGuard&) = delete;
};

}  // namespace vexil
