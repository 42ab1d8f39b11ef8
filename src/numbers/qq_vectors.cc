// Vexil - exact integer optimization on lattices.
#include "numbers/qq_vectors.h"

#include "foundation/matrix.tcc"
#include "foundation/vector.tcc"

namespace vexil {

template class Vector<QQ>;
template class Matrix<QQ>;
template Vector<QQ> operator*(const Vector<QQ>&, const Matrix<QQ>&);

}  // namespace vexil
