// Vexil - exact integer optimization on lattices.
#include "program/file_names.h"

namespace vexil {

String baseOfFileName(const String& name) {
  const std::size_t dot = name.rfind('.');
  const bool hasEnding = dot != String::npos && name.find('/', dot) == String::npos;
  const String base = hasEnding ? String(name.substr(0, dot)) : name;
  return base.empty() ? name : base;
}

}  // namespace vexil
