// Vexil - exact integer optimization on lattices.
//
// Apart from the other operations of String, since the library's expressions take long to compile.
#include <regex>

#include "foundation/string.h"

namespace vexil {

String String::regexReplace(const String& pattern, const String& by) const {
  const std::regex expression(pattern, std::regex::ECMAScript);
  return std::regex_replace(static_cast<const std::string&>(*this), expression,
                            static_cast<const std::string&>(by));
}

}  // namespace vexil
