// Vexil - exact integer optimization on lattices.
#include "params/named_semaphore.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iostream>

#include "foundation/failure.h"

namespace vexil {

namespace {

/// Access bits of a semaphore: the decimal number 600, which is 01130 in octal. They bind who opens
/// the name later, not the one who makes it.
constexpr mode_t MODE = 600;

/// The first of the living semaphores. A signal handler may walk the list at any moment, so every
/// change shows in one single store to it or to one `next_`; nobody walks through `previous_`.
constinit std::atomic<NamedSemaphore*> first{nullptr};
static_assert(std::atomic<NamedSemaphore*>::is_always_lock_free &&
                  std::atomic<pid_t>::is_always_lock_free,
              "a signal handler reads them");

String nextName() {
  static const pid_t process = getpid();
  static std::time_t lastTime = std::time(nullptr);
  static long counter = 1;
  const std::time_t now = std::time(nullptr);
  if (now != lastTime) {
    lastTime = now;
    counter = 1;
  }
  return joined("/", process, "_", now, "_", counter++);
}

/// Holds back all signals. One that ended the process between the making of a name and its entry
/// into the list, or inside `sem_open`, which starts with a file of another name, would leave that
/// behind.
class SignalHold {
 public:
  SignalHold() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before_);
  }
  SignalHold(const SignalHold&) = delete;
  SignalHold& operator=(const SignalHold&) = delete;
  ~SignalHold() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

void printSystemError() { std::cerr << "ERRNO = " << std::strerror(errno); }

}  // namespace

NamedSemaphore::NamedSemaphore() {
  do {
    name = nextName();
    open();
  } while (semaphore == SEM_FAILED && errno == EEXIST);
  if (semaphore == SEM_FAILED) {
    printSystemError();
    fail("SEM could not be opened");
  }
  if (semaphore == nullptr) fail("No semaphore available for lock!");
}

NamedSemaphore::~NamedSemaphore() {
  if (sem_close(semaphore) != 0) {
    printSystemError();
    fail("SEM could not be closed");
  }
  if (ownsName() && sem_unlink(name.c_str()) != 0) {
    printSystemError();
    fail("SEM could not be unlinked");
  }
  leaveList();
}

void NamedSemaphore::open() {
  const SignalHold hold;
  semaphore = sem_open(name.c_str(), O_CREAT | O_EXCL, MODE, 1U);
  if (semaphore != SEM_FAILED) enterList();
}

void NamedSemaphore::enterList() {
  [[maybe_unused]] static const int registered = std::atexit(releaseSemaphoreNames);
  owner_ = getpid();
  NamedSemaphore* const following = first;
  next_ = following;
  first = this;
  if (following != nullptr) following->previous_ = this;
}

/// The semaphore's own `next_` stays, for a walk that has arrived here.
void NamedSemaphore::leaveList() {
  NamedSemaphore* const following = next_;
  (previous_ == nullptr ? first : previous_->next_) = following;
  if (following != nullptr) following->previous_ = previous_;
}

bool NamedSemaphore::ownsName() const noexcept { return owner_ == getpid(); }

void NamedSemaphore::unlinkName() noexcept {
  if (!ownsName()) return;
  sem_unlink(name.c_str());
  owner_ = 0;
}

void releaseSemaphoreNames() noexcept {
  for (NamedSemaphore* cell = first; cell != nullptr; cell = cell->next_) cell->unlinkName();
}

}  // namespace vexil
