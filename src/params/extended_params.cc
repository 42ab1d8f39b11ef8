// Vexil - exact integer optimization on lattices.
#include "params/extended_params.h"

namespace vexil {

template class Param<dbl_t>;
template class Param<QQ>;
template class ExtendedParams<dbl_t>;
template class ExtendedParams<QQ>;

}  // namespace vexil
