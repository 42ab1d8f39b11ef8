// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>

#include "program/vexil.h"
#include "support/parsed.h"
#include "support/tool_run.h"

namespace vexil {

/// The program of an opt text, read exactly.
template <typename T>
Vexil<T> programOf(const std::string& text) {
  const support::TemporaryFolder folder;
  support::writeFile(folder / "p.opt", text);
  Vexil<QQ> exact;
  exact.optFile = (folder / "p.opt").string();
  exact.readOptFile();
  exact.optFile = "p.opt";
  Vexil<T> program;
  program.assign(exact);
  return program;
}

/// The text of a program with bounded variables: targets with their wishes, equations with their
/// right-hand sides, inequations between theirs.
struct OptText {
  std::string dt = "[ ]";
  std::string At = "[ ]";
  std::string Ag = "[ ]";
  std::string bg = "[ ]";
  std::string Au = "[ ]";
  std::string lu = "[ ]";
  std::string ru = "[ ]";
  std::string lx;
  std::string rx;
  std::string dx = "";  ///< 0 for each variable if it is empty

  [[nodiscard]] std::string text() const {
    auto zeros = parsed<Vector<QQ>>(rx);
    zeros.fill(0);
    return dt + At + Ag + bg + Au + lu + ru + (dx.empty() ? joined(zeros) : dx) + lx + rx;
  }
};

}  // namespace vexil
