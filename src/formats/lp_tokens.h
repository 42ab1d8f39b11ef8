// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/source_text.h"

namespace vexil::formats {

enum class LpTokenKind { NUMBER, NAME, SIGN, RELATION, COLON, SECTION, OTHER, END };

/// The sections of an LP file that are read. REFUSED stands for the known ones that are not.
enum class LpSection { MINIMIZE, MAXIMIZE, ROWS, BOUNDS, INTEGER, BINARY, END, REFUSED };

struct LpToken {
  LpTokenKind kind = LpTokenKind::END;
  std::string_view text = {};  ///< a relation is "<", ">" or "=" whatever its spelling
  std::size_t offset = 0;
  bool firstOfLine = false;
  LpSection section = LpSection::REFUSED;  ///< for `SECTION`
};

/// The tokens of an LP file, with one token of lookahead. Comments run from "\" to the end of the
/// line. The word of a section begins a line and is not followed by a colon, so that it can be a
/// name anywhere else.
class LpTokens {
 public:
  explicit LpTokens(const SourceText& source) : source_(source) { advance(); }

  [[nodiscard]] const LpToken& peek() const { return token_; }
  LpToken take() {
    LpToken token = token_;
    advance();
    return token;
  }
  [[nodiscard]] bool nextIs(LpTokenKind kind) const { return token_.kind == kind; }

  /// The comments that begin with "\ vexil: ", without that, up to the token at hand.
  [[nodiscard]] const std::vector<std::string>& remarks() const { return remarks_; }

 private:
  void advance();
  void skipBlanks();
  [[nodiscard]] bool readSection();

  const SourceText& source_;
  std::size_t position_ = 0;
  bool lineStart_ = true;  ///< no token since the last newline
  LpToken token_;
  std::vector<std::string> remarks_;
};

/// True if a variable or a row can bear the name: every reader takes it for a name, wherever it
/// stands.
[[nodiscard]] bool isLpName(std::string_view name);

}  // namespace vexil::formats
