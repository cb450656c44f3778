#include <algorithm>
#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <set>
#include <utility>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "base/translation.h"
#include "database/connection.h"
#include "insight/completeness.h"
#include "insight/names.h"
#include "insight/pens.h"
#include "insight/record_reader.h"
#include "insight/weight_limit.h"

namespace vrx {
namespace {

constexpr std::int64_t kMinutesADay = std::int64_t{24} * 60;

using Minutes = std::int64_t;  // since 1970-01-01

std::optional<Moment> MomentOf(const std::optional<Minutes>& minutes) {
  if (!minutes) {
    return std::nullopt;
  }
  const std::chrono::sys_time<std::chrono::minutes> time{std::chrono::minutes(*minutes)};
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const auto of_day = static_cast<int>((time - day).count());
  return Moment{.date = Date(day), .time = {of_day / 60, of_day % 60, 0}};
}

struct HeldBatch {
  Exact left = {};      // loaded - fed
  bool held = false;    // a load of one of the ingredients
  bool counts = false;  // has a row up to the day
};

// Years have millions of them, so batch and time share eight bytes.
class HeldDelivery {
 public:
  HeldDelivery(std::uint32_t batch, Minutes time)
      : packed_((static_cast<std::uint64_t>(time - kFirst) << kBatchBits) | batch) {}

  [[nodiscard]] std::uint32_t Batch() const {
    return static_cast<std::uint32_t>(packed_ & ((std::uint64_t{1} << kBatchBits) - 1));
  }
  [[nodiscard]] Minutes Time() const {
    return static_cast<Minutes>(packed_ >> kBatchBits) + kFirst;
  }

 private:
  // 33 bits are enough for the minutes from 0000-01-01 to 9999-12-31.
  static constexpr unsigned kBatchBits = 31;
  static constexpr Minutes kFirst = -719528 * kMinutesADay;

  std::uint64_t packed_;
};

struct HeldPen {
  std::deque<HeldDelivery> deliveries = {};  // those with a date
  bool has_undated = false;                  // a delivery without date or time
};

// Days whose records are known to be incomplete, and why.
struct Incomplete {
  std::optional<DayNumber> first = {};  // nothing: every day
  std::optional<DayNumber> last = {};
  std::string why = {};

  [[nodiscard]] bool Touches(const std::optional<DayNumber>& from, DayNumber to) const {
    return (!from || !last || *last >= *from) && (!first || *first <= to);
  }
};

// A store that did not read or store everything. What it lacks can be of any day up to that of the
// store.
void AddImports(SQLite::Database& database, const InsightNotes& notes,
                std::vector<Incomplete>& incomplete) {
  for (const ImportRecord& import : ReadImports(database)) {
    const ImportDays days = DaysOf(import);
    Incomplete found;
    const auto say = [&](std::string_view what, const std::string& value = {}) {
      found.why = Tr(what, {std::to_string(import.number), value});
    };
    found.first = days.first ? std::optional(ToDayNumber(days.first)) : std::nullopt;
    found.last = days.last
                     ? std::optional(std::max(ToDayNumber(days.last), ToDayNumber(days.stored)))
                     : std::nullopt;
    const bool other_unit =
        std::any_of(notes.left_out.begin(), notes.left_out.end(),
                    [&](const LeftOutImport& left) { return left.import == import.number; });
    if (import.not_read > 0) {
      say(import.not_read == 1 ? TrMark("import %1 has %2 feed record not read")
                               : TrMark("import %1 has %2 feed records not read"),
          std::to_string(import.not_read));
    } else if (import.left_out > 0) {
      say(import.left_out == 1 ? TrMark("import %1 has %2 row left out")
                               : TrMark("import %1 has %2 rows left out"),
          std::to_string(import.left_out));
    } else if (!import.missing.empty()) {
      say(TrMark("import %1 has missing numbers %2"), import.missing);
    } else if (other_unit) {
      say(TrMark("import %1 has weights in another unit that are not settled"));
    } else {
      continue;
    }
    incomplete.push_back(std::move(found));
  }
}

void AddDays(SQLite::Statement& query, std::set<DayNumber>& days) {
  while (query.executeStep()) {
    days.insert(ToDayNumber(ParseStoredDate(query.getColumn(0).getString())));
  }
}

// The days of the first rows of each transaction that has more than its stores have written.
void AddDaysOfMore(SQLite::Database& database, std::set<DayNumber>& days) {
  SQLite::Statement more(
      database,
      "SELECT Number, (SELECT count(*) FROM Transactions WHERE [Transaction] = Number) - Recorded "
      "AS More FROM (SELECT [Transaction] AS Number, sum(Rows) AS Recorded FROM ImportedBatches "
      "WHERE [Transaction] IS NOT NULL GROUP BY [Transaction]) WHERE Recorded > 0 AND More > 0");
  SQLite::Statement rows(database,
                         "SELECT [Date] FROM Transactions WHERE [Transaction] = ?1 ORDER BY rowid "
                         "LIMIT ?2");
  while (more.executeStep()) {
    rows.reset();
    rows.bind(1, more.getColumn(0).getInt64());
    rows.bind(2, more.getColumn(1).getInt64());
    AddDays(rows, days);
  }
}

// Rows that no store accounts for.
void AddUnrecorded(SQLite::Database& database, std::vector<Incomplete>& incomplete) {
  const bool has_imports = HasImportTables(database);
  SQLite::Statement without_import(
      database, std::string("SELECT DISTINCT [Date] FROM Transactions") +
                    (has_imports ? " WHERE NOT EXISTS (SELECT 1 FROM ImportedBatches WHERE "
                                   "[Transaction] = Transactions.[Transaction] AND Rows > 0)"
                                 : ""));
  std::set<DayNumber> days;
  AddDays(without_import, days);
  if (has_imports) {
    AddDaysOfMore(database, days);
  }
  for (const DayNumber day : days) {
    Incomplete found{.why = Tr("rows that no import accounts for have no date")};
    if (day != kNoDay) {
      found.first = found.last = day;
      found.why =
          Tr("rows that no import accounts for are stored of %1", {StoredText(*ToDate(day))});
    }
    incomplete.push_back(std::move(found));
  }
}

// What of a pen is known.
struct PenState {
  std::optional<Minutes> last = {};
  std::optional<Minutes> since = {};
  std::string undated = {};   // why a delivery is in no order
  std::string leftover = {};  // why a left-over may have reached it since `since`
};

class HoldingAnswer {
 public:
  HoldingAnswer(SQLite::Database& database, const HoldingQuestion& question,
                const InsightProgress& progress)
      : database_(database),
        question_(question),
        about_{.pen = question.pen},
        on_(ToDayNumber(question.on)),
        division_(CheckedLimit(question.division, "division")) {
    for (const std::string& ingredient : question.ingredients) {
      CheckNames(database, {.ingredient = ingredient});
    }
    CheckNames(database, about_);
    reader_.emplace(database, all_, progress);
    for (const std::string& ingredient : question.ingredients) {
      ingredients_.insert(reader_->IdOf(ingredient, NameKind::kIngredient));
    }
  }

  Holding Read() {
    reader_->Read(
        kReadBoth | kReadBatch | kReadIngredient | kReadPen | kReadWeights | kReadDate | kReadTime,
        [this](const Record& record) { Take(record); });
    FindFollowers();
    Holding answer;
    answer.notes = reader_->Notes();
    AddImports(database_, answer.notes, incomplete_);
    AddUnrecorded(database_, incomplete_);
    const NameId wanted = reader_->IdOf(question_.pen, NameKind::kPen);
    for (auto& [pen, held] : pens_) {
      if (wanted == kNoName || pen == wanted) {
        answer.lines.push_back(LineOf(pen, held));
      }
    }
    std::sort(answer.lines.begin(), answer.lines.end(),
              [](const auto& left, const auto& right) { return left.pen < right.pen; });
    return answer;
  }

 private:
  // A row without a date may be of any day. A load counts then and a delivery gives back nothing,
  // so that no ingredient and no left-over is lost.
  void Take(const Record& record) {
    batches_.resize(reader_->Batches().size());
    HeldBatch& batch = batches_[record.batch];
    if (record.day != kNoDay && record.day > on_) {
      return;
    }
    batch.counts = true;
    if (record.is_load) {
      batch.left += record.actual;
      batch.held = batch.held || ingredients_.contains(record.ingredient);
      return;
    }
    HeldPen& pen = pens_[record.pen];
    pen.has_undated = pen.has_undated || record.day == kNoDay || record.seconds == kNoTime;
    if (record.day != kNoDay) {
      batch.left -= record.actual;
      const std::int64_t seconds = std::max(record.seconds, 0);
      pen.deliveries.emplace_back(record.batch,
                                  record.day * kMinutesADay + seconds / kSecondsAMinute);
    }
  }

  // The batches with the next higher number after one that held an ingredient and has a left-over.
  void FindFollowers() {
    std::vector<std::pair<std::int64_t, std::uint32_t>> by_number;
    for (std::uint32_t index = 0; index < batches_.size(); ++index) {
      const auto number = reader_->Batches()[index].Number();
      if (number && batches_[index].counts) {
        by_number.emplace_back(*number, index);
      }
    }
    std::sort(by_number.begin(), by_number.end());
    for (std::size_t next = 1; next < by_number.size(); ++next) {
      const auto& [number, batch] = by_number[next - 1];
      if (batches_[batch].held && batches_[batch].left > division_) {
        followers_[by_number[next].second] = number;
      }
    }
  }

  // In order of date and time, equal minutes in stored order. With a delivery that has no place in
  // this order the pen is unknown.
  PenState StateOf(HeldPen& pen) const {
    PenState state;
    if (pen.has_undated) {
      state.undated = Tr("a delivery has no date or time");
    }
    std::ranges::stable_sort(pen.deliveries, {}, &HeldDelivery::Time);
    for (const HeldDelivery& delivery : pen.deliveries) {
      if (batches_[delivery.Batch()].held) {
        state.last = delivery.Time();
        state.since = std::nullopt;
        state.leftover.clear();
        continue;
      }
      if (state.last && !state.since) {
        state.since = delivery.Time();
      }
      if (const auto follower = followers_.find(delivery.Batch()); follower != followers_.end()) {
        state.leftover = Tr("batch %1 may have had what was left of batch %2",
                            {std::to_string(*reader_->Batches()[delivery.Batch()].Number()),
                             std::to_string(follower->second)});
      }
    }
    return state;
  }

  HoldingLine LineOf(NameId pen, HeldPen& held) const {
    const PenState state = StateOf(held);
    HoldingLine line{.pen = reader_->NamesOf(NameKind::kPen).Name(pen),
                     .last = MomentOf(state.last),
                     .since = MomentOf(state.since)};
    std::optional<Minutes> until;
    if (state.since) {
      until = *state.since + question_.days * kMinutesADay;
    }
    line.until = MomentOf(until);
    if (!state.last) {
      line.state = HoldingState::kNotInTheRecords;
    } else if (!until) {
      line.state = HoldingState::kHeld;
      line.why = Tr("no delivery without the ingredient since");
    } else {
      const bool passed = *until <= (Minutes{on_} + 1) * kMinutesADay;
      line.state = passed ? HoldingState::kPassed : HoldingState::kHeld;
    }
    if (std::string why = UnknownWhy(state); !why.empty()) {
      line.state = HoldingState::kUnknown;
      line.why = std::move(why);
    }
    return line;
  }

  [[nodiscard]] std::string UnknownWhy(const PenState& state) const {
    std::optional<DayNumber> from;
    if (state.last) {
      from = ToDayNumber(MomentOf(state.last)->date);
    }
    for (const Incomplete& incomplete : incomplete_) {
      if (incomplete.Touches(from, on_)) {
        return incomplete.why;
      }
    }
    return state.undated.empty() ? state.leftover : state.undated;
  }

  SQLite::Database& database_;
  const HoldingQuestion& question_;
  const Question about_;  // the pen
  const Question all_ = {};
  DayNumber on_;
  Exact division_;
  std::optional<RecordReader> reader_;
  std::set<NameId> ingredients_;
  std::vector<HeldBatch> batches_;
  std::map<NameId, HeldPen> pens_;
  std::map<std::uint32_t, std::int64_t> followers_;  // and the number of the batch before
  std::vector<Incomplete> incomplete_;
};

}  // namespace

std::string_view TextOf(HoldingState state) {
  switch (state) {
    case HoldingState::kHeld:
      return TrMark("held");
    case HoldingState::kPassed:
      return TrMark("passed");
    case HoldingState::kUnknown:
      return TrMark("unknown");
    case HoldingState::kNotInTheRecords:
      break;
  }
  return TrMark("not in the records");
}

std::string TextOf(const Moment& moment) {
  constexpr std::size_t kHoursAndMinutes = 5;
  return StoredText(moment.date) + "T" + StoredText(moment.time).substr(0, kHoursAndMinutes);
}

Holding ReadHolding(SQLite::Database& database, const HoldingQuestion& question,
                    const InsightProgress& progress) {
  if (question.ingredients.empty() || question.days < 1) {
    throw QuestionError("holding is of an ingredient, for one day or more");
  }
  return WithDatabaseErrors(database,
                            [&] { return HoldingAnswer(database, question, progress).Read(); });
}

}  // namespace vrx
