// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/matrix.h"
#include "numbers/qq.h"

namespace vexil {

extern template class Vector<QQ>;
extern template class Matrix<QQ>;
extern template Vector<QQ> operator*(const Vector<QQ>&, const Matrix<QQ>&);

}  // namespace vexil
