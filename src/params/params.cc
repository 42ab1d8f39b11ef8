// Vexil - exact integer optimization on lattices.
#include "params/params.h"

#include <cctype>
#include <sstream>
#include <tuple>

#include "foundation/failure.h"
#include "foundation/text_streams.h"
#include "numbers/full_precision.h"

namespace vexil {

namespace {

template <typename P>
struct Option {
  P Params::*member;
  const char* key;
  typename P::Value initial;
  const char* help;
};

template <typename P, typename V>
Option(P Params::*, const char*, V, const char*) -> Option<P>;

/// The options in the order of the text form.
constexpr std::tuple OPTIONS{
    Option{&Params::help, "help", false, "Display this help information."},
    Option{&Params::verb, "verb", 0L,
           "To receive (detailed) runtime statistics, set this parameter to 1 or 2."},
    Option{&Params::consistency, "consistency", false,
           "By setting this switch the lattice transformations are remembered and get used to "
           "detect computing / overflow errors."},
    Option{&Params::eenum, "eenum", true,
           "Enables the essential enumeration algorithm, which helps to find euclidean short "
           "vectors in a deterministic way (see also: --deep, --beta, --btime, --eprune)."},
    Option{&Params::beta, "beta", 20L,
           "The enumeration algorithm operates on blocks of 20 vectors per default, which can be "
           "changed utilizing this parameter (see also: --eenum, --btime)."},
    Option{&Params::eprune, "eprune", 3L,
           "The enumeration trees can be pruned, which will speed up the enumeration. To enable "
           "moderate pruning use 1 - if you prefer more aggressive pruning, then use 2 or 3 (see: "
           "also --eenum, --beta)."},
    Option{&Params::btime, "btime", 0L,
           "This defines a bound for the maximum time (in seconds) to spent, when ennumerating a "
           "block of lattice vectors (see also: --beta, eenum)."},
    Option{
        &Params::deep, "deep", false,
        "The enumeration algorithm should do some kind of backtracking, when a short vector has "
        "been found - the short vector is not only compared with the basis vector of the current "
        "stage, but also with base vectors, which are stages ahead (see also: --eenum)."},
    Option{
        &Params::collectLimit, "collectLimit", 100UL,
        "The collection limit defines the maximum size of the set containing the collected, good "
        "vectors. (see also:  --pair, --sieve, --sample)."},
    Option{&Params::pair, "pair", true,
           "This switch enables a heuristic pairwise recombination method, which helps to discover "
           "vectors with small sup-norms and collects these within a set of heuristically good "
           "vectors (see also: --pairLimit, --collectLimit)."},
    Option{&Params::pairLimit, "pairLimit", 10UL,
           "The pair limit defines the maximum amount of vectors which are chosen from the "
           "collection set for pairing purposes (see also:  --pair, --collectLimit)."},
    Option{&Params::sieve, "sieve", false,
           "This switch enables a sieving method on the collection set of heuristically good "
           "vectors, which helps to discover vectors with small sup-norms (see also: "
           "--collectLimit)."},
    Option{&Params::sample, "sample", false,
           "To enable a algorithm, which samples random (but probably short) vectors and collects "
           "them  within the sets containing good vectors (see also: --sampleLimit, "
           "--collectLimit)."},
    Option{&Params::sampleLimit, "sampleLimit", 1000UL,
           "The sample limit defines how many vectors should be chosen, when using random sampling "
           "(see also: --sample)."},
    Option{&Params::scale, "scale", false,
           "Enables a scaling routine, which trims the lattice towards feasibility."},
    Option{&Params::translate, "translate", false,
           "Enables a translation routine, which trims the lattice towards feasibility."},
    Option{&Params::reinsert, "reinsert", true,
           "Enables a routine to re-insert best vectors into the lattice after each progressless "
           "iteration."},
    Option{&Params::variate, "variate", true,
           "Enables a variation of lattice base vectors (sorting / shuffling) after each "
           "progressless iteration."},
    Option{&Params::rtime, "rtime", 0L,
           "Terminate the program after the submitted number of seconds has been reached."},
    Option{&Params::iters, "iters", -1L,
           "Terminate the program after the submitted number of iterations."},
    Option{&Params::sol, "sol", 1L,
           "Terminate the program, when the submitted number of solutions has been found."},
    Option{&Params::bench, "bench", 0.0F,
           "A value > 0 enables a benchmark run. The read of the lat / sol file is skipped and the "
           "secondsUntilDiscovered property of best vectors gets multiplied with the value of this "
           "parameter."},
};

/// Calls `visit` on each row of the table.
template <typename Visit>
void forEachOption(Visit visit) {
  std::apply([&](const auto&... option) { (visit(option), ...); }, OPTIONS);
}

}  // namespace

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

}  // namespace vexil
