// Vexil - exact integer optimization on lattices.
#include "frontend/read_options.h"

#include <charconv>

#include "foundation/failure.h"
#include "frontend/usage_exception.h"

namespace vexil {

namespace {

constexpr std::int32_t MOST_DECIMALS = 9999;

}  // namespace

bool takeReadOption(const std::string& word, formats::ReadSettings& settings) {
  const std::size_t equals = word.find('=');
  const std::string key = word.substr(0, equals);
  const std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
  if (key == "--targets") {
    if (equals != std::string::npos && value != "0" && value != "1") {
      throw UsageException(word + ": neither 0 nor 1");
    }
    settings.furtherTargets = value != "0";
    return true;
  }
  if (key != "--decimals") return false;
  std::int32_t places = -1;
  const char* const end = value.data() + value.size();
  const auto [rest, error] = std::from_chars(value.data(), end, places);
  if (error != std::errc() || rest != end || places < 0 || places > MOST_DECIMALS) {
    throw UsageException(joined(word, ": not a whole number from 0 to ", MOST_DECIMALS));
  }
  settings.decimals = places;
  return true;
}

}  // namespace vexil
