// Vexil - exact integer optimization on lattices.
#include "support/tool_run.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>

namespace vexil::support {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void giveUp(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

/// A pipe as its reading and its writing end.
std::array<int, 2> openPipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) giveUp("pipe2");
  return ends;
}

/// Appends what there is to read; false at the end of the pipe.
bool drain(int pipe, std::string& text) {
  std::array<char, 65536> buffer{};
  const ssize_t count = read(pipe, buffer.data(), buffer.size());
  if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
  return count > 0 || (count < 0 && errno == EINTR);
}

/// Removes what a process that was killed could not remove itself.
void unlinkSemaphores(pid_t process) {
  for (const std::string& name : semaphoreNames(process)) {
    std::filesystem::remove("/dev/shm/" + name);
  }
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  std::string name = std::filesystem::temp_directory_path() / "vexil-test-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) giveUp("mkdtemp");
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void writeFile(const std::filesystem::path& file, std::string_view text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  if (!(out << text << std::flush)) giveUp(file.c_str());
}

std::optional<std::string> readFile(const std::filesystem::path& file) {
  if (!std::filesystem::is_regular_file(file)) return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

std::vector<std::string> semaphoreNames(pid_t process) {
  const std::string prefix = "sem." + std::to_string(process) + "_";
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
    std::string name = entry.path().filename();
    if (name.starts_with(prefix)) names.push_back(std::move(name));
  }
  std::sort(names.begin(), names.end());
  return names;
}

Child::Child(const std::function<int()>& body) {
  const auto out = openPipe();
  const auto err = openPipe();
  std::cout.flush();
  pid_ = fork();
  if (pid_ < 0) giveUp("fork");
  if (pid_ == 0) {
    dup2(out[1], STDOUT_FILENO);
    dup2(err[1], STDERR_FILENO);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::exit(body());
  }
  close(out[1]);
  close(err[1]);
  out_ = out[0];
  err_ = err[0];
}

Child::~Child() {
  if (!finished_) finish(std::chrono::milliseconds(0));
  close(out_);
  close(err_);
}

ChildEnd Child::finish(std::chrono::milliseconds limit) {
  ChildEnd end;
  end.pid = pid_;
  const auto deadline = Clock::now() + limit;
  std::array<pollfd, 2> pipes = {pollfd{out_, POLLIN, 0}, pollfd{err_, POLLIN, 0}};
  while (pipes[0].fd >= 0 || pipes[1].fd >= 0) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) {
      end.timedOut = true;
      kill(pid_, SIGKILL);
      break;
    }
    if (poll(pipes.data(), pipes.size(), static_cast<int>(left)) <= 0) continue;
    if (pipes[0].revents != 0 && !drain(out_, end.out)) pipes[0].fd = -1;
    if (pipes[1].revents != 0 && !drain(err_, end.err)) pipes[1].fd = -1;
  }
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) continue;
  finished_ = true;
  if (end.timedOut) unlinkSemaphores(pid_);
  if (WIFEXITED(status)) end.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) end.signal = WTERMSIG(status);
  return end;
}

/// The file is opened ahead of `prepare`, which may take the right to reach it away.
int ToolRun::operator()() const {
  const int tool = open(VEXIL_TOOL, O_RDONLY | O_CLOEXEC);
  std::vector<const char*> words = {firstWord.c_str()};
  for (const std::string& argument : arguments) words.push_back(argument.c_str());
  words.push_back(nullptr);
  if (chdir(folder.c_str()) == 0) {
    prepare();
    fexecve(tool, const_cast<char* const*>(words.data()), environ);
  }
  std::cerr << "the tool " << VEXIL_TOOL << " does not start\n";
  return 127;
}

ChildEnd run(const ToolRun& tool, std::chrono::milliseconds limit) {
  return Child(tool).finish(limit);
}

}  // namespace vexil::support
