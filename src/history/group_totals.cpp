#include "history/group_totals.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <span>

#include <SQLiteCpp/Statement.h>

#include "database/schema.h"
#include "history/columns.h"

namespace vrx {
namespace {

constexpr std::size_t kTotalsHeld = 4096;
constexpr std::int64_t kLargeGroup = 1000;
// So many terms take as long as the rest of a record.
constexpr std::int64_t kTermsOfARecord = 16;
// Groups that are partly read.
constexpr std::size_t kReadingHeld = 256;

std::uint64_t KeyOf(const GroupPath& path) {
  return static_cast<std::uint64_t>(path.size()) << 32U | path.back();
}

// Makes room for one more in a cache: large groups stay, because they take long to read.
template <typename Cache>
void DropSmallGroups(Cache& cache) {
  if (cache.size() >= kTotalsHeld) {
    std::erase_if(cache, [](const auto& held) { return held.second.records < kLargeGroup; });
  }
}

bool IsActualWeight(int column) {
  return column == kActualBatchColumn || column == kActualFeedColumn;
}

// The columns with a sum, by level. On a level where weights are blank, each actual weight still is
// of one kind; `actual_weights` keeps them.
std::vector<std::vector<int>> SummedByLevel(const DataGroup& group, const std::vector<int>& columns,
                                            bool actual_weights) {
  std::vector<std::vector<int>> by_level(group.levels.size());
  for (const int column : columns) {
    const bool summed = HistoryColumnAt(column).summed;
    int depth = 1;
    for (std::vector<int>& level : by_level) {
      const bool kept = actual_weights && IsActualWeight(column);
      if (summed && (kept || !IsBlanked(group, depth, column))) {
        level.push_back(column);
      }
      ++depth;
    }
  }
  return by_level;
}

}  // namespace

GroupTotals::GroupTotals(Statements& statements, const GroupQuery& query, DataGroup group,
                         const std::vector<int>& columns)
    : statements_(statements), query_(query), group_(std::move(group)) {
  SetColumns(columns);
}

void GroupTotals::SetColumns(const std::vector<int>& columns) {
  std::vector<std::vector<int>> by_level = SummedByLevel(group_, columns, false);
  if (by_level != columns_) {
    columns_ = std::move(by_level);
    Forget();
  }
}

bool GroupTotals::Knows(const GroupPath& path) const {
  return ColumnsOf(path).empty() || totals_.contains(KeyOf(path));
}

std::optional<std::vector<CellValue>> GroupTotals::Find(const GroupPath& path) const {
  if (ColumnsOf(path).empty()) {
    return CellsOf(path, {});
  }
  const auto total = totals_.find(KeyOf(path));
  return total == totals_.end() ? std::nullopt : std::optional(CellsOf(path, total->second));
}

std::vector<CellValue> GroupTotals::Load(const Outline& outline, const GroupPath& path) {
  std::string text = "SELECT count(*)";
  for (const int column : ColumnsOf(path)) {
    text += ", exact_sum(" + Bracketed(HistoryColumnAt(column).field) + ")";
  }
  Statements::InUse statement = statements_.Take(text + query_.From(path.size()));
  query_.Bind(*statement, outline.Values(path));
  statement->executeStep();
  Total total{.records = statement->getColumn(0).getInt64(), .sums = {}};
  for (std::size_t i = 0; i < ColumnsOf(path).size(); ++i) {
    total.sums.push_back(statement->getColumn(static_cast<int>(i) + 1).getDouble());  // 0 for NULL
  }
  DropSmallGroups(totals_);
  return CellsOf(path, totals_.insert_or_assign(KeyOf(path), std::move(total)).first->second);
}

std::vector<CellValue> GroupTotals::Of(const GroupPath& path, const GroupSums& sums) const {
  std::vector<CellValue> cells(kHistoryColumnCount);
  for (const int column : ColumnsOf(path)) {
    const auto index = static_cast<std::size_t>(column) - 1;
    cells[index] = sums.cells[index];
  }
  return cells;
}

std::vector<CellValue> GroupTotals::CellsOf(const GroupPath& path, const Total& total) const {
  const std::vector<int>& columns = ColumnsOf(path);
  std::vector<CellValue> cells(kHistoryColumnCount);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    cells[static_cast<std::size_t>(columns[i]) - 1] = total.sums[i];
  }
  return cells;
}

SlicedTotals::SlicedTotals(Statements& statements, const GroupQuery& query, DataGroup group)
    : statements_(statements), query_(query), group_(std::move(group)) {}

void SlicedTotals::SetColumns(const std::vector<int>& columns, bool compared) {
  std::vector<std::vector<int>> by_level = SummedByLevel(group_, columns, true);
  if (by_level != columns_ || compared != compared_) {
    columns_ = std::move(by_level);
    compared_ = compared;
    Forget();
  }
}

void SlicedTotals::Forget() {
  known_.clear();
  reading_.clear();
}

const GroupSums* SlicedTotals::Find(const GroupPath& path) const {
  const auto found = known_.find(KeyOf(path));
  return found == known_.end() ? nullptr : &found->second;
}

std::vector<std::string> SlicedTotals::TermsOf(const GroupPath& path) const {
  std::vector<std::string> terms;
  for (const int column : columns_[path.size() - 1]) {
    terms.push_back(Bracketed(HistoryColumnAt(column).field));
  }
  if (compared_) {
    const auto compared = ComparisonTerms();
    terms.insert(terms.end(), compared.begin(), compared.end());
  }
  return terms;
}

const GroupSums& SlicedTotals::Load(const Outline& outline, const GroupPath& path) {
  const std::vector<std::string> terms = TermsOf(path);
  std::string text = "SELECT count(*)";
  for (const std::string& term : terms) {
    text += ", exact_sum(" + term + ")";
  }
  Statements::InUse statement = statements_.Take(text + query_.From(path.size()));
  query_.Bind(*statement, outline.Values(path));
  statement->executeStep();
  std::vector<std::optional<double>> sums;
  for (int column = 1; column <= static_cast<int>(terms.size()); ++column) {
    const SQLite::Column sum = statement->getColumn(column);
    sums.push_back(sum.isNull() ? std::nullopt : std::optional(sum.getDouble()));
  }
  return Keep(path, statement->getColumn(0).getInt64(), sums);
}

std::int64_t SlicedTotals::Read(const Outline& outline, const GroupPath& path,
                                std::int64_t records) {
  if (!CanSlice()) {
    return Load(outline, path).records + kSearchCost;
  }
  if (reading_.size() >= kReadingHeld) {
    reading_.clear();
  }
  const auto started = reading_.find(KeyOf(path));
  Progress progress = started == reading_.end() ? Start(outline, path) : started->second;
  const std::int64_t cost = 1 + std::ssize(progress.terms) / kTermsOfARecord;
  std::int64_t read = 0;
  bool more = !query_.IsRanged() || progress.range < query_.Ranges().size();
  while (more && read < records) {
    const std::int64_t wanted = std::max<std::int64_t>((records - read) / cost, 1);
    const std::int64_t found = ReadPart(progress, wanted);
    read += found * cost + kSearchCost;
    more = found == wanted || StartNextPart(progress);
  }
  if (more) {
    reading_.insert_or_assign(KeyOf(path), std::move(progress));
    return read;
  }
  std::vector<std::optional<double>> sums;
  for (const std::optional<ExactSum>& sum : progress.sums) {
    sums.push_back(sum ? std::optional(sum->Value()) : std::nullopt);
  }
  Keep(path, progress.records, sums);
  reading_.erase(KeyOf(path));
  return read;
}

// A database from another source lacks an index by ranges of transactions, so that each slice would
// scan the table.
bool SlicedTotals::CanSlice() const { return query_.IsRanged() || query_.RangedColumns().empty(); }

SlicedTotals::Progress SlicedTotals::Start(const Outline& outline, const GroupPath& path) const {
  const std::size_t depth = path.size();
  Progress progress{.values = outline.Values(path), .key = {}, .terms = TermsOf(path), .sums = {}};
  if (depth < query_.Levels().size()) {
    progress.key = query_.Levels()[depth].field;
  } else if (!query_.StoredOrderIsIndexed()) {
    progress.key = "[Type]";
  }
  progress.sums.resize(progress.terms.size());
  StartPart(progress);
  return progress;
}

void SlicedTotals::StartPart(Progress& progress) const {
  progress.keyed = progress.key.empty();
  progress.last_key = {};
  progress.last_rowid = std::numeric_limits<std::int64_t>::min();
}

// A range has two parts: the records without a key, then those with one.
bool SlicedTotals::StartNextPart(Progress& progress) const {
  if (!progress.keyed) {
    progress.keyed = true;
    return true;
  }
  if (!query_.IsRanged()) {
    return false;
  }
  StartPart(progress);
  return ++progress.range < query_.Ranges().size();
}

std::int64_t SlicedTotals::ReadPart(Progress& progress, std::int64_t records) {
  const std::string& key = progress.key;
  if (key.empty()) {
    return ReadRows(progress, " AND rowid > ?5 ORDER BY rowid", records);
  }
  const std::string in_key = " AND " + key + " IS ?7 AND rowid > ?5 ORDER BY rowid";
  if (!progress.keyed) {
    return ReadRows(progress, in_key, records);
  }
  const std::string order = " ORDER BY " + key + ", rowid";
  if (IsNull(progress.last_key)) {
    return ReadRows(progress, " AND " + key + " IS NOT NULL" + order, records);
  }
  // Not one condition on both: SQLite would scan the rest of the value from its first record.
  const std::int64_t read = ReadRows(progress, in_key, records);
  return read == records
             ? read
             : read + ReadRows(progress, " AND " + key + " > ?7" + order, records - read);
}

// `rows` can use the last record's rowid as ?5 and its key as ?7.
std::int64_t SlicedTotals::ReadRows(Progress& progress, const std::string& rows,
                                    std::int64_t records) {
  constexpr int kRowid = GroupQuery::kFirstOwnParameter;
  constexpr int kFirstTerm = 2;
  std::string text = "SELECT rowid, " + (progress.key.empty() ? "NULL" : progress.key);
  for (const std::string& term : progress.terms) {
    text += ", " + term;
  }
  const std::size_t depth = progress.values.size();
  text += query_.IsRanged() ? query_.FromRange(depth) : query_.From(depth);
  Statements::InUse statement = statements_.Take(text + rows + " LIMIT ?6");
  if (query_.IsRanged()) {
    query_.BindRange(*statement, progress.values, query_.Ranges()[progress.range]);
  } else {
    query_.Bind(*statement, progress.values);
  }
  if (rows.find("?5") != std::string::npos) {
    statement->bind(kRowid, progress.last_rowid);
  }
  statement->bind(kRowid + 1, records);
  if (rows.find("?7") != std::string::npos) {
    BindValue(*statement, kRowid + 2, progress.last_key);
  }
  std::int64_t read = 0;
  while (statement->executeStep()) {
    ++read;
    progress.last_rowid = statement->getColumn(0).getInt64();
    progress.last_key = ValueOf(statement->getColumn(1));
    int column = kFirstTerm;
    for (std::optional<ExactSum>& sum : progress.sums) {
      const SQLite::Column value = statement->getColumn(column++);
      if (!value.isNull()) {
        if (!sum) {
          sum.emplace();
        }
        sum->Add(value.getDouble());
      }
    }
  }
  progress.records += read;
  return read;
}

const GroupSums& SlicedTotals::Keep(const GroupPath& path, std::int64_t records,
                                    const std::vector<std::optional<double>>& sums) {
  GroupSums kept{.cells = std::vector<CellValue>(kHistoryColumnCount), .records = records};
  const std::vector<int>& columns = columns_[path.size() - 1];
  for (std::size_t i = 0; i < columns.size(); ++i) {
    kept.cells[static_cast<std::size_t>(columns[i]) - 1] = sums[i].value_or(0);
  }
  if (compared_) {
    std::size_t term = columns.size();
    for (Comparison& comparison : kept.comparisons) {
      comparison.target = sums[term++];
      comparison.actual = sums[term++];
    }
  }
  DropSmallGroups(known_);
  return known_.insert_or_assign(KeyOf(path), std::move(kept)).first->second;
}

}  // namespace vrx
