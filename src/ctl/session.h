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
#include "settings/settings.h"

namespace vrx {

// A progress line that is redrawn in place, on a terminal only.
class ProgressLine : public ProgressDisplay {
 public:
  ProgressLine(std::ostream& err, bool on_terminal) : err_(err), on_terminal_(on_terminal) {}
  ~ProgressLine() override { Clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void SetProgressMessage(std::string_view text) override;
  void SetProgressRange(int maximum) override;
  void SetProgressValue(int value) override;

  // Erases the line, so that other output can be written.
  void Clear();

  [[nodiscard]] const std::string& Message() const { return message_; }

 private:
  void Draw();
  [[nodiscard]] int Percent() const;

  std::ostream& err_;
  bool on_terminal_;
  bool drawn_ = false;
  std::string message_;
  int maximum_ = 0;
  int value_ = 0;
};

// Writes messages to the error stream as "TITLE: text", followed by a line "cause: ...". `yes`
// answers every question with the button that proceeds; otherwise the terminal is asked; without a
// terminal the answer is the button that refuses.
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

  // Busy texts are shown as progress; texts in the colors of an error or a success are messages.
  void SetStatusLine(std::string_view text) override;
  void SetStatusColor(StatusColor color) override { color_ = color; }

  [[nodiscard]] bool StatusIsError() const { return color_ == StatusColor::kRed; }

  // Writes a line "cause: ..." for the previous message, unless the cause is empty or was part of
  // that message.
  void ReportCause(std::string_view cause);

  // Writes a message of the tool itself, without a title.
  void ShowNote(std::string_view text);

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
  [[nodiscard]] FileChoice Choice() const { return {path_.string(), path_.filename().string()}; }

  std::filesystem::path path_;
};

// For a command that uses no serial line: there are no events.
class IdlePump : public EventPump {
 public:
  [[nodiscard]] Milliseconds Now() const override;
  void Pump(Milliseconds limit) override;
  [[nodiscard]] bool Closing() const override { return false; }
  std::unique_ptr<Ticker> StartTicker(Milliseconds interval, std::function<void()> tick) override;
};

// Options of every command.
struct GlobalOptions {
  bool yes = false;
  std::string data_dir;  // empty: the system's application data folder
};

// The state of one run that commands share.
class Session {
 public:
  Session(const CommandContext& context, const GlobalOptions& options);

  [[nodiscard]] const CommandContext& Context() const { return context_; }
  [[nodiscard]] std::ostream& Out() const { return context_.out; }
  TerminalOperator& Op() { return operator_; }
  ProgressLine& Progress() { return progress_; }

  // The command only reads, so it works without a data folder and settings if they cannot be
  // created. Called before anything else.
  void OnlyRead() { only_reads_ = true; }

  // The application data folder, created if necessary. Throws FileError if that fails, unless the
  // command only reads.
  const std::filesystem::path& DataFolder();

  // Read from the INI file of the data folder at the first call; a missing file is created with
  // defaults. If that fails, reports it and throws Error. A command that only reads uses the
  // defaults instead, and warns if an existing file cannot be read.
  PrivateINI& Settings();
  // Where the central database is.
  [[nodiscard]] CentralSettings Central();
  // Writes them. Returns false after reporting a failure.
  [[nodiscard]] bool SaveCentral(const CentralSettings& settings);
  // Writes the settings. Returns false after reporting a failure.
  [[nodiscard]] bool SaveSettings();

  DatabaseIdentity& Identity() { return GetServices().identity; }

  // For the presenters. Reads the settings at the first call.
  Services& GetServices();
  // What GetServices().files answers every file dialog with.
  ScriptedFileChoice& Chooser() { return chooser_; }

  // Whether the file is a user's database of that kind; otherwise reports that it is not.
  [[nodiscard]] bool IsUserDatabase(const std::filesystem::path& path, DatabaseKind kind);
  // The same for a file whose type is already known.
  [[nodiscard]] bool AcceptsType(const std::filesystem::path& path, DatabaseKind kind,
                                 const std::string& type);

  // Runs `work` on a database and returns its result. Reports a database failure under the title of
  // opening such a file and returns kFailed.
  int OnDatabase(const std::filesystem::path& path, DatabaseKind kind,
                 const std::function<int()>& work);

 private:
  bool ReportUnsaved(const std::string& cause);
  const CPrivateINI& Ini();
  [[nodiscard]] std::filesystem::path FindDataFolder() const;
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

// The kind of a database by its extension: transactions for .TDB, recipes for any other.
[[nodiscard]] DatabaseKind KindOfExtension(const std::filesystem::path& path);

}  // namespace vrx
