// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/matrix.h"
#include "numbers/qq.h"

namespace vexil {

extern template class Array<QQ>;
extern template class ConversionArray<QQ>;
extern template class SerializableArray<QQ>;
extern template class Vector<QQ>;
extern template class Array<Vector<QQ>>;
extern template class ConversionArray<Vector<QQ>>;
extern template class Matrix<QQ>;
extern template class Array<Matrix<QQ>>;
extern template class ConversionArray<Matrix<QQ>>;
extern template class SerializableArray<Matrix<QQ>>;
extern template Vector<QQ> operator*(const Vector<QQ>&, const Matrix<QQ>&);

}  // namespace vexil
