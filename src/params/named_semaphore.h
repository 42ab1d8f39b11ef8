// Vexil - exact integer optimization on lattices.
#pragma once

#include <semaphore.h>
#include <sys/types.h>

#include <atomic>

#include "foundation/string.h"

namespace vexil {

/// Named POSIX semaphore of the process: made with the value 1 on construction, closed and unlinked
/// on destruction. The name is "/", the process id, "_", the time in seconds, "_" and a counter
/// that starts at 1 in each second; a name that is taken is passed over.
///
/// All living semaphores form a list, through which the names of those that no destructor reaches
/// are removed at the end of the process (`releaseSemaphoreNames`). A semaphore therefore never
/// moves, and a forked child leaves the names of its parent alone.
///
/// Fatal, the first three behind "ERRNO = " and the system's text: "SEM could not be opened", "SEM
/// could not be closed", "SEM could not be unlinked", "No semaphore available for lock!".
class NamedSemaphore {
 public:
  String holderNote;           ///< emptied by every lock
  String name;                 ///< without the directory that the platform keeps it in
  sem_t* semaphore = nullptr;  ///< the open semaphore

  NamedSemaphore();
  NamedSemaphore(const NamedSemaphore&) = delete;
  NamedSemaphore& operator=(const NamedSemaphore&) = delete;
  ~NamedSemaphore();

  /// Waits for the semaphore. Not re-entrant.
  void lock() {
    sem_wait(semaphore);
    holderNote.clear();
  }

  void unlock() { sem_post(semaphore); }

 private:
  friend void releaseSemaphoreNames() noexcept;

  void open();
  void enterList();
  void leaveList();
  void unlinkName() noexcept;
  [[nodiscard]] bool ownsName() const noexcept;

  std::atomic<pid_t> owner_{0};  ///< the process that has to unlink the name; 0 once that is done
  std::atomic<NamedSemaphore*> next_{nullptr};
  NamedSemaphore* previous_ = nullptr;
};

/// Unlinks the names of all living semaphores that this process made; their destructors then only
/// close them. For the ends of a process that unwind no stack: it runs by itself at `exit`, and may
/// be called from a terminate handler and from a signal handler that is about to end the process,
/// whatever that signal interrupted. Calling it again does nothing.
void releaseSemaphoreNames() noexcept;

}  // namespace vexil
