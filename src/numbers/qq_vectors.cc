// Vexil - exact integer optimization on lattices.
#include "numbers/qq_vectors.h"

#include "foundation/matrix.tcc"
#include "foundation/vector.tcc"

namespace vexil {

template class Array<QQ>;
template class ConversionArray<QQ>;
template class SerializableArray<QQ>;
template class Vector<QQ>;
template class Array<Vector<QQ>>;
template class ConversionArray<Vector<QQ>>;
template class Matrix<QQ>;
template class Array<Matrix<QQ>>;
template class ConversionArray<Matrix<QQ>>;
template class SerializableArray<Matrix<QQ>>;
template Vector<QQ> operator*(const Vector<QQ>&, const Matrix<QQ>&);

}  // namespace vexil
