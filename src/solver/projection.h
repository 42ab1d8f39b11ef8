// Vexil - exact integer optimization on lattices.
//
// The geometry of an enumeration: orthogonalised forms, and what its floating numbers prove.
#pragma once

#include <cstddef>
#include <vector>

#include "foundation/dbl.h"

namespace vexil::solver {

/// The set Q of scaled form values z that an enumeration looks for, by its support function, the
/// greatest value of <w, z> over Q:
///
///     |z_f| <= 1                              for plain forms, f < plain
///     lower_g <= z_g <= upper_g               for goals, behind the plain forms
///     -1 <= z_o,  z_o + sum kappa_g |z_g| <= up     for the objective, behind the goals
///
/// A goal g is t_g = z_g / scale_g. An objective whose linear part is constant has no z_o; its
/// goals obey sum |t_g| <= room then.
struct TargetSet {
  struct Goal {
    double lower;  ///< at most 0 or above it, as the box of the form is
    double upper;
    double kappa;  ///< how far a unit of |z_g| lowers the upper bound of z_o
    double scale;
  };
  std::size_t plain = 0;
  std::vector<Goal> goals;
  bool hasObjective = false;  ///< there is a form z_o
  double up = 1;
  bool hasRoom = false;
  double room = 0;

  [[nodiscard]] std::size_t count() const { return plain + goals.size() + (hasObjective ? 1 : 0); }
  /// The part of the support function that is not the sum of all |w_f|, f < plain.
  [[nodiscard]] double rest(const double* w) const;
  /// A bound of the magnitudes of all terms of the support function, given those of w.
  [[nodiscard]] dbl_t magnitude(const std::vector<dbl_t>& w) const;
  /// The greatest |z|^2 over Q.
  [[nodiscard]] dbl_t squaredRadius() const;
};

/// The scaled forms z = offset + sum lambda_k row_k of a lattice. The true numbers are a form's
/// scale times an integer, those given are off by up to 2^-58 of themselves.
struct ScaledForms {
  std::size_t dimension = 0;
  std::vector<dbl_t> rows;    ///< dimension x set.count()
  std::vector<dbl_t> offset;  ///< set.count()
  TargetSet set;
};

/// Gram-Schmidt vectors b*_k, coefficients mu, and the offset split into sum tau_k b*_k and a part
/// across. They come from floating numbers and are taken as they are: with
///
///     Y_k = tau_k + lambda_k + sum over i > k of lambda_i mu_ik
///
/// z is across + sum Y_k b*_k but for small residuals, and different b*_k are orthogonal but for
/// small products, all of which `bound` measures. An enumeration that has fixed the coordinates
/// from k up has w = across + sum over i >= k of y_i b*_i, y_i the computed Y_i, and the computed
/// N = |across|^2 + sum y_i^2 |b*_i|^2. For every z of Q with these coordinates
///
///     |<w, z> - N| <= error[k],
///
/// the rounding of N and of the support function at w included. Therefore no such z exists if
/// N - support(w) > error[k] (Hoelder's inequality; Ritter 1990), nor if N > ball[k]; and if
/// |y_k| >= least[k], then none exists either for any other lambda_k further out on that side.
/// Every z of Q has |y_k| <= reach[k].
class Projection {
 public:
  /// Orthogonalises.
  explicit Projection(const ScaledForms& forms);

  /// Measures errors, for coordinates with |lambda_k| <= `greatest`[k]. False if they are too large
  /// for the projection to be of use.
  [[nodiscard]] bool bound(const ScaledForms& forms, const std::vector<dbl_t>& greatest);

  std::size_t dimension = 0;
  std::size_t stride = 0;       ///< length of vectors: the plain forms filled up to a multiple of 4
                                ///< with zeros, the others behind them
  std::size_t plain = 0;        ///< the filled-up number of plain forms
  std::vector<double> bStar;    ///< dimension x stride
  std::vector<double> across;   ///< stride
  std::vector<double> mu;       ///< mu_ik at k dimension + i, i > k
  std::vector<double> tau;      ///< dimension
  std::vector<double> squared;  ///< |b*_k|^2
  double squaredAcross = 0;

  std::vector<double> error;
  std::vector<double> ball;
  std::vector<double> least;
  std::vector<double> reach;
};

}  // namespace vexil::solver
