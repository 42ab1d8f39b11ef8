// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/matrix.h"
#include "foundation/pair.h"
#include "numbers/convert.h"
#include "numbers/qq_vectors.h"
#include "program/freedom_degree.h"
#include "program/star.h"

namespace vexil {

/// An integer linear optimization program over the variables x[1] to x[n], T being `dbl_t` or `QQ`:
///
///   targets      At x, each row to be minimized, maximized or brought to a value as `dt` says
///   equations    Ag x = bg
///   inequations  lu <= Au x <= ru, by component
///   bounds       lx <= x <= rx, by component; x[i] is a multiple of 10^-dx[i]
///
/// n is the column count of the first non-empty matrix of `At`, `Au`, `Ag`.
template <typename T>
class Vexil {
 public:
  String optFile;  ///< path of the opt file
  String solFile;  ///< path of the sol file

  Vector<T> dt;  ///< wished target values; -inf: minimize, +inf: maximize, finite: come near to it
  Vector<T> kt;  ///< known target values, as many; equal to `dt` where the file gives none
  SerializablePair<T, T> lrtu;  ///< left and right bound of the combined target row
  Matrix<T> At;                 ///< targets, one row for each component of `dt`
  std::int64_t tu = 0;          ///< combined target rows in force, 0 or 1
  Vector<T> atu;                ///< the combined target row, dimension n; empty until computed

  Vector<T> bg;  ///< right-hand sides of the equations
  Vector<T> lu;  ///< left bounds of the inequations; -inf allowed
  Vector<T> ru;  ///< right bounds of the inequations; +inf allowed
  Matrix<T> Ag;  ///< equations
  Matrix<T> Au;  ///< inequations

  Vector<T> dx;                                     ///< decimal places of the variables
  Vector<T> lx;                                     ///< left bounds of the variables; -inf allowed
  Vector<T> rx;                                     ///< right bounds of the variables; +inf allowed
  SerializableArray<FreedomDegree> freedomDegrees;  ///< one for each variable

  Array<Star<T>> solStars;                   ///< the solutions that the sol file holds
  Array<Pair<long, T>> fixedVariables;       ///< removed variables: index in the file, value
  SerializableArray<long> swappedVariables;  ///< indices of variables whose sign was turned

  bool allTargetsFinite = false;  ///< every `dt`[i] is finite
  std::int64_t sdim = 0;          ///< slack variables, behind those of the file
  std::int64_t tdim = 0;          ///< deviation variables, behind the slack variables; even

  bool writeEnabled = false;   ///< sol and lat files may be written
  bool reportEnabled = false;  ///< found solutions are reported
  bool starsPrepared = false;  ///< slack and deviation variables stand in the program

  template <typename Self>
  static auto members(Self& self) {
    auto& [optFile, solFile, dt, kt, lrtu, At, tu, atu, bg, lu, ru, Ag, Au, dx, lx, rx,
           freedomDegrees, solStars, fixedVariables, swappedVariables, allTargetsFinite, sdim, tdim,
           writeEnabled, reportEnabled, starsPrepared] = self;
    return std::tie(optFile, solFile, dt, kt, lrtu, At, tu, atu, bg, lu, ru, Ag, Au, dx, lx, rx,
                    freedomDegrees, solStars, fixedVariables, swappedVariables, allTargetsFinite,
                    sdim, tdim, writeEnabled, reportEnabled, starsPrepared);
  }

  Vexil();
  Vexil(const Vexil&);
  Vexil& operator=(const Vexil&);
  virtual ~Vexil();

  // --- program/vexil.tcc ---

  /// Empties the program; the storage of the arrays stays. The file names stay with
  /// `keepFileNames`.
  void reset(bool keepFileNames);

  /// Takes over a program of either arithmetic, member by member. Towards `dbl_t` it throws
  /// `PrecisionException` where a number does not survive, and then leaves a partial copy.
  void assign(const Vexil<dbl_t>& source);
  void assign(const Vexil<QQ>& source);

  // --- program/opt_file.tcc ---

  /// Reads the program from `optFile` and validates it. Every fault of the file ends the run with
  /// its message; "Vector: bad stream" is thrown as `ReadException`.
  void readOptFile();

  // --- program/prepare.tcc: the rows as a lattice can hold them ---
  //
  // Each step below works in place, `verbose` prints a line for what it did. In `dbl_t` each
  // arithmetic step is guarded: `PrecisionException` with the name of the value and "overflow".

  /// Drops inequations that say nothing.
  void removeUselessInequations(bool verbose);

  /// Makes an equation of each inequation with equal bounds. Fatal: "Unfulfillable infinite
  /// inequation detected --> NO SOLUTIONS!".
  void moveFakeInequations(bool verbose);

  /// Makes an equation of each one-sided inequation, with a variable of its own for the slack.
  /// Fatal: "Implement the insert at sdim position case!".
  void addSlackVariables();

  /// Makes an equation of each target with a finite wish, with two variables for the deviation,
  /// whose sum becomes the target.
  void addDeviationVariables();

  /// Appends a variable with its bounds and decimal places.
  void addVariable(const T& lower, const T& upper, const T& decimals);

  /// -1 for a target to be maximized, else 1.
  [[nodiscard]] T targetSign(std::int64_t i) const;

  /// The sum of the magnitudes of target values. Fatal: "This should not be the case anymore!" for
  /// a target with a finite wish.
  [[nodiscard]] T targetNorm(const Vector<T>& values) const;

  /// `atu`: the sum of all targets, those to be maximized negated.
  void computeAtu();

  /// Bounds the combined target row by the known target values, if all of them are finite.
  void seedTargetBound();

  /// Bounds the combined target row below a point with the target values `values` and the combined
  /// value `value`; true if a bound changed.
  bool tightenTargetBound(const Vector<T>& values, const T& value);

  /// Widens the bounds of the combined target row to what the bounds of the variables allow.
  void boundTargetFromVariables();

  // --- program/normal_form.tcc: whole numbers, variables from 0 on ---

  /// Brings the program into normal form; `verbose` prints a line for what was removed.
  void normalForm(bool verbose);

  // --- solutions/star_check.tcc ---

  /// Tests a star against bounds, equations and inequations; one that passes gets its target values
  /// and norms, if the program has targets. Fatal: "Vector: dimension mismatch10" for a star of the
  /// wrong dimension.
  [[nodiscard]] bool starIsValid(Star<T>& star) const;

  /// Tests `solStars`[i], i from 1, and removes the star if it fails.
  bool checkStar(std::int64_t i);

  /// Tests all stars; true if none failed. The star that moves into the place of a removed one is
  /// not tested in this pass.
  bool checkAllStars();

  /// The target norm of a point x with the target values `values`: the sum of the minimised values,
  /// the negated maximised ones and the distances to finite wishes. `S` receives the slack norm:
  /// the sum of those distances or, in a prepared program, of the absolute residuals of row i of
  /// `Ag` over the variables of the file for each of the last `tdim` / 2 targets i. Fatal:
  /// "preparation inconsistency" for a finite wish in a prepared program.
  [[nodiscard]] T targetAndSlackNorm(const Vector<T>& values, const Vector<T>& x, T& S) const;

  /// The value of the combined target row where the targets have the values `values`.
  [[nodiscard]] T combinedValue(const Vector<T>& values) const;

  // --- solutions/sol_writer.tcc ---

  /// One line of the sol file, without its newline: the elements with 17 significant digits, the
  /// other numbers with six in `dbl_t`.
  [[nodiscard]] String starText(const Star<T>& star) const;

  // --- solutions/reports.tcc ---

  /// The final report of all stars.
  [[nodiscard]] String report() const;

  /// The block of `solStars`[i]. Fatal: "Array: index out of range" for a star with fewer target
  /// values than the program has targets.
  [[nodiscard]] String starReport(std::int64_t i) const;

 private:
  void readTargets(std::istream& in);
  void readEquations(std::istream& in);
  void checkColumns(std::int64_t n) const;
  void checkFiniteness() const;
  void readInequationBounds(std::istream& in);
  void readVariableBounds(std::istream& in, std::int64_t n);
  void classifyVariables();
  void appendMark(std::string& text, std::int64_t j) const;

  // --- program/prepare.tcc ---
  void removeInequation(std::int64_t i);
  [[nodiscard]] bool hasKnownValue(std::int64_t i) const;
  bool lowerTargetBound(const T& norm);

  // --- program/normal_form.tcc, in the order of the steps ---
  void removeFixedVariables();
  void removeVariable(std::int64_t k, const T& value);
  void applyDecimals();
  void makeTargetsIntegral();
  void makeEquationsIntegral();
  void makeInequationsIntegral();
  void removeDependentEquations(bool verbose);
  void swapHalfFreeVariables(bool verbose);
  void tightenInequations();
  void checkEquations() const;
  void shiftToZero();
};

extern template class SerializableArray<FreedomDegree>;
extern template class Array<Pair<long, dbl_t>>;
extern template class Array<Pair<long, QQ>>;
extern template class Vexil<dbl_t>;
extern template class Vexil<QQ>;

}  // namespace vexil
