// Vexil - exact integer optimization on lattices.
#include "reduction/gram_schmidt.tcc"

namespace vexil {

template struct GramSchmidt<dbl_t, dbl_t>;
template struct GramSchmidt<QQ, dbl_t>;
template struct GramSchmidt<dbl_t, QQ>;
template struct GramSchmidt<QQ, QQ>;

}  // namespace vexil
