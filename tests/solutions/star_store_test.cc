// Vexil - exact integer optimization on lattices.
//
// The stars of a search and their file: what is kept, what is said, and that neither faults of the
// system nor other programs take a star away.
#include "solutions/star_store.h"

#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "foundation/exceptions.h"
#include "foundation/failure.h"
#include "solutions/point_check.h"
#include "solutions/strict_sol_reader.h"
#include "support/parsed.h"
#include "support/text_cases.h"
#include "support/tool_run.h"

namespace vexil {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

/// Whole x[1] to be least, x[2] with a decimal place near to 3; one equation, two inequations.
const std::string PROGRAM =
    "[ -inf 3 ] [ [ 1 0 ] [ 0 1 ] ] [ [ 2 0 ] ] [ 6 ] [ [ 1 1 ] [ 0 1/3 ] ] [ 4 -inf ] [ 9 1 ]\n"
    "[ 0 1 ] [ -inf 0 ] [ 9 inf ]\n";

class Store : public testing::Test {
 protected:
  support::TemporaryFolder folder;
  fs::path sol = folder / "x.sol";
  Vexil<QQ> program;
  Texts said;

  Store() {
    support::writeFile(folder / "x.opt", PROGRAM);
    program.optFile = (folder / "x.opt").string();
    program.readOptFile();
  }

  /// A store whose messages, without the folder's name, go to `said`.
  StarStore open() {
    return {program, sol.string(), [this](const String& text) { said.push_back(plain(text)); }};
  }
  std::string plain(const String& text) const {
    return text.replaceAll(folder.path().string() + "/", "");
  }
  /// What the operation throws, without the folder's name.
  std::string refusal(const std::function<void()>& operation) const {
    return plain(thrown(operation));
  }
  Texts files() const {
    Texts names;
    for (const auto& entry : fs::directory_iterator(folder.path())) {
      if (entry.path().filename() != "x.opt") names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  static bool addPoint(StarStore& store, const std::string& x, std::int64_t time = 1) {
    return store.add(vector<QQ>(x), {time, "--sol=1", "2.2.3"});
  }
};

const std::string STAR3 = "[ 3 3 ] | 3 | [ 3 3 ] | 0 | 1 | --sol=1 | 2.2.3\n";
const std::string STAR2 = "[ 3 2 ] | 4 | [ 3 2 ] | 1 | 1 | --sol=1 | 2.2.3\n";

TEST_F(Store, NamesWhatAPointBreaks) {
  for (const auto& [x, fault] : std::vector<std::pair<std::string, std::string>>{
           {"[ 3 ]", "it has 1 values instead of 2"},
           {"[ 10 inf ]", "x[1] = 10 is above its bound 9"},
           {"[ 3 inf ]", "x[2] = inf is not finite"},
           {"[ 3 -0.1 ]", "x[2] = -1/10 is below its bound 0"},
           {"[ 5/2 1 ]", "x[1] = 2:1/2 is not a whole number"},
           {"[ 3 1.25 ]", "x[2] = 1:1/4 is finer than its 1 decimal places"},
           {"[ 2 2 ]", "equation 1 gives 4 instead of 6"},
           {"[ 3 0.9 ]", "inequation 1 gives 3:9/10, which is below its bound 4"},
           {"[ 3 6.1 ]", "inequation 1 gives 9:1/10, which is above its bound 9"},
           {"[ 3 3.1 ]", "inequation 2 gives 1:1/30, which is above its bound 1"},
           {"[ 3 3 ]", "none"}}) {
    EXPECT_EQ(faultOfPoint(program, vector<QQ>(x)).value_or("none"), fault);
  }
}

TEST_F(Store, TidiesTheFileAndKeepsWhatItLeavesOut) {
  const std::string before =
      "[ 3 2 ] | 9 | [ ] | 9 | 1 | --sol=1 | 2.2.3\n// mine\n[ 2 2 ]\n[ 3 3 ]\n"
      "[ 3 2 ] | 0 | [ ] | 0 | 0 | --sol=1 | 2.2.3\n[ 3 2 ] | 0 | [ ] | 0 | 5 | --b=1\n";
  support::writeFile(sol, before);
  {
    StarStore store = open();
    EXPECT_EQ(store.pointCount(), 2);
    EXPECT_FALSE(addPoint(store, "[ 3 3 ]"));
    store.save();
  }
  EXPECT_EQ(support::readFile(sol),
            "[ 3 3 ] | 3 | [ 3 3 ] | 0 | -1 | --verb=0\n"
            "[ 3 2 ] | 4 | [ 3 2 ] | 1 | 0 | --sol=1 | 2.2.3\n"
            "[ 3 2 ] | 4 | [ 3 2 ] | 1 | 5 | --b=1\n");
  EXPECT_EQ(support::readFile(folder / "x.sol~"), before);
  EXPECT_EQ(said, (Texts{"x.sol:3: the star is not kept: equation 1 gives 4 instead of 6",
                         "x.sol: the file as it was is now x.sol~"}));
  for (const std::string& text :
       {STAR2 + "[ 3 2 ] | | | | 7 | --sol=1\n", std::string("[ 2 2 ]\n")}) {
    support::writeFile(sol, text);
    open().save();
    EXPECT_EQ(fs::exists(sol) ? support::readFile(sol) : "", text == "[ 2 2 ]\n" ? "" : STAR2);
  }
  EXPECT_EQ(files(), (Texts{"x.sol~", "x.sol~1", "x.sol~2"}));
  EXPECT_EQ(support::readFile(folder / "x.sol~2"), "[ 2 2 ]\n");
}

TEST_F(Store, LeavesATidyFileAlone) {
  for (const std::string& text : {STAR3 + STAR2, std::string(), std::string(" // nothing\n")}) {
    support::writeFile(sol, text);
    const auto longAgo = fs::file_time_type::clock::now() - 24h;
    fs::last_write_time(sol, longAgo);
    open().save();
    EXPECT_EQ(support::readFile(sol), text);
    EXPECT_EQ(fs::last_write_time(sol), longAgo);
    EXPECT_EQ(files(), Texts{"x.sol"});
  }
}

TEST_F(Store, MergesWhatOthersWrote) {
  const std::string star1 = "[ 3 1 ] | 5 | [ 3 1 ] | 2 | -1 | --verb=0\n";
  support::writeFile(sol, STAR2);
  StarStore store = open();
  support::writeFile(sol, "[ 3 1 ]\n");
  EXPECT_TRUE(addPoint(store, "[ 3 3 ]"));
  EXPECT_FALSE(addPoint(store, "[ 3 3 ]", 0));
  EXPECT_EQ(joined(store.points()[0], store.points()[1]), "[ 3 3 ][ 3 2 ]");
  store.save();
  EXPECT_EQ(support::readFile(sol), STAR3 + STAR2 + star1);
  support::writeFile(sol, "broken");
  EXPECT_EQ(refusal([&] { store.save(); }), "x.sol:1: field 1: not a vector: broken");
  EXPECT_EQ(support::readFile(sol), "broken");
  fs::remove(sol);
  store.save();
  EXPECT_EQ(support::readFile(sol), STAR3 + STAR2 + star1);
  EXPECT_EQ(files(), (Texts{"x.sol", "x.sol.lock"}));
  EXPECT_EQ(said, Texts());
}

TEST_F(Store, KeepsModeAndLinks) {
  fs::create_directory(folder / "real");
  fs::create_symlink("real/y.sol", sol);  // leads nowhere yet
  for (const std::string& text : {STAR2, STAR3 + STAR2}) {
    StarStore store = open();
    addPoint(store, store.pointCount() == 0 ? "[ 3 2 ]" : "[ 3 3 ]");
    store.save();
    EXPECT_TRUE(fs::is_symlink(sol));
    EXPECT_EQ(support::readFile(folder / "real/y.sol"), text);
    EXPECT_TRUE(fs::exists(folder / "real/y.sol.lock"));
    fs::permissions(folder / "real/y.sol", fs::perms(0751));
  }
  EXPECT_EQ(fs::status(sol).permissions(), fs::perms(0751));
}

TEST_F(Store, RefusesWhatItCouldNotWrite) {
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { support::writeFile(sol, "[ 3 ] |x"); }, "x.sol:1: field 2: not a number: x"},
      {[&] { fs::create_directory(sol); }, "x.sol: is not a regular file"},
      {[&] { ASSERT_EQ(mkfifo(sol.c_str(), 0600), 0); }, "x.sol: is not a regular file"},
      {[&] { fs::create_symlink("x.sol", sol); }, "x.sol: leads through too many links"},
      {[&] { fs::create_symlink("none/x.sol", sol); }, "x.sol: its folder cannot be found"},
      {[&] { support::writeFile(folder / "x.sol.lock", "me"); }, "x.sol.lock: is not a lock file"},
      {[&] {
         fs::rename(folder / "x.sol.lock", folder / "mine");
         fs::create_symlink("mine", folder / "x.sol.lock");
       },
       "x.sol.lock: cannot be made: Too many levels of symbolic links"}};
  for (const auto& [make, reason] : cases) {
    make();
    EXPECT_EQ(refusal([&] { open(); }), reason);
    fs::remove(sol);
  }
  EXPECT_EQ(support::readFile(folder / "mine"), "me");
}

/// Runs as somebody without the rights of root.
TEST_F(Store, TestsTheRightsFirst) {
  support::writeFile(sol, STAR2);
  for (const auto& [folderMode, mode, fault] :
       {std::tuple(0777, 0222, "x.sol: cannot be read: Permission denied"),
        {0777, 0444, "x.sol: cannot be written: Permission denied"},
        {0555, 0666, "x.sol.lock: cannot be made: Permission denied"},
        {0777, 0666, ""}}) {
    fs::permissions(sol, fs::perms(mode));
    fs::permissions(folder.path(), fs::perms(folderMode));
    const auto end = support::inChild([&] {
      constexpr uid_t NOBODY = 65534;
      if (geteuid() == 0 && setuid(NOBODY) != 0) return 1;
      return std::cout << refusal([&] { open(); }), 0;
    });
    EXPECT_EQ(end.out, fault);
  }
  EXPECT_EQ(files(), Texts{"x.sol"});
}

TEST_F(Store, LocksOthersOut) {
  support::writeFile(folder / "x.sol.lock", "vexil-solve, process 1 on moon\n");  // of a dead one
  std::optional<StarStore> store(std::in_place, program, sol.string(), [](const String&) {});
  const std::string self = joined("process ", getpid(), " on ");
  const auto second = [&] {
    return support::inChild([&] { return std::cout << refusal([&] { open(); }), 0; }).out;
  };
  EXPECT_TRUE(second().starts_with("x.sol: is in use by vexil-solve, " + self)) << second();
  fs::resize_file(folder / "x.sol.lock", 0);
  EXPECT_EQ(second(), joined("x.sol: is in use by process ", getpid()));
  store.reset();
  EXPECT_EQ(files(), Texts());
  EXPECT_EQ(second(), "");
}

TEST_F(Store, SurvivesAFullDisk) {
  support::writeFile(sol, STAR2);
  const auto end = support::inChild([&] {
    StarStore store = open();
    addPoint(store, "[ 3 3 ]");
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{60, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &limit);
    std::cout << refusal([&] { store.save(); });
    const bool untouched = support::readFile(sol) == STAR2;
    const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &none);
    store.save();
    return untouched ? 0 : 1;
  });
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(end.out, ".x.sol.vexil-solve: cannot be written: File too large");
  EXPECT_EQ(support::readFile(sol), STAR3 + STAR2);
  EXPECT_EQ(files(), Texts{"x.sol"});
}

/// Kills a process that saves at its n-th stop at a system call; false if it ends before.
bool dies(int n, const std::function<void()>& prepare, const std::function<void()>& save) {
  const pid_t child = fork();
  if (child == 0) {
    prepare();
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    raise(SIGSTOP);
    save();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  for (; n > 0 && WIFSTOPPED(status); --n) {
    ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    waitpid(child, &status, 0);
  }
  if (!WIFSTOPPED(status)) return false;
  kill(child, SIGKILL);
  waitpid(child, &status, 0);
  return true;
}

TEST_F(Store, SurvivesAKillAtEveryCall) {
  const std::string before = "// mine\n" + STAR2;
  int n = 1;
  for (bool died = true; died; ++n) {
    support::writeFile(sol, before);
    std::optional<StarStore> store;
    died = dies(
        n,
        [&] {
          store.emplace(program, sol.string(), [](const String&) {});
          addPoint(*store, "[ 3 3 ]");
        },
        [&] { store->save(); });
    const auto after = support::readFile(sol);
    EXPECT_TRUE(after == before || after == STAR3 + STAR2) << n << after.value_or("nothing");
    if (after != before) {
      EXPECT_EQ(support::readFile(folder / "x.sol~"), before) << n;
    }
    StarStore next = open();  // nothing that was left behind is in its way
    addPoint(next, "[ 3 3 ]");
    next.save();
    EXPECT_EQ(support::readFile(sol), STAR3 + STAR2) << n;
    for (const std::string& name : files()) {
      if (name.starts_with("x.sol~")) fs::remove(folder / name);
    }
    EXPECT_EQ(files(), (Texts{"x.sol", "x.sol.lock"})) << n;
  }
  EXPECT_GT(n, 20);
}

/// The entries as "line elements time(options,version)", then "lossy" or the fault.
String read(const std::string& text) {
  String result;
  StrictSolReader reader("x.sol", text);
  try {
    for (SolEntry e; reader.next(e);)
      result += joined(e.line, e.elements, e.time, "(", e.paramText, ",", e.version, ") ");
  } catch (const ReadException& fault) {
    return result + fault.what();
  }
  return result + (reader.isLossless() ? "" : "lossy");
}

TEST(StrictSolReader, TakesWhatTheToolTakesAndNamesFaults) {
  for (const auto& [result, parts] : support::textCases("solutions/strict_sol_files.txt"))
    EXPECT_EQ(std::string(read(parts[0]).trimRight(" ")), result) << parts[0];
  EXPECT_EQ(read(""), "");
  EXPECT_EQ(read("[ \a" + std::string(50, '1') + "]"),
            "x.sol:1: field 1: not a number: ?" + std::string(39, '1') + "...");
}

TEST(StrictSolReader, NoEmptyFieldTakesTheNextStar) {
  const std::string next = "[ 2 ] | 0 | [ 5 ] | 0 | 7 | --a=1\n";
  for (const std::string cut :
       {"", " |", " | 0", " | 0 |", " | 0 | [ ]", " | 0 | [ ] |", " | | |", " | 0 | [ ] | 0",
        " | 0 | [ ] | 0 |", " | 0 | [ ] | 0 | -1", " | 0 | [ ] | 0 | -1 |", " | | | | |"}) {
    EXPECT_EQ(read("[ 1 ]" + cut + "\n" + next), "1[ 1 ]-1(,) 2[ 2 ]7(--a=1,) ") << cut;
    EXPECT_EQ(read("[ 1 ]" + cut + "\n[ 2 ]"), "1[ 1 ]-1(,) 2[ 2 ]-1(,) ") << cut;
    EXPECT_EQ(read("[ 1 ]" + cut), "1[ 1 ]-1(,) ") << cut;
  }
}

}  // namespace
}  // namespace vexil
