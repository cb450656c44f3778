#include "presenter/find.h"

#include <utility>

#include "base/text.h"
#include "base/translation.h"
#include "presenter/report_failure.h"

namespace vrx {
namespace {

// How long the operator stops typing before the search begins: it opens groups.
constexpr Milliseconds kTypingPause{250};
constexpr Milliseconds kInterval{1};
// What a slice of the search may take of the time for other events.
constexpr Milliseconds kSliceTime{12};
constexpr int kMostScans = 16;  // in a slice
// A shorter search shows no progress.
constexpr Milliseconds kShortSearch{150};

constexpr FailureReport kFindFailure{.title = "Transaction Data Error",
                                     .text = FailureText::kDatabaseWords};

}  // namespace

HistoryFind::HistoryFind(HistoryGrid& grid, Services& services, std::function<void()> changed,
                         std::function<void(const FoundCell&)> reached)
    : grid_(grid),
      services_(services),
      changed_(std::move(changed)),
      reached_(std::move(reached)) {}

void HistoryFind::Open() {
  state_.open = true;
  stopped_ = false;
  GridChanged();
  Show();
}

void HistoryFind::Close() {
  Stop();
  state_.open = false;
  state_.note.clear();
  Show();
}

void HistoryFind::Type(std::string_view text, std::int64_t row) {
  if (text == state_.text) {
    return;
  }
  End();
  state_.text = text;
  wanted_ = Wanted{.forward = true, .itself = true, .from = PlaceOf(row)};
  stopped_ = true;  // until Start
  ticker_ = services_.pump.StartTicker(kTypingPause, [this] { Start(); });
  Show();
}

void HistoryFind::Move(bool forward, std::int64_t row) {
  const bool is_new = wanted_ && wanted_->itself;
  wanted_ = Wanted{.forward = forward, .itself = is_new, .from = PlaceOf(row)};
  if (grid_.Found() == nullptr) {
    Start();
    return;
  }
  state_.note.clear();
  Step();
}

void HistoryFind::Stop() {
  const bool ran = ticker_ != nullptr;
  End();
  stopped_ = true;
  if (ran) {
    state_.note = Tr("The search was stopped.");
  }
  Show();
}

void HistoryFind::End() {
  ticker_.reset();
  wanted_.reset();
  day_.reset();
  grid_.Find("");
  number_ = 0;
  state_.note.clear();
}

void HistoryFind::GridChanged() {
  if (state_.open && !stopped_ && grid_.Found() == nullptr && !TrimBlanks(state_.text).empty()) {
    wanted_.reset();
    if (Begin()) {
      ticker_ = services_.pump.StartTicker(kInterval, [this] { Step(); });
    }
  }
}

bool HistoryFind::Begin() {
  std::optional<Wanted> wanted = std::move(wanted_);
  End();
  wanted_ = std::move(wanted);
  started_ = services_.pump.Now();
  stopped_ = !Reported([this] { grid_.Find(state_.text); });
  return grid_.Found() != nullptr;
}

void HistoryFind::Start() {
  if (!Begin()) {
    Show();
    return;
  }
  if (wanted_ && wanted_->itself) {
    std::optional<FoundCell> day;
    Reported([&] { day = grid_.OpenFoundDay(); });
    if (day) {
      wanted_.reset();
      day_ = PlaceOf(day->row);
      reached_(*day);
    }
  }
  Step();
}

void HistoryFind::Step() {
  if (!Reported([this] { Slice(); })) {
    Stop();
    return;
  }
  if (grid_.Found() == nullptr) {
    ticker_.reset();
  } else if (grid_.Found()->IsComplete()) {
    Finish();
  } else {
    GoIfKnown();
    if (!ticker_) {
      ticker_ = services_.pump.StartTicker(kInterval, [this] { Step(); });
    }
  }
  Show();
}

void HistoryFind::Slice() {
  const Milliseconds end = services_.pump.Now() + kSliceTime;
  for (int scans = 0; scans < kMostScans; ++scans) {
    const FoundRows* const found = grid_.Found();
    if (found == nullptr || found->IsComplete() || services_.pump.Now() >= end) {
      return;
    }
    grid_.FindMore();
  }
}

void HistoryFind::Finish() {
  ticker_.reset();
  if (grid_.Found()->Count() == 0) {
    wanted_.reset();
    state_.note = grid_.ShownPeriod().IsAll() ? Tr("Nothing was found.")
                                              : Tr("Nothing was found in this period.");
    return;
  }
  if (day_) {
    number_ = grid_.Found()->FirstFrom(*day_, true) + 1;
  }
  GoIfKnown();
}

void HistoryFind::GoIfKnown() {
  const FoundRows* const found = grid_.Found();
  if (!wanted_ || found == nullptr || !found->IsInOrder()) {
    return;
  }
  const std::int64_t count = found->Count();
  const auto [forward, itself, from] = *wanted_;
  std::int64_t index = forward ? 0 : count - 1;
  if (from) {
    index = forward ? found->FirstFrom(*from, itself) : found->FirstFrom(*from, true) - 1;
  }
  const bool wraps = index < 0 || index >= count;
  if (count == 0 || (!found->IsComplete() && (wraps || !forward))) {
    return;
  }
  wanted_.reset();
  if (!wraps) {
    Go(index, "");
  } else if (forward) {
    Go(0, Tr("The search went on at the top."));
  } else {
    Go(count - 1, Tr("The search went on at the bottom."));
  }
}

void HistoryFind::Go(std::int64_t index, std::string_view note) {
  std::optional<FoundCell> cell;
  if (!Reported([&] { cell = grid_.OpenFound(index); })) {
    return;
  }
  if (!cell) {
    state_.note = Tr("This record is no longer in the database. Press F5 to read it again.");
    return;
  }
  number_ = index + 1;
  state_.note = note;
  reached_(*cell);
}

std::string HistoryFind::CountText() const {
  const FoundRows* const found = grid_.Found();
  if (found == nullptr || (found->IsComplete() && found->Count() == 0)) {
    return {};
  }
  const std::string count = std::to_string(found->Count()) + (found->IsComplete() ? "" : "...");
  if (number_ > 0) {
    return Tr("%1 of %2", {std::to_string(number_), count});
  }
  return found->IsComplete() ? Tr("%1 found", {count}) : count;
}

void HistoryFind::Show() {
  const FoundRows* const found = grid_.Found();
  const bool runs = ticker_ != nullptr && found != nullptr;
  state_.percent = runs && services_.pump.Now() - started_ >= kShortSearch ? found->Percent() : -1;
  state_.count = CountText();
  changed_();
}

std::optional<RowPlace> HistoryFind::PlaceOf(std::int64_t row) {
  std::optional<RowPlace> place;
  if (row > 0) {
    Reported([&] { place = grid_.PlaceOf(row); });
  }
  return place;
}

bool HistoryFind::Reported(const std::function<void()>& action) {
  return RunReported(services_.op, kFindFailure, action);
}

}  // namespace vrx
