#include "presenter/central_push.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <utility>

#include "base/files.h"
#include "base/number.h"
#include "base/translation.h"
#include "central/administration.h"
#include "central/server.h"
#include "central/server_source.h"
#include "database/connection.h"
#include "platform/local_time.h"

namespace vrx {
namespace {

constexpr Milliseconds kLookAtThread{50};
constexpr Milliseconds kLookAtClock{1000};
constexpr Milliseconds kLookAgain{5000};  // at a file that could not be read
constexpr Milliseconds kFirstPause{30 * 1000};
constexpr Milliseconds kLongestPause{30 * 60 * 1000};

// In total for one push. A cancel ends the wait.
constexpr std::chrono::milliseconds kPushLockWait{30 * 1000};

class CancelledWait : public WaitBudget {
 public:
  explicit CancelledWait(const BackgroundWork::Control& control)
      : WaitBudget(kPushLockWait), control_(control) {}

  [[nodiscard]] std::chrono::milliseconds Take(std::chrono::milliseconds wanted) override {
    return control_.Cancelled() ? std::chrono::milliseconds{0} : WaitBudget::Take(wanted);
  }

 private:
  const BackgroundWork::Control& control_;
};

void PushInThread(const std::string& connection, PushOrder order, PushOutcome& outcome,
                  BackgroundWork::Control& control) {
  const CentralProgress progress = ProgressOf(control);
  CentralConnection server(connection, [&] { progress.Check(); });
  EnterOrStop(control);
  CancelledWait wait(control);
  order.lock_wait = wait;
  outcome = Push(server, order, progress);
}

// Time may heal it: the server or the network is away, it is overloaded, or another program holds
// the file or pushes it.
bool MayPass(const std::exception& failure) {
  if (const auto* const error = dynamic_cast<const CentralError*>(&failure)) {
    constexpr std::array<std::string_view, 4> kClasses{"08", "40", "53", "57"};
    return error->State().empty() || error->State() == kUniqueViolation ||
           std::any_of(kClasses.begin(), kClasses.end(),
                       [&](std::string_view name) { return error->State().starts_with(name); });
  }
  const auto* const error = dynamic_cast<const DatabaseError*>(&failure);
  return error != nullptr && error->Number() == kTableLockedError;
}

// "06:30"
std::string ClockText(LocalTime now, Milliseconds later = Milliseconds{0}) {
  const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(now.time_of_day + later) %
                       std::chrono::days(1);
  const std::chrono::hh_mm_ss time(minutes);
  const auto two = [](long number) { return Format(static_cast<double>(number), "00"); };
  return two(time.hours().count()) + ":" + two(time.minutes().count());
}

std::string WaitingSign(const FileStatus& here) {
  if (here.waiting == 0) {
    return Tr("Central: rows were changed");
  }
  return here.waiting == 1 ? Tr("Central: 1 row waiting")
                           : Tr("Central: %1 rows waiting", {std::to_string(here.waiting)});
}

std::string WaitingText(const FileStatus& here, const std::string& file) {
  std::string text = here.waiting == 1
                         ? Tr("1 row of %1 is not in the central database yet.", {file})
                         : Tr("%1 rows of %2 are not in the central database yet.",
                              {std::to_string(here.waiting), file});
  if (here.changes > 0) {
    text += " " + Tr("Rows that were changed or deleted after they were pushed: %1.",
                     {std::to_string(here.changes)});
  }
  return text;
}

}  // namespace

CentralProgress ProgressOf(BackgroundWork::Control& control) {
  return {.show = [&control](const std::string& doing, std::int64_t done,
                             std::int64_t total) { control.Show(doing, done, total); },
          .go_on = [&control] { return !control.Cancelled(); }};
}

void EnterOrStop(BackgroundWork::Control& control) {
  if (!control.Enter()) {
    throw CentralStopped("");  // nobody sees it
  }
}

std::string AsSentence(const std::string& words) {
  return words.ends_with('.') ? words : words + ".";
}

CentralPush::CentralPush(Services& services, const CPrivateINI& ini, std::string machine,
                         CentralPushView& view)
    : services_(services),
      ini_(ini),
      machine_(std::move(machine)),
      view_(view),
      settings_(ReadCentralSettings(ini)) {}

void CentralPush::ChangeSettings(const CentralSettings& settings) {
  const CentralSettings before = std::exchange(settings_, settings);
  if (before == settings) {
    return;
  }
  if (before.connection != settings.connection || before.yard != settings.yard) {
    const bool wanted = wanted_;
    End();
    Forget();
    wanted_ = wanted;
  }
  if (std::string cause; !WriteCentralSettings(ini_, before, settings, cause)) {
    services_.op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = "INI File Error",
         .text = Tr("Unable to save the setting to the applications INI file."),
         .cause = cause});
  }
  stale_ = true;
  Start();
  ShowState();
}

void CentralPush::SetDatabase(const BoundDatabase& database) {
  End();
  path_ = database.blank ? std::filesystem::path() : database.path;
  read_only_note_ = database.read_only_note;
  stale_ = true;
  if (!path_.empty() && std::exchange(before_, path_) != path_) {
    Forget();
    state_.here.reset();
    state_.last.reset();
  }
  state_.file = path_.empty() ? std::string() : FileTitle(path_);
  Start();
  ShowState();
}

// What the tries before have found.
void CentralPush::Forget() {
  wanted_ = false;
  as_new_source_ = false;
  failures_ = 0;
  next_try_ = Milliseconds{0};
  not_reached_since_.clear();
  words_.clear();
  refused_ = false;
  state_.is_copy = false;
}

void CentralPush::End() {
  ticker_.reset();
  reading_.reset();
  pushing_.reset();
  state_.progress = {};
}

void CentralPush::Start() {
  if (IsOn() && writing_ == 0) {
    ticker_ = services_.pump.StartTicker(kLookAtThread, [this] { Tick(); });
  }
}

void CentralPush::BeginWrite() {
  ++writing_;
  End();
}

void CentralPush::EndWrite() {
  --writing_;
  stale_ = true;
  Start();
  ShowState();
}

void CentralPush::MakeWay() {
  BeginWrite();
  EndWrite();
}

void CentralPush::RecordsStored() {
  stale_ = true;
  if (settings_.automatic && IsOn()) {
    Want(false);
  } else {
    Start();
  }
}

void CentralPush::Push() { Want(false); }

void CentralPush::PushAsNewSource() { Want(true); }

void CentralPush::Want(bool as_new_source) {
  const std::string since = not_reached_since_;
  Forget();
  not_reached_since_ = since;  // until the server is reached
  refused_ = !Obstacle().empty();
  words_ = Obstacle();
  wanted_ = !refused_;
  as_new_source_ = as_new_source;
  if (!pushing_) {
    Start();
  }
  ShowState();
}

void CentralPush::Stop() {
  wanted_ = false;
  as_new_source_ = false;
  End();
  stale_ = true;
  Start();
  ShowState();
}

std::string CentralPush::Obstacle() const {
  if (settings_.connection.empty()) {
    return Tr("No connection is set.");
  }
  if (settings_.yard.empty()) {
    return Tr("The name of the yard is missing.");
  }
  if (path_.empty()) {
    return Tr("No transaction database is open.");
  }
  return read_only_note_;
}

Milliseconds CentralPush::PauseAfter(int failures) {
  constexpr int kDoublings = 6;
  return std::min(kLongestPause, kFirstPause * (1 << std::min(failures - 1, kDoublings)));
}

void CentralPush::Tick() {
  if (pushing_) {
    if (pushing_->Ended()) {
      FinishPush();
    }
    ShowState();
  } else if (reading_) {
    if (reading_->Ended()) {
      FinishRead();
      ShowState();
    }
  } else if (stale_ && services_.pump.Now() >= next_look_) {
    BeginRead();
  } else if (wanted_ && services_.pump.Now() >= next_try_) {
    BeginPush();
    ShowState();
  } else if (stale_ || wanted_) {
    ticker_ = services_.pump.StartTicker(kLookAtClock, [this] {
      ticker_ = services_.pump.StartTicker(kLookAtThread, [this] { Tick(); });
      Tick();
    });
  } else {
    ticker_.reset();
  }
}

void CentralPush::BeginRead() {
  status_ = std::make_shared<FileStatus>();
  reading_ = std::make_unique<BackgroundRead>(
      path_, [status = status_](SQLite::Database& database, const InsightProgress&) {
        *status = ReadFileStatus(database);
      });
}

void CentralPush::FinishRead() {
  const std::unique_ptr<BackgroundRead> done = std::move(reading_);
  try {
    done->Rethrow();
    state_.here = *status_;
    stale_ = false;
  } catch (const std::exception&) {
    next_look_ = services_.pump.Now() + kLookAgain;
  }
}

void CentralPush::BeginPush() {
  outcome_ = std::make_shared<PushOutcome>();
  pushing_ =
      std::make_unique<BackgroundWork>([connection = settings_.connection,
                                        order = PushOrder{.file = path_,
                                                          .yard = settings_.yard,
                                                          .machine = machine_,
                                                          .as_new_source = as_new_source_},
                                        outcome = outcome_](BackgroundWork::Control& control) {
        PushInThread(connection, order, *outcome, control);
      });
}

void CentralPush::FinishPush() {
  const std::unique_ptr<BackgroundWork> done = std::move(pushing_);
  state_.progress = {};
  stale_ = true;
  next_look_ = Milliseconds{0};
  try {
    done->Rethrow();
    Forget();
    state_.last = *outcome_;
  } catch (const std::exception& failure) {
    Fail(failure);
  }
}

void CentralPush::Fail(const std::exception& failure) {
  words_ = failure.what();
  if (!MayPass(failure)) {
    const bool is_copy = dynamic_cast<const CopyRefused*>(&failure) != nullptr;
    const std::string words = std::exchange(words_, {});
    Forget();
    words_ = words;
    refused_ = true;
    state_.is_copy = is_copy;
    return;
  }
  const LocalTime now = services_.calendar.Now();
  if (not_reached_since_.empty()) {
    not_reached_since_ = ClockText(now);
  }
  const Milliseconds pause = PauseAfter(++failures_);
  next_try_ = services_.pump.Now() + pause;
  next_try_text_ = ClockText(now, pause);
}

void CentralPush::ShowState() {
  state_.obstacle = Obstacle();
  state_.running = wanted_;
  if (pushing_) {
    state_.progress = pushing_->Shown();
  }
  ShowSign();
  view_.CentralChanged();
}

void CentralPush::ShowSign() {
  const auto show = [this](CentralSign sign, std::string text, std::string why) {
    state_.sign = sign;
    state_.text = std::move(text);
    state_.why = std::move(why);
  };
  const BackgroundWork::Progress& progress = state_.progress;
  if (!IsOn()) {
    show(CentralSign::kNone, {}, {});
  } else if (pushing_ && progress.total > 0) {
    constexpr int kPercent = 100;
    show(CentralSign::kPushing,
         Tr("Central: pushing, %1 %", {std::to_string(progress.done * kPercent / progress.total)}),
         Tr("%1: %2 of %3.",
            {progress.doing, std::to_string(progress.done), std::to_string(progress.total)}));
  } else if (pushing_ && failures_ == 0) {
    show(CentralSign::kPushing, Tr("Central: connecting"),
         Tr("Comparing %1 with the central database.", {state_.file}));
  } else if (refused_) {
    show(CentralSign::kRefused, Tr("Central: refused"),
         Tr("Nothing was pushed: %1", {AsSentence(words_)}));
  } else if (!not_reached_since_.empty()) {
    const std::string next =
        wanted_ ? " " + Tr("The next try is at %1.", {next_try_text_}) : std::string();
    show(CentralSign::kNotReached, Tr("Central: not reached since %1", {not_reached_since_}),
         AsSentence(words_) + next);
  } else if (!state_.here) {
    show(CentralSign::kChecking, Tr("Central: checking"),
         Tr("Counting the rows that wait for the central database."));
  } else if (state_.here->waiting == 0 && state_.here->changes == 0) {
    show(CentralSign::kUpToDate, Tr("Central: up to date"),
         Tr("All rows of %1 are in the central database.", {state_.file}));
  } else {
    show(CentralSign::kWaiting, WaitingSign(*state_.here), WaitingText(*state_.here, state_.file));
  }
}

}  // namespace vrx
