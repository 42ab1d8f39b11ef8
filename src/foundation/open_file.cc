// Vexil - exact integer optimization on lattices.
#include "foundation/open_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "foundation/exceptions.h"
#include "foundation/failure.h"

namespace vexil {

bool OpenFile::write(std::string_view text) const {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor_, text.data(), text.size());
    if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    if (written < 0 && errno != EINTR) return false;
  }
  return true;
}

bool OpenFile::close() {
  const int descriptor = std::exchange(descriptor_, -1);
  return descriptor < 0 || ::close(descriptor) == 0 || errno == EINTR;
}

void throwWriteFailure(const String& path, const char* what) {
  const int reason = errno;
  throw WriteException(joined(path, ": ", what, ": ", std::strerror(reason)));
}

}  // namespace vexil
