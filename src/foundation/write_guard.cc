// Vexil - exact integer optimization on lattices.
#include "foundation/write_guard.h"

#include <atomic>
#include <csignal>

namespace vexil {

namespace {

using Handler = void (*)(int);

Handler savedInterruptHandler = SIG_DFL;
Handler savedTerminateHandler = SIG_DFL;

sigset_t savedSignalMask;

std::atomic<unsigned char> signalPending{0};
static_assert(std::atomic<unsigned char>::is_always_lock_free, "a signal handler sets it");

void deferSignal(int /*signal*/) { signalPending = 1; }

}  // namespace

void beginGuardedWrite() {
  sigset_t blocked;
  sigemptyset(&blocked);
  for (const int signal : {SIGHUP, SIGQUIT, SIGPIPE}) sigaddset(&blocked, signal);
  pthread_sigmask(SIG_BLOCK, &blocked, &savedSignalMask);
  savedInterruptHandler = std::signal(SIGINT, deferSignal);
  savedTerminateHandler = std::signal(SIGTERM, deferSignal);
}

void endGuardedWrite() {
  std::signal(SIGINT, savedInterruptHandler);
  std::signal(SIGTERM, savedTerminateHandler);
  if (signalPending.exchange(0) == 1) std::raise(SIGTERM);
  pthread_sigmask(SIG_SETMASK, &savedSignalMask, nullptr);
}

}  // namespace vexil
