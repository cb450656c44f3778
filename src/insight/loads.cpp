#include "insight/loads.h"

#include <algorithm>
#include <utility>

#include "database/connection.h"
#include "insight/accuracy_figures.h"
#include "insight/names.h"
#include "insight/record_reader.h"

namespace vrx {
namespace {

constexpr double kSecondsADay = 24.0 * 60 * 60;

class LoadsAnswer {
 public:
  LoadsAnswer(SQLite::Database& database, const AccuracyQuestion& question,
              const InsightProgress& progress)
      : question_(question),
        reader_(database, question.about, progress),
        counts_(question.limits.percent > 0 ? question.limits.percent : 1),
        ingredient_(reader_.IdOf(question.about.ingredient, NameKind::kIngredient)),
        pen_(reader_.IdOf(question.about.pen, NameKind::kPen)) {
    static_cast<void>(AccuracyTests(question.limits, reader_.Unit()));  // checks them
  }

  Loads Read() {
    const unsigned rows =
        question_.deliveries ? kReadDeliveries | kReadPen : kReadLoads | kReadIngredient;
    reader_.Read(
        rows | kReadBatch | kReadRecipe | kReadOperator | kReadWeights | kReadDate | kReadTime,
        [this](const Record& record) { Take(record); });
    answer_.dots = dots_.Take();
    if (question_.limits.percent > 0) {
      answer_.ranges = counts_.Ranges();
    }
    for (Far& far : largest_) {
      answer_.largest.push_back(std::move(far.line));
    }
    answer_.notes = reader_.Notes();
    return std::move(answer_);
  }

 private:
  struct Far {
    Exact amount;
    LoadLine line;
  };

  void Take(const Record& record) {
    if ((record.is_load && ingredient_ != kNoName && record.ingredient != ingredient_) ||
        (!record.is_load && pen_ != kNoName && record.pen != pen_) || record.target.Sign() <= 0) {
      return;
    }
    if (record.actual.Sign() <= 0) {
      if (answer_.not_loaded_count++ < static_cast<std::int64_t>(kMostNotLoaded)) {
        answer_.not_loaded.push_back(LineOf(record));
      }
      return;
    }
    ++answer_.n;
    const Exact difference = record.actual - record.target;
    const double percent = Percent(difference, record.target);
    counts_.Add(percent);
    if (record.day != kNoDay) {
      const double part = record.seconds == kNoTime ? 0 : record.seconds / kSecondsADay;
      dots_.Add({.day = record.day + part, .percent = percent, .record = record.rowid});
    }
    NoteLargest(record, difference.Abs());
  }

  void NoteLargest(const Record& record, const Exact& amount) {
    if (amount.Sign() == 0 ||
        (largest_.size() == kLargestLoads && amount <= largest_.back().amount)) {
      return;
    }
    const auto place =
        std::ranges::find_if(largest_, [&amount](const Far& far) { return far.amount < amount; });
    largest_.insert(place, {amount, LineOf(record)});
    if (largest_.size() > kLargestLoads) {
      largest_.pop_back();
    }
  }

  [[nodiscard]] LoadLine LineOf(const Record& record) const {
    const auto name = [this](NameKind kind, NameId id) { return reader_.NamesOf(kind).Name(id); };
    LoadLine line{.record = record.rowid,
                  .transaction = reader_.Batches()[record.batch].Number(),
                  .date = ToDate(record.day),
                  .time = ToTime(record.seconds),
                  .recipe = name(NameKind::kRecipe, record.recipe),
                  .operator_id = name(NameKind::kOperator, record.operator_id),
                  .ingredient = name(NameKind::kIngredient, record.ingredient),
                  .pen = name(NameKind::kPen, record.pen),
                  .target = record.target.ToDouble(),
                  .actual = record.actual.ToDouble(),
                  .difference = (record.actual - record.target).ToDouble()};
    if (record.target.Sign() > 0) {
      line.percent = Percent(record.actual - record.target, record.target);
    }
    return line;
  }

  const AccuracyQuestion& question_;
  RecordReader reader_;
  DeviationCounts counts_;
  DeviationLoads dots_;
  NameId ingredient_;
  NameId pen_;
  std::vector<Far> largest_;
  Loads answer_;
};

}  // namespace

Loads ReadLoads(SQLite::Database& database, const AccuracyQuestion& question,
                const InsightProgress& progress) {
  return WithDatabaseErrors(database,
                            [&] { return LoadsAnswer(database, question, progress).Read(); });
}

}  // namespace vrx
