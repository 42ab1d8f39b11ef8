// Vexil - exact integer optimization on lattices.
#include "support/tool_run.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>
#include <utility>

namespace vexil::support {
namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void giveUp(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

/// Names older than this program are of ended processes, whose numbers the system may use again.
const auto BEGIN = std::filesystem::file_time_type::clock::now() - std::chrono::seconds(1);

/// Appends what there is to read; false at the end of the pipe.
bool drain(int pipe, std::string& text) {
  std::array<char, 65536> buffer{};
  const ssize_t count = read(pipe, buffer.data(), buffer.size());
  if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
  return count > 0 || (count < 0 && errno == EINTR);
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
    std::error_code gone;
    if (name.starts_with(prefix) && entry.last_write_time(gone) >= BEGIN) {
      names.push_back(std::move(name));
    }
  }
  return names;
}

Child::Child(const std::function<int()>& body) {
  std::array<int, 2> written{};
  for (const std::size_t i : {0U, 1U}) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) giveUp("pipe2");
    streams_[i] = ends[0];
    written[i] = ends[1];
  }
  std::cout.flush();
  pid_ = fork();
  if (pid_ < 0) giveUp("fork");
  if (pid_ == 0) {
    dup2(written[0], STDOUT_FILENO);
    dup2(written[1], STDERR_FILENO);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM}) {
      std::signal(signal, SIG_DFL);  // whatever runs the tests may have them ignored
    }
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::exit(body());
  }
  for (const int end : written) close(end);
}

ChildEnd Child::finish(std::chrono::milliseconds limit) {
  ChildEnd end;
  end.pid = std::exchange(pid_, 0);
  const auto deadline = Clock::now() + limit;
  std::array<pollfd, 2> polled = {pollfd{streams_[0], POLLIN, 0}, pollfd{streams_[1], POLLIN, 0}};
  while (polled[0].fd >= 0 || polled[1].fd >= 0) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) {
      end.timedOut = true;
      kill(end.pid, SIGKILL);
      break;
    }
    if (poll(polled.data(), polled.size(), static_cast<int>(left)) <= 0) continue;
    if (polled[0].revents != 0 && !drain(polled[0].fd, end.out)) polled[0].fd = -1;
    if (polled[1].revents != 0 && !drain(polled[1].fd, end.err)) polled[1].fd = -1;
  }
  for (const int stream : streams_) close(stream);
  int status = 0;
  while (waitpid(end.pid, &status, 0) < 0 && errno == EINTR) continue;
  if (end.timedOut) {  // the process could not remove them itself
    for (const auto& name : semaphoreNames(end.pid)) std::filesystem::remove("/dev/shm/" + name);
  }
  if (WIFEXITED(status)) end.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) end.signal = WTERMSIG(status);
  return end;
}

/// The file is opened ahead of `prepare`, which may take the right to reach it away.
int ToolRun::operator()() const {
  const int tool = open(program.c_str(), O_RDONLY | O_CLOEXEC);
  std::vector<const char*> words = {firstWord.c_str()};
  for (const std::string& argument : arguments) words.push_back(argument.c_str());
  words.push_back(nullptr);
  if (chdir(folder.c_str()) == 0) {
    prepare();
    fexecve(tool, const_cast<char* const*>(words.data()), environ);
  }
  return 127;  // the tool does not start
}

}  // namespace vexil::support
