// Vexil - exact integer optimization on lattices.
#include "solutions/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "foundation/exceptions.h"
#include "foundation/failure.h"
#include "foundation/file_text.h"
#include "foundation/open_file.h"

namespace vexil {

namespace {

namespace fs = std::filesystem;

/// Who may do what with a file; nothing if there is none.
std::optional<struct stat> statusOf(const String& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0) return status;
  if (errno != ENOENT) throwWriteFailure(path, "cannot be looked at");
  return std::nullopt;
}

std::optional<struct stat> regularFile(const String& path) {
  const auto status = statusOf(path);
  if (status && !S_ISREG(status->st_mode)) {
    throw WriteException(joined(path, ": is not a regular file"));
  }
  return status;
}

/// A new file beside `path`, which goes away again unless it is renamed. One that is there already
/// was left by a process that has died: only who holds the lock of `path` makes one, or the process
/// whose number is the `mark` of its name.
class Draft {
 public:
  Draft(const String& path, const std::optional<struct stat>& old, const std::string& mark = "")
      : name_(nameBeside(path, mark)) {
    unlink(name_.c_str());
    constexpr mode_t ANYBODY = 0666;
    constexpr mode_t OWNER = 0600;
    file_ = OpenFile(
        open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, old ? OWNER : ANYBODY));
    if (!file_.isOpen()) throwWriteFailure(name_, "cannot be made");
    if (old) takeOver(*old);
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;
  ~Draft() {
    if (!name_.empty()) unlink(name_.c_str());
  }

  void write(std::string_view text) {
    if (!file_.write(text)) throwWriteFailure(name_, "cannot be written");
    if (fsync(file_.descriptor()) != 0 && errno != EINVAL)
      throwWriteFailure(name_, "cannot be flushed");
    if (!file_.close()) throwWriteFailure(name_, "cannot be written");
  }

  /// Gives the draft a second name that nothing has yet; false if something has. A file system
  /// without links leaves a moment between look and renaming.
  [[nodiscard]] bool linkTo(const String& path) {
    if (link(name_.c_str(), path.c_str()) == 0) return true;
    if (errno == EEXIST) return false;
    if (errno != EPERM && errno != EMLINK && errno != ENOTSUP)
      throwWriteFailure(path, "cannot be made");
    if (statusOf(path)) return false;
    renameTo(path);
    return true;
  }

  void renameTo(const String& path) {
    if (std::rename(name_.c_str(), path.c_str()) != 0)
      throwWriteFailure(path, "cannot be replaced");
    name_.clear();
  }

 private:
  static String nameBeside(const String& path, const std::string& mark) {
    const std::size_t name = path.rfind('/') + 1;
    return path.substr(0, name) + "." + path.substr(name) + mark + ".vexil-solve";
  }

  /// Another owner is what only a privileged process can keep; the mode comes last, since a change
  /// of the owner takes bits away.
  void takeOver(const struct stat& old) const {
    constexpr mode_t MODE_BITS = 07777;
    static_cast<void>(fchown(file_.descriptor(), old.st_uid, old.st_gid) != 0 &&
                      fchown(file_.descriptor(), static_cast<uid_t>(-1), old.st_gid) != 0);
    if (fchmod(file_.descriptor(), old.st_mode & MODE_BITS) != 0)
      throwWriteFailure(name_, "cannot be made");
  }

  String name_;  ///< empty once it is renamed
  OpenFile file_;
};

/// Gives the file a second name, the first free one.
String secondName(const String& path) {
  for (int number = 0;; ++number) {
    String name = path + "~" + (number == 0 ? "" : std::to_string(number));
    if (link(path.c_str(), name.c_str()) == 0) return name;
    if (errno == EEXIST) continue;
    // A file system without links: a copy, which nothing replaces either.
    if (errno != EPERM && errno != EMLINK && errno != ENOTSUP)
      throwWriteFailure(name, "cannot be made");
    std::error_code error;
    if (fs::exists(fs::symlink_status(name.c_str(), error))) continue;
    if (fs::copy_file(path.c_str(), name.c_str(), error)) return name;
    errno = error.value();
    throwWriteFailure(name, "cannot be made");
  }
}

/// Has the names of the folder written to the disk, where the system offers that.
void flushFolder(const String& path) {
  const OpenFile folder(
      open(path.substr(0, path.rfind('/') + 1).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.isOpen()) fsync(folder.descriptor());
}

}  // namespace

String resolvedPath(const String& path) {
  constexpr int MOST_LINKS = 40;
  std::error_code error;
  fs::path target = fs::absolute(path.c_str(), error);
  for (int links = 0; fs::is_symlink(fs::symlink_status(target, error)); ++links) {
    if (links == MOST_LINKS) throw WriteException(joined(path, ": leads through too many links"));
    target = target.parent_path() / fs::read_symlink(target, error);
  }
  const fs::path folder = fs::canonical(target.parent_path(), error);
  if (error) throw WriteException(joined(path, ": its folder cannot be found"));
  return (folder / target.filename()).string();
}

std::optional<std::string> readWholeFile(const String& path) {
  if (!regularFile(path)) return std::nullopt;
  auto text = readFileText(path);
  if (!text) throwWriteFailure(path, "cannot be read");
  return text;
}

void checkReplaceable(const String& path) {
  const auto old = regularFile(path);
  if (old && access(path.c_str(), W_OK) != 0) throwWriteFailure(path, "cannot be written");
  const Draft draft(path, old);
}

String replaceFile(const String& path, std::string_view text, bool keepOld) {
  const auto old = regularFile(path);
  Draft draft(path, old);
  draft.write(text);
  String kept = keepOld && old ? secondName(path) : String();
  try {
    draft.renameTo(path);
  } catch (const WriteException&) {
    if (!kept.empty()) unlink(kept.c_str());
    throw;
  }
  flushFolder(path);
  return kept;
}

bool putFile(const String& path, std::string_view text, bool replace) {
  const auto old = regularFile(path);
  if (old && !replace) return false;
  Draft draft(path, old, "." + std::to_string(getpid()));
  draft.write(text);
  if (!replace && !draft.linkTo(path)) return false;
  if (replace) draft.renameTo(path);
  flushFolder(path);
  return true;
}

String setFileAside(const String& path) {
  String kept = secondName(path);
  if (unlink(path.c_str()) != 0) throwWriteFailure(path, "cannot be removed");
  flushFolder(path);
  return kept;
}

}  // namespace vexil
