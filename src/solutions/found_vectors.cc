// Vexil - exact integer optimization on lattices.
#include "solutions/found_vectors.h"

namespace vexil {

template class TargetVector<dbl_t>;
template class Array<TargetVector<dbl_t>>;
template class TargetVector<QQ>;
template class Array<TargetVector<QQ>>;
template class HeuristicVector<dbl_t, dbl_t>;
template class Set<HeuristicVector<dbl_t, dbl_t>>;
template class SortedSet<HeuristicVector<dbl_t, dbl_t>>;
template class HeuristicVector<QQ, dbl_t>;
template class Set<HeuristicVector<QQ, dbl_t>>;
template class SortedSet<HeuristicVector<QQ, dbl_t>>;
template class HeuristicVector<dbl_t, QQ>;
template class Set<HeuristicVector<dbl_t, QQ>>;
template class SortedSet<HeuristicVector<dbl_t, QQ>>;
template class HeuristicVector<QQ, QQ>;
template class Set<HeuristicVector<QQ, QQ>>;
template class SortedSet<HeuristicVector<QQ, QQ>>;

}  // namespace vexil
