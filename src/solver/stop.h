// Vexil - exact integer optimization on lattices.
#pragma once

namespace vexil::solver {

/// Asked by every long computation every few milliseconds of work. A computation that is told to
/// stop leaves by throwing `Stopped`, or returns where it says so.
class StopToken {
 public:
  StopToken() = default;
  StopToken(const StopToken&) = delete;
  StopToken& operator=(const StopToken&) = delete;
  virtual ~StopToken() = default;
  [[nodiscard]] virtual bool stopRequested() = 0;
};

/// The search was told to stop.
struct Stopped {};

inline void throwIfStopped(StopToken& stop) {
  if (stop.stopRequested()) throw Stopped{};
}

}  // namespace vexil::solver
