// Vexil - exact integer optimization on lattices.
//
// Defers SIGINT and SIGTERM around the writing of a file, so that neither leaves it half-written.
#pragma once

namespace vexil {

/// Installs the deferring handler for SIGINT and then for SIGTERM and keeps both earlier handlers.
void beginGuardedWrite();

/// Puts the earlier handlers back, SIGINT's first. Where a signal came in between, whichever of the
/// two, the process receives SIGTERM now.
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
