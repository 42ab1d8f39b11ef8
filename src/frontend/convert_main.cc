// Vexil - exact integer optimization on lattices.
//
// The entry point of the converter: vexil-convert IN OUT
#include <iostream>

#include "foundation/failure.h"
#include "foundation/version.h"
#include "frontend/convert_command.h"
#include "frontend/usage_exception.h"

namespace {

void run(const std::vector<std::string>& words) {
  const vexil::ConvertCommand command = vexil::convertCommand(words);
  if (command.help) {
    std::cout << vexil::convertHelpText();
  } else if (command.version) {
    std::cout << "vexil-convert " << vexil::VERSION << '\n';
  } else {
    vexil::convert(command);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run({argv + std::min(argc, 1), argv + argc});
    return 0;
  } catch (const vexil::UsageException& fault) {
    std::cerr << "vexil-convert: " << fault.message << '\n' << vexil::convertUsageLine();
    return 1;
  } catch (const std::exception& fault) {
    vexil::fail(fault.what());
  }
}
