#include <cstddef>
#include <filesystem>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/encoding.h"
#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "database/identity.h"
#include "database/schema.h"
#include "presenter/import.h"

namespace vrx {

namespace {

// The Import tab without its window, working on the databases that a command names.
class HeadlessImport : public ImportView {
 public:
  HeadlessImport(Session& session, OpenDatabases databases);

  // Returns false after reporting a failure.
  bool Import(const std::filesystem::path& file);
  StoreOutcome Store() { return import_.ClickImportStore(); }
  const TransFile& File() const { return import_.File(); }

  OpenDatabases Databases() const override { return databases_; }
  // The command line has no grid.
  std::vector<IngredientRecord> GridIngredients() override { return {}; }
  void SelectImportTab() override {}
  void FocusControl(std::string_view /*name*/) override {}
  // A command keeps its databases open only for one store.
  void SaveTransactionDatabase() override {}
  void ImportChanged() override {}

 private:
  OpenDatabases databases_;
  ImportPresenter import_;
};

HeadlessImport::HeadlessImport(Session& session, OpenDatabases databases)
    : databases_(std::move(databases)), import_(session.GetServices(), session.Progress(), *this) {}

bool HeadlessImport::Import(const std::filesystem::path& file) {
  return import_.ImportFile({file.string(), file.filename().string()});
}

// Writes row by row, because a damaged file can have many more rows than data.
void WriteRows(std::ostream& out, const ImportedData& rows) {
  std::vector<std::string> cells;
  for (int column = 1; column <= kImportColumns; ++column) {
    cells.push_back(ImportColumnKey(column));
  }
  WriteLine(out, OutputForm::kCsv, cells);
  for (std::size_t row = 1; row <= rows.RowCount(); ++row) {
    for (int column = 1; column <= kImportColumns; ++column) {
      cells[static_cast<std::size_t>(column) - 1] = Windows1252ToUtf8(rows.Cell(row, column));
    }
    WriteLine(out, OutputForm::kCsv, cells);
  }
}

class ImportCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("import", "Parse a transaction file");
    command->add_option("file", file_, "A transaction file (.QXT)")->required();
    output_.RegisterCsv(*command);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"import 01.QXT", "Shows unit, batches and rows."},
                           {"import 01.QXT --csv > rows.csv", "Every row with its 112 columns."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    HeadlessImport importer(session, {});
    if (!importer.Import(file_)) {
      return kFailed;
    }
    session.Progress().Clear();
    if (output_.Form() == OutputForm::kCsv) {
      WriteRows(session.Out(), importer.File().Imported());
    } else {
      WriteObject(session.Out(), output_.Form(),
                  {{"units", importer.File().FileUnits()},
                   {"batches", importer.File().FileTransactionCount()},
                   {"rows", importer.File().FileRecordCount()},
                   {"notRead", importer.File().Imported().UnreadFeeds().size()}});
    }
    return kDone;
  }

 private:
  std::string file_;
  OutputOptions output_;
};

class StoreCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("store", "Import a transaction file and store its rows");
    command->add_option("file", file_, "A transaction file (.QXT)")->required();
    command->add_option("--into", transactions_, "The transaction database that gets the rows")
        ->required()
        ->type_name("TDB");
    command->add_option("--recipes", recipes_, "The recipe database that gives the names")
        ->required()
        ->type_name("RDB");
    AddExamples(*command, {{"store 01.QXT --into JANUARY.TDB --recipes SITE.RDB",
                            "Adds the file after the records of the database."}});
    return command;
  }

  int Run(Session& session) override {
    if (!session.IsUserDatabase(transactions_, DatabaseKind::kTransaction) ||
        !session.IsUserDatabase(recipes_, DatabaseKind::kRecipe)) {
      return kFailed;
    }
    return session.OnDatabase(transactions_, DatabaseKind::kTransaction, [&] {
      HeadlessImport importer(
          session, {.recipe_db_path = recipes_,
                    .trans_db_path = transactions_,
                    .trans_db_uom = ReadDatabaseUoM(transactions_, session.Context().busy_timeout),
                    .lock_wait = session.Context().busy_timeout});
      return importer.Import(file_) ? Store(session, importer) : kFailed;
    });
  }

 private:
  static int Store(Session& session, HeadlessImport& importer) {
    const StoreOutcome outcome = importer.Store();
    if (outcome.complete) {
      session.Op().ShowNote(session.Progress().Message());
    }
    if (outcome.complete || outcome.stored > 0) {
      session.Op().ShowNote(
          "rows read: " + std::to_string(importer.File().FileRecordCount()) + ", stored: " +
          std::to_string(outcome.stored) + ", left out: " + std::to_string(outcome.left_out) +
          (outcome.not_read == 0 ? std::string()
                                 : ", not read: " + std::to_string(outcome.not_read)));
    }
    return outcome.complete && outcome.not_read == 0 ? kDone : kFailed;
  }

  std::string file_;
  std::string transactions_;
  std::string recipes_;
};

}  // namespace

std::unique_ptr<Command> MakeImportCommand() { return std::make_unique<ImportCommand>(); }

std::unique_ptr<Command> MakeStoreCommand() { return std::make_unique<StoreCommand>(); }

}  // namespace vrx
