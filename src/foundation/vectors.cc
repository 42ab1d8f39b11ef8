// Vexil - exact integer optimization on lattices.
//
// The vectors and matrices of the built-in number types.
#include "foundation/matrix.tcc"
#include "foundation/vector.tcc"

namespace vexil {

template class Vector<dbl_t>;
template class Vector<long>;
template class Matrix<dbl_t>;
template Vector<dbl_t> operator*(const Vector<dbl_t>&, const Matrix<dbl_t>&);

}  // namespace vexil
