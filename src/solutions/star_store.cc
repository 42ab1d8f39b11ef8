// Vexil - exact integer optimization on lattices.
#include "solutions/star_store.h"

#include <algorithm>
#include <sstream>
#include <unordered_set>

#include "foundation/exceptions.h"
#include "foundation/failure.h"
#include "solutions/point_check.h"
#include "solutions/strict_sol_reader.h"
#include "solutions/whole_file.h"

namespace vexil {

namespace {

/// The options of a star that came without: an empty field would take the next line for its text
/// when the tool reads the file.
constexpr const char* NO_OPTIONS = "--verb=0";

Vector<QQ> vectorOf(std::string_view text) {
  std::istringstream in{std::string(text)};
  Vector<QQ> vector;
  vector.read(in);
  return vector;
}

}  // namespace

StarStore::StarStore(const Vexil<QQ>& program, const String& name, Say say)
    : program_(program),
      name_(name),
      say_(std::move(say)),
      path_(resolvedPath(name)),
      lock_(path_) {
  auto text = readWholeFile(path_);
  checkReplaceable(path_);
  seen_ = std::move(text).value_or("");
  take(seen_);
}

Star<QQ> StarStore::evaluated(const Vector<QQ>& x) const {
  Star<QQ> star;
  static_cast<Vector<QQ>&>(star) = x;
  if (program_.At.rowCount > 0) star.targetValues = program_.At * x;
  star.targetNorm = program_.targetAndSlackNorm(star.targetValues, x, star.slackNorm);
  return star;
}

StarStore::Record StarStore::makeRecord(const Vector<QQ>& x, const Discovery& discovery) {
  const Star<QQ> star = evaluated(x);
  String values;
  x.appendTo(values, DIGITS);
  const std::size_t elementsLength = values.size();
  values += joined(" | ", star.targetNorm, " | ", star.targetValues, " | ", star.slackNorm);
  const String& options = discovery.paramText;
  const Origin* const origin =
      &*origins_.emplace(options.empty() ? NO_OPTIONS : options, discovery.version).first;
  return {std::move(values), elementsLength, star.targetNorm,
          star.slackNorm,    discovery.time, origin};
}

void StarStore::insert(Record record) {
  Record& kept = records_.emplace_back(std::move(record));
  if (!byElements_.contains(kept.elements())) ++pointCount_;
  byElements_.emplace(kept.elements(), &kept);
}

/// Of two stars with equal elements and options the better one stays.
void StarStore::insertUnlessThere(Record record) {
  const auto [first, last] = byElements_.equal_range(record.elements());
  const auto same = std::find_if(first, last, [&](const auto& entry) {
    return entry.second->origin->first == record.origin->first;
  });
  if (same == last) return insert(std::move(record));
  Record& there = *same->second;
  if (there.time == record.time && there.origin == record.origin) return;
  lossless_ = false;
  if (!isBetter(&record, &there)) return;
  there.time = record.time;
  there.origin = record.origin;
}

/// Takes in what a sol file holds.
void StarStore::take(std::string_view text) {
  lossless_ = true;
  hasFailed_ = false;
  StrictSolReader reader(name_, text);
  for (SolEntry entry; reader.next(entry);) {
    if (const auto fault = faultOfPoint(program_, entry.elements)) {
      say_(joined(name_, ":", entry.line, ": the star is not kept: ", *fault));
      hasFailed_ = true;
      continue;
    }
    insertUnlessThere(makeRecord(entry.elements, {entry.time, entry.paramText, entry.version}));
  }
  lossless_ = lossless_ && !hasFailed_ && reader.isLossless();
}

bool StarStore::add(const Vector<QQ>& x, const Discovery& discovery) {
  Record found = makeRecord(x, discovery);
  if (byElements_.contains(found.elements())) return false;
  insert(std::move(found));
  return true;
}

/// The order of stars.
bool StarStore::isBetter(const Record* a, const Record* b) {
  if (a->targetNorm != b->targetNorm) return a->targetNorm < b->targetNorm;
  if (a->slackNorm != b->slackNorm) return a->slackNorm < b->slackNorm;
  if (a->time != b->time) return a->time != -1 && (b->time == -1 || a->time < b->time);
  const int versions = compareVersions(a->origin->second, b->origin->second);
  if (versions != 0) return versions > 0;
  if (const int order = a->elements().compare(b->elements()); order != 0) return order < 0;
  return a->origin->first < b->origin->first;
}

std::vector<const StarStore::Record*> StarStore::inOrder() const {
  std::vector<const Record*> order;
  order.reserve(records_.size());
  for (const Record& record : records_) order.push_back(&record);
  std::sort(order.begin(), order.end(), isBetter);
  return order;
}

String StarStore::text() const {
  String text;
  for (const Record* const record : inOrder()) {
    const auto& [options, version] = *record->origin;
    text += record->values + " | " + std::to_string(record->time) + " | " + options;
    if (!version.empty()) text += " | " + version;
    text += '\n';
  }
  return text;
}

void StarStore::forEachPoint(const std::function<void(const Star<QQ>&)>& visit) const {
  std::unordered_set<std::string_view> seen;
  for (const Record* const record : inOrder()) {
    if (!seen.insert(record->elements()).second) continue;
    Star<QQ> star = evaluated(vectorOf(record->elements()));
    star.time = record->time;
    star.paramText = record->origin->first;
    star.version = record->origin->second;
    visit(star);
  }
}

std::vector<Vector<QQ>> StarStore::points() const {
  std::vector<Vector<QQ>> points;
  points.reserve(static_cast<std::size_t>(pointCount_));
  forEachPoint([&](const Star<QQ>& star) { points.push_back(star); });
  return points;
}

void StarStore::save() {
  auto present = readWholeFile(path_);
  if (present && *present != seen_) {
    take(*present);
    seen_ = std::move(*present);
  }
  String text = this->text();
  if (present && text == seen_) return;
  String kept;
  if (!text.empty()) {
    kept = replaceFile(path_, text, !lossless_);
  } else if (present && hasFailed_) {
    kept = setFileAside(path_);
  } else {
    return;
  }
  if (!kept.empty()) say_(joined(name_, ": the file as it was is now ", kept));
  seen_ = std::move(text);
  lossless_ = true;
  hasFailed_ = false;
}

}  // namespace vexil
