// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "foundation/failure.h"
#include "foundation/string.h"

namespace vexil::formats {

/// The text of a model file, which knows the places in it by line and column.
class SourceText {
 public:
  /// Reads the file. Fatal: "Could not read model file: " and the path.
  explicit SourceText(String path);

  /// A text at hand; `path` is what messages call it.
  SourceText(String path, std::string text) : path_(std::move(path)), text_(std::move(text)) {}

  [[nodiscard]] std::string_view text() const { return text_; }
  [[nodiscard]] const String& path() const { return path_; }

  /// "path:line:column", both from 1, of the byte at `offset`, which may be that behind the last.
  [[nodiscard]] std::string place(std::size_t offset) const;

  /// Fatal: "path:line:column: expected " and the text of `parts`.
  template <typename... Parts>
  [[noreturn]] void expected(std::size_t offset, const Parts&... parts) const {
    fail(place(offset), ": expected ", parts...);
  }

 private:
  String path_;
  std::string text_;
};

/// Something worth a note that may occur often: it is told once, with its number and first place.
class Note {
 public:
  void add(std::size_t offset) {
    if (count_++ == 0) first_ = offset;
  }

  /// Warns "path:line:column: what", with "(n times)" behind it where it occurred n > 1 times.
  void tell(const SourceText& source, std::string_view what) const;

 private:
  std::size_t first_ = 0;
  std::size_t count_ = 0;
};

}  // namespace vexil::formats
