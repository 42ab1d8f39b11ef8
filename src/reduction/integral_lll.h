// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/work_meter.h"
#include "reduction/weighted_rows.h"

namespace vexil {

/// LLL reduction with delta 3/4 in integers alone (de Weger 1987; Cohen, A Course in Computational
/// Algebraic Number Theory, 1993, 2.6.7), for bases beyond floating numbers. The squares of the
/// weights are rounded to integers, 2^24 for the greatest.
void integralLll(WeightedRows& basis, WorkMeter& meter);

}  // namespace vexil
