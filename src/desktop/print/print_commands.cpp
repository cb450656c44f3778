#include "desktop/print/print_commands.h"

#include <array>
#include <exception>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "base/translation.h"
#include "database/keep_database.h"
#include "desktop/insight/picture_view.h"
#include "desktop/print/print_dialogs.h"
#include "desktop/print/print_preview.h"
#include "desktop/recipes/recipe_lines.h"
#include "feed/record_fields.h"
#include "presenter/report_failure.h"
#include "report/print_questions.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr std::string_view kPrintError = "Print Error";
constexpr const char* kDocument = "VRX-2260 report";

// Longer reports show their progress and can be ended by the operator.
constexpr std::int64_t kPagesAtOnce = 20;

FailureReport PrintFailure(const std::exception& failure) {
  if (dynamic_cast<const NoPrinter*>(&failure) != nullptr ||
      dynamic_cast<const DatabaseInTheWay*>(&failure) != nullptr) {
    return {.title = kPrintError, .text = FailureText::kMessage, .icon = Icon::kWarning};
  }
  return {.title = kPrintError,
          .text = FailureText::kWords,
          .words = TrMark("The report could not be printed.")};
}

template <typename Record>
void KeepActive(std::vector<Record>& records, bool active_only) {
  if (active_only) {
    std::erase_if(records, [](const Record& record) { return !IsActive(record); });
  }
}

// Shows the grid again however the walk ends.
class ScanShown {
 public:
  explicit ScanShown(RecipeLines& lines) : lines_(lines), panel_(lines.BeginScan()) {}
  ~ScanShown() { lines_.EndScan(); }
  ScanShown(const ScanShown&) = delete;
  ScanShown& operator=(const ScanShown&) = delete;

  [[nodiscard]] ScanPanel& Panel() const { return panel_; }

 private:
  RecipeLines& lines_;
  ScanPanel& panel_;
};

}  // namespace

PrintCommands::PrintCommands(Services& services, const DatabaseCommands& databases,
                             const PrintedPages& pages, MainWindow& window)
    : services_(services),
      databases_(databases),
      pages_(pages),
      window_(window),
      setup_(services.files) {
  window_.SetHandler(MainCommand::kPrint, [this] { PrintCurrentTab(); });
  window_.SetHandler(MainCommand::kPrintPreview, [this] { PreviewCurrentTab(); });
  window_.SetHandler(MainCommand::kPrintSetup, [this] { setup_.Ask(&window_); });
  window_.SetHandler(MainCommand::kReport, [this] { WriteReport(); });
}

void PrintCommands::PreviewCurrentTab() {
  if (PrintTab(Output::kPreview)) {
    PrintTab(Output::kPaper);
  }
}

void PrintCommands::WriteReport() {
  const OperationLock::Scope printing = printing_.TryEnter();
  const BoundDatabase& transactions = databases_.Bound(DatabaseKind::kTransaction);
  if (!printing || transactions.blank) {
    return;
  }
  const WrittenReport report = AskForReport(services_, transactions.path, &window_);
  if (report.file.empty()) {
    return;
  }
  ResultPanel& panel = window_.Panels().PicResult();
  const QString path = ToQString(report.file.string());
  panel.ShowFile(QTr("Report written to"), path);
  if (report.opens) {
    Q_EMIT panel.OpenRequested(path);
  }
}

// Events run between pages, so a second print command must be refused.
bool PrintCommands::PrintTab(Output output) {
  using Routine = void (PrintCommands::*)();
  static constexpr std::array<std::pair<int, Routine>, 6> kRoutines{{
      {kTabIngredients, &PrintCommands::PrintIngredients},
      {kTabRecipes, &PrintCommands::PrintRecipes},
      {kTabPens, &PrintCommands::PrintPens},
      {kTabBatchedFed, &PrintCommands::PrintTransactions},
      {kTabImport, &PrintCommands::PrintImportedTransactions},
      {kTabInsight, &PrintCommands::PrintInsight},
  }};
  const OperationLock::Scope printing = printing_.TryEnter();
  if (!printing) {
    return false;
  }
  output_ = output;
  print_after_preview_ = false;
  RunReported(services_.op, PrintFailure, [&] {
    for (const auto& [tab, routine] : kRoutines) {
      if (tab == window_.Tabs().CurrentTab()) {
        (this->*routine)();
      }
    }
  });
  return print_after_preview_;
}

void PrintCommands::PrintIngredients() {
  const bool active_only = pages_.ingredients.ActiveOnly();
  std::vector<IngredientRecord> rows;
  if (SQLite::Database* const recipes = Recipes()) {
    rows = ReadIngredients(*recipes);
  }
  KeepActive(rows, active_only);
  PrintGrid("ingredient", IngredientReport(rows, active_only, Facts()));
}

void PrintCommands::PrintPens() {
  const bool active_only = pages_.pens.ActiveOnly();
  std::vector<PenRecord> rows;
  if (SQLite::Database* const recipes = Recipes()) {
    rows = ReadPens(*recipes);
  }
  KeepActive(rows, active_only);
  PrintGrid("pen", PenReport(rows, active_only, Facts()));
}

void PrintCommands::PrintTransactions() {
  if (HistoryPresenter* const view = pages_.history.View()) {
    PrintGrid("transaction", HistoryReport(view->Grid(), pages_.history.FitAllColumns(), Facts()));
  }
}

void PrintCommands::PrintImportedTransactions() {
  const ImportPresenter& import = pages_.import.Session();
  PrintGrid("import",
            ImportReport(import.File(), import.Form().grd_import_rows,
                         import.Form().grd_import_columns, pages_.import.FitAllColumns(), Facts()));
}

// A picture is one sheet and has no preview: the screen shows it.
void PrintCommands::PrintInsight() {
  const DrawPicture picture = pages_.insight.WholePicture();
  if (!picture) {
    Refuse(Icon::kWarning, Tr("There is no picture to be printed."));
    return;
  }
  const std::unique_ptr<PrintTarget> paper = setup_.Open(kDocument);
  if (paper) {
    const BusyCursor busy(services_.op);
    PrintPicture(picture, paper->Device());
    paper->Finish();
    ShowPrinted(*paper);
  }
}

void PrintCommands::PrintRecipes() {
  if (services_.settings.PrintCurrentRecipeOnlyOn()) {
    PrintCurrentRecipe();
  } else if (SQLite::Database* const recipes = Recipes()) {
    PrintAllRecipes(*recipes);
  }
}

void PrintCommands::PrintCurrentRecipe() {
  const CurrentRecipe* const current = pages_.recipes.Current();
  SQLite::Database* const recipes = Recipes();
  if (current != nullptr && recipes != nullptr) {
    std::vector<IngredientRecord> ingredients = ReadIngredients(*recipes);
    KeepActive(ingredients, true);
    PrintGrid("recipe", ReportOf(*current, ingredients));
  }
}

int PrintCommands::CountRecipesWithLines(SQLite::Database& recipes, ScanPanel& panel) {
  const BusyCursor busy(services_.op);
  panel.ShowText(QTr("Scanning database..."));
  int count = 0;
  for (int id = 1; id <= kRecipeCount; ++id) {
    panel.GoTo(id);
    count += ReadRecipeLines(recipes, id).empty() ? 0 : 1;
  }
  panel.ShowText(QTr("Scan done!"));
  return count;
}

void PrintCommands::PrintAllRecipes(SQLite::Database& recipes) {
  const ScanShown scan(pages_.recipes.Lines());
  const int count = CountRecipesWithLines(recipes, scan.Panel());
  if (count < 1) {
    Refuse(Icon::kInformation, "There are no recipe entries to be printed.");
    return;
  }
  std::vector<IngredientRecord> ingredients = ReadIngredients(recipes);
  KeepActive(ingredients, true);
  // The scan ends on the last recipe. If only one was found, the grid is printed as it is: with
  // that last recipe, whatever was found.
  if (count == 1) {
    PrintReport(ReportOf(ReadRecipeToPrint(recipes, kRecipeCount), ingredients));
    return;
  }
  if (output_ == Output::kPreview) {
    PreviewAllRecipes(recipes, ingredients);
    return;
  }
  const Answer answer = services_.op.ShowMessage(
      {.icon = Icon::kQuestion,
       .buttons = Buttons::kYesNo,
       .title = "Print All Recipes",
       .text = "There are " + std::to_string(count) +
               " recipes to be printed. \r\nEach recipe will be printed on a separate sheet of "
               "paper. Do you want to continue and print out all recipes?",
       .refuses_by_default = count > kMostSheetsUnasked});
  if (answer != Answer::kYes) {
    return;
  }
  scan.Panel().ShowText(QTr("Printing recipes..."));
  const std::unique_ptr<PrintTarget> paper = setup_.Open(kDocument);
  const bool printed =
      paper && OnPaper(*paper, [&](ReportJob& job) {
        for (int id = 1; id <= kRecipeCount; ++id) {
          scan.Panel().GoTo(id);
          const CurrentRecipe recipe = ReadRecipeToPrint(recipes, id);
          if (recipe.LineCount() > 0 && !PrintPages(job, ReportOf(recipe, ingredients))) {
            return false;
          }
        }
        return true;
      });
  if (printed) {
    scan.Panel().ShowText(QTr("Done!"));
  }
}

void PrintCommands::PreviewAllRecipes(SQLite::Database& recipes,
                                      const std::vector<IngredientRecord>& ingredients) {
  std::vector<Report> reports;
  for (int id = 1; id <= kRecipeCount; ++id) {
    const CurrentRecipe recipe = ReadRecipeToPrint(recipes, id);
    if (recipe.LineCount() > 0) {
      reports.push_back(ReportOf(recipe, ingredients));
    }
  }
  Preview(std::move(reports));
}

Report PrintCommands::ReportOf(const CurrentRecipe& recipe,
                               const std::vector<IngredientRecord>& ingredients) const {
  return RecipeReport(recipe, pages_.recipes.ColumnsInSight(recipe.Entry()), ingredients, Facts());
}

void PrintCommands::PrintGrid(std::string_view noun, Report report) {
  if (report.rows->Count() < 1) {
    Refuse(Icon::kWarning, "There is no " + std::string(noun) + " data to be printed.");
    return;
  }
  PrintReport(std::move(report));
}

void PrintCommands::PrintReport(Report report) {
  if (output_ == Output::kPreview) {
    std::vector<Report> reports;
    reports.push_back(std::move(report));
    Preview(std::move(reports));
    return;
  }
  const std::unique_ptr<PrintTarget> paper = setup_.Open(kDocument);
  if (paper && MayPrint({&report, 1}, paper->Device(), services_.op)) {
    OnPaper(*paper, [&](ReportJob& job) { return PrintPages(job, report); });
  }
}

void PrintCommands::Preview(std::vector<Report> reports) {
  std::optional<PrintPreview> preview;
  {
    const BusyCursor busy(services_.op);
    preview.emplace(services_.op, std::move(reports), setup_.Paper(), &window_);
  }
  print_after_preview_ = preview->exec() == QDialog::Accepted;
}

bool PrintCommands::OnPaper(PrintTarget& paper, const Job& job) {
  const BusyCursor busy(services_.op);
  if (!PrintOn(paper, job)) {
    return false;
  }
  ShowPrinted(paper);
  return true;
}

void PrintCommands::ShowPrinted(const PrintTarget& paper) {
  const std::filesystem::path file = paper.File();
  if (file.empty()) {
    window_.Panels().PicResult().ShowText(QTr("The report was sent to the printer."));
  } else {
    window_.Panels().PicResult().ShowFile(QTr("Printed to"), ToQString(file.string()));
  }
}

bool PrintCommands::PrintPages(ReportJob& job, const Report& report) {
  std::optional<PrintProgress> progress;
  return job.Print(report, [&](std::int64_t page, std::int64_t pages) {
    if (pages <= kPagesAtOnce) {
      return true;
    }
    if (!progress) {
      progress.emplace(&window_);
    }
    progress->ShowPage(page, pages);
    services_.pump.Pump(Milliseconds{0});
    return !progress->Cancelled() && !services_.pump.Closing();
  });
}

void PrintCommands::Refuse(Icon icon, const std::string& text) {
  services_.op.ShowMessage({.icon = icon, .title = std::string(kPrintError), .text = text});
}

ReportFacts PrintCommands::Facts() const {
  const BoundDatabase& recipes = databases_.Bound(DatabaseKind::kRecipe);
  const BoundDatabase& transactions = databases_.Bound(DatabaseKind::kTransaction);
  return {.recipe_file = recipes.blank ? "" : recipes.path.string(),
          .transaction_file = transactions.blank ? "" : transactions.path.string(),
          .weight_unit = recipes.blank ? "" : databases_.Recipe().unit,
          .caption_unit = services_.settings.SystemUnits(),
          .today = services_.calendar.Today(),
          .grid_lines = services_.settings.PrintGridLinesOn()};
}

SQLite::Database* PrintCommands::Recipes() const {
  const BoundDatabase& bound = databases_.Bound(DatabaseKind::kRecipe);
  return bound.blank ? nullptr : bound.connection.get();
}

}  // namespace vrx
