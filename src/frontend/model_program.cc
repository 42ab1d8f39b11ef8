// Vexil - exact integer optimization on lattices.
#include "frontend/model_program.h"

#include "formats/model_file.h"
#include "formats/opt_reader.h"
#include "frontend/usage_exception.h"
#include "program/file_names.h"
#include "solutions/whole_file.h"

namespace vexil {

namespace {

/// Makes the opt file the one of the model.
void provideOptFile(const String& optFile, const String& model, formats::ReadSettings settings) {
  const std::string text = formats::modelText(formats::readModel(model, settings),
                                              formats::ModelForm::OPT, settings, model);
  const String resolved = resolvedPath(optFile);
  if (!putFile(resolved, text, false) && readWholeFile(resolved) != text) {
    throw WriteException(
        joined(optFile, ": holds another program than ", model,
               " and is not touched; remove it if the model has changed, or give one of "
               "them another name"));
  }
}

}  // namespace

Vexil<QQ> programOf(const String& file, const formats::ReadSettings& settings) {
  const auto form = formats::modelForm(file);
  if (!form && !file.endsWith(".sol")) {
    throw UsageException(joined(file, " ends in none of .opt, .sol, .lp and .mps"));
  }
  Vexil<QQ> program;
  program.optFile = baseOfFileName(file) + ".opt";
  program.solFile = baseOfFileName(file) + ".sol";
  if (form && *form != formats::ModelForm::OPT) provideOptFile(program.optFile, file, settings);
  formats::checkComments(program.optFile);
  try {
    program.readOptFile();
  } catch (const ReadException& fault) {
    throw ReadException(program.optFile + ": " + fault.message);
  }
  return program;
}

}  // namespace vexil
