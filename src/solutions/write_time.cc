// Vexil - exact integer optimization on lattices.
#include "solutions/write_time.h"

#include <cmath>

#include "foundation/dbl.h"

namespace vexil {

namespace {

void writeTwoDigits(std::ostream& out, dbl_t value) { out << (value < 10 ? "0" : "") << value; }

}  // namespace

void writeTime(std::ostream& out, std::int64_t seconds) {
  if (seconds == -1) {
    out << -1 << " sec(s)";
    return;
  }
  const auto total = static_cast<dbl_t>(seconds);
  const dbl_t h = std::floor(total / 3600);
  const dbl_t rest = total - 3600 * h;
  const dbl_t m = std::floor(rest / 60);
  const dbl_t s = std::ceil(rest - 60 * m);
  if (h > 0) {
    out << h << ':';
    writeTwoDigits(out, m);
    out << ':';
    writeTwoDigits(out, s);
    out << " hour(s):min(s):sec(s) == " << seconds << " secs";
  } else if (m > 0) {
    out << m << ':';
    writeTwoDigits(out, s);
    out << " min(s):sec(s) == " << seconds << " secs";
  } else {
    out << s << " sec(s)";
  }
}

}  // namespace vexil
