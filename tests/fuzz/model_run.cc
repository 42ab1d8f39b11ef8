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
using Texts = std::vector<std::string>;

/// What stands on standard error once the text is a model.
constexpr const char* ACCEPTED = "a model\n";

const Texts LP_TEXTS = {
    "\\ vexil: name x2 a b\n\\ vexil: goal t2_below t2_above\n\\ vexil: scaled t1 3\n\\ vexil: "
    "decimals x 2\n\\ vexil: constant one\nMinimize\n t1: + 0.5 x - x2 + 3 t2_below + 3 t2_above\n"
    "  - 1 one\nSubject To\n t2: + 3 x + 0.25 x2 + 1 t2_below - 1 t2_above = 7\n r: x >= -2\n"
    "Bounds\n -25 <= x <= 40\n x2 free\n one = 1\nGeneral\n x\n x2\nEnd\n",
    "max\n 2 x + 3.5e-2 y - -4\nst\n c: -3 <= x + y <= 5 7 => x\n d: x + 2 = 3 y - 1\n\nbounds\n"
    " -inf <= x <= -1 y >= 1e30\n z_free free\nbinary\n y int x\nend\n",
    "\\ vexil: range a b\n\\ vexil: target o\n\\ vexil: empty e\n\\ vexil: model two words\n"
    "\\ vexil: row b b d\nMaximize\n o: 0 x\nSubject To\n a: x + y >= 1\n b: x + y <= 4\n"
    " e: 0 x <= 1\nGenerals\n x y\nEnd",
};

const Texts MPS_TEXTS = {
    "* vexil: name x1 a b\n* vexil: maximize obj\n* vexil: row le le 2\nNAME test FREE\nROWS\n"
    " N obj\n L le\n G ge\n E eq\nCOLUMNS\n m 'MARKER' 'INTORG'\n x1 obj 1 le 2\n x1 ge 3 eq 1e0\n"
    " y le .5 obj -1\n m 'MARKER' 'INTEND'\n z eq 7\nRHS\n rhs le 1 ge 2.5\n rhs obj 7\nRANGES\n"
    " r le -5 eq 3\nBOUNDS\n UP b x1 4\n MI b y\n UP b y -2\n FX z 1e30\nENDATA\n",
    "NAME\nOBJSENSE\n    MAX\nROWS\n N a\n N b\n E c\nCOLUMNS\n x a 1 b 2\n x c 1e-3\nRHS\n c 4\n"
    "BOUNDS\n LI x -1e1\n BV b y\n FR x 0\n PL x\nENDATA\n",
    "NAME          FIXED\nROWS\n N  COST\n L  ROW 1\nCOLUMNS\n    COL 1     COST                2.5"
    "   ROW 1               1.0\nRHS\n    RHS       ROW 1              10.0\nBOUNDS\n"
    " UP BND       COL 1               4.0\nENDATA\n",
};

const Texts HEADS = {
    "// model: two words\n// x[1]: a b\n// target[2]: t\n// constant[1]: -7:1/3\n\n// x[2]:  c \n"
    "// constant[2]: 1e3\n[ inf ]\n// x[3]: no\n",
    "// \n// : \n//x[1]: a\n// constant[]: 0\n// constant[3]: .5\r\n",
};

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
  static const std::vector<std::pair<std::string, const Texts*>> KINDS = {
      {"m.lp", &LP_TEXTS}, {"m.mps", &MPS_TEXTS}, {"m.opt", &HEADS}};
  const auto& kind = KINDS[below(random, KINDS.size())];
  name = kind.first;
  text = mutated(*kind.second, random);
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
