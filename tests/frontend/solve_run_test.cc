// Vexil - exact integer optimization on lattices.
//
// Runs of the solver program around a stand-in for the search: what is kept, said and returned,
// also when disk, user or clock interfere.
#include "frontend/solve_run.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "support/parsed.h"
#include "support/tool_run.h"

namespace vexil {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using solver::Status;
using Texts = std::vector<std::string>;

const std::string TARGET = "[ -inf ] [ [ 1 1 ] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] [ 0 0 ] [ 9 9 ]\n";
const std::string NO_TARGET = "[ ] [ ] [ ] [ ] [ [ 1 1 ] ] [ 0 ] [ 9 ] [ 0 0 ] [ 0 0 ] [ 9 9 ]\n";

class SolveRun : public testing::Test {
 protected:
  support::TemporaryFolder folder;
  fs::path sol = folder / "x.sol";

  void SetUp() override { support::writeFile(folder / "x.opt", TARGET); }

  /// Starts a run in the folder whose search gives `points` and then does as `rest` says.
  auto body(const Texts& points, std::function<solver::Outcome(solver::Listener&)> rest,
            std::vector<std::string> words = {"x.opt"}) {
    return [=, this] {
      fs::current_path(folder.path());
      return solveRun(parseSolveOptions(words), [=](const auto& program, const auto& known,
                                                    const auto& settings, auto& listener) {
        static_cast<void>(program);
        static_cast<void>(settings);
        std::cout << known.size() << " known\n";
        for (const auto& x : points) listener.point(vector<QQ>(x));
        return rest(listener);
      });
    };
  }

  static solver::Outcome ended(Status status) {
    solver::Outcome outcome;
    std::tie(outcome.status, outcome.best, outcome.points) = std::tuple(status, QQ(3), 1);
    return outcome;
  }
  static std::function<solver::Outcome(solver::Listener&)> endsWith(Status status) {
    return [=](solver::Listener&) { return ended(status); };
  }
  /// Searches until it is told to stop.
  static solver::Outcome untilStopped(solver::Listener& listener) {
    while (!listener.stopRequested()) std::this_thread::sleep_for(1ms);
    return ended(Status::BestSoFar);
  }

  /// The sol file without the seconds and the options of its stars.
  std::string stars() const {
    return String(support::readFile(sol).value_or("none"))
        .regexReplace("\\| [0-9]+ \\| --help=0 [^|]*\\|", "|");
  }
};

std::string reported(const std::string& x, int norm) {
  return joined("x = [ ", x, " ]\n\nTarget values: [ ", norm, "↓ ]\nTarget Norm: ", norm,
                "\nSlack Norm: 0\nFound after: 0 sec(s)\n");
}

TEST_F(SolveRun, KeepsAndReportsTheStars) {
  support::writeFile(sol, "[ 9 9 ]\n[ 10 0 ]\n");
  const auto end = support::inChild(body({"[ 4 1 ]", "[ 2 1 ]"}, endsWith(Status::Optimal)));
  EXPECT_EQ(end.out,
            "1 known\noptimal: target norm 3\n\n" + reported("2 1", 3) + "\n---\n\n" +
                reported("4 1", 5) +
                "\n---\n\nx = [ 9 9 ]\n\nTarget values: [ 18↓ ]\nTarget Norm: 18\nSlack Norm: 0\n");
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(end.err,
            "\n*** x.sol:2: the star is not kept: x[1] = 10 is above its bound 9\n"
            "\n*** x.sol: the file as it was is now " +
                fs::canonical(folder.path()).string() + "/x.sol~\n");
  EXPECT_EQ(stars(),
            "[ 2 1 ] | 3 | [ 3 ] | 0 | 2.2.3\n[ 4 1 ] | 5 | [ 5 ] | 0 | 2.2.3\n"
            "[ 9 9 ] | 18 | [ 18 ] | 0 | -1 | --verb=0\n");
  EXPECT_EQ(support::semaphoreNames(end.pid), Texts());
}

TEST_F(SolveRun, WritesAtOnceWhatIsBetterAndPointsAtPowersOfTwo) {
  const std::vector<std::tuple<std::string, Texts, std::string>> cases = {
      {TARGET, {"x.opt"}, "12345"},
      {TARGET, {"x.opt", "--tnorm=9"}, "12244"},
      {NO_TARGET, {"x.opt", "--sol=9"}, "12244"}};
  for (const auto& [opt, words, expected] : cases) {
    support::writeFile(folder / "x.opt", opt);
    fs::remove(sol);
    const auto counting = [&](solver::Listener& listener) {
      for (const std::string x : {"[ 5 0 ]", "[ 4 0 ]", "[ 3 0 ]", "[ 2 0 ]", "[ 1 0 ]"}) {
        listener.point(vector<QQ>(x));
        const auto text = support::readFile(sol).value_or("");
        std::cout << std::count(text.begin(), text.end(), '\n');
      }
      return ended(Status::Feasible);
    };
    const auto end = support::inChild(body({}, counting, words));
    EXPECT_EQ(end.out.substr(0, 13), "0 known\n" + expected);
    const auto text = support::readFile(sol).value_or("");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5);
  }
}

TEST_F(SolveRun, StopsForSignalsAndTheClock) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, 0}) {
    fs::remove(sol);
    const Texts words = {"x.opt", signal == 0 ? "--rtime=1" : "--rtime=100"};
    support::Child child(body({"[ 2 1 ]"}, untilStopped, words));
    ASSERT_TRUE(support::comesTrue([&] { return fs::exists(sol); }));
    if (signal != 0) kill(child.pid(), signal);
    const auto end = child.finish(20s);
    EXPECT_EQ(end.status, 2) << signal;
    EXPECT_EQ(end.out,
              "0 known\nbest so far: target norm 3, bound -inf, gap inf\n\n" + reported("2 1", 3));
    EXPECT_EQ(end.err, "");
    EXPECT_EQ(stars(), "[ 2 1 ] | 3 | [ 3 ] | 0 | 2.2.3\n");
    EXPECT_FALSE(fs::exists(folder / "x.sol.lock"));
  }
}

TEST_F(SolveRun, EndsAtOnceForASecondSignal) {
  const auto deaf = [this](solver::Listener& listener) {
    while (!listener.stopRequested()) std::this_thread::sleep_for(1ms);
    support::writeFile(folder / "seen", "yes");
    for (;;) std::this_thread::sleep_for(1s);
    return ended(Status::Unknown);
  };
  support::Child child(body({"[ 2 1 ]"}, deaf));
  ASSERT_TRUE(support::comesTrue([&] { return fs::exists(sol); }));
  kill(child.pid(), SIGINT);
  ASSERT_TRUE(support::comesTrue([&] { return fs::exists(folder / "seen"); }));
  kill(child.pid(), SIGTERM);
  EXPECT_EQ(child.finish(20s).signal, SIGTERM);
  EXPECT_EQ(stars(), "[ 2 1 ] | 3 | [ 3 ] | 0 | 2.2.3\n");
}

TEST_F(SolveRun, LeavesIgnoredSignalsIgnored) {
  support::Child child([this] {
    std::signal(SIGHUP, SIG_IGN);
    return body({"[ 2 1 ]"}, untilStopped, {"x.opt", "--rtime=2"})();
  });
  ASSERT_TRUE(support::comesTrue([&] { return fs::exists(sol); }));
  const auto before = std::chrono::steady_clock::now();
  kill(child.pid(), SIGHUP);
  EXPECT_EQ(child.finish(20s).status, 2);
  EXPECT_GT(std::chrono::steady_clock::now() - before, 500ms);
}

TEST_F(SolveRun, PrintsTheStarsThatCannotBeWritten) {
  const auto end = support::inChild([&] {
    return body({}, [](solver::Listener& listener) {
      const rlimit limit{10, 10};
      setrlimit(RLIMIT_FSIZE, &limit);
      listener.point(vector<QQ>("[ 4 1 ]"));
      listener.point(vector<QQ>("[ 2 1 ]"));
      return ended(Status::Optimal);
    })();
  });
  EXPECT_EQ(end.status, 1);
  const std::string said = "/.x.sol.vexil-solve: cannot be written: File too large\n";
  EXPECT_EQ(end.err, "\n*** " + fs::canonical(folder.path()).string() + said);
  const auto list =
      end.out.find("\nThe stars, which x.sol does not hold:\n[ 2 1 ] | 3 | [ 3 ] | 0 | 0 | --help");
  EXPECT_NE(list, std::string::npos) << end.out;
  EXPECT_NE(end.out.find("\n[ 4 1 ] | 5 |", list), std::string::npos);
  EXPECT_FALSE(fs::exists(sol));
}

TEST_F(SolveRun, SaysWhenItsOutputIsLost) {
  const auto end = support::inChild([&] {
    const int full = open("/dev/full", O_WRONLY);
    dup2(full, STDOUT_FILENO);
    return body({"[ 2 1 ]"}, endsWith(Status::Optimal))();
  });
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(end.err, "\n*** standard output: not everything could be written\n");
}

TEST_F(SolveRun, SavesWhatItHasBeforeAFailure) {
  support::writeFile(folder / "x.opt", NO_TARGET);
  const auto failing = [](solver::Listener&) -> solver::Outcome { throw std::bad_alloc(); };
  const auto end = support::inChild([&] {
    try {
      return body({"[ 1 0 ]", "[ 2 0 ]", "[ 3 0 ]"}, failing)();
    } catch (const std::bad_alloc&) {
      return 7;
    }
  });
  EXPECT_EQ(end.status, 7);
  EXPECT_EQ(stars().size(), 3 * std::string("[ 1 0 ] | 0 | [ ] | 0 | 2.2.3\n").size());
}

TEST_F(SolveRun, ShowsItsProgress) {
  const auto working = [](solver::Listener& listener) {
    listener.progress({"root", {}, {}, 0, 0, 0, 0});
    listener.progress({"root", 7, {}, 0, 0, 0, 0});
    listener.progress({"tree", 7, 3, 0, 0, 0, 0});
    for (int work = 50; work < 110; work += 10) listener.progress({"tree", 7, 3, 0, 5, 6, work});
    return ended(Status::Optimal);
  };
  const std::string found = "0 s: target norm 7, bound -inf, gap inf, 0 nodes, root";
  const std::string searching = "0 s: target norm 7, bound 3, gap 4, 0 nodes, tree";
  const std::string later = "0 s: target norm 7, bound 3, gap 4, 11 nodes, tree";
  const std::pair<std::string, std::string> cases[] = {
      {"0", ""},
      {"1", found + "\n" + later + "\n" + later + "\n"},
      {"2", "0 s: no point, 0 nodes, root, tree 0, enumeration 0, work 0\n" + found +
                ", tree 0, enumeration 0, work 0\n" + searching +
                ", tree 0, enumeration 0, work 0\n" + later + ", tree 5, enumeration 6, work 50\n" +
                later + ", tree 5, enumeration 6, work 100\n"}};
  for (const auto& [verbosity, expected] : cases)
    EXPECT_EQ(support::inChild(body({}, working, {"x.opt", "--verb=" + verbosity})).err, expected);
}

TEST_F(SolveRun, RenewsALineOnATerminal) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_EQ(grantpt(terminal), 0);
  ASSERT_EQ(unlockpt(terminal), 0);
  const std::string name = ptsname(terminal);
  const int other = open(name.c_str(), O_RDWR | O_NOCTTY);  // keeps what is written
  const auto end = support::inChild([&] {
    dup2(other, STDERR_FILENO);
    return body({"[ 2 1 ]"}, untilStopped, {"x.opt", "--rtime=2"})();
  });
  EXPECT_EQ(end.status, 2);
  char buffer[4096];
  const std::string shown(buffer, static_cast<std::size_t>(read(terminal, buffer, 4096)));
  close(terminal);
  close(other);
  const std::string line = "0 s: no point, 0 nodes, ";
  EXPECT_TRUE(shown.starts_with("\r" + line + "\r")) << shown;
  EXPECT_GE(std::count(shown.begin(), shown.end(), '\r'), 4);
  EXPECT_LE(std::count(shown.begin(), shown.end(), '\r'), 8);
  EXPECT_TRUE(shown.ends_with("\r" + std::string(line.size(), ' ') + "\r")) << shown;
}

}  // namespace
}  // namespace vexil
