// Vexil - exact integer optimization on lattices.
#pragma once

#include <istream>
#include <ostream>
#include <utility>

#include "foundation/string.h"

namespace vexil {

/// Base of everything that has a text form.
class Serializable {
 public:
  String delimiters;  ///< the first character separates elements; holds a blank in any case
  bool skipComments;  ///< comments are recognised on reading
  bool secondFlag;    ///< carried and copied only

  /// Appends a blank to `separators` if it holds none.
  Serializable(String separators, bool comments, bool second)
      : delimiters(std::move(separators)), skipComments(comments), secondFlag(second) {
    if (delimiters.find(' ') == String::npos) delimiters += ' ';
  }
  // A move copies the settings as well, so that what is left can still be written and read.
  Serializable(const Serializable&) = default;
  Serializable& operator=(const Serializable&) = default;
  virtual ~Serializable() = default;

  /// Writes the text form and returns the stream.
  virtual std::ostream& write(std::ostream& out) const = 0;
  /// Takes the value from its text form.
  virtual void read(std::istream& in) = 0;

  /// Takes over the three text settings and nothing else.
  void copyTextSettings(const Serializable& other) { *this = other; }
};

inline std::ostream& operator<<(std::ostream& out, const Serializable& value) {
  return value.write(out);
}

inline std::istream& operator>>(std::istream& in, Serializable& value) {
  value.read(in);
  return in;
}

}  // namespace vexil
