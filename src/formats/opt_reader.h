// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "formats/named_model.h"
#include "formats/source_text.h"
#include "foundation/string.h"

namespace vexil::formats {

/// The comments at the head of an opt file that name its parts: lines "// item: text" or
/// "// item[i]: text" ahead of everything else, as `optText` writes them.
class OptHead {
 public:
  /// Reads the head of an opt file. Fatal: "path:line:column: expected a number, not TEXT" for a
  /// constant.
  explicit OptHead(const SourceText& source);

  /// What a comment says of an item, as "model" or "x[3]"; nothing if none does.
  [[nodiscard]] std::optional<std::string> find(const std::string& item) const;

  /// The constant of target i, i from 1; 0 if none is told.
  [[nodiscard]] QQ constant(std::int64_t i) const;

  /// True if it names a variable.
  [[nodiscard]] bool namesVariables() const { return namesVariables_; }

 private:
  std::unordered_map<std::string, std::string> items_;
  std::unordered_map<std::string, QQ> constants_;
  bool namesVariables_ = false;
};

/// Fatal where the last comment of an opt file has no end, which readers of programs would await
/// for ever: "path: the last comment has no end".
void checkComments(const String& path);

/// The model of an opt file with the names of its head; where it has none variables are called
/// x1, x2, ..., targets t1, t2, ..., equations e1, e2, ..., inequations c1, c2, .... Fatal: what
/// the reader of programs reports; "path: x[i]: " and what its decimal places or bounds have that
/// no model can; what the head reports.
[[nodiscard]] NamedModel readOpt(const String& path);

}  // namespace vexil::formats
