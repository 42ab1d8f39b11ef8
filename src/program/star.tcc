// Vexil - exact integer optimization on lattices.
#pragma once

#include <algorithm>
#include <vector>

#include "program/star.h"

namespace vexil {

template <typename T>
Star<T>::Star(const Vector<T>& elements, const Vector<T>& values, const T& targetNorm_,
              const T& slackNorm_, std::int64_t time_, const String& paramText_,
              const String& version_)
    : targetValues(values),
      slackNorm(slackNorm_),
      targetNorm(targetNorm_),
      paramText(paramText_),
      version(version_) {
  Vector<T>::operator=(elements);
  this->time = time_;
}

template <typename T>
void Star<T>::handOver(Star& target) {
  target.copyTextSettings(*this);
  static_cast<Array<T>&>(target) = std::move(static_cast<Array<T>&>(*this));
  target.time = this->time;
  target.targetValues = targetValues;
  target.slackNorm = slackNorm;
  target.targetNorm = targetNorm;
  target.paramText = paramText;
  target.version = version;
  this->resize(0, false);
}

namespace detail {

/// Compares the text forms of the elements with full precision byte-wise: negative, 0 or positive.
/// Only the numbers up to the first difference are rendered.
template <typename T>
[[nodiscard]] int compareElementTexts(const Vector<T>& a, const Vector<T>& b) {
  const auto piece = [](const Vector<T>& x, std::int64_t i) {
    std::string text;
    if (i > x.MN) return std::string("]");
    NumberTraits<T>::append(text, x.data[i], FILE_DIGITS);
    return text += ' ';
  };
  for (std::int64_t i = 1; i <= a.MN || i <= b.MN; ++i) {
    if (i <= a.MN && i <= b.MN && a.data[i] == b.data[i]) continue;
    const int order = piece(a, i).compare(piece(b, i));
    if (order != 0) return order;
  }
  return 0;
}

}  // namespace detail

template <typename T>
bool operator<(const Star<T>& a, const Star<T>& b) {
  if (a.targetNorm != b.targetNorm) return a.targetNorm < b.targetNorm;
  if (a.slackNorm != b.slackNorm) return a.slackNorm < b.slackNorm;
  if (a.time != b.time) return a.time != -1 && (b.time == -1 || a.time < b.time);
  const int versions = compareVersions(a.version, b.version);
  if (versions > 0) return true;
  if (versions == 0 && detail::compareElementTexts(a, b) < 0) return true;
  return a.paramText < b.paramText;
}

namespace detail {

template <typename T>
void siftDown(Array<Star<T>>& stars, std::int64_t i, std::int64_t m) {
  for (std::int64_t c = 2 * i; c <= m; c = 2 * i) {
    if (c + 1 <= m && stars.data[c] < stars.data[c + 1]) ++c;
    if (!(stars.data[i] < stars.data[c])) return;
    stars.swap(i, c);
    i = c;
  }
}

}  // namespace detail

template <typename T>
void sort(Array<Star<T>>& stars) {
  std::int64_t n = stars.MN;
  for (std::int64_t i = n / 2; i >= 1; --i) detail::siftDown(stars, i, n);
  while (n > 1) {
    stars.swap(1, n);
    --n;
    detail::siftDown(stars, 1, n);
  }
}

namespace detail {

/// The first elements of all stars, side by side: most pairs differ there, and a search through all
/// pairs then need not fetch the stars themselves.
template <typename T>
class StarHeads {
 public:
  /// Stars that are not all of one dimension are left to the comparison that reports it.
  explicit StarHeads(const Array<Star<T>>& stars) {
    const std::int64_t dimension = stars.MN > 0 ? stars.data[1].MN : 0;
    for (const Star<T>& star : stars.elements()) {
      if (star.MN != dimension) return;
    }
    width_ = std::min<std::int64_t>(dimension, 8);
    for (const Star<T>& star : stars.elements()) {
      heads_.insert(heads_.end(), star.elements().begin(), star.elements().begin() + width_);
    }
  }

  [[nodiscard]] bool agree(std::int64_t i, std::int64_t j) const {
    return std::equal(head(i), head(i + 1), head(j), NumberTraits<T>::agree);
  }

  void move(std::int64_t from, std::int64_t to) {
    std::copy(head(from), head(from + 1), heads_.begin() + (to - 1) * width_);
  }

 private:
  [[nodiscard]] auto head(std::int64_t i) const { return heads_.begin() + (i - 1) * width_; }

  std::int64_t width_ = 0;
  std::vector<T> heads_;
};

}  // namespace detail

template <typename T>
void removeDuplicates(Array<Star<T>>& stars, bool compareParams) {
  detail::StarHeads<T> heads(stars);
  for (std::int64_t i = 1; i <= stars.MN; ++i) {
    const Star<T>& first = stars.data[i];
    std::int64_t kept = i;
    for (std::int64_t j = i + 1; j <= stars.MN; ++j) {
      Star<T>& other = stars.data[j];
      if (heads.agree(i, j) && first == other &&
          (!compareParams || first.paramText == other.paramText)) {
        continue;
      }
      if (++kept == j) continue;
      stars.data[kept] = std::move(other);
      heads.move(j, kept);
    }
    stars.resize(kept, false);
  }
}

}  // namespace vexil
