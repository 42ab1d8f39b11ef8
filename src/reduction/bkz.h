// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstddef>

#include "foundation/work_meter.h"
#include "reduction/floating_lll.h"
#include "reduction/weighted_rows.h"

namespace vexil {

/// Block reduction of an LLL-reduced basis (Schnorr, Euchner 1994): every row becomes a shortest
/// one, up to the factor `delta` of the squares, of the lattice that the block of `blockSize` rows
/// from it on makes orthogonally to the rows ahead. Ends when a tour changes nothing, at the latest
/// after MOST_TOURS of them. Where floating numbers do not carry it, the basis stays as it is by
/// then.
void bkzReduce(WeightedRows& basis, std::size_t blockSize, const LllSettings& settings,
               WorkMeter& meter);

}  // namespace vexil
