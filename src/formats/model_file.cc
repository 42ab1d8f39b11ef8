// Vexil - exact integer optimization on lattices.
#include "formats/model_file.h"

#include "formats/lp_reader.h"
#include "formats/lp_writer.h"
#include "formats/mps_reader.h"
#include "formats/mps_writer.h"
#include "formats/opt_reader.h"
#include "formats/opt_writer.h"
#include "formats/remarks.h"

namespace vexil::formats {

std::optional<ModelForm> modelForm(const String& path) {
  const String name = path.toLower();
  if (name.endsWith(".opt")) return ModelForm::OPT;
  if (name.endsWith(".lp")) return ModelForm::LP;
  if (name.endsWith(".mps")) return ModelForm::MPS;
  return std::nullopt;
}

NamedModel readModel(const String& path, const ReadSettings& settings) {
  const auto form = modelForm(path);
  if (!form) fail(path, ": expected a name that ends in .opt, .lp or .mps");
  if (*form == ModelForm::OPT) return readOpt(path);
  const SourceText source(path);
  NamedModel model = *form == ModelForm::LP ? readLp(source) : readMps(source, settings);
  applyRemarks(model, path);
  return model;
}

std::string modelText(NamedModel model, ModelForm form, const ReadSettings& settings,
                      const String& path) {
  if (model.variables.empty()) fail(path, ": the model has no variables");
  if (form == ModelForm::LP) return lpText(model);
  if (form == ModelForm::MPS) return mpsText(model);
  makeDiscrete(model, settings.decimals, path);
  checkDenseSize(model, path);
  return optText(model);
}

}  // namespace vexil::formats
