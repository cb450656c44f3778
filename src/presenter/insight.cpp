#include "presenter/insight.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"

namespace vrx {
namespace {

// A thread is looked at that often.
constexpr Milliseconds kLook{15};
// A shorter question shows no progress.
constexpr Milliseconds kShortQuestion{150};
constexpr int kMostHoldingDays = 9999;

constexpr FailureReport kInsightFailure{.title = "Transaction Data Error",
                                        .text = FailureText::kDatabaseWords};

std::optional<std::string>& NameOf(Question& question, NameKind kind) {
  switch (kind) {
    case NameKind::kIngredient:
      return question.ingredient;
    case NameKind::kOperator:
      return question.operator_id;
    case NameKind::kPen:
      return question.pen;
    case NameKind::kRecipe:
      break;
  }
  return question.recipe;
}

std::optional<std::string> ChosenName(const NameFilter& filter) {
  return filter.index == 0
             ? std::nullopt
             : std::optional(filter.items.at(static_cast<std::size_t>(filter.index) - 1));
}

// The items are others now: the chosen name remains chosen if it is among them.
void ReplaceItems(NameFilter& filter, std::vector<std::string> items) {
  const std::optional<std::string> chosen = ChosenName(filter);
  filter.items = std::move(items);
  const auto found =
      chosen ? std::find(filter.items.begin(), filter.items.end(), *chosen) : filter.items.end();
  filter.index =
      found == filter.items.end() ? 0 : static_cast<int>(found - filter.items.begin()) + 1;
}

}  // namespace

InsightPresenter::InsightPresenter(Services& services, InsightView& view)
    : services_(services), view_(view) {}

void InsightPresenter::SetDatabase(const BoundDatabase& database) {
  Release();
  connection_ = database.connection.get();
  path_ = database.blank ? std::filesystem::path() : database.path;
  if (path_.empty()) {
    for (NameFilter& filter : state_.names) {
      ReplaceItems(filter, {});
    }
    view_.InsightChanged(InsightPart::kQuestion);
  }
  if (shown_) {
    Ask();
  }
}

void InsightPresenter::Release() {
  End();
  names_.reset();
  ShowStandby({});
  connection_ = nullptr;
  path_.clear();
  stale_ = true;
  names_stale_ = true;
}

void InsightPresenter::Show() {
  shown_ = true;
  stale_ = stale_ || state_.asked.limits != LimitsOf(services_.settings);
  if (state_.period.choice != PeriodChoice::kFromTo) {
    const Period today = PeriodOf(state_.period.choice, services_.calendar.Today());
    stale_ = stale_ || today != period_;
    period_ = today;
    state_.period = FieldsOf(state_.period.choice, today);
    view_.InsightChanged(InsightPart::kQuestion);
  }
  if (stale_) {
    Ask();
  } else if (names_stale_) {
    ticker_ = services_.pump.StartTicker(kLook, [this] { Tick(); });
  }
}

void InsightPresenter::Hide() {
  shown_ = false;
  End();
  names_.reset();
}

void InsightPresenter::ChooseTopic(int topic) {
  const auto chosen = static_cast<InsightTopic>(topic);
  if (chosen == state_.asked.topic) {
    return;
  }
  state_.asked.topic = chosen;
  state_.asked.table = 0;
  state_.asked.picture = 0;
  for (int kind = 0; kind < kNameKinds; ++kind) {
    state_.names.at(static_cast<std::size_t>(kind)).visible =
        (RowOf(chosen).names & FlagOf(static_cast<NameKind>(kind))) != 0;
  }
  Ask();
}

void InsightPresenter::ChooseTable(int table) {
  if (std::exchange(state_.asked.table, table) != table) {
    Ask();
  }
}

void InsightPresenter::ChoosePicture(int picture) {
  if (std::exchange(state_.asked.picture, picture) != picture) {
    Ask();
  }
}

void InsightPresenter::ChoosePeriod(PeriodChoice choice) {
  const Period period = ChosenDays(choice, period_, services_.calendar.Today());
  const bool other = period != period_ || !state_.period.refusal.empty();
  period_ = period;
  state_.period = FieldsOf(choice, period);
  if (other) {
    Ask();
  } else {
    view_.InsightChanged(InsightPart::kQuestion);
  }
}

void InsightPresenter::TypeDays(std::string_view from, std::string_view to) {
  const std::optional<Period> period = TakeDays(state_.period, from, to, period_);
  if (period) {
    period_ = *period;
    state_.period = FieldsOf(ChoiceOf(*period), *period);
    Ask();
  } else {
    view_.InsightChanged(InsightPart::kQuestion);
  }
}

void InsightPresenter::ChooseName(NameKind kind, int item) {
  if (std::exchange(state_.names.at(static_cast<std::size_t>(kind)).index, item) != item) {
    Ask();
  }
}

void InsightPresenter::TypeHolding(std::string_view days, std::string_view on) {
  if (days != state_.days || on != state_.on) {
    state_.days = days;
    state_.on = on;
    Ask();
  }
}

void InsightPresenter::Stop() {
  if (ticker_ && question_) {
    End();
    ShowStandby(Tr("The question was stopped. Press F5 to ask it again."));
  }
}

void InsightPresenter::EndReads() {
  End();
  names_.reset();
  stale_ = true;
  if (shown_) {
    Ask();
  }
}

void InsightPresenter::FollowSettings() {
  if (state_.asked.limits != LimitsOf(services_.settings)) {
    if (shown_) {
      Ask();
    } else {
      stale_ = true;
    }
  }
}

// Ends the question before, and begins in a moment: several changes in a row ask once, and a caller
// that has just bound a database can still write to it.
void InsightPresenter::Ask() {
  End();
  stale_ = true;
  state_.refusal.clear();
  MarkNeededNames();
  view_.InsightChanged(InsightPart::kQuestion);
  if (path_.empty()) {
    ShowStandby(Tr("Open a transaction database to see what its records say."));
    return;
  }
  if (!TakeFields()) {
    ShowStandby(state_.refusal);
  }
  if (shown_) {
    started_ = services_.pump.Now();
    ticker_ = services_.pump.StartTicker(kLook, [this] { Tick(); });
  }
}

void InsightPresenter::MarkNeededNames() {
  const InsightAsked& asked = state_.asked;
  const bool of_pen = asked.Table().rows == InsightRows::kOfPen;
  const bool of_ingredient =
      asked.Table().rows == InsightRows::kOfIngredient || asked.topic == InsightTopic::kHolding;
  state_.names.at(static_cast<std::size_t>(NameKind::kIngredient)).needed = of_ingredient;
  state_.names.at(static_cast<std::size_t>(NameKind::kPen)).needed = of_pen;
}

bool InsightPresenter::TakeFields() {
  InsightAsked& asked = state_.asked;
  const InsightTopicRow& row = RowOf(asked.topic);
  asked.limits = LimitsOf(services_.settings);
  asked.about = {};
  if (row.has_period) {
    asked.about.from = period_.from;
    asked.about.to = period_.to;
  }
  for (int kind = 0; kind < kNameKinds; ++kind) {
    const NameFilter& filter = state_.names.at(static_cast<std::size_t>(kind));
    if (filter.visible) {
      NameOf(asked.about, static_cast<NameKind>(kind)) = ChosenName(filter);
    }
  }
  const auto lacks = [this](NameKind kind) {
    const NameFilter& filter = state_.names.at(static_cast<std::size_t>(kind));
    return filter.needed && filter.index == 0;
  };
  if (lacks(NameKind::kPen)) {
    state_.refusal = Tr("Choose a pen above.");
  } else if (lacks(NameKind::kIngredient)) {
    state_.refusal = Tr("Choose an ingredient above.");
  } else if (asked.topic == InsightTopic::kHolding) {
    return TakeHolding();
  }
  return state_.refusal.empty();
}

bool InsightPresenter::TakeHolding() {
  InsightAsked& asked = state_.asked;
  const std::optional<double> days = ParseNumber(TrimBlanks(state_.days));
  if (!days || *days < 1 || *days > kMostHoldingDays || *days != static_cast<int>(*days)) {
    state_.refusal = Tr("The days must be a whole number from 1 to 9999.");
    return false;
  }
  state_.refusal = DayRefusal(state_.on);
  asked.days = static_cast<int>(*days);
  asked.on = ParseTypedDate(state_.on).value_or(services_.calendar.Today());
  return state_.refusal.empty();
}

void InsightPresenter::Begin() {
  reading_ = std::make_shared<InsightAnswer>();
  question_ = std::make_unique<BackgroundRead>(
      path_, [asked = state_.asked, answer = reading_](SQLite::Database& database,
                                                       const InsightProgress& progress) {
        *answer = AnswerInsight(database, asked, progress);
      });
}

void InsightPresenter::BeginNames() {
  reading_names_ = std::make_shared<InsightNames>();
  names_ = std::make_unique<BackgroundRead>(
      path_, [names = reading_names_](SQLite::Database& database, const InsightProgress&) {
        *names = ReadInsightNames(database);
      });
}

void InsightPresenter::End() {
  ticker_.reset();
  question_.reset();
  reading_.reset();
  if (std::exchange(state_.percent, -1) >= 0) {
    view_.InsightChanged(InsightPart::kProgress);
  }
}

// Names come after the answer, which is what the operator waits for. A question that cannot be
// asked may need one of them.
void InsightPresenter::Tick() {
  if (stale_ && state_.refusal.empty()) {
    if (!question_) {
      Begin();
    } else if (question_->Ended()) {
      Finish();
    } else if (services_.pump.Now() - started_ >= kShortQuestion) {
      state_.percent = question_->Percent();
      view_.InsightChanged(InsightPart::kProgress);
      if (answer_ || !state_.standby.empty()) {
        ShowStandby({});
      }
    }
    return;
  }
  if (names_stale_ && !names_) {
    BeginNames();
  } else if (names_ && names_->Ended()) {
    FinishNames();
  }
  if (!names_stale_) {
    ticker_.reset();
  }
}

void InsightPresenter::Finish() {
  const std::unique_ptr<BackgroundRead> done = std::move(question_);
  const std::shared_ptr<InsightAnswer> answer = std::move(reading_);
  state_.percent = -1;
  view_.InsightChanged(InsightPart::kProgress);
  stale_ = false;
  const auto read = [&] {
    answer_.reset();
    try {
      done->Rethrow();
      answer_ = std::move(*answer);
      state_.standby = answer_->table.rows.empty() ? EmptyText() : std::string();
      SelectRow(0);
    } catch (const QuestionError& refusal) {
      state_.refusal = refusal.what();
      state_.standby = state_.refusal;
    }
  };
  if (!RunReported(services_.op, kInsightFailure, read)) {
    ticker_.reset();
    ShowStandby(Tr("The question could not be answered. Press F5 to ask it again."));
    return;
  }
  view_.InsightChanged(InsightPart::kAnswer);
}

void InsightPresenter::FinishNames() {
  const std::unique_ptr<BackgroundRead> done = std::move(names_);
  names_stale_ = false;
  try {
    done->Rethrow();
  } catch (const std::exception&) {
    return;  // the question reported it, or the next one will
  }
  for (std::size_t kind = 0; kind < state_.names.size(); ++kind) {
    ReplaceItems(state_.names.at(kind), std::move(reading_names_->at(kind)));
  }
  view_.InsightChanged(InsightPart::kNames);
}

void InsightPresenter::ShowStandby(std::string text) {
  answer_.reset();
  state_.standby = std::move(text);
  view_.InsightChanged(InsightPart::kAnswer);
}

void InsightPresenter::SelectRow(std::size_t row) {
  if (answer_ && answer_->delivered && row < answer_->delivered->lines.size()) {
    pen_ = answer_->delivered->lines[row].pen;
  }
}

std::string InsightPresenter::EmptyText() const {
  const Question& about = state_.asked.about;
  if (state_.asked.Table().rows == InsightRows::kOutOfBalance && answer_->balance->batches > 0) {
    return Tr("Every batch is in balance.");
  }
  if (state_.asked.Table().rows == InsightRows::kNotLoaded && answer_->loads->n > 0) {
    return Tr("Every ingredient that had a target was loaded.");
  }
  if (about.HasName()) {
    return Tr("No records of this period have these names. Choose others above.");
  }
  return about.HasPeriod()
             ? Tr("No records of this period. Choose another period above.")
             : Tr("No transactions are stored yet. Import a transaction file and store it.");
}

}  // namespace vrx
