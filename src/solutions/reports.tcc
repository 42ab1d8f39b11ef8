// Vexil - exact integer optimization on lattices.
//
// The final report, one block per star. Numbers have the default format of a stream, six
// significant digits in `dbl_t`.
#pragma once

#include <sstream>

#include "program/vexil.h"
#include "solutions/write_time.h"

namespace vexil {

namespace detail {

/// Significant digits of a stream with its default settings.
inline constexpr int REPORT_DIGITS = 6;

/// What `writeTime` gives for a time.
inline std::string timeText(std::int64_t seconds) {
  std::ostringstream out;
  writeTime(out, seconds);
  return std::move(out).str();
}

}  // namespace detail

template <typename T>
String Vexil<T>::report() const {
  String text = "\n";
  for (std::int64_t i = 1; i <= solStars.MN; ++i) {
    text += starReport(i);
    if (i != solStars.MN) text += "\n---\n\n";
  }
  return text;
}

template <typename T>
String Vexil<T>::starReport(std::int64_t i) const {
  const Star<T>& star = solStars[i];
  String text = "x = ";
  star.appendTo(text, detail::REPORT_DIGITS);
  text += "\n\n";
  if (star.slackNorm == T(-1)) return text;
  text += "Target values: [ ";
  for (std::int64_t j = 1; j <= dt.MN; ++j) {
    NumberTraits<T>::append(text, star.targetValues[j], detail::REPORT_DIGITS);
    appendMark(text, j);
    text += ' ';
  }
  text += "]\nTarget Norm: ";
  NumberTraits<T>::append(text, star.targetNorm, detail::REPORT_DIGITS);
  text += "\nSlack Norm: ";
  NumberTraits<T>::append(text, star.slackNorm, detail::REPORT_DIGITS);
  text += '\n';
  if (star.time != -1) text += "Found after: " + detail::timeText(star.time) + '\n';
  return text;
}

/// What the program wants of target j: "↑", "↓", or "→" and the wished value.
template <typename T>
void Vexil<T>::appendMark(std::string& text, std::int64_t j) const {
  if (dt[j] == NumberTraits<T>::infinity()) {
    text += "↑";
  } else if (dt[j] == -NumberTraits<T>::infinity()) {
    text += "↓";
  } else {
    text += "→";
    NumberTraits<T>::append(text, dt[j], detail::REPORT_DIGITS);
  }
}

}  // namespace vexil
