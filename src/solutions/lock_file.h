// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/open_file.h"
#include "foundation/string.h"

namespace vexil {

/// The right of one process to write a file, held through a lock on a file of its own beside it,
/// "model.sol.lock" for "model.sol", which names the holder. A process that has ended holds
/// nothing, whatever it left behind.
class LockFile {
 public:
  /// Takes the lock for the file `path`, a resolved name. Throws `WriteException`: the lock is held
  /// ("... is in use by vexil-solve, process 4711 on host"), the file system knows no locks, the
  /// lock file cannot be made or is somebody else's file.
  explicit LockFile(const String& path);
  LockFile(const LockFile&) = delete;
  LockFile& operator=(const LockFile&) = delete;
  ~LockFile();

 private:
  void openFile();
  [[nodiscard]] String content() const;
  void lock(const String& path);
  [[nodiscard]] bool isStillThere() const;

  String name_;
  OpenFile file_;
};

}  // namespace vexil
