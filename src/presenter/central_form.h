#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "central/releases.h"
#include "central/transfer.h"
#include "platform/calendar.h"
#include "platform/event_pump.h"
#include "presenter/background_work.h"
#include "presenter/central_push.h"
#include "presenter/services.h"

namespace vrx {

// What a look at the central database has found.
struct CentralAnswer {
  std::string target = {};  // host, port and database
  std::string login = {};
  std::string protection = {};          // the TLS mode in force
  std::vector<std::string> yards = {};  // that the login may see
  std::vector<YardSource> sources = {};
  std::optional<ProvedPush> last = {};  // of the open file
  std::vector<Release> releases = {};   // the newest first
};

enum class CentralTask { kNone, kLook, kRestore, kCompare, kFetch };

// A result in sentences.
struct CentralNote {
  std::string text = {};
  bool failed = false;
};

struct CentralFormState {
  CentralTask task = CentralTask::kNone;  // that runs; one at a time
  BackgroundWork::Progress progress = {};
  CentralNote connection = {};
  CentralNote restored = {};
  CentralNote release = {};
  CentralAnswer answer = {};         // of the last look
  std::optional<int> compared = {};  // number of the release that was compared last
  std::optional<ReleaseDifferences> differences = {};  // nothing until they are known
};

// A field in which a release differs from the open recipe database.
struct DifferenceRow {
  std::string record = {};
  std::string field = {};
  std::string here = {};
  std::string release = {};
  std::string new_file = {};
};

// The day and time of the form, for its threads.
class StoppedCalendar : public Calendar {
 public:
  explicit StoppedCalendar(const LocalTime& now) : now_(now) {}
  [[nodiscard]] LocalTime Now() const override { return now_; }

 private:
  LocalTime now_;
};

class CentralFormView {
 public:
  virtual ~CentralFormView() = default;
  // The state or the settings have changed.
  virtual void CentralFormChanged() = 0;
};

// The form of the central database without its window: the connection, restoring, releases. What
// takes the network runs in a thread that ends with the form. The pushes belong to the window
// (CentralPush).
class CentralForm {
 public:
  // `recipes` is the open recipe database; empty without one. Everything else outlives the
  // object.
  CentralForm(Services& services, CentralPush& push, std::string machine,
              std::filesystem::path recipes, CentralFormView& view);
  CentralForm(const CentralForm&) = delete;
  CentralForm& operator=(const CentralForm&) = delete;

  // Keeps the setting; returns false if it is refused.
  bool SetConnection(const std::string& connection);
  void SetYard(const std::string& yard);
  void TurnAutomatic(bool on);

  // Connects, says how it is protected, and reads what the yard has there. Does nothing while a
  // task runs or without a connection.
  void Look();
  // Asks for a file and restores a source of the answer.
  void Restore(std::size_t source);
  // Compares a release of the answer with the open recipe database. Does nothing while a task runs
  // and for the release that was compared last.
  void Compare(std::size_t release);
  // Asks for a file and makes it of the release that was compared last.
  void Fetch();
  // Asks whether a file that was refused as a copy goes on as a source of its own.
  void PushCopy();
  void Cancel();

  // Of the open file, in words.
  [[nodiscard]] std::string WaitingText() const;
  // Of its last push; empty until the server has answered.
  [[nodiscard]] std::string ProofText() const;
  // Of the last push since the program was started.
  [[nodiscard]] std::string ResultText() const;
  // The file's name, and which one it continues.
  [[nodiscard]] std::string SourceName(std::size_t source) const;
  [[nodiscard]] std::vector<DifferenceRow> DifferenceRows() const;
  // Of the list of files, and of that of the releases: the last result, or why the list is empty.
  [[nodiscard]] CentralNote RestoreNote() const;
  [[nodiscard]] CentralNote ReleaseNote() const;
  [[nodiscard]] std::string DoingText() const;  // what the task does

  [[nodiscard]] const CentralSettings& Settings() const { return push_.Settings(); }
  [[nodiscard]] const CentralFormState& State() const { return state_; }
  [[nodiscard]] CentralPush& Pushes() { return push_; }

 private:
  using Job = std::function<void(BackgroundWork::Control&)>;
  // Sets the note to what `finish` returns, or to the failure.
  void Begin(CentralTask task, CentralNote& note, Job job, std::function<std::string()> finish);
  void Tick();
  void TakeAnswer(const CentralAnswer& answer);
  [[nodiscard]] std::string ConnectedText() const;
  [[nodiscard]] ReleaseQuestion Question(int release) const;
  [[nodiscard]] std::string DifferencesText() const;
  bool AcceptsNewNames();

  Services& services_;
  CentralPush& push_;
  std::string machine_;
  std::filesystem::path recipes_;
  CentralFormView& view_;
  CentralFormState state_;
  CentralNote* note_ = nullptr;  // of the task
  std::function<std::string()> finish_;
  std::unique_ptr<BackgroundWork> work_;
  std::unique_ptr<EventPump::Ticker> ticker_;
};

}  // namespace vrx
