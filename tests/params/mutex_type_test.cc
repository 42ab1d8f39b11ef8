// Vexil - exact integer optimization on lattices.
#include "params/mutex_type.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <vector>

#include "foundation/failure.h"
#include "params/mutex_vars.h"

namespace vexil {
namespace {

using testing::ExitedWithCode;

/// Process, second and counter of a cell's name.
struct Name {
  long process = 0;
  long second = 0;
  long counter = 0;
  explicit Name(const NamedSemaphore& semaphore) {
    const int fields =
        std::sscanf(semaphore.name.c_str(), "/%ld_%ld_%ld", &process, &second, &counter);
    EXPECT_EQ(fields, 3);
  }
  [[nodiscard]] String at(long otherCounter) const {
    return joined('/', process, '_', second, '_', otherCounter);
  }
};

/// True if the semaphore's name was free.
bool makeSemaphore(const String& name) {
  sem_t* const made = sem_open(name.c_str(), O_CREAT | O_EXCL, 0600, 1U);
  return made != SEM_FAILED && sem_close(made) == 0;
}

/// How many names with the process id that cells of this process bear the system holds.
long namesInUse() {
  static const MutexType<long> cell;
  const std::string prefix = joined("sem.", Name(cell.lock).process, '_');
  long count = 0;
  for (const auto& file : std::filesystem::directory_iterator("/dev/shm")) {
    count += file.path().filename().string().starts_with(prefix) ? 1 : 0;
  }
  return count;
}

TEST(MutexType, NamesCountWithinASecond) {
  Name before{NamedSemaphore()};
  for (bool sameSecond = true; sameSecond; usleep(1000)) {
    const Name name{NamedSemaphore()};
    sameSecond = name.second == before.second;
    EXPECT_EQ(name.process, getpid());
    EXPECT_EQ(name.counter, sameSecond ? before.counter + 1 : 1);
    before = name;
  }
  const String taken = before.at(before.counter + 1);  // the second has just begun
  ASSERT_TRUE(makeSemaphore(taken));
  EXPECT_EQ(NamedSemaphore().name, before.at(before.counter + 2));
  sem_unlink(taken.c_str());
}

TEST(MutexType, CopiesTakeTheValueOnly) {
  String name;
  {
    MutexType<String> cell;
    cell = "text";
    MutexType<String> copy = cell;
    MutexType<String> assigned;
    name = assigned.lock.name;
    assigned = cell;
    cell = "other";
    EXPECT_EQ(copy.get() + assigned.get(), "texttext");
    EXPECT_EQ(assigned.lock.name, name);
    EXPECT_NE(copy.lock.name, cell.lock.name);
    EXPECT_FALSE(makeSemaphore(name));
  }
  EXPECT_TRUE(makeSemaphore(name));
  sem_unlink(name.c_str());
}

TEST(MainMutexVars, StartingState) {
  MainMutexVars cells;
  String text;
  for (const auto& cell : cells.elements()) {
    text += joined(static_cast<int>(cell.left), "=", cell.right, " ");
  }
  EXPECT_EQ(text, "0= 1= 3= 5= 6= 7= 4=0 2=waiting ");
}

/// Cells that come and go in an order that touches both ends and the middle of their list.
struct SomeCells {
  std::vector<std::unique_ptr<MutexType<long>>> cells{6};
  SomeCells() {
    for (auto& cell : cells) cell = std::make_unique<MutexType<long>>();
    for (const std::size_t i : {2U, 0U, 5U, 3U}) cells[i].reset();
    cells[3] = std::make_unique<MutexType<long>>();
  }
};

/// Ends while cells come and go, at a moment that varies from process to process.
void endBySignal() {
  std::signal(SIGALRM, [](int) {
    releaseSemaphoreNames();
    _exit(3);
  });
  const itimerval soon{{}, {0, 500 + getpid() % 100 * 20}};
  setitimer(ITIMER_REAL, &soon, nullptr);
  for (;;) const SomeCells cells;
}

// The ends run in forked children of a process with a living cell, whose name they must not take.
TEST(MutexTypeDeathTest, NoNameOutlivesTheProcess) {
  struct Case {
    void (*end)();
    int status;
    const char* text;
  };
  std::vector<Case> cases(20, {endBySignal, 3, ""});
  cases.push_back({[] { std::exit(1); }, 1, ""});
  cases.push_back({[] { fail("end"); }, 1, "\n\\*\\*\\* FAIL: end\n"});
  const MutexType<long> own;
  const long before = namesInUse();
  for (const Case& c : cases) {
    EXPECT_EXIT(
        {
          const SomeCells cells;
          if (namesInUse() != before + 3) std::exit(9);
          c.end();
        },
        ExitedWithCode(c.status), c.text);
    EXPECT_EQ(namesInUse(), before);
  }
}

TEST(MutexTypeDeathTest, ReleasedCellOnlyCloses) {
  EXPECT_EXIT(
      {
        String name;
        {
          const MutexType<long> cell;
          name = cell.lock.name;
          releaseSemaphoreNames();
          if (!makeSemaphore(name)) std::exit(2);  // the name is free, and now it is another's
          releaseSemaphoreNames();
        }
        std::exit(sem_unlink(name.c_str()) == 0 ? 0 : 3);
      },
      ExitedWithCode(0), "^$");
}

/// Makes a semaphore without a file for it. Sanitizers need files where they meet a type for the
/// first time, hence the warning, and at the end of the process.
void exhaustFiles() {
  static rlimit limit;
  getrlimit(RLIMIT_NOFILE, &limit);
  std::atexit([] { setrlimit(RLIMIT_NOFILE, &limit); });
  warn("out of files");
  const rlimit none{0, limit.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  const NamedSemaphore refused;
}

TEST(MutexTypeDeathTest, FailuresOfTheSystem) {
  struct Case {
    void (*spoil)();
    const char* text;
  };
  static NamedSemaphore* cell = nullptr;
  const std::vector<Case> cases = {
      {[] { sem_close(cell->semaphore); },
       "^ERRNO = Invalid argument\n\\*\\*\\* FAIL: SEM could not be closed\n$"},
      {[] { sem_unlink(cell->name.c_str()); },
       "^ERRNO = No such file or directory\n\\*\\*\\* FAIL: SEM could not be unlinked\n$"},
      {exhaustFiles, "ERRNO = Too many open files\n\\*\\*\\* FAIL: SEM could not be opened\n$"},
  };
  for (const Case& c : cases) {
    EXPECT_EXIT(
        {
          NamedSemaphore semaphore;
          cell = &semaphore;
          c.spoil();
        },
        ExitedWithCode(1), c.text);
  }
}

}  // namespace
}  // namespace vexil
