// Vexil - exact integer optimization on lattices.
#include "lattice/basis_state.h"

namespace vexil {

template <typename T>
void BasisState<T>::resize(std::int64_t rows, std::int64_t cols) {
  B.setSize(rows, cols);
  B_save.setSize(rows, cols);
  for (Matrix<T>& matrix : TT.elements()) {
    if (matrix.rowCount < rows) matrix.resize(rows, rows, false);
  }
  latRows = rows;
  latDim = cols;
}

template <typename T>
void BasisState<T>::resetTransformation(bool append) {
  if (append && TT.MN > 0 && !TT[TT.MN].isIdentity()) {
    if (TT.MN >= T_MAT_NBR) warn("TT.MN > T_MAT_NBR");
    TT.resize(TT.MN + 1, false);
  } else {
    TT.resize(1, false);
  }
  transformation().setIdentity(latRows);
}

template struct BasisState<dbl_t>;
template struct BasisState<QQ>;

}  // namespace vexil
