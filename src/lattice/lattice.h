// Vexil - exact integer optimization on lattices.
#pragma once

#include <memory>
#include <optional>

#include "lattice/basis_state.h"
#include "lattice/embedding.h"
#include "lattice/weighted_form.h"
#include "params/extended_params.h"
#include "params/mutex_vars.h"
#include "program/elimination.h"
#include "program/vexil.h"
#include "reduction/consistency_state.h"
#include "reduction/gram_schmidt.h"
#include "reduction/saved_decomposition.h"
#include "solutions/found_vectors.h"
#include "solutions/membership.h"
#include "solutions/right_order_pair.h"
#include "solutions/run_state.h"

namespace vexil {

/// The working object: an optimization program with the lattice that is built from it. The base
/// part holds the program in normal form, `program` holds it as the opt file and the target bounds
/// leave it, and a row of the basis is a lattice vector whose coordinates are the scaled rows and
/// variables of the normal form. T is the type of the program and the basis, U that of the
/// Gram-Schmidt data; each is `dbl_t` or `QQ`. Rows, coordinates and all arrays count from 1.
///
/// The state is made up of parts, each with its own operations; what needs several of them is a
/// member here. Member definitions live in `.tcc` files beside their concern; a source of the same
/// name instantiates them for the four pairs of numbers (lattice/instantiate.h).
template <typename T, typename U>
class Lattice : public Vexil<T> {
 public:
  using Collection = typename FoundVectors<T, U>::Collection;

  inline static constexpr std::int64_t SWAP_BUDGET = 100;  ///< of the first pass

  Vexil<T> program;               ///< the program before its normal form, with the stars
  BasisState<T> basis;            ///< `B`, `B_save`, `TT`, `latRows`, `latDim`
  WeightedForm<T> form;           ///< of the rows of `B`
  Embedding<T> embedding;         ///< scale and bounds of the coordinates
  GramSchmidt<T, U> gramSchmidt;  ///< of the rows of `B`
  FoundVectors<T, U> found;       ///< best vectors, stars and collections
  Membership<T> membership;       ///< never copied

  String latFile;                             ///< path of the lat file
  ExtendedParams<T> params{*this};            ///< the options
  std::shared_ptr<MainMutexVars> cells;       ///< for a watcher; copies share them
  ConsistencyState<T, U> consistency{*this};  ///< of `B`, `TT` and `B_save`
  SavedDecomposition<U> firstBlock;           ///< of `B_save`
  SavedDecomposition<U> secondBlock;          ///< of `B`
  std::int64_t stepCounter = 0;               ///< running count of the reduction
  std::int64_t interval_tt = SWAP_BUDGET;     ///< swap budget of a pass
  std::int64_t intervalLimit = 0;             ///< starts at the option `pairLimit`
  U blendValue{};                             ///< 0 with a new basis

  inline static RunState run;  ///< shared by all lattices of this instantiation

  // --- lattice/construction.tcc: the life of the object ---

  /// A lattice on a copy of the basis `*base`, or an empty one for null.
  explicit Lattice(const Matrix<T>* base = nullptr);
  /// A copy sees the cells of its source.
  Lattice(const Lattice& source);
  Lattice& operator=(const Lattice& source);
  ~Lattice() override;

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

  /// Starts the remembered transformation anew (`BasisState::resetTransformation`).
  void resetTransformation(bool append) { basis.resetTransformation(append); }

  // --- lattice/assign.tcc: copies between lattices ---

  /// Takes over the state of a lattice of any instantiation; the options stay with `keepParams`.
  /// Towards `dbl_t` it throws `PrecisionException` where a number does not survive, and then
  /// leaves a partial copy. The swap budget stays. Both lattices see the cells of the source.
  void assign(const Lattice<dbl_t, dbl_t>& source, bool keepParams);
  void assign(const Lattice<QQ, dbl_t>& source, bool keepParams);
  void assign(const Lattice<dbl_t, QQ>& source, bool keepParams);
  void assign(const Lattice<QQ, QQ>& source, bool keepParams);

  // --- lattice/weighted_basis.tcc: the form in which the rows of B are held ---

  /// A row brought into the weighted form, or taken out of it, as the options say.
  [[nodiscard]] Vector<T> weightedRow(const Vector<T>& row) const;
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

  /// Gives coordinate i the weight `value`, in the rows of `B` and in the bounds. Clears `rowState`
  /// in any case.
  void setWeight(std::int64_t i, const T& value);

  // --- lattice/embed_program.tcc: from the program to the basis ---

  /// Brings the program into the form that a lattice can hold, in `program`, and from there into
  /// normal form, in the base part. With both arguments false and no target row to be computed only
  /// the latter; `force1` bounds the target row by the known target values.
  void prepare(bool force1, bool force2);

  /// Fills basis and embedding: the lattice of the equations, or that of the inequations. Fatal:
  /// "ineq bounds error2", "sol bounds error".
  void buildBase(bool equationsOnly);

  /// The common radius: a multiple of all widths. May move soft bounds of the program by a few
  /// units. Fatal: "ineq bounds error1".
  [[nodiscard]] T computeR(bool equationsOnly);

  /// The width `right` - `left` after `left` has been lowered by as many units as keep lcm(R,
  /// width) smallest.
  [[nodiscard]] static T minimizeLcm(const T& R, const T& right, T& left);

  // --- lattice/generation.tcc: the equations reduced away ---

  /// Builds the lattice of the prepared program. Fatal: "The equation system has no integer
  /// solution :(".
  void generate();

  /// The product of all matrices of `TT` with M.
  [[nodiscard]] Matrix<T> applyTransformations(const Matrix<T>& M) const;

  /// Takes the leading `count` coordinates out of the basis and the embedding; -1 stands for the
  /// equations and also cuts the basis to the kernel of the equations.
  void dropEquationCoordinates(std::int64_t count);

  /// A lattice vector with `signReference` in its last coordinate, without its leading zeros; empty
  /// if there is none.
  [[nodiscard]] Vector<T> extractInhomogeneous();

  void printProgramSizes() const;

  // --- lattice/coordinates.tcc: between points of the program and lattice vectors ---

  /// The point of a lattice vector or of its negative: 1 if the vector carries the right-hand side
  /// exactly once, else -1; `opt_vec` is filled in both cases. `withFixed` puts the fixed variables
  /// in, `withExtra` keeps the slack and deviation variables. Fatal: "lat2opt called with
  /// uninitialized check vectors!", "lat_vec == 0", "lat_vec doesn't match lattice dimension".
  int lat2opt(const Vector<T>& lat_vec, Vector<T>& opt_vec, bool withFixed, bool withExtra) const;

  /// The lattice vector of a point; with `weighted` in the weighted form. Fatal: "opt2lat called
  /// with uninitialized check vectors!", "slack variable insonsistency, s should be >= 0".
  void opt2lat(const Vector<T>& opt_vec, Vector<T>& lat_vec, bool weighted) const;

  /// The value that the extra variable of equation j has at x, of which `count` components count.
  [[nodiscard]] T slackValue(std::int64_t j, const Vector<T>& x, std::int64_t count) const;

  // --- lattice/lat_file.tcc ---

  /// Rewrites `latFile` from the basis and its bounds. Does nothing unless `writeEnabled`. Warns
  /// "latFile is not set - lattice write not possible".
  void writeLatFile() const;

  // --- reduction/lll.tcc ---

  /// One pass of LLL over the rows `start` to m, 0 standing for `latRows`, with `interval_tt` steps
  /// of exchange, which it adapts; a dependent row goes behind the last independent row up to kk,
  /// 0 standing for `latRows`. Every row that is visited goes to `checkSolution`. Returns the
  /// smallest index touched.
  std::int64_t lll(std::int64_t start, std::int64_t m, std::int64_t kk);

  /// Checks, size-reduces and blends row k; false ends the pass. `blended` is kept for the pass.
  bool reduceStep(std::int64_t k, std::int64_t kk, bool& blended);

  /// Exchanges row k with the row before it if the Lovász condition fails; the next k.
  std::int64_t swapStep(std::int64_t k);

  /// Moves row k up to the first position where that shortens the orthogonal part; the next k.
  std::int64_t deepStep(std::int64_t k);

  /// Size-reduces row k; true if that changed the row. After a blending (`blended`) no step may let
  /// the row grow in the sup-norm.
  bool sizeReduce(std::int64_t k, bool blended);

  /// Exchanges rows i and j with all that belongs to them. What rests on the rows from the smaller
  /// index on becomes invalid unless `keepState`.
  void swapRows(std::int64_t i, std::int64_t j, bool keepState);

  /// Sorts the rows 1 to m, 0 standing for `latRows`, by ascending length.
  void sortRows(std::int64_t m);

  // --- reduction/reduce.tcc ---

  /// Reduces the lattice of the equations until the kernel of the equations stands apart, at the
  /// front of the basis. Returns `TT`.
  SerializableArray<Matrix<T>> reduce();

  // --- reduction/blend.tcc ---

  /// Moves row k out of the way if it depends on the rows before it: 0 if it does not, a position
  /// below k that a deep insertion gave it, or -k if it went behind the last independent row up to
  /// kk. Throws `DependencyException` "Blending is not possible".
  std::int64_t blend(std::int64_t k, std::int64_t kk);

  // --- reduction/consistency.tcc ---

  /// Replaces the basis by the product of its transformation with `B_save`, which undoes the
  /// rounding of single operations; true if that changed nothing. `aardal` is set inside `reduce`;
  /// `silent` suppresses the lat file. Fatal: "In the non-aardal case TT.MN should always be == 1".
  bool checkConsistency(bool aardal, bool silent);

  // --- solutions/check.tcc: the judgement of a candidate ---

  /// Judges a candidate, a row of the basis (`isLatticeVector`) or an unweighted lattice vector,
  /// and routes it to best vectors, stars, restart. `time` is its discovery time, 0 standing for
  /// now; `replay` tells a saved vector. The result is a word of bits: 1 outside the lattice
  /// (alone); 2 within all bounds; 4 at least as good as the best target; 8 a star; 16 an
  /// improvement; 32 a star that completes the wanted number, in place of 8. Fatal: "checkSolution:
  /// You should set the check vectors!".
  int checkSolution(const Vector<T>& vector, bool isLatticeVector, std::int64_t time, bool replay);

  /// `checkSolution` of row k of the basis; whether its word is 0, after which the row is of no use
  /// as long as it stays and no other is checked. Most rows are seen to be that without a copy.
  bool checkRow(std::int64_t k);

  /// Whether the last coordinate has the sign of the reference.
  [[nodiscard]] bool hasRightSign(const Vector<T>& vector, bool isLatticeVector) const;

  /// Whether an unweighted vector is an integer combination of the basis.
  [[nodiscard]] bool isLatticeMember(const Vector<T>& vector);

  /// Takes a candidate that failed a bound as `bestHeuristic` if it is as good as that.
  bool rememberHeuristic(const Vector<T>& vector, std::int64_t time);

  /// Norms of a candidate within bounds: the bits 2, 4 and 16 of `checkSolution`; `widened` tells
  /// whether the observed range of a variable has grown. Fatal: "is not within lattice1", "This
  /// case should not happen between a backup / restore!".
  int evaluateTarget(const Vector<T>& vector, TargetVector<T>& targetVector, std::int64_t time,
                     bool replay, bool& widened);

  /// Widens the observed ranges of free variables to x; true if one changed.
  bool widenObservedRange(const Vector<T>& x);

  /// Whether the norms of a candidate meet the limits `tnorm` and `snorm`.
  [[nodiscard]] bool isAcceptedStar(const TargetVector<T>& targetVector) const;

  /// Appends a star that is not known yet and writes it.
  void acceptStar(const TargetVector<T>& targetVector, std::int64_t time);

  // --- solutions/collections.tcc: candidates that failed a bound ---

  /// The deviation of a vector from its bounds. Fatal: "is not within lattice2".
  [[nodiscard]] HeuristicVector<T, U> computeDeviation(const Vector<T>& vector,
                                                       bool isLatticeVector) const;

  /// Coordinates that violate their bounds with the violations, greatest first.
  [[nodiscard]] SerializableArray<RightOrderPair<long, U>> violationList(
      const Vector<T>& vector, bool withTargets, bool isLatticeVector) const;

  /// Puts a vector that is not too long into the collection of its kind; null stands for the
  /// lattice's own. True if it was inserted.
  bool collect(const TimeVector<T>& vector, Collection* homogeneous = nullptr,
               Collection* inhomogeneous = nullptr);

  // --- solutions/restart.tcc ---

  /// Ends the run, or regenerates the lattice and throws `RestartException` "Lattice was
  /// regenerated".
  void handleRestart(bool terminate);

  /// Builds the lattice anew from `program` and replays what was found.
  void regenerate();

  /// Moves everything found out of the lattice. `mode` 0: as it is; 1: without the first `cut`
  /// coordinates, which must be 0; 2: as coordinates in the basis; 3: as points of the program.
  void backupState(std::int8_t mode, Array<Star<T>>& stars, Array<TimeVector<T>>& vectors,
                   Collection& homogeneous, Collection& inhomogeneous, std::int64_t cut);

  /// Judges again what `backupState` has saved in the same mode.
  void restoreState(Array<Star<T>>& stars, Array<TimeVector<T>>& vectors, Collection& homogeneous,
                    Collection& inhomogeneous, std::int8_t mode);

  // --- solutions/sol2star.tcc ---

  /// Appends the best vectors and stars, as points, to `program.solStars`. Fatal: "sol2star:
  /// lat2opt can not compute x_opt".
  void sol2star();

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
  explicit Lattice(std::shared_ptr<MainMutexVars> sharedCells);

  // --- lattice/coordinates.tcc ---
  [[nodiscard]] Vector<T> normalFormPoint(const Vector<T>& opt_vec) const;

  template <typename S, typename V>
  void assignFrom(const Lattice<S, V>& source, bool keepParams);

  void installCallbacks();

  // --- reduction/reduce.tcc ---
  std::int64_t moveKernelRows(std::int64_t n, std::int64_t m);

  // --- reduction/consistency.tcc ---
  bool findTransformation(const Matrix<T>& present);
  void startOver();
  void startLevelIfGreat();

  // --- lattice/embed_program.tcc ---
  void setBounds(std::int64_t q, const T& left, const T& right);
  void embedRow(std::int64_t q, const Vector<T>& row, const T& sum, const T& scale);
  void embedEquations();
  void embedTarget();
  void embedInequations();
  void embedVariables(std::int64_t k);

  // --- lattice/generation.tcc ---
  template <typename Change>
  void keepFound(std::int8_t mode, std::int64_t cut, Change change);
  void restrictToKernel(const SerializableArray<Matrix<T>>& transformations);

  // --- reduction/lll.tcc ---
  bool visitRow(std::int64_t k, std::int64_t kk, bool& blended, const T*& useless);

  // --- solutions/check.tcc ---
  [[nodiscard]] Vector<T> normalised(const Vector<T>& vector, bool isLatticeVector) const;
  [[nodiscard]] bool isWithinBounds(const Vector<T>& x) const;
  [[nodiscard]] static std::int64_t discoveryTime(std::int64_t time);

  // --- solutions/collections.tcc ---
  [[nodiscard]] bool isOfNoUse(std::int64_t k);
  template <typename Visitor>
  void forEachViolation(const Vector<T>& vector, Visitor visit) const;
  void measureViolations(const Vector<T>& x, HeuristicVector<T, U>& result) const;
  [[nodiscard]] HeuristicVector<T, U> deviationOf(const Vector<T>& x, const T& length) const;
  [[nodiscard]] Vector<T> mappedPoint(const Vector<T>& vector) const;
  bool collectAt(const Vector<T>& vector, std::optional<std::int64_t> time, Collection& homogeneous,
                 Collection& inhomogeneous);

  // --- solutions/restart.tcc ---
  bool toBackup(Vector<T>& vector, std::int8_t mode, std::int64_t cut,
                std::optional<RowCoordinates<T>>& coordinates) const;
  void fromBackup(Vector<T>& vector, std::int8_t mode) const;
};

extern template class Lattice<dbl_t, dbl_t>;
extern template class Lattice<QQ, dbl_t>;
extern template class Lattice<dbl_t, QQ>;
extern template class Lattice<QQ, QQ>;

}  // namespace vexil
