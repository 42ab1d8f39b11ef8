// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/serializable.h"
#include "params/mutex_type.h"

namespace vexil {

/// What all options have in common: key, help text, and default and present value as text. The text
/// form is one word "--key=value".
class ParamInfo : public Serializable {
 public:
  String key;               ///< without dashes
  String help;              ///< what the option does
  String defaultText;       ///< text of the default
  MutexType<String> value;  ///< text of the present value

  ParamInfo() : Serializable(",", false, false) {}
  ParamInfo(const ParamInfo&) = default;
  ParamInfo& operator=(const ParamInfo&) = default;
  ~ParamInfo() override = default;

  /// Writes nothing for an empty value text.
  std::ostream& write(std::ostream& out) const override;

  /// Skips blanks and comments, drops two characters, whatever they are, and takes key and value
  /// text from the word behind them; then `parse`. Fatal: "Malformed parameter: " and the word, if
  /// it is empty or has no "=".
  void read(std::istream& in) override;

  /// True for an option that is on or off.
  [[nodiscard]] virtual bool isBool() const { return false; }

  /// Takes over the text of the value as the typed value.
  virtual void parse() {}
};

}  // namespace vexil
