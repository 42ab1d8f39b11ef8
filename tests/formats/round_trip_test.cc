// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include <random>

#include "formats/model_file.h"
#include "program/vexil.h"
#include "support/random_program.h"
#include "support/tool_run.h"

namespace vexil::formats {
namespace {

using Texts = std::vector<std::string>;

/// A small program of any kind with odd names and constants, as an opt file.
std::string programText(std::uint32_t seed) {
  static const Texts odd = {"a b", "free", "x2", "3rd", "e12", "end", "$", "x1", "a-b", ""};
  std::mt19937 random(seed);
  const auto pick = [&](std::initializer_list<const char*> heads) {
    std::string text;
    for (const char* const head : heads) {
      if (random() % 3 == 0) text += joined("// ", head, ": ", odd[random() % odd.size()], '\n');
    }
    return text;
  };
  std::string text = pick({"x[1]", "x[2]", "x[3]", "target[1]", "inequation[1]", "model"});
  if (random() % 3 == 0) text += "// constant[1]: -2:1/2\n";
  return text + support::RandomProgram(seed).optText();
}

Vexil<QQ> programOf(const std::filesystem::path& file) {
  Vexil<QQ> program;
  program.optFile = file.string();
  program.readOptFile();
  return program;
}

/// True if every variable has the decimal places of the program.
bool isPoint(const Vexil<QQ>& program, const Star<QQ>& star) {
  for (std::int64_t j = 1; j <= star.MN; ++j) {
    const QQ unit = program.dx[j].positive ? pow(QQ(10), program.dx[j]) : QQ(1);
    if (!isZero((star[j] * unit).zaehler)) return false;
  }
  return true;
}

/// What a program says of some of the points, and of neighbours of them.
Texts verdicts(const Vexil<QQ>& program, const std::vector<support::Point>& points) {
  Texts result;
  for (const QQ& places : program.dx.elements()) result.push_back(toString(places));
  for (std::size_t k = 0; k < points.size(); k += 1 + points.size() / 40) {
    for (const QQ& step : {QQ(0), QQ(1), QQ("-1/2")}) {
      Star<QQ> star;
      for (const std::int64_t X : points[k]) {
        star.append(static_cast<long long>(X) /
                    NumberTraits<QQ>::powerOfTen(program.dx[star.MN + 1]));
      }
      star[1 + static_cast<std::int64_t>(k) % star.MN] += step;
      const bool valid = isPoint(program, star) && program.starIsValid(star);
      result.push_back(valid ? joined(star.targetNorm, " ", star.slackNorm) : "no");
    }
  }
  return result;
}

TEST(RoundTrip, KeepsPointsAndNorms) {
  const support::TemporaryFolder folder;
  const auto move = [&](const char* from, const char* to) {
    const String source = (folder / from).string();
    const String target = (folder / to).string();
    support::writeFile(folder / to,
                       modelText(readModel(source, {}), *modelForm(target), {}, source));
  };
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    const std::string text = programText(seed);
    const auto points = support::RandomProgram(seed).points();
    support::writeFile(folder / "a.opt", text);
    move("a.opt", "a.lp");
    move("a.lp", "a.mps");
    move("a.mps", "b.opt");
    move("a.opt", "c.mps");
    move("c.mps", "c.lp");
    move("c.lp", "c.opt");
    const Texts expected = verdicts(programOf(folder / "a.opt"), points);
    EXPECT_EQ(verdicts(programOf(folder / "b.opt"), points), expected) << seed << '\n' << text;
    EXPECT_EQ(verdicts(programOf(folder / "c.opt"), points), expected) << seed << '\n' << text;
    // Once in this form, a program is written the same again.
    move("b.opt", "d.lp");
    move("d.lp", "d.opt");
    EXPECT_EQ(support::readFile(folder / "d.opt"), support::readFile(folder / "b.opt")) << seed;
    if (testing::Test::HasFailure()) return;
  }
}

const std::string TWO_GOALS =
    "// model: two goals\n// x[1]: a b\n// x[2]: free\n// constant[1]: 1/3\n"
    "[ inf -inf 1/3 7 ]\n[ [ 1/3 2 -5 ] [ 1/2 0 1 ] [ 1/7 1 1 ] [ 1 1 1 ] ]\n"
    "[ ] [ ] [ [ 1 2 1/3 ] ] [ -3 ] [ 12 ] [ 0 2 0 ] [ 1/3 -2.5 -inf ] [ 9 4 inf ]\n";

/// What `TWO_GOALS` becomes in both forms.
const std::string REMARKS[] = {
    "vexil: model two goals",        "vexil: name x1 a b", "vexil: goal t3_below t3_above",
    "vexil: goal t4_below t4_above", "vexil: scaled t1 3", "vexil: constant constant"};

TEST(LpWriter, WritesOneObjectiveInDecimals) {
  const support::TemporaryFolder folder;
  support::writeFile(folder / "a.opt", TWO_GOALS);
  const std::string text =
      modelText(readModel((folder / "a.opt").string(), {}), ModelForm::LP, {}, "a.opt");
  for (const std::string& remark : REMARKS) EXPECT_NE(text.find("\\ " + remark + '\n'), text.npos);
  EXPECT_EQ(text.substr(text.find("Minimize")),
            "Minimize\n t1: + 0.5 x1 - 0.06 x2 + 18 x3 + 3 t3_below + 3 t3_above + 3 t4_below\n"
            "  + 3 t4_above - 1 constant\nSubject To\n c1: + 3 x1 + 0.06 x2 + 1 x3 >= -9\n"
            " c1_upper: + 3 x1 + 0.06 x2 + 1 x3 <= 36\n"
            " t3: + 3 x1 + 0.21 x2 + 21 x3 + 21 t3_below - 21 t3_above = 7\n"
            " t4: + 1 x1 + 0.01 x2 + 1 x3 + 1 t4_below - 1 t4_above = 7\n"
            "Bounds\n 1 <= x1 <= 9\n -250 <= x2 <= 400\n x3 free\n constant = 1\n"
            "General\n x1\n x2\n x3\nEnd\n");
}

TEST(MpsWriter, WritesBothBoundsOfIntegerColumns) {
  const support::TemporaryFolder folder;
  support::writeFile(folder / "a.opt", TWO_GOALS);
  const std::string text =
      modelText(readModel((folder / "a.opt").string(), {}), ModelForm::MPS, {}, "a.opt");
  for (const std::string& remark : REMARKS) EXPECT_NE(text.find("* " + remark + '\n'), text.npos);
  EXPECT_EQ(text.substr(text.find(" free c1")),
            " free c1 0.06\n free t3 0.21\n free t4 0.01\n x3 t1 18\n x3 c1 1\n x3 t3 21\n"
            " x3 t4 1\n MARKER2 'MARKER' 'INTEND'\n t3_below t1 3\n t3_below t3 21\n"
            " t3_above t1 3\n t3_above t3 -21\n t4_below t1 3\n t4_below t4 1\n"
            " t4_above t1 3\n t4_above t4 -1\n constant t1 -1\n"
            "RHS\n RHS c1 -9\n RHS t3 7\n RHS t4 7\nRANGES\n RNG c1 45\n"
            "BOUNDS\n LO BND x1 1\n UP BND x1 9\n LO BND free -250\n UP BND free 400\n"
            " FR BND x3\n FX BND constant 1\nENDATA\n");
}

/// Others need a row, take fractional bounds of integers in their own ways, and refuse names.
TEST(LpWriter, WritesWhatOtherReadersTake) {
  const support::TemporaryFolder folder;
  const std::string name(100, 'n');
  const std::string start = "[ -inf ] [ [ 1 0 ] ] [ ] [ ] [ ] [ ] [ ] [ 0 0 ] ";
  for (const auto& [opt, lp] : std::vector<std::pair<std::string, std::string>>{
           {"// x[1]: Subject\n// x[2]: a\xC3\xBC\n" + start + "[ -7/2 0 ] [ 7/2 inf ]\n",
            "\\ vexil: name x1 Subject\n\\ vexil: name x2 a\xC3\xBC\n\\ vexil: empty empty\n"
            "Minimize\n t1: + 1 x1 + 0 x2\nSubject To\n empty: + 0 x1 >= 0\n"
            "Bounds\n -3 <= x1 <= 3\n"},
           {"// x[1]: " + name + "\n// x[2]: n" + name + "\n" + start + "[ 1/2 2 ] [ 2/3 2 ]\n",
            "\\ vexil: name x2 n" + name + "\nMinimize\n t1:\n  + 1 " + name +
                "\n  + 0 x2\nSubject To\n bound1:\n  + 1 " + name + " <= 0\nBounds\n " + name +
                " >= 1\n x2 = 2\n"},
       }) {
    support::writeFile(folder / "a.opt", opt);
    const auto text =
        modelText(readModel((folder / "a.opt").string(), {}), ModelForm::LP, {}, "a.opt");
    EXPECT_EQ(text.substr(0, text.find("General")), lp);
  }
}

TEST(Remarks, ThatDoNotFitAreLeftAlone) {
  const support::TemporaryFolder folder;
  const std::string head = "Minimize\n o: 2 x + p + q + one\nSubject To\n";
  const std::string bounds = "Bounds\n one = 1\n y = 1\nGeneral\n x\n y\n one\nEnd\n";
  const std::string rows = " g: x + p - q = 7\n r: x + y >= 1\n s: x + y <= 4\n";
  for (const auto& [remark, body] : std::vector<std::pair<std::string, std::string>>{
           {"goal p x", rows},
           {"goal p nobody", rows},
           {"goal p q", " g: x + p - 2 q = 7\n"},
           {"goal p q", " g: x + p - q >= 7\n"},
           {"goal p q", rows + " h: x + p >= 1\n"},
           {"constant x", rows},
           {"constant one", rows + " h: x + one >= 1\n"},
           {"range r g", rows},
           {"range s r", rows},
           {"range r s", " r: x + y >= 5\n s: x + y <= 4\n"},
           {"empty g", rows},
           {"empty e", rows + " e: 0 x >= 1\n"},
           {"empty e", rows + " e: 0 x <= -1\n"},
           {"decimals p 2", rows},
           {"decimals x 0", rows},
           {"decimals x two", rows},
           {"scaled o 0", rows},
           {"scaled g 2", rows},
           {"maximize g", rows},
           {"target g", rows},
           {"name nobody somebody", rows},
           {"row nobody somebody", rows},
       }) {
    const std::string text = head + body + bounds;
    const bool hasY = body.find('y') != body.npos;
    const std::string file = hasY ? text : head + body + " z: y >= 0\n" + bounds;
    support::writeFile(folder / "a.lp", "\\ vexil: " + remark + '\n' + file);
    support::writeFile(folder / "b.lp", file);
    std::array<std::string, 2> opts;
    testing::internal::CaptureStderr();
    for (std::size_t i = 0; i < 2; ++i) {
      const String path = (folder / (i == 0 ? "a.lp" : "b.lp")).string();
      opts[i] = modelText(readModel(path, {}), ModelForm::OPT, {.decimals = 0}, path);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              joined("\n*** ", (folder / "a.lp").string(), ": the comment \"vexil: ", remark,
                     "\" does not fit the model and is left alone\n"));
    EXPECT_EQ(opts[0], opts[1]) << remark;
  }
}

}  // namespace
}  // namespace vexil::formats
