// Vexil - exact integer optimization on lattices.
//
// The table of the options whose type depends on nothing. It can be looked through without the
// options themselves, whose cells are semaphores.
#pragma once

#include <tuple>

#include "params/params.h"

namespace vexil {

/// A row of the option table.
template <typename P>
struct OptionRow {
  P Params::*member;          ///< the option that the row is about
  const char* key;            ///< without dashes
  typename P::Value initial;  ///< the default
  const char* help;
};

template <typename P, typename V>
OptionRow(P Params::*, const char*, V, const char*) -> OptionRow<P>;

/// The options in the order of the text form.
inline constexpr std::tuple OPTIONS{
    OptionRow{&Params::help, "help", false, "Display this help information."},
    OptionRow{&Params::verb, "verb", 0L,
              "To receive (detailed) runtime statistics, set this parameter to 1 or 2."},
    OptionRow{&Params::consistency, "consistency", false,
              "By setting this switch the lattice transformations are remembered and get used to "
              "detect computing / overflow errors."},
    OptionRow{&Params::eenum, "eenum", true,
              "Enables the essential enumeration algorithm, which helps to find euclidean short "
              "vectors in a deterministic way (see also: --deep, --beta, --btime, --eprune)."},
    OptionRow{
        &Params::beta, "beta", 20L,
        "The enumeration algorithm operates on blocks of 20 vectors per default, which can be "
        "changed utilizing this parameter (see also: --eenum, --btime)."},
    OptionRow{
        &Params::eprune, "eprune", 3L,
        "The enumeration trees can be pruned, which will speed up the enumeration. To enable "
        "moderate pruning use 1 - if you prefer more aggressive pruning, then use 2 or 3 (see: "
        "also --eenum, --beta)."},
    OptionRow{
        &Params::btime, "btime", 0L,
        "This defines a bound for the maximum time (in seconds) to spent, when ennumerating a "
        "block of lattice vectors (see also: --beta, eenum)."},
    OptionRow{
        &Params::deep, "deep", false,
        "The enumeration algorithm should do some kind of backtracking, when a short vector has "
        "been found - the short vector is not only compared with the basis vector of the current "
        "stage, but also with base vectors, which are stages ahead (see also: --eenum)."},
    OptionRow{
        &Params::collectLimit, "collectLimit", 100UL,
        "The collection limit defines the maximum size of the set containing the collected, good "
        "vectors. (see also:  --pair, --sieve, --sample)."},
    OptionRow{
        &Params::pair, "pair", true,
        "This switch enables a heuristic pairwise recombination method, which helps to discover "
        "vectors with small sup-norms and collects these within a set of heuristically good "
        "vectors (see also: --pairLimit, --collectLimit)."},
    OptionRow{&Params::pairLimit, "pairLimit", 10UL,
              "The pair limit defines the maximum amount of vectors which are chosen from the "
              "collection set for pairing purposes (see also:  --pair, --collectLimit)."},
    OptionRow{&Params::sieve, "sieve", false,
              "This switch enables a sieving method on the collection set of heuristically good "
              "vectors, which helps to discover vectors with small sup-norms (see also: "
              "--collectLimit)."},
    OptionRow{
        &Params::sample, "sample", false,
        "To enable a algorithm, which samples random (but probably short) vectors and collects "
        "them  within the sets containing good vectors (see also: --sampleLimit, "
        "--collectLimit)."},
    OptionRow{
        &Params::sampleLimit, "sampleLimit", 1000UL,
        "The sample limit defines how many vectors should be chosen, when using random sampling "
        "(see also: --sample)."},
    OptionRow{&Params::scale, "scale", false,
              "Enables a scaling routine, which trims the lattice towards feasibility."},
    OptionRow{&Params::translate, "translate", false,
              "Enables a translation routine, which trims the lattice towards feasibility."},
    OptionRow{
        &Params::reinsert, "reinsert", true,
        "Enables a routine to re-insert best vectors into the lattice after each progressless "
        "iteration."},
    OptionRow{&Params::variate, "variate", true,
              "Enables a variation of lattice base vectors (sorting / shuffling) after each "
              "progressless iteration."},
    OptionRow{&Params::rtime, "rtime", 0L,
              "Terminate the program after the submitted number of seconds has been reached."},
    OptionRow{&Params::iters, "iters", -1L,
              "Terminate the program after the submitted number of iterations."},
    OptionRow{&Params::sol, "sol", 1L,
              "Terminate the program, when the submitted number of solutions has been found."},
    OptionRow{
        &Params::bench, "bench", 0.0F,
        "A value > 0 enables a benchmark run. The read of the lat / sol file is skipped and the "
        "secondsUntilDiscovered property of best vectors gets multiplied with the value of this "
        "parameter."},
};

/// Calls `visit` on each row of the table.
template <typename Visit>
void forEachOption(Visit visit) {
  std::apply([&](const auto&... option) { (visit(option), ...); }, OPTIONS);
}

}  // namespace vexil
