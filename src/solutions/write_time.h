// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <ostream>

namespace vexil {

/// Writes a time span in one of three forms; -1 stands for an unknown one:
///   59 sec(s)
///   1:01 min(s):sec(s) == 61 secs
///   1:01:01 hour(s):min(s):sec(s) == 3661 secs
/// The parts are floating numbers in the format of the stream: a million hours are "1e+06".
void writeTime(std::ostream& out, std::int64_t seconds);

}  // namespace vexil
