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
const std::string REPORT = "\nx = [ 1 2 ]\n\nTarget values: [ ]\nTarget Norm: 0\nSlack Norm: 0\n\n";

/// A folder with x.opt and x.sol.
class WriteFaults : public testing::Test {
 public:
  support::TemporaryFolder folder;
  fs::path sol = folder / "x.sol";
  support::ToolRun tool{.folder = folder.path(), .arguments = {"x.sol"}};

  void SetUp() override { support::writeFile(folder / "x.opt", PROGRAM); }

  /// A fault of the write shows nowhere but in the file.
  void expectRun(const std::string& out, const std::string& err = "") {
    const auto end = support::run(tool);
    EXPECT_EQ(end.out, out);
    EXPECT_EQ(end.err, err);
    EXPECT_EQ(end.status, err.empty() ? 0 : 1);
    EXPECT_EQ(support::semaphoreNames(end.pid), Texts());
  }
};

TEST_F(WriteFaults, FullDiskCutsTheFile) {
  support::writeFile(sol, STAR);
  constexpr rlim_t ROOM = 40;  // enough for the semaphores, which are files too
  tool.prepare = [] {
    const rlimit limit{ROOM, ROOM};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
  };
  expectRun(REPORT);
  EXPECT_EQ(support::readFile(sol), STAR.substr(0, ROOM));
}

TEST_F(WriteFaults, FolderInPlaceOfTheFileStays) {
  fs::create_directory(sol);
  expectRun("\n\n");
  EXPECT_TRUE(fs::is_directory(sol));
}

TEST_F(WriteFaults, MissingRights) {
  constexpr auto READING = static_cast<fs::perms>(0444);
  constexpr auto WRITING = static_cast<fs::perms>(0222);
  tool.prepare = [] {  // root has all rights
    constexpr uid_t NOBODY = 65534;
    if (geteuid() == 0 && setuid(NOBODY) != 0) _exit(1);
  };
  const auto reaches = [this] { return tool.prepare(), access(VEXIL_TOOL, X_OK); };
  if (support::inChild(reaches).status != 0) GTEST_SKIP();
  const std::string twoStars = FAILING_STAR + "\n" + STAR;
  // The sol file, what becomes forbidden, the sol file after the run, output and errors.
  const std::tuple<std::string, const char*, fs::perms, std::string, std::string, const char*>
      cases[] = {
          {twoStars, "x.sol", WRITING, twoStars, REPORT, ""},
          {STAR, "x.sol", READING | WRITING, STAR, "\n\n", ""},
          {FAILING_STAR, ".", WRITING, "", "\n\n", ""},
          {STAR, "x.opt", READING, STAR, "", "\n*** FAIL: Could not read opt file: x.opt\n"}};
  const auto allowAll = [this] {
    for (const char* const name : {".", "x.opt", "x.sol"})
      fs::permissions(folder / name, fs::perms::all);
  };
  for (const auto& [before, forbidden, mode, after, out, err] : cases) {
    support::writeFile(sol, before);
    allowAll();
    fs::permissions(folder / forbidden, mode, fs::perm_options::remove);
    expectRun(out, err);
    allowAll();
    EXPECT_EQ(support::readFile(sol), after);
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
  ASSERT_TRUE(
      support::comesTrue([&] { return (pipe = open(opt.c_str(), O_WRONLY | O_NONBLOCK)) >= 0; }));
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
    ASSERT_TRUE(support::comesTrue(
        [&] { return fs::last_write_time(sol) != longAgo && fs::file_size(sol) > 0; }));
    kill(child.pid(), SIGSTOP);
    siginfo_t stopped{};
    waitid(P_PID, static_cast<id_t>(child.pid()), &stopped, WSTOPPED | WEXITED | WNOWAIT);
    const bool caught = fs::file_size(sol) <= half;
    kill(child.pid(), GetParam());
    kill(child.pid(), SIGCONT);
    if (caught) return expectDeath(child, GetParam() == SIGINT ? SIGTERM : GetParam());
    child.finish(2min);
  }
  FAIL() << "no write has been caught in its middle";
}

INSTANTIATE_TEST_SUITE_P(, Signals, testing::Values(SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM));

}  // namespace
}  // namespace vexil
