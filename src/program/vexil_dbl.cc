// Vexil - exact integer optimization on lattices.
#include "program/vexil_members.h"

namespace vexil {

template class Star<dbl_t>;
template class Vexil<dbl_t>;

}  // namespace vexil
