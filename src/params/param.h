// Vexil - exact integer optimization on lattices.
#pragma once

#include <functional>
#include <limits>
#include <sstream>
#include <string_view>
#include <type_traits>

#include "foundation/array.h"
#include "foundation/map.h"
#include "params/param_info.h"

namespace vexil {

namespace detail {

template <typename T>
struct Plain {
  using type = T;
};
template <typename T>
struct Plain<MutexType<T>> {
  using type = T;
};

/// What "inf" and "-inf" stand for: the infinity of a floating type, the greatest and the least
/// value of an integer type, and true, which every infinity is.
template <typename T>
[[nodiscard]] constexpr T infinityOf(bool negative) {
  using Limits = std::numeric_limits<T>;
  if constexpr (std::is_same_v<T, bool>) {
    return true;
  } else if constexpr (Limits::has_infinity) {
    return negative ? -Limits::infinity() : Limits::infinity();
  } else {
    return negative ? Limits::lowest() : Limits::max();
  }
}

}  // namespace detail

/// Option of type T: `bool`, `long`, `unsigned long`, `float`, `dbl_t`, `QQ` or `MutexType<long>`.
/// Assignment takes over everything but the change callback.
template <typename T>
class Param : public ParamInfo {
 public:
  /// T, or what the cell T holds.
  using Value = typename detail::Plain<T>::type;
  using ChangeCallback = std::function<void(const String&)>;

  T initial{};              ///< the default
  T current{};              ///< the present value
  ChangeCallback onChange;  ///< called by `set` with the new text

  Param() : onChange(ignoreChange) { Param::set(Value{}); }
  Param(const Param&) = delete;
  Param& operator=(const Param& other) {
    if (this == &other) return *this;
    ParamInfo::operator=(other);
    initial = other.initial;
    current = other.current;
    return *this;
  }
  ~Param() override = default;

  /// Gives the option its key, help text and default, puts it behind the others into `table` and
  /// `names`, and drops the change callback.
  void init(const Value& defaultValue, const String& newKey, const String& newHelp,
            Array<String>& names, Hash<ParamInfo*>& table) {
    initial = defaultValue;
    key = newKey;
    help = newHelp;
    set(defaultValue);
    defaultText = value.get();
    table[key] = this;
    names.resize(names.MN + 1, false);
    names[names.MN] = key;
    onChange = ignoreChange;
  }

  /// Sets the text, in the default format of a stream, and from it the typed value.
  void set(const Value& newValue) {
    std::ostringstream out;
    out << newValue;
    const String text = std::move(out).str();
    value.set(text);
    parse();
    onChange(text);
  }

  operator const T&() const { return current; }

  [[nodiscard]] bool isBool() const override { return std::is_same_v<T, bool>; }

  /// A text that is no number leaves what the stream extraction leaves; an empty text changes
  /// nothing. The text of an exact rational goes through its own parser, which refuses an empty
  /// one.
  void parse() override {
    const String text = value.get();
    if constexpr (std::is_arithmetic_v<Value>) {
      if (text == "inf" || text == "-inf") {
        current = detail::infinityOf<Value>(text.front() == '-');
      } else {
        std::istringstream in(text);
        in >> current;
      }
    } else {
      current = Value(std::string_view(text));
    }
  }

  virtual void setOnChange(ChangeCallback callback) { onChange = std::move(callback); }

 private:
  static void ignoreChange(const String& /*text*/) {}
};

/// Option whose typed value is a cell, so that it can be written from elsewhere. Text and typed
/// value are two cells.
template <typename T>
class MutexParam : public Param<MutexType<T>> {
 public:
  [[nodiscard]] bool isBool() const override { return std::is_same_v<T, bool>; }
};

}  // namespace vexil
