#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "base/error.h"
#include "ctl/command.h"
#include "ctl/history_commands.h"
#include "ctl/options.h"
#include "ctl/recipe_file.h"
#include "ctl/session.h"
#include "database/identity.h"
#include "database/keep_database.h"
#include "feed/record_fields.h"
#include "presenter/report_failure.h"
#include "report/print_questions.h"
#include "report/print_target.h"
#include "report/reports.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrintError = "Print Error";

template <typename Record>
std::vector<Record> Chosen(std::vector<Record> records, bool all) {
  if (!all) {
    std::erase_if(records, [](const Record& record) { return !IsActive(record); });
  }
  return records;
}

// The recipes that have lines, each with its totals.
std::vector<CurrentRecipe> RecipesToPrint(SQLite::Database& database, bool all) {
  std::vector<CurrentRecipe> recipes;
  for (const RecipeRecord& record : Chosen(ReadRecipes(database), all)) {
    CurrentRecipe recipe = ReadRecipeToPrint(database, record.id);
    if (recipe.LineCount() > 0) {
      recipes.push_back(std::move(recipe));
    }
  }
  return recipes;
}

FailureReport PrintFailure(const Error& failure) {
  if (dynamic_cast<const DatabaseInTheWay*>(&failure) != nullptr) {
    return {.title = kPrintError, .text = FailureText::kMessage, .icon = Icon::kWarning};
  }
  return {.title = kPrintError,
          .text = FailureText::kWords,
          .words = "The report could not be printed."};
}

std::string FullPath(const std::string& path) {
  return path.empty() ? std::string() : fs::absolute(path).lexically_normal().string();
}

class PrintCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    command_ = app.add_subcommand(
        "print", "Print a data group, or the records of a recipe database, as a PDF file");
    source_.Register(*command_);
    command_->get_option("tdb")->required(false);
    command_->get_option("--group")->required(false);
    command_->add_flag("--collapsed", collapsed_, "All groups closed, a row for each");
    command_->add_flag("--fit", fit_,
                       "All columns of the group on one page, in smaller letters; else those that "
                       "find no room go on a page of their own");
    command_->add_option("--pdf", pdf_, "The file; an older one is replaced")
        ->required()
        ->type_name("FILE");
    for (const RecordKindTraits& kind : RecordKinds()) {
      RegisterRecords(kind);
    }
    AddExamples(*command_, {{"print JANUARY.TDB --group 8 --recipes SITE.RDB --pdf pens.pdf",
                             "The feed of every pen."},
                            {"print recipes SITE.RDB --pdf recipes.pdf",
                             "The recipes, each on a sheet of its own."}});
    return command_;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    if (kind_ != nullptr) {
      RefuseOptionsOfGroups();
      return PrintRecords(session);
    }
    for (const char* const needed : {"tdb", "--group"}) {
      if (command_->count(needed) == 0) {
        throw CLI::RequiredError(needed);
      }
    }
    return source_.Run(session, [&](HistoryGrid& grid) { return PrintGroup(session, grid); });
  }

 private:
  void RegisterRecords(const RecordKindTraits& kind) {
    const std::string plural(kind.plural);
    CLI::App* const records = command_->add_subcommand(
        plural, kind.kind == RecordKind::kRecipe
                    ? "The recipes that have ingredients, each on a sheet of its own"
                    : "The list of the " + plural);
    records->add_option("rdb", recipes_, "A recipe database")->required();
    records->add_flag("--all", all_, "Records out of use as well");
    records->fallthrough();
    const std::string call = "print " + plural + " SITE.RDB --pdf " + plural + ".pdf";
    AddExamples(*records, {{call, "The " + plural + " in use, ready for the printer."}});
    records->callback([this, &kind] { kind_ = &kind; });
  }

  void RefuseOptionsOfGroups() const {
    for (const char* const option : {"--group", "--name", "--recipes", "--from", "--to",
                                     "--difference", "--collapsed", "--fit"}) {
      if (command_->count(option) > 0) {
        throw CLI::ValidationError(option, "goes with a data group only");
      }
    }
  }

  int PrintGroup(Session& session, HistoryGrid& grid) const {
    const OpenDatabases databases = source_.Databases(session);
    const std::string recipes = databases.recipe_db_path.string();
    ReportFacts facts = Facts(session);
    facts.transaction_file = FullPath(databases.trans_db_path.string());
    facts.recipe_file = FullPath(recipes);
    facts.weight_unit = recipes.empty() ? "" : ReadDatabaseUoM(recipes, databases.lock_wait);
    grid.ApplyExpandState(!collapsed_);
    if (grid.RowCount() < 1) {
      return Refuse(session, Icon::kWarning, "There is no transaction data to be printed.");
    }
    std::vector<Report> reports;
    reports.push_back(HistoryReport(grid, fit_, facts));
    return Print(session, reports);
  }

  int PrintRecords(Session& session) const {
    int printed = kFailed;
    const int read = ReadRecipeFile(session, recipes_, [&](SQLite::Database& database) {
      ReportFacts facts = Facts(session);
      facts.recipe_file = FullPath(recipes_);
      facts.weight_unit = ReadDatabaseUoM(recipes_);
      std::vector<Report> reports = RecordReports(database, facts);
      if (reports.empty() || reports.front().rows->Count() < 1) {
        printed =
            kind_->kind == RecordKind::kRecipe
                ? Refuse(session, Icon::kInformation, "There are no recipe entries to be printed.")
                : Refuse(session, Icon::kWarning,
                         "There is no " + std::string(kind_->noun) + " data to be printed.");
        return;
      }
      printed = Print(session, reports);
    });
    return read == kDone ? printed : read;
  }

  std::vector<Report> RecordReports(SQLite::Database& database, const ReportFacts& facts) const {
    std::vector<Report> reports;
    switch (kind_->kind) {
      case RecordKind::kIngredient:
        reports.push_back(IngredientReport(Chosen(ReadIngredients(database), all_), !all_, facts));
        break;
      case RecordKind::kPen:
        reports.push_back(PenReport(Chosen(ReadPens(database), all_), !all_, facts));
        break;
      case RecordKind::kRecipe: {
        const auto ingredients = Chosen(ReadIngredients(database), false);
        for (const CurrentRecipe& recipe : RecipesToPrint(database, all_)) {
          reports.push_back(RecipeReport(recipe, ingredients, facts));
        }
      }
    }
    return reports;
  }

  static ReportFacts Facts(Session& session) {
    return {.caption_unit = session.Settings().SystemUnits(),
            .today = session.Context().calendar.Today(),
            .grid_lines = session.Settings().PrintGridLinesOn()};
  }

  static int Refuse(Session& session, Icon icon, const std::string& text) {
    session.Op().ShowMessage({.icon = icon, .title = std::string(kPrintError), .text = text});
    return kFailed;
  }

  int Print(Session& session, std::vector<Report>& reports) const {
    session.Context().start_drawing();
    const bool printed = RunReported<Error>(session.Op(), PrintFailure, [&] {
      const std::unique_ptr<PrintTarget> paper = MakePdfFile(pdf_, "VRX-2260 report");
      if (!MayPrint(reports, paper->Device(), session.Op())) {
        return false;
      }
      PrintOn(*paper, [&](ReportJob& job) { return PrintAll(session, job, reports); });
      return true;
    });
    return printed ? kDone : kFailed;
  }

  static bool PrintAll(Session& session, ReportJob& job, const std::vector<Report>& reports) {
    session.Progress().SetProgressMessage("Printing");
    for (const Report& report : reports) {
      job.Print(report, [&](std::int64_t page, std::int64_t pages) {
        session.Progress().SetProgressRange(static_cast<int>(pages));
        session.Progress().SetProgressValue(static_cast<int>(page));
        return true;
      });
    }
    session.Progress().Clear();
    return true;
  }

  CLI::App* command_ = nullptr;
  HistorySource source_;
  bool collapsed_ = false;
  bool fit_ = false;
  bool all_ = false;
  std::string pdf_;
  std::string recipes_;
  const RecordKindTraits* kind_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> MakePrintCommand() { return std::make_unique<PrintCommand>(); }

}  // namespace vrx
