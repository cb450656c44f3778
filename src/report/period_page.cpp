#include "report/period_page.h"

#include <algorithm>
#include <utility>

#include "base/english_texts.h"
#include "database/connection.h"
#include "insight/record_reader.h"

namespace vrx {
namespace {

constexpr int kQuestions = 8;

// Each question is an equal part of the whole. A question that reads twice does not go back.
class PageProgress {
 public:
  explicit PageProgress(const InsightProgress& progress) : progress_(progress) {}

  // For the next question.
  [[nodiscard]] InsightProgress Next() {
    if (!progress_) {
      return {};
    }
    return [this, part = part_++](int percent) {
      constexpr int kWhole = 100;
      most_ = std::max(most_, (part * kWhole + percent) / kQuestions);
      return progress_(most_);
    };
  }

 private:
  const InsightProgress& progress_;
  int part_ = 0;
  int most_ = 0;
};

Accuracy ReadLoadsBy(AccuracyKey key, SQLite::Database& database, AccuracyQuestion question,
                     const InsightProgress& progress) {
  question.by = {key};
  return ReadAccuracy(database, question, progress);
}

PageAnswers ReadAnswers(SQLite::Database& database, const PageQuestion& question,
                        const InsightProgress& progress) {
  const Question about{.from = question.period.from, .to = question.period.to};
  const AccuracyQuestion loads{.about = about, .limits = question.limits};
  PageProgress parts(progress);
  return {.by_ingredient = ReadLoadsBy(AccuracyKey::kIngredient, database, loads, parts.Next()),
          .by_operator = ReadLoadsBy(AccuracyKey::kOperator, database, loads, parts.Next()),
          .by_day = ReadLoadsBy(AccuracyKey::kDay, database, loads, parts.Next()),
          .loads = ReadLoads(database, loads, parts.Next()),
          .delivered = ReadDelivered(database, about, {}, parts.Next()),
          .balance = ReadBalance(database,
                                 {.about = about,
                                  .percent = question.balance_percent,
                                  .weight = question.balance_weight,
                                  .all = true},
                                 parts.Next()),
          .times = ReadTimes(database, {.about = about}, parts.Next()),
          .statement = ReadStatement(database, about.from, about.to, parts.Next())};
}

template <typename Entry>
void AddNew(std::vector<Entry>& all, const std::vector<Entry>& more) {
  for (const Entry& entry : more) {
    if (std::ranges::find(all, entry) == all.end()) {
      all.push_back(entry);
    }
  }
}

// What is said beside any of the answers, once.
InsightNotes NotesOf(const PageAnswers& answers) {
  InsightNotes all = answers.by_ingredient.notes;
  for (const InsightNotes* const notes :
       {&answers.by_operator.notes, &answers.loads.notes, &answers.delivered.notes,
        &answers.balance.notes, &answers.times.notes, &answers.statement.notes}) {
    AddNew(all.left_out, notes->left_out);
    AddNew(all.alike, notes->alike);
    all.undated = std::max(all.undated, notes->undated);
  }
  return all;
}

std::string TitleOf(const ReportPeriod& period) {
  switch (period.kind) {
    case PeriodKind::kWeek:
      return FilledIn("Feeding report, week %1", {TextOf(period)});
    case PeriodKind::kMonth:
      return FilledIn("Feeding report, month %1", {TextOf(period)});
    case PeriodKind::kDay:
      break;
  }
  return FilledIn("Feeding report, day %1", {TextOf(period)});
}

std::vector<std::string> FactsOf(const PageQuestion& question, const std::string& units) {
  std::vector<std::string> facts;
  if (!question.database.empty()) {
    facts.push_back(question.database);
  }
  if (question.period.kind != PeriodKind::kDay) {
    facts.push_back(
        FilledIn("%1 to %2", {StoredText(question.period.from), StoredText(question.period.to)}));
  }
  facts.push_back(FilledIn("weights in %1", {units}));
  facts.push_back(FilledIn("made on %1", {StoredText(question.made)}));
  return facts;
}

// A batch belongs to the day of its first load, a delivery to its own.
bool HasRecords(const PageAnswers& answers) {
  return answers.statement.batches > 0 ||
         std::ranges::any_of(answers.delivered.lines,
                             [](const DeliveredLine& line) { return !line.missed; });
}

}  // namespace

PeriodPage ReadPeriodPage(SQLite::Database& database, const PageQuestion& question,
                          const InsightProgress& progress) {
  const EnglishTexts english;
  return WithDatabaseErrors(database, [&] {
    const ReadTransaction transaction(database);
    const PageAnswers answers = ReadAnswers(database, question, progress);
    const InsightNotes notes = NotesOf(answers);
    PeriodPage page{.title = TitleOf(question.period),
                    .facts = FactsOf(question, notes.units),
                    .notes = SentencesOf(notes)};
    if (!HasRecords(answers)) {
      page.notes.insert(page.notes.begin(), "The database has no record of this period.");
      return page;
    }
    page.figures = FiguresOf(answers);
    page.sections = SectionsOf(answers, question.period.kind);
    return page;
  });
}

Picture PictureOf(const PageChart& chart, QSizeF size, const Look& look) {
  const EnglishTexts english;
  return std::visit([&](const auto& one) { return PictureOf(one, size, look); }, chart);
}

}  // namespace vrx
