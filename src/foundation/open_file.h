// Vexil - exact integer optimization on lattices.
#pragma once

#include <string_view>
#include <utility>

#include "foundation/string.h"

namespace vexil {

/// A file descriptor of the system, which is closed in the end. Where an operation fails, `errno`
/// holds the reason.
class OpenFile {
 public:
  OpenFile() = default;
  /// Takes `descriptor` over, which may be the -1 of a failed `open`.
  explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
  OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  OpenFile& operator=(OpenFile&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~OpenFile() { close(); }

  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
  [[nodiscard]] int descriptor() const { return descriptor_; }

  /// Writes all of `text`; false if not all could be written.
  [[nodiscard]] bool write(std::string_view text) const;

  /// False if what was written may be lost.
  bool close();

 private:
  int descriptor_ = -1;
};

/// Throws the `WriteException` "path: what: reason" with the reason that the system gave last.
[[noreturn]] void throwWriteFailure(const String& path, const char* what);

}  // namespace vexil
