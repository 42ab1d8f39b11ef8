// Vexil - exact integer optimization on lattices.
//
// The recoverable events. Everything else that goes wrong is a fatal report (failure.h).
#pragma once

#include <exception>
#include <utility>

#include "foundation/string.h"

namespace vexil {

/// Base of all recoverable events: carries one message and nothing else.
class GeneralException : public std::exception {
 public:
  explicit GeneralException(String text) : message(std::move(text)) {}
  [[nodiscard]] const char* what() const noexcept override { return message.c_str(); }

  String message;

 protected:
  /// `text`, or `substitute` where it is empty.
  [[nodiscard]] static String orElse(const String& text, const char* substitute) {
    return text.empty() ? String(substitute) : text;
  }
  /// `title`, followed by ": " and `text` where that is not empty.
  [[nodiscard]] static String titled(const char* title, const String& text) {
    return text.empty() ? String(title) : String(title + (": " + text));
  }
};

/// A result that standard precision cannot hold; the front end repeats the step in exact
/// arithmetic.
class PrecisionException : public GeneralException {
 public:
  explicit PrecisionException(const String& text = "")
      : GeneralException(orElse(text, "Precision exception")) {}
};

/// A number whose fraction does not fit standard precision.
class PostCommaPrecisionException : public PrecisionException {
 public:
  explicit PostCommaPrecisionException(const String& text = "")
      : PrecisionException(titled("PostCommaPrecision exception", text)) {}
};

/// A number whose whole part does not fit standard precision.
class PreCommaPrecisionException : public PrecisionException {
 public:
  explicit PreCommaPrecisionException(const String& text = "")
      : PrecisionException(titled("PreCommaPrecision exception", text)) {}
};

/// An overflow so large that the values computed so far cannot be trusted.
class FatalPrecisionException : public PrecisionException {
 public:
  explicit FatalPrecisionException(const String& text = "")
      : PrecisionException(titled("FatalPrecisionException exception", text)) {}
};

/// A number list read from a stream that has already failed.
class ReadException : public GeneralException {
 public:
  explicit ReadException(const String& text = "")
      : GeneralException(orElse(text, "Read exception")) {}
};

/// A file that cannot be locked or written.
class WriteException : public GeneralException {
 public:
  explicit WriteException(const String& text = "")
      : GeneralException(orElse(text, "Write exception")) {}
};

/// The lattice was regenerated in the middle of a reduction.
class RestartException : public GeneralException {
 public:
  explicit RestartException(const String& text = "")
      : GeneralException(orElse(text, "Restart exception")) {}
};

/// A linearly dependent row that cannot be moved out of the way.
class DependencyException : public GeneralException {
 public:
  explicit DependencyException(const String& text = "")
      : GeneralException(orElse(text, "Dependency exception")) {}
};

}  // namespace vexil
