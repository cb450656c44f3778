#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "desktop/history/history_page.h"
#include "desktop/insight/insight_page.h"
#include "desktop/main_window/main_window.h"
#include "desktop/print/print_dialogs.h"
#include "desktop/recipes/recipes_page.h"
#include "desktop/records/record_form_page.h"
#include "desktop/transfer/import_page.h"
#include "presenter/database_commands.h"
#include "presenter/operation.h"
#include "presenter/services.h"
#include "report/reports.h"

namespace vrx {

class ScanPanel;

// The pages that can be printed.
struct PrintedPages {
  const RecordFormPage& ingredients;
  RecipesPage& recipes;
  const RecordFormPage& pens;
  HistoryPage& history;
  const InsightPage& insight;
  const ImportPage& import;
};

// `mnuFilePrint`, `mnuFilePrintPreview` and `mnuFilePrintSetup`: prints the current tab without a
// dialog, or shows its pages before. `mnuFileReport` writes the page of a period. Reports failures.
class PrintCommands {
 public:
  // Sets the handlers of the commands. Everything outlives it.
  PrintCommands(Services& services, const DatabaseCommands& databases, const PrintedPages& pages,
                MainWindow& window);

  void PrintCurrentTab() { PrintTab(Output::kPaper); }
  void PreviewCurrentTab();
  // Asks for a day, a week or a month and a file.
  void WriteReport();

 private:
  enum class Output { kPaper, kPreview };
  using Job = std::function<bool(ReportJob&)>;

  // Returns whether the operator prints after a preview.
  bool PrintTab(Output output);
  void PrintIngredients();
  void PrintRecipes();
  void PrintPens();
  void PrintTransactions();
  void PrintImportedTransactions();
  void PrintInsight();

  void PrintCurrentRecipe();
  void PrintAllRecipes(SQLite::Database& recipes);
  void PreviewAllRecipes(SQLite::Database& recipes,
                         const std::vector<IngredientRecord>& ingredients);
  // Shows its progress in the panel.
  int CountRecipesWithLines(SQLite::Database& recipes, ScanPanel& panel);
  // With the columns in the order of the grid.
  [[nodiscard]] Report ReportOf(const CurrentRecipe& recipe,
                                const std::vector<IngredientRecord>& ingredients) const;

  // Common to all grids: refuses an empty grid, otherwise prints with the busy cursor.
  void PrintGrid(std::string_view noun, Report report);
  // Asks for the PDF file if the target is one, and the questions of MayPrint. Or shows its pages.
  void PrintReport(Report report);
  void Preview(std::vector<Report> reports);
  // Returns false if the operator ended it.
  bool OnPaper(PrintTarget& paper, const Job& job);
  void ShowPrinted(const PrintTarget& paper);
  bool PrintPages(ReportJob& job, const Report& report);
  void Refuse(Icon icon, const std::string& text);

  [[nodiscard]] ReportFacts Facts() const;
  [[nodiscard]] SQLite::Database* Recipes() const;  // nullptr while none is open

  Services& services_;
  const DatabaseCommands& databases_;
  PrintedPages pages_;
  MainWindow& window_;
  PrintSetup setup_;
  OperationLock printing_;
  Output output_ = Output::kPaper;  // of the current command
  bool print_after_preview_ = false;
};

}  // namespace vrx
