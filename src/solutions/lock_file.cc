// Vexil - exact integer optimization on lattices.
#include "solutions/lock_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "foundation/exceptions.h"
#include "foundation/failure.h"

namespace vexil {

namespace {

/// How the text of a lock file begins.
constexpr const char* HOLDER = "vexil-solve, process ";

String thisProcess() {
  std::array<char, 256> host{};
  if (gethostname(host.data(), host.size() - 1) != 0) host[0] = '?';
  return joined(HOLDER, getpid(), " on ", host.data());
}

struct flock wholeFile(short kind) {
  struct flock range {};
  range.l_type = kind;
  range.l_whence = SEEK_SET;
  return range;
}

}  // namespace

LockFile::LockFile(const String& path) : name_(path + ".lock") {
  // A holder removes the file before it lets go: who then gets the lock holds one that nobody sees.
  do {
    openFile();
    lock(path);
  } while (!isStillThere());
  const bool named = ftruncate(file_.descriptor(), 0) == 0 && file_.write(thisProcess() + "\n");
  if (named) return;
  const int reason = errno;
  unlink(name_.c_str());
  errno = reason;
  throwWriteFailure(name_, "cannot be written");
}

LockFile::~LockFile() {
  if (isStillThere()) unlink(name_.c_str());
}

void LockFile::openFile() {
  constexpr mode_t ANYBODY = 0666;
  file_ = OpenFile(
      open(name_.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, ANYBODY));
  if (!file_.isOpen()) throwWriteFailure(name_, "cannot be made");
  struct stat status {};
  const bool regular = fstat(file_.descriptor(), &status) == 0 && S_ISREG(status.st_mode);
  if (!regular || !(status.st_size == 0 || content().starts_with(HOLDER))) {
    throw WriteException(joined(name_, ": is not a lock file"));
  }
}

String LockFile::content() const {
  std::array<char, 512> text{};
  const ssize_t length = pread(file_.descriptor(), text.data(), text.size(), 0);
  return String(std::string(text.data(), length > 0 ? static_cast<std::size_t>(length) : 0))
      .trim(WHITE_SPACE);
}

void LockFile::lock(const String& path) {
  struct flock wanted = wholeFile(F_WRLCK);
  if (fcntl(file_.descriptor(), F_SETLK, &wanted) == 0) return;
  if (errno != EACCES && errno != EAGAIN) {
    const int reason = errno;
    unlink(name_.c_str());
    errno = reason;
    throwWriteFailure(name_, "cannot be locked");
  }
  String holder = content();
  if (holder.empty()) {  // it has not said yet who it is
    struct flock held = wholeFile(F_WRLCK);
    const bool known = fcntl(file_.descriptor(), F_GETLK, &held) == 0 && held.l_type != F_UNLCK;
    holder = known ? joined("process ", held.l_pid) : "another process";
  }
  throw WriteException(joined(path, ": is in use by ", holder));
}

bool LockFile::isStillThere() const {
  struct stat opened {};
  struct stat named {};
  return fstat(file_.descriptor(), &opened) == 0 && stat(name_.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace vexil
