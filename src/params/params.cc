// Vexil - exact integer optimization on lattices.
#include "params/params.h"

#include <cctype>
#include <sstream>

#include "foundation/failure.h"
#include "foundation/text_streams.h"
#include "numbers/full_precision.h"
#include "params/option_table.h"

namespace vexil {

Params::Params() : Serializable(",", false, false) {
  forEachOption([this](const auto& option) {
    (this->*option.member).init(option.initial, option.key, option.help, names, table);
  });
}

Params& Params::operator=(const Params& other) {
  if (this == &other) return *this;
  copyTextSettings(other);
  forEachOption([&](const auto& option) { this->*option.member = other.*option.member; });
  cellsEnabled = other.cellsEnabled;
  table.resize(other.table.MN, false);  // the entries of an emptied table come back with its length
  return *this;
}

std::ostream& Params::write(std::ostream& out) const {
  std::ostringstream line;
  line << fullPrecision;
  for (const auto& option : table.elements()) {
    const auto before = line.tellp();
    option.right->write(line);
    if (line.tellp() != before) line << ' ';
  }
  return out << String(std::move(line).str()).trim(WHITE_SPACE);
}

void Params::read(std::istream& in) {
  static const String gap = " \t";
  skipBlanks(in, gap);
  if (std::isspace(lookAhead(in)) != 0) {
    table.resize(0, false);
    return;
  }
  ParamInfo word;
  do {
    word.read(in);
    ParamInfo** const option = table.find(word.key);
    if (option == nullptr) fail("Malformed parameter: ", word.key, "=", word.value.get());
    (*option)->value.set(word.value.get());
    (*option)->parse();
    skipBlanks(in, gap);
  } while (!in.eof() && !nextIs(in, '\n'));
}

template class Param<bool>;
template class Param<float>;
template class Param<long>;
template class Param<unsigned long>;
template class Param<MutexType<long>>;
template class MutexParam<long>;

}  // namespace vexil
