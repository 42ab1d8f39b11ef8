// Vexil - exact integer optimization on lattices.
#include "program/vexil_members.h"

namespace vexil {

template class Star<QQ>;
template class Vexil<QQ>;

}  // namespace vexil
