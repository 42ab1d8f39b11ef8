// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>

#include "numbers/number_cases.h"
#include "support/programs.h"

namespace vexil {

/// A small program with a point that fulfills its equations and inequations.
struct RandomProgram {
  OptText opt;
  Vector<QQ> point;

  /// `m` equations and `k` inequations over n variables: bounded ones, half-free and free ones,
  /// tenths among them. Inequations are two-sided, or of any kind with `oneSided`; fixed variables
  /// come with `fixed`.
  /// `targets` are wished to be least or greatest.
  static RandomProgram make(int n, int m, int k, bool oneSided, bool fixed, int targets = 0) {
    RandomProgram result;
    Vector<QQ> left, right, decimals;
    for (int i = 1; i <= n; ++i) result.addVariable(left, right, decimals, fixed);
    result.opt.lx = joined(left);
    result.opt.rx = joined(right);
    result.opt.dx = joined(decimals);
    Vector<QQ> bg, lu, ru;
    for (int i = 0; i < m; ++i) bg.append(result.addRow(result.opt.Ag));
    for (int i = 0; i < k; ++i) {
      const QQ value = result.addRow(result.opt.Au);
      const int kind = oneSided ? below(3) : 0;
      lu.append(kind == 1 ? -QQ::INF() : value - below(9) - 1);
      ru.append(kind == 2 ? QQ::INF() : value + below(9) + 1);
    }
    result.opt.dt = "[ ";
    for (int i = 0; i < targets; ++i) {
      result.addRow(result.opt.At);
      result.opt.dt += below(2) == 0 ? "inf " : "-inf ";
    }
    result.opt.dt += "]";
    result.opt.bg = joined(bg);
    result.opt.lu = joined(lu);
    result.opt.ru = joined(ru);
    return result;
  }

 private:
  /// Bounds around a value; 0 is among the bounded ones, so that every width has a scale.
  void addVariable(Vector<QQ>& left, Vector<QQ>& right, Vector<QQ>& decimals, bool fixed) {
    const bool tenths = below(6) == 0;
    const QQ value = QQ(below(9) - 4) / (tenths ? 10 : 1);
    const int kind = below(8);
    const bool isFixed = fixed && below(4) == 0;
    point.append(value);
    decimals.append(tenths ? 1 : 0);
    const QQ below0 = (value < 0 ? value : QQ(0)) - below(3);
    const QQ above0 = (value > 0 ? value : QQ(0)) + 1 + below(3);
    left.append(isFixed ? value : (kind < 2 ? -QQ::INF() : below0));
    right.append(isFixed ? value : (kind == 1 || kind == 2 ? QQ::INF() : above0));
  }

  /// Appends a row to the text of a matrix and returns its value at the point.
  QQ addRow(std::string& text) const {
    Vector<QQ> row;
    for (std::int64_t i = 1; i <= point.MN; ++i) row.append(below(19) - 9);
    row[1 + below(static_cast<int>(point.MN))] = below(9) + 1;
    if (text == "[ ]") text = "[]";
    text.insert(text.size() - 1, joined(row));
    return row * point;
  }
};

}  // namespace vexil
