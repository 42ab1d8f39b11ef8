// Vexil - exact integer optimization on lattices.
#pragma once

#include <deque>
#include <functional>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "program/vexil.h"
#include "solutions/lock_file.h"

namespace vexil {

/// How a star came about.
struct Discovery {
  std::int64_t time = -1;  ///< seconds from the start of the program; -1: unknown
  String paramText;        ///< the options in force
  String version;          ///< of the program that made the star
};

/// The stars of one program and of its sol file, for a search that adds to them. While the object
/// lives no other one of its kind, in whatever process, writes the same file.
///
/// Every star is a point of the program in exact numbers, its norms and target values are worked
/// out anew, and its options are never empty. Stars with equal elements and equal options are one.
class StarStore {
 public:
  /// Receives, in a line, what is not kept of a file and why.
  using Say = std::function<void(const String&)>;

  /// Takes the lock and reads the file `name`, which may be missing. Throws `WriteException` where
  /// the file can later not be written, and `ReadException` for a fault of the file; nothing has
  /// been touched then.
  StarStore(const Vexil<QQ>& program, const String& name, Say say);

  /// The points of the stars, each once.
  [[nodiscard]] std::vector<Vector<QQ>> points() const;

  /// Number of different points.
  [[nodiscard]] std::int64_t pointCount() const { return pointCount_; }

  /// Adds a point of the program; false, with nothing changed, if there is a star with its
  /// elements.
  bool add(const Vector<QQ>& x, const Discovery& discovery);

  /// Brings the file up to date: complete or, where that throws a `GeneralException`, untouched. A
  /// file that somebody else has changed is read again and its stars are taken in. Where the file
  /// holds what the new one does not, the old one stays beside it. Without a star no file is left.
  void save();

  /// The content of the sol file, best star first.
  [[nodiscard]] String text() const;

  /// Calls `visit` on a star of each point, best first.
  void forEachPoint(const std::function<void(const Star<QQ>&)>& visit) const;

 private:
  /// Options and version.
  using Origin = std::pair<String, String>;

  /// A star as a line of the file, in parts.
  struct Record {
    String values;                   ///< fields 1 to 4
    std::size_t elementsLength = 0;  ///< field 1 is the start of `values`
    QQ targetNorm;
    QQ slackNorm;
    std::int64_t time = -1;
    const Origin* origin = nullptr;  ///< shared

    [[nodiscard]] std::string_view elements() const {
      return std::string_view(values).substr(0, elementsLength);
    }
  };

  [[nodiscard]] Star<QQ> evaluated(const Vector<QQ>& x) const;
  [[nodiscard]] Record makeRecord(const Vector<QQ>& x, const Discovery& discovery);
  void insert(Record record);
  void insertUnlessThere(Record record);
  void take(std::string_view text);
  [[nodiscard]] std::vector<const Record*> inOrder() const;
  static bool isBetter(const Record* a, const Record* b);

  const Vexil<QQ>& program_;
  String name_;
  Say say_;
  String path_;
  LockFile lock_;
  std::deque<Record> records_;
  std::unordered_multimap<std::string_view, Record*> byElements_;
  std::set<Origin> origins_;
  std::int64_t pointCount_ = 0;
  std::string seen_;        ///< the text of the file when it was last read or written
  bool lossless_ = true;    ///< a new file will hold all that `seen_` does
  bool hasFailed_ = false;  ///< `seen_` has a star that is no point of the program
};

}  // namespace vexil
