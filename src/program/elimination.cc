// Vexil - exact integer optimization on lattices.
#include "program/elimination.tcc"

namespace vexil {

template class RowCoordinates<dbl_t>;
template void removeDependentRows(Matrix<dbl_t>&);
template bool solveRowCoordinates(const Matrix<dbl_t>&, const Vector<dbl_t>&, Vector<dbl_t>&, bool);
template void gaussLU(const Matrix<dbl_t>&, Matrix<dbl_t>&, Matrix<dbl_t>&, Array<long>&);
template int gaussSolve(const Matrix<dbl_t>&, const Matrix<dbl_t>&, const Array<long>&,
                        const Vector<dbl_t>&, Vector<dbl_t>&, bool, bool);
template std::int64_t euclidColumnStep(Matrix<dbl_t>&, std::int64_t, std::int64_t, Matrix<dbl_t>*);
template bool isUnimodular(const Matrix<dbl_t>&, dbl_t&);

template class RowCoordinates<QQ>;
template void removeDependentRows(Matrix<QQ>&);
template bool solveRowCoordinates(const Matrix<QQ>&, const Vector<QQ>&, Vector<QQ>&, bool);
template void gaussLU(const Matrix<QQ>&, Matrix<QQ>&, Matrix<QQ>&, Array<long>&);
template int gaussSolve(const Matrix<QQ>&, const Matrix<QQ>&, const Array<long>&, const Vector<QQ>&,
                        Vector<QQ>&, bool, bool);
template std::int64_t euclidColumnStep(Matrix<QQ>&, std::int64_t, std::int64_t, Matrix<QQ>*);
template bool isUnimodular(const Matrix<QQ>&, QQ&);

}  // namespace vexil
