// Vexil - exact integer optimization on lattices.
#include "fuzz/model_run.h"

#include <iostream>

#include "formats/lp_reader.h"
#include "formats/lp_writer.h"
#include "formats/mps_reader.h"
#include "formats/mps_writer.h"
#include "formats/opt_reader.h"
#include "formats/remarks.h"

namespace vexil::fuzz {
namespace {

using formats::NamedModel;

/// What stands on standard error once the text is a model.
constexpr const char* ACCEPTED = "a model\n";

NamedModel modelOf(const std::string& name, const std::string& text) {
  const formats::SourceText source(name, text);
  NamedModel model = name == "m.lp" ? formats::readLp(source) : formats::readMps(source, {});
  formats::applyRemarks(model, name);
  return model;
}

std::string written(const std::string& name, const NamedModel& model) {
  return name == "m.lp" ? lpText(model) : mpsText(model);
}

}  // namespace

ModelRun::ModelRun(Random& random) {
  static const std::vector<std::pair<std::string, Texts>> KINDS = {
      {"m.lp", corpus(".lp")}, {"m.mps", corpus(".mps")}, {"m.opt", corpus(".head")}};
  const auto& kind = KINDS[below(random, KINDS.size())];
  name = kind.first;
  text = mutated(kind.second, random);
}

int ModelRun::operator()() const {
  if (name == "m.opt") {
    const formats::OptHead head(formats::SourceText(name, text));
    std::cerr << ACCEPTED;
    return 0;
  }
  const NamedModel model = modelOf(name, text);
  std::cerr << ACCEPTED;
  for (const char* const other : {"m.lp", "m.mps"}) {
    if (model.variables.empty()) continue;
    const std::string once = written(other, modelOf(other, written(other, model)));
    if (written(other, modelOf(other, once)) != once) std::abort();
  }
  return 0;
}

std::string ModelRun::fault(const support::ChildEnd& end) {
  const bool accepted = end.err.find(ACCEPTED) != end.err.npos;
  const bool refused = end.status == 1 && end.err.find("\n*** FAIL: m.") != end.err.npos;
  if (end.timedOut) return "no end within the time limit";
  if (end.signal != 0 || accepted != (end.status == 0)) return "a wrong end";
  return accepted || refused ? "" : "no reason";
}

}  // namespace vexil::fuzz
