// Vexil - exact integer optimization on lattices.
#include "solutions/star_check.tcc"

#include "program/instantiate.h"

namespace vexil {

template class StarCheck<dbl_t>;
template class StarCheck<QQ>;

}  // namespace vexil
