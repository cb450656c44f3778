#include "legacy/convert.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "base/encoding.h"
#include "base/files.h"
#include "base/sync.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/undo.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/schema.h"
#include "legacy/field_rule.h"
#include "legacy/identity_rows.h"
#include "legacy/jet_file.h"
#include "legacy/row_stream.h"
#include "legacy/table_conversion.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

// A database under construction: a copy of the blank template in the folder of the new file, with
// one open transaction. Without Commit it is removed. Never replaces a file at the path. Throws
// FileError and DatabaseError.
class NewDatabaseFile {
 public:
  // The path itself must not exist.
  NewDatabaseFile(const fs::path& path, const fs::path& program_directory, DatabaseKind kind);
  ~NewDatabaseFile();
  NewDatabaseFile(const NewDatabaseFile&) = delete;
  NewDatabaseFile& operator=(const NewDatabaseFile&) = delete;

  SQLite::Database& Connection() { return *connection_; }

  // Commits, syncs and renames the file. Call it once, after destroying all statements.
  void Commit();

 private:
  void RemoveTemporary();

  fs::path path_;
  fs::path temporary_;
  std::unique_ptr<SQLite::Database> connection_;
  std::unique_ptr<SQLite::Transaction> transaction_;
};

// In kilobytes. The indexes of transactions are filled in random order, too much for a small cache.
constexpr const char* kLargeCache = "PRAGMA cache_size=-65536";

[[noreturn]] void RefuseExisting(const fs::path& path) {
  throw FileError(Tr("%1 already exists; choose another name", {path.string()}));
}

[[noreturn]] void Fail(const fs::path& path, const std::error_code& why) {
  throw FileError(Tr("cannot write %1: %2", {path.string(), why.message()}));
}

void CopyTemplate(const fs::path& blank, const fs::path& temporary, const fs::path& path) {
  if (!FileExists(blank)) {
    throw FileError(Tr("%1 does not exist; install the program again", {blank.string()}));
  }
  std::error_code error;
  if (!fs::copy_file(blank, temporary, error)) {
    Fail(path, error);
  }
  // The template may be write-protected, and then its copy is too.
  fs::permissions(temporary, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add,
                  error);
}

NewDatabaseFile::NewDatabaseFile(const fs::path& path, const fs::path& program_directory,
                                 DatabaseKind kind)
    : path_(path),
      temporary_(path.string() + "." + std::to_string(std::random_device{}()) + ".tmp") {
  if (FileExists(path_)) {
    RefuseExisting(path_);
  }
  const auto make = [&] {
    CopyTemplate(program_directory / TextsOf(kind).template_name, temporary_, path_);
    connection_ = std::make_unique<SQLite::Database>(OpenDatabase(temporary_, Access::kWrite));
    WithDatabaseErrors(*connection_, [this] {
      connection_->exec(kLargeCache);
      transaction_ = std::make_unique<SQLite::Transaction>(*connection_);
    });
  };
  RunOrUndo(make, [this] { RemoveTemporary(); });
}

NewDatabaseFile::~NewDatabaseFile() { RemoveTemporary(); }

void NewDatabaseFile::Commit() {
  WithDatabaseErrors(*connection_, [this] { transaction_->commit(); });
  transaction_.reset();
  connection_.reset();
  if (const std::error_code unsynced = SyncToDisk(temporary_)) {
    Fail(path_, unsynced);
  }
  // Unlike a rename, a hard link never replaces a file. Not every file system has hard links.
  std::error_code error;
  fs::create_hard_link(temporary_, path_, error);
  if (!error) {
    return;
  }
  if (FileExists(path_)) {
    RefuseExisting(path_);
  }
  fs::rename(temporary_, path_, error);
  if (error) {
    Fail(path_, error);
  }
}

void NewDatabaseFile::RemoveTemporary() {
  transaction_.reset();
  connection_.reset();
  std::error_code ignored;
  fs::remove(temporary_, ignored);
}

constexpr std::uint64_t kRowsPerProgressStep = 100;

// The identity tables come first, because they may decide the kind of the new file.
std::vector<std::string> WantedTables() {
  std::vector<std::string> tables{std::string(kMarkerTable), std::string(kUnitsTable),
                                  std::string(kHistoryTable)};
  for (const TableRule& rule : TableRules()) {
    tables.emplace_back(rule.name);
  }
  return tables;
}

bool Holds(const std::vector<std::string>& names, std::string_view wanted) {
  return std::ranges::any_of(
      names, [wanted](const std::string& name) { return EqualsIgnoringCase(name, wanted); });
}

class Conversion : public LegacyRowSink {
 public:
  Conversion(const LegacyConversion& wanted, ProgramRunner& runner, ProgressDisplay& progress,
             const std::function<bool()>& go_on)
      : wanted_(wanted), runner_(runner), progress_(progress), go_on_(go_on), identity_(notices_) {}

  ConversionReport Run() {
    CheckOldFile();
    report_.old_file = wanted_.old_file;
    report_.new_file = wanted_.new_file;
    report_.sha256 = Sha256OfFile(wanted_.old_file);
    if (FileExists(wanted_.new_file)) {
      RefuseExisting(wanted_.new_file);
    }
    ReadLegacyRows(runner_,
                   {.path = wanted_.old_file,
                    .reader = wanted_.program_directory / kLegacyReaderName,
                    .limits = LimitsForFile(report_.old_size)},
                   WantedTables(), *this, go_on_);
    Finish();
    return std::move(report_);
  }

  void Directory(const std::vector<std::string>& tables) override { directory_ = tables; }

  void BeginTable(const LegacyTable& table) override {
    row_ = 0;
    table_.reset();
    identity_at_work_ = identity_.Begin(table);
    if (identity_at_work_) {
      return;
    }
    Start();
    const TableRule* const rule = FindTableRule(table.name);
    if (rule != nullptr && rule->kind == report_.kind) {
      table_ = std::make_unique<TableConversion>(file_->Connection(), *rule, table, notices_);
      const std::uint32_t most = std::numeric_limits<int>::max();
      progress_.SetProgressMessage(Tr("Converting the table %1.", {std::string(rule->name)}));
      progress_.SetProgressRange(static_cast<int>(std::min(table.announced_rows, most)));
    }
  }

  void Row(const LegacyRow& row) override {
    ++row_;
    if (identity_at_work_) {
      identity_.Row(row);
    } else if (table_) {
      table_->Row(row);
      if (row_ % kRowsPerProgressStep == 0) {
        progress_.SetProgressValue(static_cast<int>(row_));
      }
    }
  }

  void DamagedRow(const std::string& place) override {
    ++row_;
    if (identity_at_work_) {
      identity_.DamagedRow(place);
    } else if (table_) {
      table_->DamagedRow(place);
    }
  }

  void EndTable() override {
    if (table_) {
      table_->Finish(report_);
      table_.reset();
    }
  }

  void DamagedTable(const std::string& name) override {
    if (FindTableRule(name) != nullptr) {
      throw LegacyError(
          Tr("%1 is damaged: its table %2 cannot be read. Copy it again from where it was "
             "made, or take an older backup.",
             {OldName(), name}));
    }
    notices_.Add(name, "the table cannot be read and was left out");
  }

 private:
  [[nodiscard]] std::string OldName() const { return wanted_.old_file.filename().string(); }

  void CheckOldFile() {
    std::error_code error;
    const fs::file_status status = fs::status(wanted_.old_file, error);
    if (!fs::exists(status)) {
      throw LegacyError(Tr("%1 does not exist.", {wanted_.old_file.string()}));
    }
    if (!fs::is_regular_file(status)) {
      throw LegacyError(Tr("%1 is a folder or a device, not a file.", {wanted_.old_file.string()}));
    }
    const JetFileKind kind = InspectJetFile(wanted_.old_file);
    if (kind != JetFileKind::kJet4) {
      throw LegacyError(JetFileRefusal(kind, OldName()));
    }
    report_.old_size = fs::file_size(wanted_.old_file);
  }

  [[nodiscard]] bool HasTablesOf(DatabaseKind kind) const {
    return std::ranges::any_of(TableRules(), [this, kind](const TableRule& rule) {
      return rule.kind == kind && Holds(directory_, rule.name);
    });
  }

  // Decided by the tables, or by the marker if the file has tables of both kinds.
  [[nodiscard]] DatabaseKind FindKind() const {
    const bool recipe = HasTablesOf(DatabaseKind::kRecipe);
    const bool transaction = HasTablesOf(DatabaseKind::kTransaction);
    if (recipe != transaction) {
      return recipe ? DatabaseKind::kRecipe : DatabaseKind::kTransaction;
    }
    const std::optional<DatabaseKind> marked = identity_.MarkedKind();
    if (!recipe || !marked) {
      throw LegacyError(
          recipe ? Tr("%1 holds no mark that says which of its tables count.", {OldName()})
                 : Tr("%1 holds no table of an earlier version of this program. Choose "
                      "the .RDB or .TDB file of the earlier version.",
                      {OldName()}));
    }
    return *marked;
  }

  // Creates the new file, before the first row is stored.
  void Start() {
    if (file_) {
      return;
    }
    report_.kind = FindKind();
    if (wanted_.kind && *wanted_.kind != report_.kind) {
      throw LegacyError(report_.kind == DatabaseKind::kRecipe
                            ? Tr("%1 is a recipe database; expected a transaction database. Open "
                                 "it by the command for its kind.",
                                 {OldName()})
                            : Tr("%1 is a transaction database; expected a recipe database. Open "
                                 "it by the command for its kind.",
                                 {OldName()}));
    }
    file_ = std::make_unique<NewDatabaseFile>(wanted_.new_file, wanted_.program_directory,
                                              report_.kind);
    identity_.Store(file_->Connection(), report_.kind, wanted_.default_unit);
    report_.unit = identity_.Unit();
  }

  void Finish() {
    Start();
    identity_.Report(report_);
    for (const std::string& name : WantedTables()) {
      const TableRule* const rule = FindTableRule(name);
      if (!Holds(directory_, name) && (rule == nullptr || rule->kind == report_.kind)) {
        notices_.Add(name, "the table is missing; the new one holds its defaults");
      }
    }
    const std::vector<std::string> wanted = WantedTables();
    for (const std::string& name : directory_) {
      const TableRule* const rule = FindTableRule(name);
      if (!Holds(wanted, name) || (rule != nullptr && rule->kind != report_.kind)) {
        notices_.Add(name, "the table has no place in the new file and was left out");
      }
    }
    if (Sha256OfFile(wanted_.old_file) != report_.sha256) {
      throw LegacyError(
          Tr("%1 changed while it was read. Close the program that has it open, then "
             "convert it again.",
             {OldName()}));
    }
    notices_.MoveInto(report_);
    progress_.SetProgressMessage(Tr("Writing the new file."));
    file_->Commit();
  }

  const LegacyConversion& wanted_;
  ProgramRunner& runner_;
  ProgressDisplay& progress_;
  const std::function<bool()>& go_on_;
  ConversionReport report_;
  NoticeList notices_;
  IdentityRows identity_;
  std::vector<std::string> directory_;
  bool identity_at_work_ = false;
  std::uint64_t row_ = 0;
  std::unique_ptr<NewDatabaseFile> file_;  // outlives the statements of the table
  std::unique_ptr<TableConversion> table_;
};

// Processor time of the reader.
constexpr std::uintmax_t kBytesPerSecond = std::uintmax_t{1} << 20U;
constexpr std::chrono::seconds kShortestLimit{10};
constexpr std::chrono::seconds kLongestLimit{3600};

[[noreturn]] void Damaged(const LegacyFile& file, const std::string& how) {
  throw LegacyError(
      Tr("%1 is damaged: %2. Copy it again from where it was made, or take an older backup.",
         {file.path.filename().string(), how}));
}

[[noreturn]] void NotRun(const LegacyFile& file, const std::string& how) {
  throw LegacyError(Tr("The program %1, which reads such files, %2. Install the program again.",
                       {file.reader.string(), how}));
}

[[noreturn]] void ReportExit(const LegacyFile& file, int code) {
  const std::string name = file.path.filename().string();
  if (const std::optional<JetFileKind> kind = RefusedKindOf(code)) {
    throw LegacyError(JetFileRefusal(*kind, name));
  }
  switch (code) {
    case kReaderFoundNoTables:
      Damaged(file, Tr("its list of tables cannot be read"));
    case kReaderFailed:
      throw LegacyError(Tr("%1 cannot be read.", {name}));
    default:
      NotRun(file, Tr("is not the right one (it ended with code %1)", {std::to_string(code)}));
  }
}

}  // namespace

ConversionReport ConvertLegacyDatabase(const LegacyConversion& wanted, ProgramRunner& runner,
                                       ProgressDisplay& progress,
                                       const std::function<bool()>& go_on) {
  return WithDatabaseErrors(wanted.new_file,
                            [&] { return Conversion(wanted, runner, progress, go_on).Run(); });
}

ProgramLimits LimitsForFile(std::uintmax_t size) {
  const auto seconds = kShortestLimit + std::chrono::seconds(size / kBytesPerSecond);
  return {.processor = std::min<std::chrono::seconds>(seconds, kLongestLimit)};
}

void ReadLegacyRows(ProgramRunner& runner, const LegacyFile& file,
                    const std::vector<std::string>& tables, LegacyRowSink& sink,
                    const std::function<bool()>& go_on) {
  RowStreamReader rows(sink);
  // Arguments are UTF-8, but the path may have any bytes: each byte is passed as one character.
  std::vector<std::string> arguments{
      Windows1252ToUtf8(std::filesystem::absolute(file.path).string())};
  arguments.insert(arguments.end(), tables.begin(), tables.end());
  ProgramOutcome outcome;
  try {
    outcome =
        runner.Run({.path = file.reader, .arguments = std::move(arguments), .limits = file.limits},
                   [&](std::string_view bytes) {
                     rows.Take(bytes);
                     return go_on();
                   });
  } catch (const RowStreamError& failure) {
    NotRun(file, Tr("is not the right one: %1", {failure.what()}));
  }
  switch (outcome.end) {
    case ProgramEnd::kStopped:
      throw ConversionStopped(Tr("the conversion was stopped"));
    case ProgramEnd::kNotStarted:
      NotRun(file, Tr("cannot be started: %1",
                      {std::error_code(outcome.code, std::generic_category()).message()}));
    case ProgramEnd::kOutOfTime:
      Damaged(file, Tr("reading it does not come to an end"));
    case ProgramEnd::kCrashed:
      Damaged(file, Tr("its reader was ended by signal %1", {std::to_string(outcome.code)}));
    case ProgramEnd::kExited:
      break;
  }
  if (outcome.code != 0) {
    ReportExit(file, outcome.code);
  }
  if (!rows.Ended()) {
    NotRun(file, Tr("is not the right one: its rows have no end"));
  }
}

}  // namespace vrx
