// Vexil - exact integer optimization on lattices.
//
// The stars of both arithmetics.
#include "program/star.tcc"

#include "program/star_parser.tcc"

namespace vexil {

template class Star<dbl_t>;
template class Star<QQ>;
template class Array<Star<dbl_t>>;
template class Array<Star<QQ>>;
template bool operator<(const Star<dbl_t>&, const Star<dbl_t>&);
template bool operator<(const Star<QQ>&, const Star<QQ>&);
template void sort(Array<Star<dbl_t>>&);
template void sort(Array<Star<QQ>>&);
template void removeDuplicates(Array<Star<dbl_t>>&, bool);
template void removeDuplicates(Array<Star<QQ>>&, bool);

}  // namespace vexil
