// Vexil - exact integer optimization on lattices.
#pragma once

#include "formats/named_model.h"
#include "foundation/string.h"

namespace vexil::formats {

/// The forms of model files, told by the endings of their names in any case of letters.
enum class ModelForm { OPT, LP, MPS };

/// The form of the file; nothing for any other ending than ".opt", ".lp" and ".mps".
[[nodiscard]] std::optional<ModelForm> modelForm(const String& path);

/// The model of a file. What the project's own comments tell of is undone; the objective of an LP
/// or MPS file without coefficients is no target. Fatal: "path: expected a name that ends in .opt,
/// .lp or .mps", "Could not read model file: " and what the readers report.
[[nodiscard]] NamedModel readModel(const String& path, const ReadSettings& settings);

/// The text of a file of that form; the variables of an opt file have to be integer or get decimal
/// places. Fatal: "path: the model has no variables" and what `makeDiscrete` and `checkDenseSize`
/// report, with the `path` of the model's own file.
[[nodiscard]] std::string modelText(NamedModel model, ModelForm form, const ReadSettings& settings,
                                    const String& path);

}  // namespace vexil::formats
