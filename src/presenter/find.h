#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "history/history_grid.h"
#include "platform/event_pump.h"
#include "presenter/services.h"

namespace vrx {

// What the bar of the search shows.
struct FindState {
  bool open = false;
  std::string text = {};   // as typed
  std::string count = {};  // "3 of 17", "17..." while the search goes on
  std::string note = {};   // that nothing is found, or where the search went on
  int percent = -1;        // of a search that takes a while; -1: none runs
};

// The search on the `Batched/Fed` tab. It runs in slices between other events; a new text, another
// group and everything else that changes the searched rows or their order ends it.
//
// Found rows are in the order of the rows on the screen. After the last one comes the first one.
class HistoryFind {
 public:
  // `changed` is called after each change of the state, `reached` when the search goes to a row.
  // The grid and the services outlive it.
  HistoryFind(HistoryGrid& grid, Services& services, std::function<void()> changed,
              std::function<void(const FoundCell&)> reached);

  [[nodiscard]] const FindState& State() const { return state_; }

  void Open();
  // Also ends the search. The text remains for the next time.
  void Close();

  // `row` is the current row, 0 for none: after a pause in typing the search goes to the first
  // found row from there on.
  void Type(std::string_view text, std::int64_t row);
  // To the next or previous found row; of a text that was just typed, to the first one at once.
  void Move(bool forward, std::int64_t row);
  // Ends the search and leaves the bar open.
  void Stop();
  // The grid was shown anew: searches again, later and without going to a row, if that is needed.
  void GridChanged();

 private:
  // Where the search goes as soon as it knows.
  struct Wanted {
    bool forward;
    bool itself;                   // also to the row it starts from
    std::optional<RowPlace> from;  // nothing: the top
  };

  void End();
  // False if there is nothing to search.
  bool Begin();
  void Start();
  void Step();
  void Slice();
  void Finish();
  void GoIfKnown();
  void Go(std::int64_t index, std::string_view note);
  void Show();
  [[nodiscard]] std::string CountText() const;
  [[nodiscard]] std::optional<RowPlace> PlaceOf(std::int64_t row);
  bool Reported(const std::function<void()>& action);

  HistoryGrid& grid_;
  Services& services_;
  std::function<void()> changed_;
  std::function<void(const FoundCell&)> reached_;
  FindState state_;
  std::optional<Wanted> wanted_;
  std::optional<RowPlace> day_;  // the group of the day, before its number is known
  std::int64_t number_ = 0;      // of the row reached, from 1; 0: none
  bool stopped_ = false;
  Milliseconds started_{0};
  std::unique_ptr<EventPump::Ticker> ticker_;
};

}  // namespace vrx
