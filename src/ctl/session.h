#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/program_runner.h"
#include "ctl/command.h"
#include "database/schema.h"
#include "platform/operator.h"
#include "platform/progress_display.h"
#include "presenter/services.h"

namespace vrx {

// One line of progress, drawn over itself. Draws on a terminal only.
class ProgressLine : public ProgressDisplay {
 public:
  ProgressLine(std::ostream& err, bool on_terminal) : err_(err), on_terminal_(on_terminal) {}
  ~ProgressLine() override { Clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void SetProgressMessage(std::string_view text) override;
  void SetProgressRange(int maximum) override;
  void SetProgressValue(int value) override;

  // Takes the line away, so that something else can be written.
  void Clear();

  const std::string& Message() const { return message_; }

 private:
  void Draw();
  int Percent() const;

  std::ostream& err_;
  bool on_terminal_;
  bool drawn_ = false;
  std::string message_;
  int maximum_ = 0;
  int value_ = 0;
};

// The person who runs the tool. Messages go to the error stream as "TITLE: text", what lies behind
// them as a line "cause: ...". A question is answered with its going-on button by `yes`, else from
// the terminal if there is one, else with its refusing button.
class TerminalOperator : public Operator {
 public:
  struct Settings {
    bool yes = false;
    bool in_is_terminal = false;
    bool err_is_terminal = false;
  };

  TerminalOperator(std::istream& in, std::ostream& err, ProgressLine& line, Settings settings);

  Answer ShowMessage(const MessageBox& box) override;
  void Beep() override;  // on a terminal only
  void SetBusy(bool /*busy*/) override {}

  // Busy texts are progress; texts in the colours of an error or a success are messages.
  void SetStatusLine(std::string_view text) override;
  void SetStatusColor(StatusColor color) override { color_ = color; }

  bool StatusIsError() const { return color_ == StatusColor::kRed; }

  // A line "cause: ..." for the message before; nothing for a cause that is empty or was told with
  // that message.
  void ReportCause(std::string_view cause);

  // A message of the tool itself, without a title.
  void Tell(std::string_view text);

 private:
  Answer Ask(const MessageBox& box);

  std::istream& in_;
  std::ostream& err_;
  ProgressLine& line_;
  Settings settings_;
  StatusColor color_ = StatusColor::kBlue;
  std::string last_cause_;
};

// Answers every file dialog with the path that the command line gave.
class ScriptedFileChoice : public FileChooser {
 public:
  void Choose(std::filesystem::path path) { path_ = std::move(path); }

  FileChoice ShowOpen(const FileDialog& /*dialog*/) override { return Choice(); }
  FileChoice ShowSave(const FileDialog& /*dialog*/) override { return Choice(); }
  std::string ShowFolder(const std::string& /*title*/) override { return path_.string(); }

 private:
  FileChoice Choice() const { return {path_.string(), path_.filename().string()}; }

  std::filesystem::path path_;
};

// Of a command without a line: there are no events.
class IdlePump : public EventPump {
 public:
  Milliseconds Now() const override;
  void Pump(Milliseconds limit) override;
  bool Closing() const override { return false; }
  std::unique_ptr<Ticker> StartTicker(Milliseconds interval, std::function<void()> tick) override;
};

// Options that every command takes.
struct GlobalOptions {
  bool yes = false;
  std::string data_dir;  // empty: the system's application data folder
};

// What a command works with in one run.
class Session {
 public:
  Session(const CommandContext& context, const GlobalOptions& options);

  const CommandContext& Context() const { return context_; }
  std::ostream& Out() const { return context_.out; }
  TerminalOperator& Op() { return operator_; }
  ProgressLine& Progress() { return progress_; }

  // The command only reads: a data folder and settings that cannot be made are done without. Called
  // before anything else.
  void OnlyRead() { only_reads_ = true; }

  // The application data folder, made if it is not there. Throws FileError where it cannot be made,
  // unless the command only reads.
  const std::filesystem::path& DataFolder();

  // Read from the INI file of the data folder at the first call; a missing file is made with
  // defaults. Throws Error, the operator told, when there is none and none can be made. A command
  // that only reads then works with the defaults; the operator is told where the file has others.
  PrivateINI& Settings();
  // Writes the settings; false, with the operator told, when that failed.
  bool SaveSettings();

  DatabaseIdentity& Identity() { return GetServices().identity; }

  // For the presenters. Reads the settings at the first call.
  Services& GetServices();
  // What GetServices().files answers every file dialog with.
  ScriptedFileChoice& Chooser() { return chooser_; }

  // True if the file says that it is a user's database of that kind; else the operator was told.
  bool IsUserDatabase(const std::filesystem::path& path, DatabaseKind kind);
  // The same of a file whose type was read already.
  bool AcceptsType(const std::filesystem::path& path, DatabaseKind kind, const std::string& type);

  // Runs work on a database and passes its result on. A failure of the storage is told under the
  // title that opening such a file has, and gives kFailed.
  int OnDatabase(const std::filesystem::path& path, DatabaseKind kind,
                 const std::function<int()>& work);

 private:
  const CPrivateINI& Ini();
  std::filesystem::path FindDataFolder() const;
  PrivateINI ReadSettings();
  PrivateINI ReadSettingsInForce();

  const CommandContext& context_;
  GlobalOptions options_;
  bool only_reads_ = false;
  ProgressLine progress_;
  TerminalOperator operator_;
  std::filesystem::path data_folder_;
  std::optional<CPrivateINI> ini_;
  std::optional<PrivateINI> settings_;
  ScriptedFileChoice chooser_;
  IdlePump pump_;
  ChildProcessRunner programs_;
  std::optional<Folder> folder_;
  std::optional<DatabaseIdentity> identity_;
  std::optional<Services> services_;
};

// The kind that a file's extension speaks for: .TDB a transaction database, all else a recipe one.
DatabaseKind KindOfExtension(const std::filesystem::path& path);

}  // namespace vrx
