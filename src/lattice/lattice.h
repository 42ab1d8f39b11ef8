// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/set.h"
#include "params/extended_params.h"
#include "params/mutex_vars.h"
#include "program/vexil.h"
#include "reduction/consistency_state.h"
#include "reduction/saved_decomposition.h"
#include "solutions/heuristic_vector.h"
#include "solutions/stage.h"
#include "solutions/target_vector.h"

namespace vexil {

/// `TT` is expected to hold at most so many matrices; beyond it there is a warning.
inline constexpr std::int64_t T_MAT_NBR = 20;

/// The working object: an optimization program with the lattice that is built from it. The base
/// part holds the program in normal form, `program` holds it as the opt file and the target bounds
/// leave it, and a row of `B` is a lattice vector whose coordinates are the scaled rows and
/// variables of the normal form. T is the type of the program and the basis, U that of the
/// Gram-Schmidt data; each is `dbl_t` or `QQ`. Rows, coordinates and all arrays count from 1.
///
/// Member definitions live beside their concern and are gathered by lattice_members.h; each of the
/// four instantiations is compiled once, in a source of its own.
template <typename T, typename U>
class Lattice : public Vexil<T> {
 public:
  T signReference{1};            ///< what the last coordinate of the inhomogeneous vector carries
  T signReferenceLat{};          ///< `signReference` times the weight of the last coordinate
  std::int64_t stepCounter = 0;  ///< running count of the reduction
  std::int64_t latRows = 0;      ///< rows of `B`
  std::int64_t latDim = 0;       ///< coordinates of a lattice vector, columns of `B`
  String latFile;                ///< path of the lat file
  ExtendedParams<T> params;      ///< the options

  HeuristicVector<T, U> bestHeuristic;  ///< best candidate that failed a bound
  TargetVector<T> bestTarget;           ///< best feasible candidate by target norm
  Array<TargetVector<T>> stars;         ///< candidates accepted as stars in this run

  SerializableArray<Matrix<T>> TT;  ///< transformations of order `latRows`; at least one
  Matrix<T> B;                      ///< the basis, `latRows` by `latDim`, in the weighted form
  Matrix<T> B_save;                 ///< the basis at generation, unweighted, same size
  Matrix<U> Q;                      ///< `latRows` by `latDim`, orthogonal rows
  Matrix<U> mu;                     ///< `latRows` by `latRows`, Gram-Schmidt coefficients
  Vector<T> rowNorm;                ///< squared lengths of the rows of `B`
  Vector<U> bstar;                  ///< squared lengths of the Gram-Schmidt vectors

  MainMutexVars cells;  ///< status of the run, for a watcher
  Vexil<T> program;     ///< the program before its normal form, with the stars

  T R{};                   ///< common radius of the embedding
  Vector<T> c;             ///< scale of each coordinate
  Vector<T> l;             ///< lower bound of each coordinate; infinities allowed
  Vector<T> l0;            ///< `l` in the weighted form
  Vector<T> r;             ///< upper bound of each coordinate; infinities allowed
  Vector<T> r0;            ///< `r` in the weighted form
  T maxNorm{};             ///< 3 times the larger of l.l and r.r
  bool symmetric = false;  ///< `l` is the negative of `r`

  std::int64_t interval_tt = 0;        ///< swap budget of a reduction pass
  std::int64_t intervalLimit = 0;      ///< starts at the option `pairLimit`
  std::int8_t checkMode = 0;           ///< 0: check vectors not set; 1: equations; 2: full lattice
  ConsistencyState<T, U> consistency;  ///< of the comparison of `B` with `TT` and `B_save`
  SavedDecomposition<U> firstBlock;    ///< of `B_save`
  SavedDecomposition<U> secondBlock;   ///< of `B`
  Array<short> rowState;               ///< flags of each basis row: what is still valid of its data
  bool consistencyForced = false;      ///< the option was switched on for one recovery
  bool keepDependent = false;          ///< a reset of the flags spares the marks of dependent rows

  Array<Matrix<U>> fullStages;     ///< products of the reflections of the full decomposition
  Vector<U> reducedNorms;          ///< squared lengths of the orthogonal rows
  Matrix<U> Lfull;                 ///< lower triangular factor of the full decomposition
  Array<Matrix<U>> reducedStages;  ///< rows after each step of the reduced decomposition
  Matrix<U> Lreduced;              ///< lower triangular factor of the reduced decomposition
  Vector<T> rowWork;               ///< one entry per row
  U blendValue{};                  ///< 0 with a new basis
  Array<Stage<T, U>> stages;       ///< `latRows` + 1

  /// Collected vectors that do not carry the right-hand side, and such that do; both hold at most
  /// as many as the option `collectLimit` says.
  SortedSet<HeuristicVector<T, U>> homogeneousVectors;
  SortedSet<HeuristicVector<T, U>> inhomogeneousVectors;

  Vector<T> weights;        ///< weight of each coordinate
  Vector<T> translation;    ///< shift of each coordinate, for rows that carry the right-hand side
  Vector<T> weightAux;      ///< one entry per coordinate, 0 after a reset
  Array<long> weightCount;  ///< one entry per coordinate, 0 after a reset

  // --- construction.tcc: the life of the object ---

  /// A lattice on a copy of the basis `*base`, or an empty one for null.
  explicit Lattice(const Matrix<T>* base = nullptr);
  Lattice(const Lattice& source) : Lattice() { assign(source, false); }
  Lattice& operator=(const Lattice& source) {
    assign(source, false);
    return *this;
  }
  ~Lattice() override = default;

  /// Derives `optFile`, `solFile` and `latFile` from the name of the sol file: the ending, from the
  /// last dot of the last path component on, is replaced. A name that is nothing but an ending
  /// stays whole in front of the new ones.
  void setFileNames(const String& name);

  /// Starts over with a copy of the basis `*base`, or with no rows for null. Everything that was
  /// computed from the basis before is forgotten; so is the name of the lat file with
  /// `clearLatFile`.
  void setBase(const Matrix<T>* base, bool clearLatFile);

  /// Gives the basis and all that goes with it room for `rows` rows and `cols` coordinates; `cols`
  /// 0 keeps `latDim`, and a negative argument changes nothing. `fromGeneration` drops all stars
  /// and collected vectors.
  void resize(std::int64_t rows, std::int64_t cols, bool fromGeneration);

  /// Makes the last matrix of `TT` the identity: of `TT` cut to one matrix, or with `append` of one
  /// more, unless the last is the identity already. Warns "TT.MN > T_MAT_NBR".
  void resetTransformation(bool append);

  // --- assign.tcc: copies between lattices ---

  /// Takes over the state of a lattice of any instantiation; the options stay with `keepParams`.
  /// Towards `dbl_t` it throws `PrecisionException` where a number does not survive, and then
  /// leaves a partial copy.
  void assign(const Lattice<dbl_t, dbl_t>& source, bool keepParams) {
    assignFrom(source, keepParams);
  }
  void assign(const Lattice<QQ, dbl_t>& source, bool keepParams) { assignFrom(source, keepParams); }
  void assign(const Lattice<dbl_t, QQ>& source, bool keepParams) { assignFrom(source, keepParams); }
  void assign(const Lattice<QQ, QQ>& source, bool keepParams) { assignFrom(source, keepParams); }

  // --- weighted_form.tcc: the form in which the rows of B are held ---

  /// A row brought into the weighted form: times `weights` with the option `scale`, plus the
  /// translation with `translate` where its last coordinate is not zero. "Vector: dimension
  /// mismatch3", "Vector: dimension mismatch1".
  [[nodiscard]] Vector<T> weightedRow(const Vector<T>& row) const;
  /// A row taken out of the weighted form. "Vector: dimension mismatch2", "Vector: dimension
  /// mismatch4".
  [[nodiscard]] Vector<T> unweightedRow(const Vector<T>& row) const;
  /// The same for all rows of a matrix.
  [[nodiscard]] Matrix<T> weightedMatrix(const Matrix<T>& M) const;
  [[nodiscard]] Matrix<T> unweightedMatrix(const Matrix<T>& M) const;

  /// Brings the rows of `B` into the form, or out of it, and clears `rowState`.
  void putOnWeights();
  void takeOffWeights();

  /// `l0`[i], `r0`[i] from `l`[i], `r`[i].
  void recomputeBounds(std::int64_t i);

  /// Back to weights of 1, to a translation of 0, or both.
  void resetWeights(bool resetScale, bool resetTranslation);

  // --- solutions/sol_file.tcc ---

  /// Appends the stars of `solFile` to `program.solStars`; true if there is at least one. With
  /// `stopAtFirst` nothing is stored. A file that cannot be read holds no stars.
  bool readStarsFromSolFile(bool stopAtFirst);

  /// Rewrites `solFile` from `program.solStars`, which must hold all stars to be written
  /// (`asTheyStand` true), or deletes it where there is none. Does nothing unless `writeEnabled`.
  /// Warns "solFile is not set - solution write not possible".
  void writeSolFile(bool asTheyStand);

  // --- solutions/statistics.tcc ---

  /// The "Solutions found: " report of the engine.
  [[nodiscard]] String statistics() const;

 private:
  template <typename S, typename V>
  void assignFrom(const Lattice<S, V>& source, bool keepParams);

  void installCallbacks();
  void clearRowState();
};

extern template class Lattice<dbl_t, dbl_t>;
extern template class Lattice<QQ, dbl_t>;
extern template class Lattice<dbl_t, QQ>;
extern template class Lattice<QQ, QQ>;

}  // namespace vexil
