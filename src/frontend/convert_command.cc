// Vexil - exact integer optimization on lattices.
#include "frontend/convert_command.h"

#include "formats/model_file.h"
#include "foundation/failure.h"
#include "frontend/read_options.h"
#include "frontend/usage_exception.h"
#include "solutions/whole_file.h"

namespace vexil {

namespace {

/// Takes an option into the command; false for a word that is none.
bool takeOption(const std::string& word, ConvertCommand& command) {
  if (word == "--help") return command.help = true;
  if (word == "--version") return command.version = true;
  if (word == "--force") return command.force = true;
  return takeReadOption(word, command.settings);
}

}  // namespace

std::string convertUsageLine() { return "Usage: vexil-convert [--option ...] IN OUT\n"; }

std::string convertHelpText() {
  return convertUsageLine() +
         "\n"
         "Writes the model of the file IN as the file OUT. The endings .opt, .lp and .mps tell\n"
         "their forms, see vexil-formats(5).\n"
         "\n"
         "  --force       replace OUT if it exists\n"
         "  --targets     keep all target rows of an MPS file, not the first alone\n"
         "  --decimals=k  make variables that are not integer multiples of 10^-k in an opt file\n"
         "  --help        show this text\n"
         "  --version     show the version\n"
         "  --            the words behind it are files\n"
         "\n"
         "Exit status: 0 OUT is written, 1 a failure; OUT is then as it was.\n";
}

ConvertCommand convertCommand(const std::vector<std::string>& words) {
  ConvertCommand command;
  std::vector<String> files;
  bool options = true;
  for (const std::string& word : words) {
    if (options && word == "--") {
      options = false;
    } else if (!options || !word.starts_with("--")) {
      files.emplace_back(word);
    } else if (!takeOption(word, command)) {
      throw UsageException(word + " is no option");
    }
  }
  if (command.help || command.version) return command;
  if (files.size() != 2) throw UsageException(joined("expected two files, not ", files.size()));
  for (const String& file : files) {
    if (!formats::modelForm(file)) {
      throw UsageException(file + " ends in none of .opt, .lp and .mps");
    }
  }
  command.source = files[0];
  command.target = files[1];
  return command;
}

void convert(const ConvertCommand& command) {
  const String target = resolvedPath(command.target);
  const auto refuseToReplace = [&] {
    throw WriteException(command.target + ": exists (--force replaces it)");
  };
  if (!command.force && readWholeFile(target)) refuseToReplace();
  auto model = formats::readModel(command.source, command.settings);
  const auto form = *formats::modelForm(command.target);
  const std::string text =
      formats::modelText(std::move(model), form, command.settings, command.source);
  if (!putFile(target, text, command.force)) refuseToReplace();
}

}  // namespace vexil
