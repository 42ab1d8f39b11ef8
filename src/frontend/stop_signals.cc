// Vexil - exact integer optimization on lattices.
#include "frontend/stop_signals.h"

#include <array>
#include <csignal>

namespace vexil {

namespace {

constexpr std::array STOP_SIGNALS = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t stopRequests = 0;

void act(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigaction(signal, &action, nullptr);
}

bool isIgnored(int signal) {
  struct sigaction present {};
  return sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

void onStopSignal(int /*signal*/) {
  stopRequests = 1;
  for (const int signal : STOP_SIGNALS) {
    if (!isIgnored(signal)) act(signal, SIG_DFL);
  }
}

}  // namespace

void receiveStopSignals() {
  for (const int signal : STOP_SIGNALS) {
    if (!isIgnored(signal)) act(signal, onStopSignal);
  }
}

void outliveFailedWrites() {
  for (const int signal : {SIGPIPE, SIGXFSZ}) act(signal, SIG_IGN);
}

bool stopSignalled() { return stopRequests != 0; }

}  // namespace vexil
