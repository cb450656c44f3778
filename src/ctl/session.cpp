#include "ctl/session.h"

#include <system_error>

#include <SQLiteCpp/Exception.h>

#include "ctl/command.h"
#include "database/database_error.h"
#include "frame/files.h"
#include "frame/folder.h"
#include "frame/text.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

struct KindWords {
  std::string_view user_type;
  std::string_view noun;
  std::string_view open_error_title;
};

KindWords WordsOf(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe
             ? KindWords{kUserRecipeDb, "recipe", "Open Recipe File Error"}
             : KindWords{kUserTransDb, "transaction", "Open Transaction File Error"};
}

void MakeFolders(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error && !fs::is_directory(folder)) {
    throw FileError("cannot make the folder " + folder.string() + ": " + error.message());
  }
}

}  // namespace

Session::Session(const CommandContext& context, const GlobalOptions& options)
    : context_(context),
      options_(options),
      progress_(context.err, context.err_is_terminal),
      operator_(context.in, context.err, progress_,
                {.yes = options.yes,
                 .in_is_terminal = context.in_is_terminal,
                 .err_is_terminal = context.err_is_terminal}) {}

const fs::path& Session::DataFolder() {
  if (!data_folder_.empty()) {
    return data_folder_;
  }
  if (!options_.data_dir.empty()) {
    MakeFolders(options_.data_dir);
    data_folder_ = fs::absolute(options_.data_dir);
  } else {
    // A user's first program of all may have to make the common folder.
    const std::string common = context_.system.CommonAppDataFolder();
    if (!common.empty()) {
      MakeFolders(common);
    }
    Folder folder(context_.system);
    folder.CheckAppDefaultDir();
    data_folder_ = folder.DefaultAppPath();
  }
  return data_folder_;
}

const CPrivateINI& Session::Ini() {
  if (!ini_) {
    ini_.emplace(DataFolder() / kIniFileName, context_.system, operator_);
  }
  return *ini_;
}

PrivateINI& Session::Settings() {
  if (!settings_) {
    if (!PrivateINI::EnsureIniFile(Ini(), operator_)) {
      throw FileError("there are no settings to go on with");
    }
    PrivateINI settings;
    if (!settings.ReadIniSettings(Ini())) {
      operator_.ShowMessage({.icon = Icon::kWarning,
                             .title = "INI File Error",
                             .text = "Unable to read some or all of the application settings from "
                                     "the applications INI file. Please check all settings.",
                             .cause = settings.FailureCause()});
    }
    settings.TellRefusedUnit(operator_);
    settings_ = settings;
  }
  return *settings_;
}

bool Session::SaveSettings() {
  PrivateINI& settings = Settings();
  if (settings.WriteIniSettings(Ini())) {
    return true;
  }
  operator_.ShowMessage(
      {.icon = Icon::kWarning,
       .title = "INI File Error",
       .text = "Unable to save some or all of the application settings to the applications INI "
               "file. Please check all settings next time you run the program.",
       .cause = settings.FailureCause()});
  return false;
}

DatabaseIdentity& Session::Identity() {
  if (!identity_) {
    identity_.emplace(operator_, context_.calendar, Settings(), context_.busy_timeout);
  }
  return *identity_;
}

bool Session::IsUserDatabase(const fs::path& path, DatabaseKind kind) {
  return AcceptsType(path, kind, Identity().GetDatabaseType(path));
}

bool Session::AcceptsType(const fs::path& path, DatabaseKind kind, const std::string& type) {
  const KindWords words = WordsOf(kind);
  if (type == words.user_type) {
    return true;
  }
  operator_.ShowMessage({.icon = Icon::kWarning,
                         .title = "Invalid Database",
                         .text = "The database file (" + FileTitle(path) +
                                 ") that you specified, is not a valid VRX-2260 " +
                                 std::string(words.noun) + " database.",
                         .cause = type.empty() ? "" : FileTitle(path) + " is marked " + type});
  return false;
}

int Session::OnDatabase(const fs::path& path, DatabaseKind kind, const std::function<int()>& work) {
  const auto tell = [&](const DatabaseError& error) {
    Identity().ShowDatabaseError(error.Number(), WordsOf(kind).open_error_title, error.what());
    return kFailed;
  };
  try {
    return work();
  } catch (const DatabaseError& error) {
    return tell(error);
  } catch (const SQLite::Exception& error) {
    return tell(TranslateSqliteError(error, path));
  }
}

DatabaseKind KindOfExtension(const fs::path& path) {
  return EqualsIgnoringCase(path.extension().string(), ".TDB") ? DatabaseKind::kTransaction
                                                               : DatabaseKind::kRecipe;
}

}  // namespace vrx
