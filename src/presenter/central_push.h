#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "central/transfer.h"
#include "database/bound_database.h"
#include "platform/event_pump.h"
#include "presenter/background_work.h"
#include "presenter/insight_run.h"
#include "presenter/services.h"
#include "settings/settings.h"

namespace vrx {

// What the status bar says of the open transaction database and the central database.
enum class CentralSign {
  kNone,  // no connection is set, or no file is open: nothing is shown
  kChecking,
  kUpToDate,
  kWaiting,
  kPushing,
  kNotReached,
  kRefused,
};

struct CentralPushState {
  CentralSign sign = CentralSign::kNone;
  std::string text = {};      // of the sign
  std::string why = {};       // sentences
  std::string file = {};      // name of the open database; empty: none
  std::string obstacle = {};  // why nothing can be pushed; empty if it can
  bool running = false;       // a push runs or waits for its next try
  bool is_copy = false;       // the last push was refused because the file is a copy
  BackgroundWork::Progress progress = {};
  std::optional<FileStatus> here = {};   // nothing until the file was looked at
  std::optional<PushOutcome> last = {};  // the last push of the file in this run of the program
};

// Work with the central database as a thread of the window does it: shows itself, and throws
// CentralStopped after a cancel.
[[nodiscard]] CentralProgress ProgressOf(BackgroundWork::Control& control);
void EnterOrStop(BackgroundWork::Control& control);

// Words of the server or a library, which may end without a full stop.
[[nodiscard]] std::string AsSentence(const std::string& words);

class CentralPushView {
 public:
  virtual ~CentralPushView() = default;
  // The state has changed.
  virtual void CentralChanged() = 0;
};

// Takes the records of the open transaction database to the central database beside the window's
// work: in a thread, one push at a time, tried again with growing pauses while the server is not
// reached. Does nothing without a connection in the settings.
//
// A push reads the file with a connection of its own. It makes way for whatever writes to the file,
// closes it or copies it, and goes on after that where it was.
class CentralPush {
 public:
  // Reads the settings. `machine` is this computer's ID. Everything outlives the object.
  CentralPush(Services& services, const CPrivateINI& ini, std::string machine,
              CentralPushView& view);
  CentralPush(const CentralPush&) = delete;
  CentralPush& operator=(const CentralPush&) = delete;

  [[nodiscard]] const CentralSettings& Settings() const { return settings_; }
  // The file holds them at once. Reports a failure; the settings are in force nevertheless.
  void ChangeSettings(const CentralSettings& settings);

  // Another database is open, or a blank one, or its rows have changed. No thread uses the one
  // before when this returns. A push that has not ended goes on if the same file is opened again.
  void SetDatabase(const BoundDatabase& database);

  // No thread uses the file until EndWrite. They nest.
  void BeginWrite();
  void EndWrite();
  // The same for a write that follows at once.
  void MakeWay();

  // A store has ended: pushes if that is automatic.
  void RecordsStored();
  void Push();
  // The same for a file that was refused as a copy: it becomes a source of its own.
  void PushAsNewSource();
  // Ends the push, also one that waits for its next try.
  void Stop();

  [[nodiscard]] const CentralPushState& State() const { return state_; }

  // How long the push waits after so many failures in a row, from 1.
  [[nodiscard]] static Milliseconds PauseAfter(int failures);

 private:
  void End();
  void Start();
  void Forget();
  void Want(bool as_new_source);
  void Tick();
  void BeginRead();
  void FinishRead();
  void BeginPush();
  void FinishPush();
  void Fail(const std::exception& failure);
  void ShowState();
  void ShowSign();
  [[nodiscard]] std::string Obstacle() const;
  [[nodiscard]] bool IsOn() const { return !settings_.connection.empty() && !path_.empty(); }

  Services& services_;
  const CPrivateINI& ini_;
  std::string machine_;
  CentralPushView& view_;
  CentralSettings settings_;
  std::filesystem::path path_;    // empty: none is open
  std::filesystem::path before_;  // the last one that was open
  std::string read_only_note_;
  CentralPushState state_;
  int writing_ = 0;
  bool stale_ = true;  // the file must be looked at again
  bool wanted_ = false;
  bool as_new_source_ = false;
  int failures_ = 0;  // in a row, of the network
  Milliseconds next_look_{0};
  Milliseconds next_try_{0};
  std::string next_try_text_;  // time of the day
  std::string not_reached_since_;
  std::string words_;  // of the last failure
  bool refused_ = false;
  std::shared_ptr<FileStatus> status_;    // the thread fills it
  std::shared_ptr<PushOutcome> outcome_;  // the same
  std::unique_ptr<BackgroundRead> reading_;
  std::unique_ptr<BackgroundWork> pushing_;
  std::unique_ptr<EventPump::Ticker> ticker_;
};

}  // namespace vrx
