// Vexil - exact integer optimization on lattices.
#pragma once

#include <optional>
#include <string_view>

#include "numbers/qq.h"

namespace vexil {

/// The number that `text` is from its first to its last character; nothing for any other text.
/// Where `parse` drops characters or ends the run, this refuses.
///
/// Numbers are those of the text formats: whole, n/d, mixed (w:n/d), decimal with point or comma,
/// "inf", each with up to two signs, the second one behind blanks or none; decimals also with
/// nothing or zeros behind the separator and with an exponent, whose magnitude is at most 9999.
[[nodiscard]] std::optional<QQ> strictNumber(std::string_view text);

}  // namespace vexil
