// Vexil - exact integer optimization on lattices.
#include "numbers/prime_field.h"

#include <cmath>

namespace vexil::prime_field {

namespace {

Residue withSign(Residue magnitude, bool positive) {
  return positive || magnitude == 0 ? magnitude : PRIME - magnitude;
}

Residue magnitudeOf(const ZZ& x) {
  Residue result = 0;
  for (Index i = limbCount(x); i > 0; --i) {
    result = reduced(static_cast<DoubleWord>(result) * limbs::WORD_BASE + limbs::word(x.data[i]));
  }
  return result;
}

}  // namespace

Residue inverse(Residue a) {
  Residue result = 1;
  for (Residue exponent = PRIME - 2; exponent != 0; exponent >>= 1) {
    if ((exponent & 1) != 0) result = product(result, a);
    a = product(a, a);
  }
  return result;
}

std::optional<Residue> residue(const QQ& x) {
  if (x.isInf) return std::nullopt;
  const Residue whole = magnitudeOf(x.ganze);
  if (isZero(x.zaehler)) return withSign(whole, x.positive);
  const Residue denominator = magnitudeOf(x.nenner);
  if (denominator == 0) return std::nullopt;
  const Residue fraction = product(magnitudeOf(x.zaehler), inverse(denominator));
  return withSign(reduced(static_cast<DoubleWord>(whole) + fraction), x.positive);
}

std::optional<Residue> residueOfGreat(dbl_t x) {
  if (!std::isfinite(x) || std::trunc(x) != x) return std::nullopt;
  const auto magnitude = std::fmod(std::fabs(x), static_cast<dbl_t>(PRIME));
  return withSign(static_cast<Residue>(magnitude), x >= 0);
}

}  // namespace vexil::prime_field
