// Vexil - exact integer optimization on lattices.
#include "solver/projection.h"

#include <algorithm>
#include <cmath>

namespace vexil::solver {

namespace {

/// Bounds of the relative error of one operation, with room for every rounding mode and for the
/// errors of second order.
constexpr dbl_t DOUBLE_UNIT = 0x1p-51L;
constexpr dbl_t EXTENDED_UNIT = 0x1p-57L;

/// Errors beyond this make cuts too weak.
constexpr dbl_t GREATEST_ERROR = 0.125L;

/// The greatest |z_g|.
dbl_t greatestMagnitude(const TargetSet::Goal& goal) {
  return std::max(std::fabs(static_cast<dbl_t>(goal.lower)),
                  std::fabs(static_cast<dbl_t>(goal.upper)));
}

double asUpperBound(dbl_t x) { return static_cast<double>(x * (1 + DOUBLE_UNIT)); }

}  // namespace

double TargetSet::rest(const double* w) const {
  const double objective = hasObjective ? w[goals.size()] : 0;
  const bool isCapped = objective > 0;
  double sum = isCapped ? objective * up : std::fabs(objective);
  double greatest = 0;
  double boxes = 0;
  for (std::size_t g = 0; g < goals.size(); ++g) {
    const Goal& goal = goals[g];
    const double price = isCapped ? objective * goal.kappa : 0;
    const double low = w[g] * goal.lower - price * std::fabs(goal.lower);
    const double high = w[g] * goal.upper - price * std::fabs(goal.upper);
    const double middle = goal.lower < 0 && goal.upper > 0 ? 0 : low;
    boxes += std::max(std::max(low, high), middle);
    greatest = std::max(greatest, std::fabs(w[g]) * goal.scale);
  }
  if (hasRoom) boxes = std::min(boxes, greatest * room);
  return sum + boxes;
}

dbl_t TargetSet::magnitude(const std::vector<dbl_t>& w) const {
  dbl_t sum = 0;
  for (std::size_t f = 0; f < plain; ++f) sum += w[f];
  const std::size_t o = plain + goals.size();
  if (hasObjective) sum += w[o] * (1 + std::fabs(static_cast<dbl_t>(up)));
  for (std::size_t g = 0; g < goals.size(); ++g) {
    const dbl_t price = hasObjective ? w[o] * static_cast<dbl_t>(goals[g].kappa) : 0;
    sum += (w[plain + g] + price) * greatestMagnitude(goals[g]);
  }
  return sum;
}

dbl_t TargetSet::squaredRadius() const {
  auto sum = static_cast<dbl_t>(plain);
  for (const Goal& goal : goals) sum += greatestMagnitude(goal) * greatestMagnitude(goal);
  if (hasObjective) sum += std::max<dbl_t>(1, static_cast<dbl_t>(up) * static_cast<dbl_t>(up));
  return sum;
}

namespace {

/// What `Projection` orthogonalises and measures with: vectors without filling, in extended
/// precision, b* as the projection has it.
class Workshop {
 public:
  explicit Workshop(const ScaledForms& forms)
      : d(forms.dimension), F(forms.set.count()), forms_(forms) {}

  [[nodiscard]] const dbl_t* row(std::size_t k) const { return &forms_.rows[k * F]; }

  [[nodiscard]] dbl_t dot(const dbl_t* a, const dbl_t* b) const {
    dbl_t sum = 0;
    for (std::size_t f = 0; f < F; ++f) sum += a[f] * b[f];
    return sum;
  }

  /// |<a, b>|, with its rounding.
  [[nodiscard]] dbl_t dotBound(const dbl_t* a, const dbl_t* b) const {
    dbl_t sum = 0;
    dbl_t magnitude = 0;
    for (std::size_t f = 0; f < F; ++f) {
      sum += a[f] * b[f];
      magnitude += std::fabs(a[f] * b[f]);
    }
    return std::fabs(sum) + dbl_t(F + 4) * EXTENDED_UNIT * magnitude;
  }

  std::size_t d;
  std::size_t F;

 private:
  const ScaledForms& forms_;
};

/// The errors of a projection, term by term. Matrices are d x d or d x F, row by row.
class ErrorBounds {
 public:
  ErrorBounds(const ScaledForms& forms, const std::vector<dbl_t>& greatest, Projection& projection)
      : forms_(forms), shop_(forms), p_(projection), L_(greatest), d_(shop_.d), F_(shop_.F) {
    clearFilling(p_.bStar);
    clearFilling(p_.across);
    b_ = unfilled(p_.bStar);
    across_ = unfilled(p_.across);
  }

  bool run() {
    measureProducts();
    measureResiduals();
    boundCoefficients();
    for (std::size_t k = d_; k-- > 0;) {
      if (!(leastSquare_[k] > 0) || !(boundLevel(k) <= GREATEST_ERROR)) return false;
    }
    return true;
  }

 private:
  void clearFilling(std::vector<double>& vectors) const {
    for (std::size_t begin = 0; begin < vectors.size(); begin += p_.stride) {
      for (std::size_t f = forms_.set.plain; f < p_.plain; ++f) vectors[begin + f] = 0;
    }
  }

  [[nodiscard]] std::vector<dbl_t> unfilled(const std::vector<double>& vectors) const {
    std::vector<dbl_t> result;
    const std::size_t plain = forms_.set.plain;
    for (std::size_t begin = 0; begin < vectors.size(); begin += p_.stride) {
      for (std::size_t f = 0; f < F_; ++f) {
        result.push_back(
            static_cast<dbl_t>(vectors[begin + f + (f < plain ? 0 : p_.plain - plain)]));
      }
    }
    return result;
  }

  [[nodiscard]] const dbl_t* b(std::size_t k) const { return &b_[k * F_]; }
  [[nodiscard]] dbl_t mu(std::size_t i, std::size_t k) const {
    return static_cast<dbl_t>(p_.mu[k * d_ + i]);
  }

  /// |<b*_i, b*_j>|, |<across, b*_j>|, and the squares from below and from above.
  void measureProducts() {
    product_.resize(d_ * d_);
    acrossProduct_.resize(d_);
    for (std::size_t i = 0; i < d_; ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        product_[i * d_ + j] = product_[j * d_ + i] = shop_.dotBound(b(i), b(j));
      }
      acrossProduct_[i] = shop_.dotBound(across_.data(), b(i));
    }
    for (std::size_t i = 0; i < d_; ++i) {
      const dbl_t square = shop_.dot(b(i), b(i));
      const dbl_t error = dbl_t(F_ + 4) * EXTENDED_UNIT * square;
      leastSquare_.push_back(square - error);
      squareError_.push_back(std::fabs(square - static_cast<dbl_t>(p_.squared[i])) + error);
    }
    const dbl_t square = shop_.dot(across_.data(), across_.data());
    acrossError_ = std::fabs(square - static_cast<dbl_t>(p_.squaredAcross)) +
                   dbl_t(F_ + 4) * EXTENDED_UNIT * square;
  }

  /// z - across - sum Y_k b*_k, by component, over all lambda.
  void measureResiduals() {
    residual_.assign(F_, 0);
    for (std::size_t f = 0; f < F_; ++f) {
      dbl_t rest = forms_.offset[f] - across_[f];
      dbl_t magnitude = std::fabs(forms_.offset[f]) + std::fabs(across_[f]);
      for (std::size_t j = 0; j < d_; ++j) {
        const dbl_t part = static_cast<dbl_t>(p_.tau[j]) * b(j)[f];
        rest -= part;
        magnitude += std::fabs(part);
      }
      residual_[f] = std::fabs(rest) + dbl_t(d_ + 6) * EXTENDED_UNIT * magnitude;
    }
    for (std::size_t i = 0; i < d_; ++i) {
      for (std::size_t f = 0; f < F_; ++f) {
        dbl_t rest = shop_.row(i)[f] - b(i)[f];
        dbl_t magnitude = std::fabs(shop_.row(i)[f]) + std::fabs(b(i)[f]);
        for (std::size_t j = 0; j < i; ++j) {
          const dbl_t part = mu(i, j) * b(j)[f];
          rest -= part;
          magnitude += std::fabs(part);
        }
        residual_[f] += L_[i] * (std::fabs(rest) + dbl_t(i + 6) * EXTENDED_UNIT * magnitude);
      }
    }
  }

  /// The ranges of Y_k, from those of lambda at first and then from the set itself, and the
  /// rounding of y_k.
  void boundCoefficients() {
    std::vector<dbl_t> wide(d_);
    rounding_.resize(d_);
    for (std::size_t k = 0; k < d_; ++k) {
      wide[k] = std::fabs(static_cast<dbl_t>(p_.tau[k])) + L_[k];
      for (std::size_t i = k + 1; i < d_; ++i) wide[k] += std::fabs(mu(i, k)) * L_[i];
      rounding_[k] = dbl_t(d_ + 6) * DOUBLE_UNIT * wide[k];
    }
    for (std::size_t k = 0; k < d_; ++k) {
      dbl_t error = acrossProduct_[k];
      for (std::size_t f = 0; f < F_; ++f) error += std::fabs(b(k)[f]) * residual_[f];
      for (std::size_t j = 0; j < d_; ++j) {
        if (j != k) error += wide[j] * product_[k * d_ + j];
      }
      const dbl_t range = (support(k) + error) / leastSquare_[k];
      range_.push_back(std::min(wide[k], range) * (1 + DOUBLE_UNIT));
      p_.reach[k] = asUpperBound(range_[k] + rounding_[k]);
      visited_.push_back(static_cast<dbl_t>(p_.reach[k]));
    }
  }

  /// The support function at b*_k and -b*_k.
  [[nodiscard]] dbl_t support(std::size_t k) const {
    std::vector<double> w(p_.stride);
    std::vector<dbl_t> magnitude(F_);
    for (std::size_t f = 0; f < F_; ++f) magnitude[f] = std::fabs(b(k)[f]);
    dbl_t greatest = 0;
    for (const double sign : {1.0, -1.0}) {
      dbl_t sum = 0;
      for (std::size_t f = 0; f < p_.stride; ++f) w[f] = sign * p_.bStar[k * p_.stride + f];
      for (std::size_t f = 0; f < p_.plain; ++f) sum += std::fabs(static_cast<dbl_t>(w[f]));
      greatest = std::max(greatest, sum + static_cast<dbl_t>(forms_.set.rest(w.data() + p_.plain)));
    }
    return greatest + dbl_t(F_ + 10) * DOUBLE_UNIT * forms_.set.magnitude(magnitude);
  }

  /// The bounds of level k, those of the levels above being there; returns the error.
  dbl_t boundLevel(std::size_t k) {
    if (k + 1 == d_) {
      for (const dbl_t a : across_) w_.push_back(std::fabs(a));
      drift_.assign(F_, 0);
      norm_ = static_cast<dbl_t>(p_.squaredAcross);
      normError_ = acrossError_;
      crossing_.assign(acrossProduct_.begin(), acrossProduct_.end());
    }
    // What level k adds to the magnitudes of w, to the rounding of its components, to N, and to
    // <w, b*_j>.
    normError_ += 2 * visited_[k] * crossing_[k] + visited_[k] * visited_[k] * squareError_[k];
    norm_ += visited_[k] * visited_[k] * static_cast<dbl_t>(p_.squared[k]);
    const dbl_t crossingHere = crossing_[k];
    dbl_t driftHere = 0;
    for (std::size_t f = 0; f < F_; ++f) {
      w_[f] += visited_[k] * std::fabs(b(k)[f]);
      drift_[f] += 2 * DOUBLE_UNIT * w_[f];
      driftHere += drift_[f] * std::fabs(b(k)[f]);
    }
    for (std::size_t j = 0; j < d_; ++j) {
      if (j != k) crossing_[j] += visited_[k] * product_[k * d_ + j];
    }

    dbl_t error = normError_ + dbl_t(2 * d_ + 8) * DOUBLE_UNIT * norm_;
    for (std::size_t f = 0; f < F_; ++f) error += w_[f] * (residual_[f] + 3 * drift_[f]);
    for (std::size_t j = k; j < d_; ++j) {
      for (std::size_t f = 0; f < F_; ++f) error += rounding_[j] * w_[f] * std::fabs(b(j)[f]);
    }
    for (std::size_t j = 0; j < k; ++j) {
      dbl_t product = crossing_[j];
      for (std::size_t f = 0; f < F_; ++f) product += drift_[f] * std::fabs(b(j)[f]);
      error += range_[j] * product;
    }
    error += dbl_t(F_ + 10) * DOUBLE_UNIT * forms_.set.magnitude(w_);
    error *= 2;
    p_.error[k] = asUpperBound(error);
    p_.ball[k] = asUpperBound(forms_.set.squaredRadius() * (1 + 4 * DOUBLE_UNIT) + 3 * error);
    p_.least[k] = asUpperBound((crossingHere + driftHere) * 2 / leastSquare_[k]);
    return error;
  }

  const ScaledForms& forms_;
  Workshop shop_;
  Projection& p_;
  const std::vector<dbl_t>& L_;
  std::size_t d_;
  std::size_t F_;
  std::vector<dbl_t> b_;
  std::vector<dbl_t> across_;
  std::vector<dbl_t> product_;
  std::vector<dbl_t> acrossProduct_;
  std::vector<dbl_t> leastSquare_;
  std::vector<dbl_t> squareError_;
  dbl_t acrossError_ = 0;
  std::vector<dbl_t> residual_;
  std::vector<dbl_t> rounding_;  ///< |y_k - Y_k|
  std::vector<dbl_t> range_;     ///< |Y_k| of a z of the set
  std::vector<dbl_t> visited_;   ///< |y_k| of a node
  // Of the level in work:
  std::vector<dbl_t> w_;         ///< magnitudes of the components of w
  std::vector<dbl_t> drift_;     ///< their rounding
  std::vector<dbl_t> crossing_;  ///< |<w, b*_j>|, but for the rounding, w without b*_j
  dbl_t norm_ = 0;
  dbl_t normError_ = 0;
};

}  // namespace

Projection::Projection(const ScaledForms& forms)
    : dimension(forms.dimension), plain((forms.set.plain + 3) / 4 * 4) {
  const Workshop shop(forms);
  const std::size_t d = shop.d;
  const std::size_t F = shop.F;
  const std::size_t filling = plain - forms.set.plain;
  stride = F + filling;
  std::vector<dbl_t> b(d * F);
  std::vector<dbl_t> square(d);
  bStar.assign(d * stride, 0);
  across.assign(stride, 0);
  mu.assign(d * d, 0);
  tau.assign(d, 0);
  squared.assign(d, 0);
  for (auto* const bounds : {&error, &ball, &least, &reach}) bounds->assign(d, 0);

  // Takes the parts along b*_j, j < count, out of v, twice over for what the first pass left.
  const auto orthogonalise = [&](std::vector<dbl_t>& v, std::size_t count,
                                 const auto& coefficient) {
    for (int pass = 0; pass < 2; ++pass) {
      for (std::size_t j = count; j-- > 0;) {
        const dbl_t part = shop.dot(v.data(), &b[j * F]) / square[j];
        coefficient(j) += part;
        for (std::size_t f = 0; f < F; ++f) v[f] -= part * b[j * F + f];
      }
    }
  };
  const auto store = [&](const std::vector<dbl_t>& v, double* target) {
    for (std::size_t f = 0; f < F; ++f) {
      target[f + (f < forms.set.plain ? 0 : filling)] = static_cast<double>(v[f]);
    }
  };

  std::vector<dbl_t> coefficients(d);
  const auto coefficient = [&](std::size_t j) -> dbl_t& { return coefficients[j]; };
  for (std::size_t i = 0; i < d; ++i) {
    std::vector<dbl_t> v(shop.row(i), shop.row(i) + F);
    std::fill(coefficients.begin(), coefficients.end(), 0);
    orthogonalise(v, i, coefficient);
    for (std::size_t j = 0; j < i; ++j) mu[j * d + i] = static_cast<double>(coefficients[j]);
    store(v, &bStar[i * stride]);
    std::copy(v.begin(), v.end(), b.begin() + static_cast<std::ptrdiff_t>(i * F));
    square[i] = shop.dot(v.data(), v.data());
    squared[i] = static_cast<double>(square[i]);
  }
  std::vector<dbl_t> v = forms.offset;
  std::fill(coefficients.begin(), coefficients.end(), 0);
  orthogonalise(v, d, coefficient);
  for (std::size_t j = 0; j < d; ++j) tau[j] = static_cast<double>(coefficients[j]);
  store(v, across.data());
  squaredAcross = static_cast<double>(shop.dot(v.data(), v.data()));
}

bool Projection::bound(const ScaledForms& forms, const std::vector<dbl_t>& greatest) {
  return ErrorBounds(forms, greatest, *this).run();
}

}  // namespace vexil::solver
