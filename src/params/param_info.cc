// Vexil - exact integer optimization on lattices.
#include "params/param_info.h"

#include "foundation/failure.h"
#include "foundation/text_streams.h"

namespace vexil {

std::ostream& ParamInfo::write(std::ostream& out) const {
  const String text = value.get();
  if (!text.empty()) out << "--" << key << '=' << text;
  return out;
}

void ParamInfo::read(std::istream& in) {
  skipBlanks(in);
  in.get();
  in.get();
  std::string word;
  in >> word;
  const auto equals = word.find('=');
  if (equals == std::string::npos) fail("Malformed parameter: ", word);
  key = word.substr(0, equals);
  value.set(word.substr(equals + 1));
  parse();
}

}  // namespace vexil
