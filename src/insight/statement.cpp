#include <algorithm>
#include <chrono>
#include <set>
#include <string_view>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "database/connection.h"
#include "insight/batch_weights.h"
#include "insight/batches.h"
#include "insight/completeness.h"
#include "insight/record_reader.h"
#include "insight/weight_limit.h"

namespace vrx {
namespace {

constexpr std::size_t kDayLength = 10;  // of "2026-01-05T06:30:00+01:00"

// The dates of rows, each found by one search of the index.
constexpr const char* kDates =
    "WITH RECURSIVE Listed (Day) AS (SELECT min([Date]) FROM Transactions WHERE [Date] > '' UNION "
    "ALL SELECT (SELECT min([Date]) FROM Transactions WHERE [Date] > Day) FROM Listed WHERE Day IS "
    "NOT NULL) SELECT Day FROM Listed WHERE Day IS NOT NULL";

std::vector<Date> ReadDays(SQLite::Database& database) {
  std::vector<Date> days;
  SQLite::Statement query(database, kDates);
  while (query.executeStep()) {
    if (const auto day = ParseStoredDate(query.getColumn(0).getString())) {
      days.push_back(*day);
    }
  }
  return days;
}

void AddStates(SQLite::Database& database, std::int64_t import, Statement& answer) {
  SQLite::Statement query(
      database, "SELECT State, count(*) FROM ImportedBatches WHERE Import = ? GROUP BY 1");
  query.bind(1, import);
  while (query.executeStep()) {
    const std::string state = query.getColumn(0).getString();
    const std::int64_t count = query.getColumn(1).getInt64();
    answer.same += state == "same" ? count : 0;
    answer.continued += state == "continued" ? count : 0;
    answer.conflicts += state == "conflict" ? count : 0;
  }
}

// `before` is the store before, if there is one.
void AddOddDates(const ImportRecord& import, const ImportRecord* before, Statement& answer) {
  const ImportDays days = DaysOf(import);
  if (import.last_date && days.stored && *import.last_date > *days.stored) {
    answer.odd_dates.push_back(
        {.import = import.number, .date = *import.last_date, .in_future = true});
  }
  if (before != nullptr && import.first_date && before->first_date &&
      *import.first_date < *before->first_date) {
    answer.odd_dates.push_back({.import = import.number, .date = *import.first_date});
  }
}

// The rows of a batch that its stores account for, without those that are left out.
class RecordedRows {
 public:
  RecordedRows(SQLite::Database& database, const std::vector<LeftOutImport>& left_out)
      : has_tables_(HasImportTables(database)) {
    if (!has_tables_) {
      return;
    }
    std::string text = "SELECT sum(Rows) FROM ImportedBatches WHERE [Transaction] = ?";
    for (const LeftOutImport& import : left_out) {
      text += " AND Import <> " + std::to_string(import.import);
    }
    query_.emplace(database, text);
  }

  std::int64_t Of(const std::optional<std::int64_t>& transaction) {
    if (!query_ || !transaction) {
      return 0;
    }
    query_->reset();
    query_->bind(1, *transaction);
    query_->executeStep();
    return query_->getColumn(0).getInt64();
  }

 private:
  bool has_tables_;
  std::optional<SQLite::Statement> query_;
};

void AddBatches(SQLite::Database& database, const Question& question,
                const InsightProgress& progress, Statement& answer) {
  RecordReader reader(database, question, progress);
  const BalanceTests tests({}, reader.Unit());
  std::vector<BatchWeights> weights;
  reader.Read(kReadBoth | kReadBatch | kReadWeights, [&](const Record& record) {
    weights.resize(reader.Batches().size());
    weights[record.batch].Add(record);
    ++(record.is_load ? answer.loads : answer.deliveries);
  });
  answer.notes = reader.Notes();
  RecordedRows recorded(database, answer.notes.left_out);
  Exact loaded;
  Exact fed;
  for (std::size_t i = 0; i < weights.size(); ++i) {
    const Batch& batch = reader.Batches()[i];
    if (weights[i].rows == 0) {
      continue;
    }
    loaded += weights[i].loaded;
    fed += weights[i].fed;
    const BalanceState state = tests.StateOf(batch, weights[i]);
    ++answer.batches;
    answer.never_fed += state == BalanceState::kNeverFed ? 1 : 0;
    answer.out += state == BalanceState::kOut ? 1 : 0;
    answer.not_recorded += std::max<std::int64_t>(0, weights[i].rows - recorded.Of(batch.Number()));
  }
  answer.loaded = answer.loads > 0 ? std::optional(loaded.ToDouble()) : std::nullopt;
  answer.fed = answer.deliveries > 0 ? std::optional(fed.ToDouble()) : std::nullopt;
}

}  // namespace

bool ImportDays::Touch(const std::optional<Date>& from, const std::optional<Date>& to) const {
  return (!from || !last || *last >= *from) && (!to || !first || *first <= *to);
}

ImportDays DaysOf(const ImportRecord& import) {
  ImportDays days{.first = import.first_date,
                  .last = import.last_date,
                  .stored = ParseStoredDate(std::string_view(import.at).substr(
                      0, std::min(kDayLength, import.at.size())))};
  if (!days.first || !days.last) {
    days.first = days.last = days.stored;
  }
  return days;
}

void AddImports(const std::vector<ImportRecord>& imports, const std::string& unit,
                const std::function<void(const ImportRecord&)>& taken, Statement& answer) {
  const ImportRecord* before = nullptr;
  const ImportRecord* numbered = nullptr;  // the last one that has batch numbers
  for (const ImportRecord& import : imports) {
    if (DaysOf(import).Touch(answer.from, answer.to)) {
      ++answer.imports;
      answer.not_read += import.not_read;
      answer.left_out += import.left_out;
      if (!import.missing.empty()) {
        answer.missing.push_back({import.number, import.file, import.missing});
      }
      if (numbered != nullptr && import.file_low && *import.file_low > *numbered->file_high + 1) {
        answer.gaps.push_back({.after = numbered->number,
                               .before = import.number,
                               .first = *numbered->file_high + 1,
                               .last = *import.file_low - 1});
      }
      AddOddDates(import, before, answer);
      if ((import.units == "LB" || import.units == "KG") && import.units != unit) {
        answer.other_units.push_back({import.number, import.file, import.units, import.settled});
      }
      taken(import);
    }
    before = &import;
    numbered = import.file_low && import.file_high ? &import : numbered;
  }
}

void AddDaysWithout(const std::vector<Date>& days, Statement& answer) {
  for (std::size_t i = 1; i < days.size(); ++i) {
    auto first = std::chrono::sys_days(days[i - 1]) + std::chrono::days(1);
    auto last = std::chrono::sys_days(days[i]) - std::chrono::days(1);
    first = answer.from ? std::max(first, std::chrono::sys_days(*answer.from)) : first;
    last = answer.to ? std::min(last, std::chrono::sys_days(*answer.to)) : last;
    if (first > last) {
      continue;
    }
    answer.days_without += (last - first).count() + 1;
    for (; first <= last && answer.first_days_without.size() < kMostDaysWithout;
         first += std::chrono::days(1)) {
      answer.first_days_without.emplace_back(first);
    }
  }
}

Statement ReadStatement(SQLite::Database& database, const std::optional<Date>& from,
                        const std::optional<Date>& to, const InsightProgress& progress) {
  return WithDatabaseErrors(database, [&] {
    const ReadTransaction transaction(database);
    const Question question{.from = from, .to = to};
    Statement answer{.from = from, .to = to};
    AddBatches(database, question, progress, answer);
    AddImports(
        ReadImports(database), answer.notes.units,
        [&](const ImportRecord& import) { AddStates(database, import.number, answer); }, answer);
    AddDaysWithout(ReadDays(database), answer);
    return answer;
  });
}

}  // namespace vrx
