// Vexil - exact integer optimization on lattices.
//
// The guarded way between the two arithmetics. convert(source, target, check) exists for everything
// that holds numbers; with `check` a target that has lost precision throws `PrecisionException`
// "Precision lost during conversion", and what was converted so far stands in it. Between equal
// types it is an assignment.
//
// convert(source, target) is the way of whole-object copies: it checks where digits can be lost, in
// the one direction from `QQ` to `dbl_t`, and nowhere else.
#pragma once

#include <concepts>
#include <type_traits>

#include "foundation/matrix.h"
#include "foundation/members.h"
#include "foundation/pair.h"
#include "foundation/set.h"
#include "numbers/qq.h"

namespace vexil {

/// The two arithmetics.
template <typename T>
concept Number = std::same_as<T, QQ> || std::same_as<T, dbl_t>;

/// True where a copy from the one type into the other can lose digits: towards standard precision,
/// and for types made of numbers where it holds for one of these.
template <typename Source, typename Target>
inline constexpr bool narrows = false;
template <>
inline constexpr bool narrows<QQ, dbl_t> = true;
template <template <typename...> typename Holder, typename... S, typename... T>
inline constexpr bool narrows<Holder<S...>, Holder<T...>> = (narrows<S, T> || ...);

/// The floating value whose text is that of `q`. A fraction is taken to 19 significant digits;
/// behind a whole part of more than 18 digits it is dropped. With `throwOnLoss` such a whole part
/// throws `PreCommaPrecisionException`, and, unless `tolerateFraction` is set, a fraction that goes
/// on behind these digits `PostCommaPrecisionException`, both with "QQ is not representable as
/// dbl_t".
[[nodiscard]] dbl_t toFloat(const QQ& q, bool throwOnLoss, bool tolerateFraction);

/// One number, the two settings as in `toFloat`. With `check` the way back has to give the source
/// within the tolerance 10^-9.
void convertNumber(const QQ& source, dbl_t& target, bool check, bool throwOnLoss,
                   bool tolerateFraction);
void convertNumber(dbl_t source, QQ& target, bool check, bool throwOnLoss, bool tolerateFraction);
template <Number T>
void convertNumber(const T& source, T& target, bool /*check*/, bool /*throwOnLoss*/,
                   bool /*tolerateFraction*/) {
  target = source;
}

/// A number of either arithmetic as one of `Target`, as near as that can hold it.
template <Number Target, Number Source>
[[nodiscard]] Target numberAs(const Source& source) {
  Target target;
  convertNumber(source, target, false, false, false);
  return target;
}

/// One number, as pairs hold them: with `check` neither digits nor fractions may be lost, and the
/// way back has to give the source exactly.
void convertExactly(const QQ& source, dbl_t& target, bool check);
void convertExactly(dbl_t source, QQ& target, bool check);
template <Number T>
void convertExactly(const T& source, T& target, bool /*check*/) {
  target = source;
}

/// Elements are converted by the settings of the target vector, which it keeps, and with `check`
/// all of them compared with the source by way of the source's type within the tolerance 10^-9.
/// Text settings are copied.
void convert(const Vector<QQ>& source, Vector<dbl_t>& target, bool check);
void convert(const Vector<dbl_t>& source, Vector<QQ>& target, bool check);
template <typename T>
void convert(const Vector<T>& source, Vector<T>& target, bool /*check*/) {
  target = source;
}

/// Row by row, each by the settings of the target's row.
template <Number S, Number T>
void convert(const Matrix<S>& source, Matrix<T>& target, bool check) {
  target.setSize(source.rowCount, source.columnCount);
  target.copyTextSettings(source);
  for (std::int64_t i = 1; i <= source.rowCount; ++i) {
    convert(source.rows[i], target.rows[i], check);
  }
}
template <Number T>
void convert(const Matrix<T>& source, Matrix<T>& target, bool /*check*/) {
  target = source;
}

/// Pairs, each number exactly.
template <Number S, Number T>
void convert(const Pair<long, S>& source, Pair<long, T>& target, bool check) {
  target.left = source.left;
  convertExactly(source.right, target.right, check);
}
template <Number S, Number T>
void convert(const SerializablePair<long, S>& source, SerializablePair<long, T>& target,
             bool check) {
  target.copyTextSettings(source);
  target.left = source.left;
  convertExactly(source.right, target.right, check);
}
template <Number S, Number T>
void convert(const SerializablePair<S, S>& source, SerializablePair<T, T>& target, bool check) {
  target.copyTextSettings(source);
  convertExactly(source.left, target.left, check);
  convertExactly(source.right, target.right, check);
}

/// Element by element, by the `convert` of the elements.
template <typename S, typename T>
void convert(const Array<S>& source, Array<T>& target, bool check) {
  target.resize(source.MN, false);
  for (std::int64_t i = 1; i <= source.MN; ++i) convert(source.data[i], target.data[i], check);
}

/// Numbers by the settings of the target, other elements by their own `convert`.
template <typename S, typename T>
void convert(const ConversionArray<S>& source, ConversionArray<T>& target, bool check) {
  if constexpr (Number<S> && Number<T>) {
    target.resize(source.MN, false);
    for (std::int64_t i = 1; i <= source.MN; ++i) {
      convertNumber(source.data[i], target.data[i], check, target.throwOnLoss,
                    target.tolerateFraction);
    }
  } else {
    convert(static_cast<const Array<S>&>(source), static_cast<Array<T>&>(target), check);
  }
}

template <typename S, typename T>
void convert(const SerializableArray<S>& source, SerializableArray<T>& target, bool check) {
  target.copyTextSettings(source);
  convert(static_cast<const ConversionArray<S>&>(source), static_cast<ConversionArray<T>&>(target),
          check);
}

/// Element by element in the order of the source, which the conversion keeps.
template <typename S, typename T>
void convert(const SortedSet<S>& source, SortedSet<T>& target, bool check) {
  target.clear();
  target.setCapacity(source.capacity);
  for (const auto* p = source.head; p != nullptr; p = p->next) {
    convert(p->element, target.append(T())->element, check);
  }
}

/// A copy of anything that holds numbers, state structs by their members. A single number follows
/// the rule of one that stands in a vector without settings.
template <typename S, typename T>
void convert(const S& source, T& target) {
  if constexpr (std::is_same_v<S, T>) {
    target = source;
  } else if constexpr (Number<S>) {
    convertNumber(source, target, narrows<S, T>, false, false);
  } else if constexpr (Composite<S>) {
    forEachMember(source, target, [](const auto& from, auto& to) { convert(from, to); });
  } else {
    convert(source, target, narrows<S, T>);
  }
}

}  // namespace vexil
