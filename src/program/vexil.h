// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/matrix.h"
#include "foundation/pair.h"
#include "numbers/convert.h"
#include "numbers/qq_vectors.h"
#include "program/freedom_degree.h"
#include "solutions/star.h"

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

  Vexil();
  Vexil(const Vexil&) = default;
  Vexil& operator=(const Vexil&) = default;
  virtual ~Vexil() = default;

  // --- vexil.tcc ---

  /// Empties the program; the storage of the arrays stays. The file names stay with
  /// `keepFileNames`.
  void reset(bool keepFileNames);

  /// Takes over a program of either arithmetic, member by member. Towards `dbl_t` it throws
  /// `PrecisionException` where a number does not survive, and then leaves a partial copy.
  template <typename S>
  void assign(const Vexil<S>& source);

  // --- opt_file.tcc ---

  /// Reads the program from `optFile` and validates it. Every fault of the file ends the run with
  /// its message; "Vector: bad stream" is thrown as `ReadException`.
  void readOptFile();

  // --- star_check.tcc ---

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

  // --- sol_writer.tcc ---

  /// One line of the sol file, without its newline: the elements with 17 significant digits, the
  /// other numbers with six in `dbl_t`.
  [[nodiscard]] String starText(const Star<T>& star) const;

  // --- reports.tcc ---

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
};

extern template class Vexil<dbl_t>;
extern template class Vexil<QQ>;

}  // namespace vexil
