#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ctl/command_context.h"
#include "ctl/progress_line.h"
#include "ctl/terminal_operator.h"
#include "database/schema.h"
#include "presenter/database_identity.h"
#include "settings/settings.h"

namespace vrx {

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
