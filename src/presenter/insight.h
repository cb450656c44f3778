#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/bound_database.h"
#include "history/period.h"
#include "platform/event_pump.h"
#include "presenter/insight_run.h"
#include "presenter/period_fields.h"
#include "presenter/services.h"

namespace vrx {

// A list of the names of one kind. Its first item stands for all of them.
struct NameFilter {
  bool visible = true;
  bool needed = false;                  // one of them must be chosen
  std::vector<std::string> items = {};  // after the first one
  int index = 0;                        // 0: all
};

// Records on the `Batched/Fed` tab: a data group, its days, and the outermost group there.
struct RecordsPlace {
  int group = 0;
  Period period = {};
  std::optional<std::string> value = {};  // of that group as it is shown; nothing: the first row
};

// What the tab shows besides the answer.
struct InsightState {
  InsightAsked asked = {};
  PeriodState period = {};
  std::array<NameFilter, kNameKinds> names = {};
  std::string days = "14";   // of holding, as typed
  std::string on = {};       // as typed; empty: today
  std::string refusal = {};  // why the question cannot be asked or answered
  std::string standby = {};  // in place of the table; empty if there is one
  int percent = -1;          // of a question that takes a while; -1: none
};

enum class InsightPart { kQuestion, kNames, kProgress, kAnswer };

class InsightView {
 public:
  virtual ~InsightView() = default;
  // A part has changed and must be read again from the presenter.
  virtual void InsightChanged(InsightPart part) = 0;
};

// The `Insight` tab without its window. A question is read in a thread (BackgroundRead): nothing
// waits for it, and what the operator does meanwhile works as always. It is read while the tab is
// shown, and ends with it, with the database and with the next question.
class InsightPresenter {
 public:
  InsightPresenter(Services& services, InsightView& view);
  InsightPresenter(const InsightPresenter&) = delete;
  InsightPresenter& operator=(const InsightPresenter&) = delete;

  // Another database is open, or a blank one, or its rows have changed. The connection remains
  // until the next call or Release. Runs no events.
  void SetDatabase(const BoundDatabase& database);
  void Release();
  // The tab is shown: asks unless the answer is that of the question.
  void Show();
  void Hide();

  void ChooseTopic(int topic);
  void ChooseTable(int table);
  void ChoosePicture(int picture);
  void ChoosePeriod(PeriodChoice choice);
  void TypeDays(std::string_view from, std::string_view to);
  void ChooseName(NameKind kind, int item);
  void TypeHolding(std::string_view days, std::string_view on);
  void Stop();
  // The database is about to be written to: no lock of a read remains, and the question is asked
  // again in a moment.
  void EndReads();
  // The setup may have changed the limits: asks anew then.
  void FollowSettings();

  [[nodiscard]] const InsightState& State() const { return state_; }
  // The last answer; nullptr while there is none.
  [[nodiscard]] const InsightAnswer* Answer() const { return answer_ ? &*answer_ : nullptr; }
  // What the last answer is of: the file, the period and the filters. For a picture that leaves the
  // window.
  [[nodiscard]] std::string AnsweredText() const;
  // Whether the question as it is has been answered or refused.
  [[nodiscard]] bool IsAnswered() const { return !stale_; }
  // The row whose pen has its days in the picture of `Called and delivered`.
  void SelectRow(std::size_t row);
  [[nodiscard]] const std::optional<std::string>& ShownPen() const { return pen_; }

  // Where the records of a row of the table are, of the entry of a picture and of a single record;
  // nothing if they are nowhere in particular.
  [[nodiscard]] std::optional<RecordsPlace> PlaceOfRow(std::size_t row) const;
  [[nodiscard]] std::optional<RecordsPlace> PlaceOfMark(std::size_t index);
  // The record, batch or group that a mark stands for, in words.
  [[nodiscard]] std::string TextOfMark(std::size_t index, std::size_t count) const;

 private:
  void Ask();
  void MarkNeededNames();
  bool TakeFields();
  bool TakeHolding();
  void Begin();
  void BeginNames();
  void End();
  void Tick();
  void Finish();
  void FinishNames();
  void ShowStandby(std::string text);
  [[nodiscard]] std::string EmptyText() const;
  [[nodiscard]] std::optional<RecordsPlace> PlaceOfRecord(std::int64_t record);
  [[nodiscard]] Period AnsweredPeriod() const;
  // The line of a mark of the days of a pen.
  [[nodiscard]] const DeliveredLine& LineOfPen(std::size_t index) const;
  // The group of a mark of the weights, which leave out those without one.
  [[nodiscard]] const AccuracyGroup& GroupOfWeight(std::size_t index) const;

  Services& services_;
  InsightView& view_;
  std::filesystem::path path_;              // empty: none is open
  SQLite::Database* connection_ = nullptr;  // the window's
  Period period_;
  InsightState state_;
  std::optional<InsightAnswer> answer_;
  std::optional<std::string> pen_;
  bool shown_ = false;
  bool stale_ = true;
  bool names_stale_ = true;
  Milliseconds started_{0};
  std::shared_ptr<InsightAnswer> reading_;  // the thread fills it
  std::shared_ptr<InsightNames> reading_names_;
  std::unique_ptr<BackgroundRead> question_;
  std::unique_ptr<BackgroundRead> names_;
  std::unique_ptr<EventPump::Ticker> ticker_;
};

}  // namespace vrx
