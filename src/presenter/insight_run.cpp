#include "presenter/insight_run.h"

#include <chrono>
#include <utility>

#include <sqlite3.h>

#include "base/translation.h"
#include "database/connection.h"
#include "insight/completeness.h"
#include "insight/names.h"

namespace vrx {
namespace {

// Of one of several reads in a row.
InsightProgress PartOf(const InsightProgress& progress, int part, int parts) {
  return [&progress, part, parts](int percent) {
    return progress((part * kAllPercent + percent) / parts);
  };
}

void AddNotes(InsightAnswer& answer, const InsightNotes& notes) {
  answer.units = notes.units;
  for (std::string& sentence : SentencesOf(notes)) {
    answer.notes.push_back(std::move(sentence));
  }
}

AccuracyQuestion AccuracyOf(const InsightAsked& asked, std::vector<AccuracyKey> by) {
  return {.about = asked.about,
          .deliveries = asked.topic == InsightTopic::kDelivery,
          .by = std::move(by),
          .limits = {.percent = asked.limits.percent,
                     .weight = asked.limits.weight,
                     .beyond = asked.limits.beyond,
                     .division = asked.limits.division}};
}

// The groups whose figures the picture shows besides those of the table.
std::vector<AccuracyKey> KeysOf(InsightPicture picture, bool deliveries) {
  switch (picture) {
    case InsightPicture::kDeviations:
      return {AccuracyKey::kDay};
    case InsightPicture::kOperators:
      return {AccuracyKey::kIngredient, AccuracyKey::kOperator};
    case InsightPicture::kWeights:
      return {AccuracyKey::kIngredient};
    default:
      return {deliveries ? AccuracyKey::kPen : AccuracyKey::kIngredient};
  }
}

// More rows help nobody in a window, and would fill its memory.
constexpr std::size_t kMostRows = 20000;

// The rows of a table that is cut off after kMostRows.
class FirstRows {
 public:
  explicit FirstRows(AnswerTable table) : table_(std::move(table)) {}

  template <typename ToRow>
  void Add(ToRow to_row) {
    if (++count_ <= kMostRows) {
      table_.rows.push_back(to_row());
    }
  }

  void MoveInto(InsightAnswer& answer) {
    answer.table = std::move(table_);
    if (count_ > kMostRows) {
      answer.notes.push_back(Tr("The table has the first %1 of %2 rows. Choose a shorter period.",
                                {std::to_string(kMostRows), std::to_string(count_)}));
    }
  }

 private:
  AnswerTable table_;
  std::size_t count_ = 0;
};

void AnswerGroups(SQLite::Database& database, const InsightAsked& asked,
                  const InsightProgress& progress, InsightAnswer& answer) {
  const InsightTableChoice& choice = asked.Table();
  const AccuracyQuestion question = AccuracyOf(
      asked,
      {choice.keys.begin(), choice.keys.begin() + static_cast<std::ptrdiff_t>(choice.key_count)});
  FirstRows rows(TableOf(Accuracy(), question));
  const Accuracy groups = StreamAccuracy(
      database, question,
      [&](const AccuracyGroup& group) { rows.Add([&] { return RowOf(group); }); }, progress);
  AddNotes(answer, groups.notes);
  rows.MoveInto(answer);
  answer.table.total = TableOf(groups, question).total;
  if (groups.yardstick) {
    for (std::string& sentence : SentencesOf(*groups.yardstick)) {
      answer.notes.push_back(std::move(sentence));
    }
  }
}

void AnswerAccuracy(SQLite::Database& database, const InsightAsked& asked,
                    const InsightProgress& progress, InsightAnswer& answer) {
  const bool deliveries = asked.topic == InsightTopic::kDelivery;
  const InsightPicture picture = asked.Picture();
  const bool has_groups = asked.Table().rows == InsightRows::kGroups;
  const bool needs_loads = !has_groups || picture == InsightPicture::kDeviations ||
                           picture == InsightPicture::kDistribution;
  const int parts = 1 + (has_groups ? 1 : 0) + (needs_loads ? 1 : 0);
  int part = 0;
  if (has_groups) {
    AnswerGroups(database, asked, PartOf(progress, part++, parts), answer);
  }
  const AccuracyQuestion shown = AccuracyOf(asked, KeysOf(picture, deliveries));
  answer.accuracy = ReadAccuracy(database, shown, PartOf(progress, part++, parts));
  if (needs_loads) {
    answer.loads = ReadLoads(database, shown, PartOf(progress, part, parts));
  }
  if (!has_groups) {
    answer.table = TableOf(asked.Table().rows == InsightRows::kNotLoaded ? answer.loads->not_loaded
                                                                         : answer.loads->largest,
                           deliveries);
    AddNotes(answer, answer.loads->notes);
  }
}

void KeepUnbalanced(Balance& balance) {
  std::erase_if(balance.lines,
                [](const BalanceLine& line) { return line.state == BalanceState::kBalanced; });
}

// The batches of the picture. Each is a mark: years of them would be drawn for seconds, one over
// the other.
class BatchMarks {
 public:
  void Add(BalanceLine&& line) {
    constexpr std::size_t kMostMarks = 20000;
    if (only_unbalanced_ && line.state == BalanceState::kBalanced) {
      return;
    }
    marks_.lines.push_back(std::move(line));
    if (!only_unbalanced_ && marks_.lines.size() > kMostMarks) {
      only_unbalanced_ = true;
      KeepUnbalanced(marks_);
    }
  }

  void MoveInto(InsightAnswer& answer) {
    answer.balance->lines = std::move(marks_.lines);
    if (only_unbalanced_) {
      answer.notes.emplace_back(TrMark("The picture has the batches out of balance only."));
    }
  }

 private:
  Balance marks_;
  bool only_unbalanced_ = false;
};

void AnswerBalance(SQLite::Database& database, const InsightAsked& asked,
                   const InsightProgress& progress, InsightAnswer& answer) {
  const bool all_rows = asked.Table().rows == InsightRows::kBatches;
  FirstRows rows(TableOf(Balance()));
  BatchMarks marks;
  answer.balance = StreamBalance(
      database,
      {.about = asked.about,
       .percent = asked.limits.balance_percent,
       .weight = asked.limits.balance_weight,
       .all = true},
      [&](BalanceLine&& line) {
        if (all_rows || line.state != BalanceState::kBalanced) {
          rows.Add([&] { return RowOf(line); });
        }
        marks.Add(std::move(line));
      },
      progress);
  AddNotes(answer, answer.balance->notes);
  if (asked.Table().rows == InsightRows::kDays) {
    answer.table = TableOfDays(*answer.balance);
  } else {
    rows.MoveInto(answer);
  }
  marks.MoveInto(answer);
}

void AnswerTimes(SQLite::Database& database, const InsightAsked& asked,
                 const InsightProgress& progress, InsightAnswer& answer) {
  const TimesKey by =
      asked.Table().rows == InsightRows::kOperators ? TimesKey::kOperator : TimesKey::kRecipe;
  FirstRows batches(TableOfBatches(Times()));
  const Times times = StreamTimes(
      database, {.about = asked.about, .by = by},
      [&](const BatchTimes& batch) { batches.Add([&] { return RowOf(batch); }); }, progress);
  AddNotes(answer, times.notes);
  if (asked.Table().rows == InsightRows::kBatches) {
    batches.MoveInto(answer);
  } else {
    answer.table = TableOf(times, by);
  }
}

void AnswerHolding(SQLite::Database& database, const InsightAsked& asked,
                   const InsightProgress& progress, InsightAnswer& answer) {
  const Holding holding = ReadHolding(database,
                                      {.ingredients = {asked.about.ingredient.value_or("")},
                                       .days = asked.days,
                                       .on = asked.on,
                                       .pen = asked.about.pen,
                                       .division = asked.limits.division},
                                      progress);
  answer.table = TableOf(holding);
  AddNotes(answer, holding.notes);
}

void AnswerDelivered(SQLite::Database& database, const InsightAsked& asked,
                     const InsightProgress& progress, InsightAnswer& answer) {
  FirstRows rows(TableOf(Delivered()));
  std::vector<DeliveredLine> lines;  // of the rows
  answer.delivered = StreamDelivered(
      database, asked.about, {},
      [&](DeliveredLine&& line) {
        rows.Add([&] {
          lines.push_back(std::move(line));
          return RowOf(lines.back());
        });
      },
      progress);
  answer.delivered->lines = std::move(lines);
  AddNotes(answer, answer.delivered->notes);
  rows.MoveInto(answer);
}

// Where an ingredient went: a line without a pen is what stayed, or of a missing pen.
AnswerRow ShownForwardRow(const TraceLine& line) {
  AnswerRow row = ForwardRow(line);
  constexpr std::size_t kPenColumn = 4;
  if (line.stayed || !line.pen) {
    row[kPenColumn] = line.stayed ? Tr("(stayed)") : Tr("(none)");
  }
  return row;
}

void AnswerTrace(SQLite::Database& database, const InsightAsked& asked,
                 const InsightProgress& progress, InsightAnswer& answer) {
  const bool of_pen = asked.Table().rows == InsightRows::kOfPen;
  FirstRows rows(of_pen ? BackwardTable(Trace()) : ForwardTable(Trace()));
  const TakeLine<TraceLine> take = [&](const TraceLine& line) {
    rows.Add([&] { return of_pen ? BackwardRow(line) : ShownForwardRow(line); });
  };
  AddNotes(answer, of_pen ? StreamTraceOfPen(database, asked.about, take, progress)
                          : StreamTraceOfIngredient(database, asked.about, take, progress));
  rows.MoveInto(answer);
}

void AnswerStatement(SQLite::Database& database, const InsightAsked& asked,
                     const InsightProgress& progress, InsightAnswer& answer) {
  const Statement statement = ReadStatement(database, asked.about.from, asked.about.to, progress);
  answer.table = TableOf(statement);
  AddNotes(answer, statement.notes);
}

// Cost and shrink come from files, which only the command line takes.
void KeepWhatWasUsed(AnswerTable& table) {
  constexpr std::size_t kIngredientAndUsed = 2;
  table.columns.resize(kIngredientAndUsed);
  for (auto& row : table.rows) {
    row.resize(kIngredientAndUsed);
  }
  if (!table.total.empty()) {
    table.total.resize(kIngredientAndUsed);
  }
  table.how = TrMark(
      "What was loaded of each ingredient. The command vrx2260ctl use adds cost and shrink from "
      "files of prices and stock.");
}

void AnswerUse(SQLite::Database& database, const InsightAsked& asked,
               const InsightProgress& progress, InsightAnswer& answer) {
  const Use use = ReadUse(database, {.about = asked.about}, progress);
  answer.table = TableOf(use);
  KeepWhatWasUsed(answer.table);
  AddNotes(answer, use.notes);
}

// Ends any statement of the connection after a cancel.
int StopIfCancelled(void* control) {
  return static_cast<const BackgroundWork::Control*>(control)->Cancelled() ? 1 : 0;
}

void Read(const std::filesystem::path& path, const BackgroundRead::Work& work,
          BackgroundWork::Control& control) {
  constexpr int kStepsBetween = 10000;  // of the virtual machine, below a millisecond
  constexpr std::chrono::milliseconds kLockWait{250};
  SQLite::Database database = OpenDatabase(path, Access::kRead, kLockWait);
  sqlite3_progress_handler(database.getHandle(), kStepsBetween, StopIfCancelled, &control);
  work(database, [&control](int percent) {
    control.Show({}, percent, kAllPercent);
    return !control.Cancelled();
  });
}

}  // namespace

InsightLimits LimitsOf(const PrivateINI& settings) {
  using enum PrivateINI::InsightLimit;
  const auto weight = [&](PrivateINI::InsightLimit limit) {
    return WeightLimit{settings.Limit(limit), WeightUnit::kKilograms};
  };
  return {.percent = settings.Limit(kPercent),
          .weight = weight(kWeight),
          .beyond = weight(kBeyond),
          .division = settings.Limit(kDivision),
          .balance_percent = settings.Limit(kBalancePercent),
          .balance_weight = weight(kBalanceWeight)};
}

InsightAnswer AnswerInsight(SQLite::Database& database, const InsightAsked& asked,
                            const InsightProgress& progress) {
  InsightAnswer answer{.asked = asked};
  switch (asked.topic) {
    case InsightTopic::kLoading:
    case InsightTopic::kDelivery:
      AnswerAccuracy(database, asked, progress, answer);
      break;
    case InsightTopic::kBalance:
      AnswerBalance(database, asked, progress, answer);
      break;
    case InsightTopic::kTimes:
      AnswerTimes(database, asked, progress, answer);
      break;
    case InsightTopic::kDelivered:
      AnswerDelivered(database, asked, progress, answer);
      break;
    case InsightTopic::kTrace:
      AnswerTrace(database, asked, progress, answer);
      break;
    case InsightTopic::kHolding:
      AnswerHolding(database, asked, progress, answer);
      break;
    case InsightTopic::kCompleteness:
      AnswerStatement(database, asked, progress, answer);
      break;
    case InsightTopic::kUse:
      AnswerUse(database, asked, progress, answer);
      break;
  }
  return answer;
}

InsightNames ReadInsightNames(SQLite::Database& database) {
  InsightNames names;
  for (std::size_t kind = 0; kind < names.size(); ++kind) {
    names.at(kind) = ReadNames(database, static_cast<NameKind>(kind));
  }
  return names;
}

BackgroundRead::BackgroundRead(std::filesystem::path path, Work work)
    : work_([path = std::move(path), work = std::move(work)](BackgroundWork::Control& control) {
        if (control.Enter()) {
          Read(path, work, control);
        }
      }) {}

}  // namespace vrx
