// Vexil - exact integer optimization on lattices.
#include "reduction/lq.tcc"

namespace vexil {

template void lq_full(const Matrix<dbl_t>&, Matrix<dbl_t>&, Matrix<dbl_t>&, Array<Matrix<dbl_t>>&,
                      std::int64_t, std::int64_t);
template std::int64_t lq_reduced(const Matrix<dbl_t>&, Matrix<dbl_t>&, Matrix<dbl_t>&,
                                 Array<Matrix<dbl_t>>&, Vector<dbl_t>&, std::int64_t, std::int64_t);
template void lq_full(const Matrix<QQ>&, Matrix<dbl_t>&, Matrix<dbl_t>&, Array<Matrix<dbl_t>>&,
                      std::int64_t, std::int64_t);
template std::int64_t lq_reduced(const Matrix<QQ>&, Matrix<dbl_t>&, Matrix<dbl_t>&,
                                 Array<Matrix<dbl_t>>&, Vector<dbl_t>&, std::int64_t, std::int64_t);
template void lq_full(const Matrix<dbl_t>&, Matrix<QQ>&, Matrix<QQ>&, Array<Matrix<QQ>>&,
                      std::int64_t, std::int64_t);
template std::int64_t lq_reduced(const Matrix<dbl_t>&, Matrix<QQ>&, Matrix<QQ>&, Array<Matrix<QQ>>&,
                                 Vector<QQ>&, std::int64_t, std::int64_t);
template void lq_full(const Matrix<QQ>&, Matrix<QQ>&, Matrix<QQ>&, Array<Matrix<QQ>>&, std::int64_t,
                      std::int64_t);
template std::int64_t lq_reduced(const Matrix<QQ>&, Matrix<QQ>&, Matrix<QQ>&, Array<Matrix<QQ>>&,
                                 Vector<QQ>&, std::int64_t, std::int64_t);

}  // namespace vexil
