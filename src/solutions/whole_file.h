// Vexil - exact integer optimization on lattices.
//
// Files that are complete at every moment: what another process finds under the name of such a
// file, also after a crash or on a full disk, is the old text or the new one. All names are
// resolved ones. What fails throws `WriteException` with the name and the system's reason.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/string.h"

namespace vexil {

/// Where `path` leads: an absolute name without symbolic links. The file itself need not exist, nor
/// what its last link points to; its folder has to.
[[nodiscard]] String resolvedPath(const String& path);

/// The text of the file; nothing if there is none. Throws for what is no regular file or cannot be
/// read.
[[nodiscard]] std::optional<std::string> readWholeFile(const String& path);

/// Throws unless `replaceFile` has the rights that it needs. Leaves everything as it was.
void checkReplaceable(const String& path);

/// Makes `text` the content of the file: a draft beside it is written, flushed to the disk and
/// renamed. The mode of the file stays and, where the system lets it, its owner. With `keepOld` the
/// file as it was stays under the name that is returned: its own with "~" behind it, or "~1", "~2"
/// and so on if that is taken.
String replaceFile(const String& path, std::string_view text, bool keepOld);

/// Makes `text` the content of the file as `replaceFile` does, for callers that may not be alone:
/// the draft is this process's own. Without `replace` a file that is there, or that another
/// process makes meanwhile, stays, and the result is false.
[[nodiscard]] bool putFile(const String& path, std::string_view text, bool replace);

/// Takes the file away and leaves it under the name that is returned, as `replaceFile` does.
String setFileAside(const String& path);

}  // namespace vexil
