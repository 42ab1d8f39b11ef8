// Vexil - exact integer optimization on lattices.
//
// The vectors and matrices of the built-in number types.
#include "foundation/matrix.tcc"
#include "foundation/vector.tcc"

namespace vexil {

template class Array<dbl_t>;
template class Array<long>;
template class ConversionArray<dbl_t>;
template class ConversionArray<long>;
template class SerializableArray<dbl_t>;
template class SerializableArray<long>;
template class Vector<dbl_t>;
template class Vector<long>;
template class Array<Vector<dbl_t>>;
template class ConversionArray<Vector<dbl_t>>;
template class Matrix<dbl_t>;
template class Array<Matrix<dbl_t>>;
template class ConversionArray<Matrix<dbl_t>>;
template class SerializableArray<Matrix<dbl_t>>;
template Vector<dbl_t> operator*(const Vector<dbl_t>&, const Matrix<dbl_t>&);

}  // namespace vexil
