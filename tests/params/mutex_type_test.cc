// Vexil - exact integer optimization on lattices.
#include "params/mutex_type.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>

#include "foundation/failure.h"
#include "support/tool_run.h"

namespace vexil {
namespace {

/// Process, second and counter of a cell's name.
struct Name {
  long process = 0;
  long second = 0;
  long counter = 0;
  explicit Name(const String& name) {
    EXPECT_EQ(std::sscanf(name.c_str(), "/%ld_%ld_%ld", &process, &second, &counter), 3);
  }
};

/// True if the semaphore's name was free.
bool makeSemaphore(const String& name) {
  sem_t* const made = sem_open(name.c_str(), O_CREAT | O_EXCL, 0600, 1U);
  return made != SEM_FAILED && sem_close(made) == 0;
}

TEST(MutexType, NamesCountWithinASecond) {
  Name before(NamedSemaphore().name);
  for (bool sameSecond = true; sameSecond; usleep(1000)) {
    const Name name(NamedSemaphore().name);
    sameSecond = name.second == before.second;
    EXPECT_EQ(name.process, getpid());
    EXPECT_EQ(name.counter, sameSecond ? before.counter + 1 : 1);
    before = name;
  }
  const String start = joined('/', before.process, '_', before.second, '_');
  const String taken = joined(start, before.counter + 1);  // the second has just begun
  ASSERT_TRUE(makeSemaphore(taken));
  EXPECT_EQ(NamedSemaphore().name, joined(start, before.counter + 2));
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
    EXPECT_FALSE(makeSemaphore(name));
  }
  EXPECT_TRUE(makeSemaphore(name));
  sem_unlink(name.c_str());
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
void endBySignal(NamedSemaphore& /*cell*/) {
  std::signal(SIGALRM, [](int) {
    releaseSemaphoreNames();
    _exit(0);
  });
  const itimerval soon{{}, {0, 500 + getpid() % 100 * 20}};
  setitimer(ITIMER_REAL, &soon, nullptr);
  for (;;) const SomeCells cells;
}

/// The name of a released cell may be another's by the time the cell goes.
void endByRelease(NamedSemaphore& /*cell*/) {
  String name;
  {
    const NamedSemaphore released;
    name = released.name;
    releaseSemaphoreNames();
    if (!makeSemaphore(name)) std::exit(2);
    releaseSemaphoreNames();
  }
  std::exit(sem_unlink(name.c_str()) == 0 ? 0 : 3);
}

void endWithoutRoom(NamedSemaphore& /*cell*/) {
  const rlimit none{0, 0};
  std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &none);
  const NamedSemaphore refused;
}

// The ends run in forked children of a process with a living cell, whose name they must not take.
TEST(MutexType, NoNameOutlivesTheProcess) {
  using End = void (*)(NamedSemaphore & cell);
  std::vector<std::tuple<End, int, const char*>> cases = {
      {[](auto&) { std::exit(0); }, 0, ""},
      {[](auto&) { fail("end"); }, 1, "\n*** FAIL: end\n"},
      {[](auto& cell) { sem_close(cell.semaphore); }, 1,
       "ERRNO = Invalid argument\n*** FAIL: SEM could not be closed\n"},
      {[](auto& cell) { sem_unlink(cell.name.c_str()); }, 1,
       "ERRNO = No such file or directory\n*** FAIL: SEM could not be unlinked\n"},
      {endWithoutRoom, 1, "ERRNO = File too large\n*** FAIL: SEM could not be opened\n"},
      {endByRelease, 0, ""}};
  cases.resize(25, {endBySignal, 0, ""});
  const NamedSemaphore own;
  const auto process = static_cast<pid_t>(Name(own.name).process);  // in the children's names too
  const auto before = support::semaphoreNames(process).size();      // lattices hold some too
  for (const auto& [act, status, text] : cases) {
    const auto end = support::inChild([&, act = act] {
      const SomeCells cells;
      NamedSemaphore cell;
      if (support::semaphoreNames(process).size() != before + 4) return 9;
      return act(cell), 0;
    });
    EXPECT_EQ(end.status, status) << text;
    EXPECT_EQ(end.err, text);
    EXPECT_EQ(support::semaphoreNames(process).size(), before) << text;
  }
}

}  // namespace
}  // namespace vexil
