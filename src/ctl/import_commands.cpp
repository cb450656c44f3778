#include <cstddef>
#include <filesystem>
#include <map>
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
  StoreOutcome Store(RepeatedBatches repeated) { return import_.ClickImportStore(repeated); }
  bool UndoLastStore() { return import_.ClickImportUndo(); }
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

const std::map<std::string, RepeatedBatches> kRepeated{{"ask", RepeatedBatches::kAsk},
                                                       {"new", RepeatedBatches::kNew},
                                                       {"all", RepeatedBatches::kAll},
                                                       {"none", RepeatedBatches::kNone}};

class StoreCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "store", "Import a transaction file and store its rows, or undo a store");
    CLI::Option* file = command->add_option("file", file_, "A transaction file (.QXT)");
    command->add_option("--into", transactions_, "The transaction database that gets the rows")
        ->required()
        ->type_name("TDB");
    CLI::Option* recipes =
        command->add_option("--recipes", recipes_, "The recipe database that gives the names")
            ->type_name("RDB");
    CLI::Option* repeated =
        command
            ->add_option("--repeated", repeated_,
                         "What is stored if the database has batches of the file already: the new "
                         "ones, all again, none; ask by default")
            ->transform(CLI::CheckedTransformer(kRepeated));
    CLI::Option* undo = command->add_flag(
        "--undo", undo_, "Take the rows of the last store out of the database, after a question");
    undo->excludes(file)->excludes(recipes)->excludes(repeated);
    AddExamples(*command, {{"store 01.QXT --into JANUARY.TDB --recipes SITE.RDB",
                            "Adds the file after the records of the database."},
                           {"store 01.QXT --into JANUARY.TDB --recipes SITE.RDB --repeated new",
                            "The same for a module that was not cleared: stores what is new."},
                           {"store --undo --into JANUARY.TDB", "Takes the last store back."}});
    return command;
  }

  int Run(Session& session) override {
    if (!undo_ && (file_.empty() || recipes_.empty())) {
      throw CLI::RequiredError(file_.empty() ? "store: file" : "store: --recipes");
    }
    if (!session.IsUserDatabase(transactions_, DatabaseKind::kTransaction) ||
        (!undo_ && !session.IsUserDatabase(recipes_, DatabaseKind::kRecipe))) {
      return kFailed;
    }
    return session.OnDatabase(transactions_, DatabaseKind::kTransaction, [&] {
      HeadlessImport importer(
          session, {.recipe_db_path = recipes_,
                    .trans_db_path = transactions_,
                    .trans_db_uom = ReadDatabaseUoM(transactions_, session.Context().busy_timeout),
                    .lock_wait = session.Context().busy_timeout});
      if (undo_) {
        return Undo(session, importer);
      }
      return importer.Import(file_) ? Store(session, importer) : kFailed;
    });
  }

 private:
  static int Undo(Session& session, HeadlessImport& importer) {
    if (!importer.UndoLastStore()) {
      return kFailed;
    }
    session.Op().ShowNote(session.Progress().Message());
    return kDone;
  }

  int Store(Session& session, HeadlessImport& importer) const {
    const StoreOutcome outcome = importer.Store(repeated_);
    if (outcome.complete) {
      session.Op().ShowNote(session.Progress().Message());
    }
    if (outcome.complete || outcome.stored > 0) {
      session.Op().ShowNote(
          "rows read: " + std::to_string(importer.File().FileRecordCount()) + ", stored: " +
          std::to_string(outcome.stored) + ", left out: " + std::to_string(outcome.left_out) +
          (outcome.not_read == 0 ? std::string()
                                 : ", not read: " + std::to_string(outcome.not_read)) +
          (outcome.repeated == 0 ? std::string()
                                 : ", repeated: " + std::to_string(outcome.repeated)));
    }
    return outcome.complete && outcome.not_read == 0 ? kDone : kFailed;
  }

  std::string file_;
  std::string transactions_;
  std::string recipes_;
  RepeatedBatches repeated_ = RepeatedBatches::kAsk;
  bool undo_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeImportCommand() { return std::make_unique<ImportCommand>(); }

std::unique_ptr<Command> MakeStoreCommand() { return std::make_unique<StoreCommand>(); }

}  // namespace vrx
