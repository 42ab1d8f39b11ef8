// Vexil - exact integer optimization on lattices.
#include "frontend/abrupt_end.h"

#include <csignal>
#include <exception>

#include "params/named_semaphore.h"

namespace vexil {

namespace {

std::terminate_handler earlierTerminate = nullptr;

void onSignal(int signal) {
  releaseSemaphoreNames();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void onTerminate() {
  releaseSemaphoreNames();
  earlierTerminate();
}

}  // namespace

void releaseNamesOnAbruptEnd() {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM}) {
    const auto earlier = std::signal(signal, onSignal);
    if (earlier != SIG_DFL) std::signal(signal, earlier);
  }
  earlierTerminate = std::set_terminate(onTerminate);
}

}  // namespace vexil
