// Vexil - exact integer optimization on lattices.
//
// Runs the tool the way a user does: in a folder with files, as a process of its own.
#pragma once

#include <sys/types.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace vexil::support {

/// A new folder, which goes away with all it holds.
class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(TemporaryFolder&&) = delete;  // and no copies either
  ~TemporaryFolder();

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] auto operator/(std::string_view name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

/// Writes a file and makes the folders it stands in.
void writeFile(const std::filesystem::path& file, std::string_view text);

/// The text of a regular file; nothing where there is none.
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& file);

/// Waits until the condition holds; false if it does not within two minutes.
template <typename Condition>
bool comesTrue(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::microseconds(50));
  }
  return true;
}

/// The semaphores of a process whose names are in the system. The process may be gone.
[[nodiscard]] std::vector<std::string> semaphoreNames(pid_t process);

/// How a child process ended and what it wrote.
struct ChildEnd {
  pid_t pid = 0;
  int status = -1;        ///< the exit status; -1 if there is none
  int signal = 0;         ///< the signal that ended the process
  bool timedOut = false;  ///< the time limit ended the process
  std::string out;
  std::string err;
};

/// A child process whose output streams are captured. It is killed if nobody waits for its end.
class Child {
 public:
  /// Starts a copy of this process that runs `body` and ends with its result.
  explicit Child(const std::function<int()>& body);
  Child(Child&&) = delete;  // and no copies either
  ~Child() {
    if (pid_ != 0) finish(std::chrono::milliseconds(0));
  }

  [[nodiscard]] pid_t pid() const { return pid_; }

  /// Waits for the end, which comes by SIGKILL when the time is over; to be called once.
  ChildEnd finish(std::chrono::milliseconds limit);

 private:
  pid_t pid_ = 0;                 ///< 0 when nothing is left to wait for
  std::array<int, 2> streams_{};  ///< where its output and its errors are read
};

/// A run of the tool, or of another program of the project.
struct ToolRun {
  std::filesystem::path folder;             ///< where it runs
  std::vector<std::string> arguments = {};  ///< the command line behind the program's name
  std::string firstWord = "vexil";          ///< the program's name
  std::function<void()> prepare = [] {};    ///< runs in the child, ahead of the tool
  std::string program = VEXIL_TOOL;         ///< its path

  [[nodiscard]] int operator()() const;  ///< to be the body of a `Child`
};

/// What a process that runs `body` does to its end.
[[nodiscard]] inline ChildEnd inChild(const std::function<int()>& body) {
  return Child(body).finish(std::chrono::minutes(2));
}

/// Runs the tool to its end. The limit leaves room for a sanitizer build on a busy machine.
[[nodiscard]] inline ChildEnd run(const ToolRun& tool) { return inChild(tool); }

}  // namespace vexil::support
