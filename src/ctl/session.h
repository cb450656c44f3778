#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ctl/command.h"
#include "database/schema.h"
#include "platform/operator.h"
#include "platform/progress_display.h"
#include "presenter/database_identity.h"
#include "settings/settings.h"

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

  DatabaseIdentity& Identity();

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
  std::optional<DatabaseIdentity> identity_;
};

// The kind that a file's extension speaks for: .TDB a transaction database, all else a recipe one.
DatabaseKind KindOfExtension(const std::filesystem::path& path);

}  // namespace vrx
