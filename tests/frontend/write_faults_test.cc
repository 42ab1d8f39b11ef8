// Vexil - exact integer optimization on lattices.
//
// What happens to the sol file when its write meets a full disk, missing rights or a signal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "support/tool_run.h"

namespace vexil {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

const std::string PROGRAM =
    "[ ] [ ] [ ] [ ] [ [ 1 1 ] ] [ -inf ] [ 99999 ] [ 0 0 ] [ 0 0 ] [ 9 99999 ]\n";
const std::string STAR = "[ 1 2 ] | 0 | [ ] | 0 | -1 | --a=1 | 2.2.3\n";
const std::string FAILING_STAR = "[ -1 2 ] | 0 | [ ] | 0 | -1 | --a=1 | 2.2.3\n";
const std::string NO_STARS_REPORT = "\n\n";
const std::string REPORT = "\nx = [ 1 2 ]\n\nTarget values: [ ]\nTarget Norm: 0\nSlack Norm: 0\n\n";

/// A folder with x.opt and x.sol.
class WriteFaults : public testing::Test {
 public:
  support::TemporaryFolder folder;
  fs::path sol = folder / "x.sol";
  support::ToolRun tool{.folder = folder.path(), .arguments = {"x.sol"}};

  void SetUp() override { support::writeFile(folder / "x.opt", PROGRAM); }

  template <typename Condition>
  static bool comesTrue(Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + 2min;
    while (!condition()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::sleep_for(50us);
    }
    return true;
  }

  /// A fault of the write shows nowhere but in the file.
  void expectSilentRun(const std::string& out) {
    const auto end = support::run(tool);
    EXPECT_EQ(end.out, out);
    EXPECT_EQ(end.err, "");
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(support::semaphoreNames(end.pid), Texts());
  }

  /// From here on the tool runs without the rights of root; `forbidden` has lost those in `mode`.
  /// False if root cannot be left.
  bool dropRights(const fs::path& forbidden, fs::perms mode) {
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(forbidden, mode, fs::perm_options::remove);
    tool.prepare = [] {
      constexpr uid_t NOBODY = 65534;
      if (geteuid() == 0 && setuid(NOBODY) != 0) _exit(1);
    };
    support::Child attempt([this] { return tool.prepare(), 0; });
    return attempt.finish(1min).status == 0;
  }

  void TearDown() override { fs::permissions(folder.path(), fs::perms::all); }
};

constexpr fs::perms WRITING =
    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
constexpr fs::perms READING =
    fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;

TEST_F(WriteFaults, FullDiskCutsTheFile) {
  support::writeFile(sol, STAR);
  constexpr rlim_t ROOM = 40;  // enough for the semaphores, which are files too
  tool.prepare = [] {
    const rlimit limit{ROOM, ROOM};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
  };
  expectSilentRun(REPORT);
  EXPECT_EQ(support::readFile(sol), STAR.substr(0, ROOM));
}

TEST_F(WriteFaults, FolderInPlaceOfTheFileStays) {
  fs::create_directory(sol);
  expectSilentRun(NO_STARS_REPORT);
  EXPECT_TRUE(fs::is_directory(sol));
}

TEST_F(WriteFaults, FileWithoutWritingRightStays) {
  const std::string before = FAILING_STAR + "\n" + STAR;
  support::writeFile(sol, before);
  if (!dropRights(sol, WRITING)) GTEST_SKIP();
  expectSilentRun(REPORT);
  EXPECT_EQ(support::readFile(sol), before);
}

TEST_F(WriteFaults, FileWithoutReadingRightIsNoFile) {
  support::writeFile(sol, STAR);
  if (!dropRights(sol, READING | WRITING)) GTEST_SKIP();
  expectSilentRun(NO_STARS_REPORT);
  fs::permissions(sol, fs::perms::all);
  EXPECT_EQ(support::readFile(sol), STAR);
}

TEST_F(WriteFaults, FolderWithoutWritingRightKeepsAnEmptyFile) {
  support::writeFile(sol, FAILING_STAR);
  fs::permissions(sol, fs::perms::all);
  if (!dropRights(folder.path(), WRITING)) GTEST_SKIP();
  expectSilentRun(NO_STARS_REPORT);
  EXPECT_EQ(support::readFile(sol), "");
}

TEST_F(WriteFaults, OptFileWithoutReadingRightIsFatal) {
  support::writeFile(sol, STAR);
  if (!dropRights(folder / "x.opt", READING)) GTEST_SKIP();
  const auto end = support::run(tool);
  EXPECT_EQ(end.out, "");
  EXPECT_EQ(end.err, "\n*** FAIL: Could not read opt file: x.opt\n");
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(support::readFile(sol), STAR);
}

TEST_F(WriteFaults, FailingRunsLeaveNoSemaphores) {
  support::writeFile(folder / "x.opt", "[ 1");
  for (int i = 0; i < 100; ++i) {
    const auto end = support::run(tool);
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(support::semaphoreNames(end.pid), Texts());
  }
}

/// A sol file as the tool writes it, with a write that takes a while.
class Signals : public WriteFaults, public testing::WithParamInterface<int> {
 public:
  std::string text;

  void SetUp() override {
    WriteFaults::SetUp();
    const std::string options(900, 'a');
    for (int i = 1; i <= 8000; ++i) {
      const std::string number = std::to_string(i);
      text += "[ 1 " + number + " ] | 0 | [ ] | 0 | " + number + " | --" + options + "=1 | 2.2.3\n";
    }
    support::writeFile(sol, text);
  }

  void expectDeath(support::Child& child, int signal) const {
    const auto end = child.finish(2min);
    EXPECT_EQ(end.signal, signal);
    EXPECT_EQ(end.out, "");
    EXPECT_EQ(end.err, "");
    EXPECT_TRUE(support::readFile(sol) == text) << "the sol file is not what it was";
    EXPECT_EQ(support::semaphoreNames(end.pid), Texts());
  }
};

TEST_P(Signals, AheadOfTheWriteEndTheRun) {
  const fs::path opt = folder / "x.opt";
  fs::remove(opt);
  ASSERT_EQ(mkfifo(opt.c_str(), 0600), 0);
  support::Child child(tool);
  int pipe = -1;  // opens when the tool waits for the text of the opt file
  ASSERT_TRUE(comesTrue([&] { return (pipe = open(opt.c_str(), O_WRONLY | O_NONBLOCK)) >= 0; }));
  EXPECT_FALSE(support::semaphoreNames(child.pid()).empty());
  kill(child.pid(), GetParam());
  expectDeath(child, GetParam());
  close(pipe);
}

TEST_P(Signals, InTheWriteWaitForItsEnd) {
  const auto half = text.size() / 2;
  for (int attempt = 0; attempt < 50; ++attempt) {
    const auto longAgo = fs::file_time_type::clock::now() - 24h;
    fs::last_write_time(sol, longAgo);
    support::Child child(tool);
    ASSERT_TRUE(
        comesTrue([&] { return fs::last_write_time(sol) != longAgo && fs::file_size(sol) > 0; }));
    kill(child.pid(), SIGSTOP);
    siginfo_t stopped{};
    waitid(P_PID, static_cast<id_t>(child.pid()), &stopped, WSTOPPED | WEXITED | WNOWAIT);
    const bool caught = fs::file_size(sol) <= half;
    kill(child.pid(), GetParam());
    kill(child.pid(), SIGCONT);
    if (caught) return expectDeath(child, SIGTERM);
    child.finish(2min);
  }
  FAIL() << "no write has been caught in its middle";
}

INSTANTIATE_TEST_SUITE_P(, Signals, testing::Values(SIGINT, SIGTERM), [](const auto& test) {
  return test.param == SIGINT ? "SIGINT" : "SIGTERM";
});

}  // namespace
}  // namespace vexil
