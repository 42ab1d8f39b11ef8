// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>

#include "formats/named_model.h"

namespace vexil {

/// Takes a word that says how a model file is read into `settings`: "--targets", "--targets=0",
/// "--targets=1" or "--decimals=k", k from 0 to 9999. False for any other word. Throws
/// `UsageException` for a value that does not fit.
bool takeReadOption(const std::string& word, formats::ReadSettings& settings);

}  // namespace vexil
