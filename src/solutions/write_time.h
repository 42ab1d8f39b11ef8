// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <ostream>

namespace vexil {

/// Writes a time span: "59 sec(s)", "1:01 min(s):sec(s) == 61 secs" or "1:01:01
/// hour(s):min(s):sec(s)
/// == 3661 secs"; -1 stands for an unknown one. The parts follow the number format of the stream.
void writeTime(std::ostream& out, std::int64_t seconds);

}  // namespace vexil
