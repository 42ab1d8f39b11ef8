// Vexil - exact integer optimization on lattices.
//
// One line of the sol file:
//   elements | target norm | target values | slack norm | time | options | version
#pragma once

#include "foundation/text_streams.h"
#include "program/star.h"

namespace vexil {

namespace detail {

/// Reads one field and the bar behind it, where there is one.
template <typename Field>
void readField(std::istream& in, Field& field) {
  skipBlanks(in);
  in >> field;
  takeBar(in);
}

/// Options and version, the rest of the line. A rest of one part leaves the version as it was, and
/// so does one of more than two.
template <typename T>
void readTexts(std::istream& in, Star<T>& star) {
  skipBlanks(in);
  String rest;
  std::getline(in, rest);
  skipBlanks(in);
  const Array<String> parts = rest.split('|');
  if (parts.MN >= 1) star.paramText = parts[1].trim(WHITE_SPACE);
  if (parts.MN == 2) star.version = parts[2].trim(WHITE_SPACE);
}

}  // namespace detail

template <typename T>
bool Star<T>::readStar(Star& star, std::istream& in) {
  try {
    skipBlanks(in);
    star.Vector<T>::read(in);
    if (!takeBar(in)) {
      star.version.clear();
      star.paramText.clear();
      return false;
    }
    detail::readField(in, star.targetNorm);
    detail::readField(in, star.targetValues);
    detail::readField(in, star.slackNorm);
    detail::readField(in, star.time);
    detail::readTexts(in, star);
  } catch (const GeneralException&) {
    star.resize(0, false);
  }
  return true;
}

}  // namespace vexil
