#include <algorithm>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "database/connection.h"
#include "database/schema.h"
#include "database/transactions.h"
#include "insight/record_parts.h"

namespace vrx {

// Finds single deliveries of pens by the index of pens, without reading the days between. The name
// of no pen is empty. All functions throw SQLite::Exception.
class PenSearch {
 public:
  // `ranges` are those of ReadTransactionRanges. Everything outlives it.
  PenSearch(SQLite::Database& database, const RecordReader& reader,
            const std::vector<std::int64_t>& ranges);

  // Reads the index of dates from the day on.
  [[nodiscard]] bool HasRowsAfter(DayNumber day);
  // The pens that any row has.
  [[nodiscard]] std::vector<std::string> Pens();
  // The day of some delivery before or after another day.
  [[nodiscard]] std::optional<DayNumber> DayBefore(const std::string& pen, DayNumber day);
  [[nodiscard]] std::optional<DayNumber> DayAfter(const std::string& pen, DayNumber day);

 private:
  std::optional<DayNumber> FindDay(const std::string& pen, const std::string& condition);

  SQLite::Database& database_;
  const RecordReader& reader_;
  std::string ranges_;  // a JSON array
  // The first row after the last day that was asked for: no delivery after it has a lower rowid.
  std::optional<DayNumber> after_;
  std::optional<std::int64_t> first_after_;
};

namespace {

std::string DayText(DayNumber day) { return "'" + StoredText(*ToDate(day)) + "'"; }

}  // namespace

PenSearch::PenSearch(SQLite::Database& database, const RecordReader& reader,
                     const std::vector<std::int64_t>& ranges)
    : database_(database), reader_(reader), ranges_(JsonArray(ranges)) {}

std::vector<std::string> PenSearch::Pens() {
  const std::string next = "SELECT min(Pen) FROM Transactions WHERE " +
                           std::string(kTransactionRange) + " = Listed.Number AND Pen > ";
  SQLite::Statement query(
      database_,
      "WITH RECURSIVE Listed (Number, Name) AS (SELECT value, '' FROM json_each(?1) "
      "UNION ALL SELECT Number, (" +
          next +
          "Listed.Name) FROM Listed WHERE Name IS NOT "
          "NULL) SELECT DISTINCT Name FROM Listed WHERE Name IS NOT NULL");
  query.bind(1, ranges_);
  std::vector<std::string> pens;  // the first one is no pen
  while (query.executeStep()) {
    pens.push_back(query.getColumn(0).getString());
  }
  return pens;
}

std::optional<DayNumber> PenSearch::DayBefore(const std::string& pen, DayNumber day) {
  return FindDay(pen, " AND +[Date] > '' AND +[Date] < " + DayText(day));
}

std::optional<DayNumber> PenSearch::DayAfter(const std::string& pen, DayNumber day) {
  if (!HasRowsAfter(day)) {
    return std::nullopt;
  }
  return FindDay(
      pen, " AND rowid >= " + std::to_string(*first_after_) + " AND +[Date] > " + DayText(day));
}

bool PenSearch::HasRowsAfter(DayNumber day) {
  if (after_ != day) {
    // Of a plain rowid SQLite would read the table up to the first such row.
    SQLite::Statement first(database_,
                            "SELECT min(+rowid) FROM Transactions WHERE [Date] > " + DayText(day));
    first.executeStep();
    const SQLite::Column rowid = first.getColumn(0);
    first_after_ = rowid.isNull() ? std::nullopt : std::optional(rowid.getInt64());
    after_ = day;
  }
  return first_after_.has_value();
}

std::optional<DayNumber> PenSearch::FindDay(const std::string& pen, const std::string& condition) {
  const auto find = [&](const char* is_pen) -> std::optional<DayNumber> {
    SQLite::Statement query(database_,
                            std::string("SELECT rowid, [Date] FROM Transactions WHERE ") + is_pen +
                                " AND Type = 'FEED'" + condition + InTransactionRanges("?2"));
    query.bind(1, pen);
    query.bind(2, ranges_);
    while (query.executeStep()) {
      const auto date = ParseStoredDate(query.getColumn(1).getString());
      if (date && !reader_.IsLeftOut(query.getColumn(0).getInt64())) {
        return ToDayNumber(date);
      }
    }
    return std::nullopt;
  };
  const std::optional<DayNumber> found = find("Pen = ?1");
  return found || !pen.empty() ? found : find("Pen IS NULL AND ?1 = ''");
}

struct PenDaysReader::Delivery {
  DayNumber day;
  std::int32_t seconds;
  std::int64_t rowid;
  NameId recipe;
  Exact called;
  Exact delivered;

  // In order of date and time; equal times are in stored order.
  bool operator<(const Delivery& other) const {
    return std::tie(day, seconds, rowid) < std::tie(other.day, other.seconds, other.rowid);
  }
  static Delivery Of(const Record& record) {
    return {record.day, record.seconds, record.rowid, record.recipe, record.target, record.actual};
  }
};

namespace {

constexpr unsigned kDeliveryColumns =
    kReadDeliveries | kReadRecipe | kReadPen | kReadWeights | kReadDate | kReadTime;
constexpr int kFirstStep = 32;  // days

}  // namespace

PenDaysReader::PenDaysReader(SQLite::Database& database, RecordReader& reader,
                             const Question& question)
    : database_(database),
      reader_(reader),
      question_(question),
      wanted_(reader.IdOf(question.pen, NameKind::kPen)) {}

DaysOfPens PenDaysReader::Read() {
  WithDatabaseErrors(database_, [this] {
    const bool has_names = question_.recipe || question_.ingredient || question_.operator_id;
    const auto ranges = ReadTransactionRanges(database_, "Pen, Type");
    if (!question_.HasPeriod() || has_names || !ranges) {
      ReadDays({}, {});
      return;
    }
    const DayNumber first = question_.from ? ToDayNumber(question_.from) - kShiftDays : kNoDay;
    ReadDays(ToDate(first), question_.to);
    PenSearch search(database_, reader_, *ranges);
    if (question_.to) {
      AddLaterDays(search);
    }
    if (question_.from) {
      AddDaysBefore(search);
    }
  });
  DaysOfPens days;
  for (auto& [pen, read] : pens_) {
    days.emplace(pen, std::move(read.days));
  }
  return days;
}

void PenDaysReader::ReadDays(const std::optional<Date>& from, const std::optional<Date>& to) {
  const Question days{.from = from, .to = to, .rows_at_once = question_.rows_at_once};
  const std::vector<DayRange> ranges = ReadDayRanges(database_, days).ranges;
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    std::map<NameId, std::vector<Delivery>> deliveries;
    reader_.ReadDates(
        kDeliveryColumns, ranges[i],
        [&](const Record& record) {
          if (record.day != kNoDay && (wanted_ == kNoName || record.pen == wanted_)) {
            deliveries[record.pen].push_back(Delivery::Of(record));
          }
        },
        static_cast<int>(i * kAllPercent / ranges.size()));
    for (auto& [pen, of_pen] : deliveries) {
      Fold(pens_[pen], of_pen);
    }
  }
}

void PenDaysReader::Fold(Pen& pen, std::vector<Delivery>& deliveries) {
  std::sort(deliveries.begin(), deliveries.end());
  if (pen.days.empty()) {
    pen.first_recipe = deliveries.front().recipe;
  }
  for (const Delivery& delivery : deliveries) {
    if (pen.days.empty() || pen.days.back().day != delivery.day) {
      pen.days.push_back({.day = delivery.day});
    }
    DayOfPen& day = pen.days.back();
    day.called += delivery.called;
    day.delivered += delivery.delivered;
    ++day.feedings;
    day.recipe = delivery.recipe;
    day.recipe_changed =
        day.recipe_changed || pen.last_recipe.value_or(delivery.recipe) != delivery.recipe;
    day.first = day.first == kNoTime ? delivery.seconds : day.first;
    pen.last_recipe = delivery.recipe;
  }
}

// A pen that was not fed in the period has lines if it was fed before and after it.
void PenDaysReader::AddLaterDays(PenSearch& search) {
  const DayNumber last = ToDayNumber(question_.to);
  if (!search.HasRowsAfter(last)) {
    return;
  }
  std::set<NameId> open;
  for (const auto& [pen, read] : pens_) {
    open.insert(pen);
  }
  if (question_.from && wanted_ != kNoName) {
    open.insert(wanted_);
  } else if (question_.from) {
    for (const std::string& name : search.Pens()) {
      open.insert(reader_.IdOf(name, NameKind::kPen));
    }
  }
  for (const NameId pen : open) {
    const auto known = pens_.find(pen);
    if (known != pens_.end() && known->second.days.back().day == last) {
      continue;
    }
    const std::string& name = reader_.NamesOf(NameKind::kPen).Text(pen);
    const std::optional<DayNumber> after = search.DayAfter(name, last);
    if (!after) {
      continue;
    }
    if (known == pens_.end()) {
      const auto before = search.DayBefore(name, ToDayNumber(question_.from) - kShiftDays);
      if (!before) {
        continue;
      }
      pens_[pen].days.push_front({.day = *before});
    }
    pens_[pen].days.push_back({.day = *after});
  }
}

void PenDaysReader::AddDaysBefore(PenSearch& search) {
  const DayNumber from = ToDayNumber(question_.from);
  DayNumber start = from - kShiftDays;
  std::set<NameId> open;
  for (const auto& [pen, read] : pens_) {
    if (read.days.front().day > from - kMeanDays + 1 &&
        search.DayBefore(reader_.NamesOf(NameKind::kPen).Text(pen), start)) {
      open.insert(pen);
    }
  }
  for (int step = kFirstStep; !open.empty(); step *= 2) {
    const DayNumber before = start - 1;
    start -= step;
    std::map<NameId, Delivery> found;
    reader_.ReadDates(kDeliveryColumns, {*ToDate(start), *ToDate(before)},
                      [&](const Record& record) {
                        if (!open.contains(record.pen)) {
                          return;
                        }
                        const Delivery delivery = Delivery::Of(record);
                        const auto [known, is_new] = found.try_emplace(record.pen, delivery);
                        if (!is_new && known->second < delivery) {
                          known->second = delivery;
                        }
                      });
    for (const auto& [pen, delivery] : found) {
      Pen& read = pens_[pen];
      DayOfPen& first = read.days.front();
      first.recipe_changed = first.recipe_changed || read.first_recipe != delivery.recipe;
      read.days.push_front({.day = delivery.day});
      open.erase(pen);
    }
  }
}

}  // namespace vrx
