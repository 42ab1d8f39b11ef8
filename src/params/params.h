// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/array.h"
#include "foundation/map.h"
#include "foundation/serializable.h"
#include "params/param.h"

namespace vexil {

/// The options of a run whose type depends on nothing. The text form is one line of "--key=value"
/// words in the order of `names`. Assignment takes over the options of the other object, but
/// neither the change callbacks nor whom `table` points to.
class Params : public Serializable {
 public:
  Array<String> names;     ///< the keys in the order of the text form
  Hash<ParamInfo*> table;  ///< the options by key; they are members of this object

  Param<bool> help;
  Param<bool> cellsEnabled;  ///< the run is watched through cells; has no key
  Param<bool> consistency;
  Param<long> beta;
  Param<long> eprune;
  Param<long> btime;
  Param<bool> pair;
  Param<bool> sieve;
  Param<bool> scale;
  Param<bool> translate;
  Param<bool> sample;
  Param<bool> reinsert;
  Param<bool> variate;
  Param<bool> deep;
  Param<bool> eenum;
  Param<unsigned long> pairLimit;
  Param<unsigned long> collectLimit;
  Param<unsigned long> sampleLimit;
  Param<long> sol;
  Param<long> iters;
  Param<long> verb;
  MutexParam<long> rtime;
  Param<float> bench;

  Params();
  Params(const Params&) = delete;
  Params& operator=(const Params& other);
  ~Params() override = default;

  /// The words of all options in `table` that have a value text, with a blank between them.
  std::ostream& write(std::ostream& out) const override;

  /// Reads words up to the end of the line, which stays in the stream, and sets the options they
  /// name; no change callback is called. White space other than blanks and tabs at the start is an
  /// empty line: it empties `table`, and the options are written and found no more. Fatal:
  /// "Malformed parameter: " and the word, where it has no "=" or its key is not in `table`.
  void read(std::istream& in) override;
};

extern template class Param<bool>;
extern template class Param<float>;
extern template class Param<long>;
extern template class Param<unsigned long>;
extern template class Param<MutexType<long>>;
extern template class MutexParam<long>;

}  // namespace vexil
