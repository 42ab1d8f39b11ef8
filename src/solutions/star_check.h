// Vexil - exact integer optimization on lattices.
#pragma once

#include "numbers/matrix_product.h"
#include "program/vexil.h"

namespace vexil {

/// The test of many stars against one program, which must not change in the meantime.
template <typename T>
class StarCheck {
 public:
  explicit StarCheck(const Vexil<T>& program)
      : program_(program), equations_(program.Ag), inequations_(program.Au), targets_(program.At) {}

  /// What `Vexil::starIsValid` tells and does.
  [[nodiscard]] bool isValid(Star<T>& star);

 private:
  const Vexil<T>& program_;
  MatrixProduct<T> equations_;
  MatrixProduct<T> inequations_;
  MatrixProduct<T> targets_;
};

extern template class StarCheck<dbl_t>;
extern template class StarCheck<QQ>;

}  // namespace vexil
