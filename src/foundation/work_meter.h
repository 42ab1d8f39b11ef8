// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

namespace vexil {

/// Counts the work of a long computation, in units of about a nanosecond that depend on the input
/// alone, and every few milliseconds of work calls `question`, which throws to end it.
class WorkMeter {
 public:
  WorkMeter() = default;  ///< never ends a computation
  explicit WorkMeter(std::function<void()> question) : question_(std::move(question)) {}

  void spend(std::int64_t units) {
    total_ += units;
    if (total_ < nextQuestion_) return;
    nextQuestion_ = total_ + INTERVAL;
    if (question_) question_();
  }

  [[nodiscard]] std::int64_t total() const { return total_; }

 private:
  static constexpr std::int64_t INTERVAL = 1'000'000;

  std::function<void()> question_;
  std::int64_t total_ = 0;
  std::int64_t nextQuestion_ = INTERVAL;
};

}  // namespace vexil
