// Vexil - exact integer optimization on lattices.
#include "program/vexil.tcc"

#include "program/instantiate.h"

namespace vexil {

template class SerializableArray<FreedomDegree>;
template class Array<Pair<long, dbl_t>>;
template class Array<Pair<long, QQ>>;

}  // namespace vexil
