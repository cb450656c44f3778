#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "desktop/app/history_tabs.h"
#include "desktop/app/transfer_tabs.h"
#include "desktop/main_window/main_window.h"
#include "desktop/print/print_dialogs.h"
#include "desktop/recipes/recipes_page.h"
#include "platform/calendar.h"
#include "platform/event_pump.h"
#include "platform/operator.h"
#include "presenter/database_commands.h"
#include "report/reports.h"
#include "settings/settings.h"

namespace vrx {

// `mnuFilePrint` and `mnuFilePrintSetup`: prints the current tab without a dialog. Reports
// failures.
class PrintCommands {
 public:
  // Everything outlives it.
  struct Ports {
    Operator& op;
    FileChooser& files;
    const PrivateINI& settings;
    const Calendar& calendar;
    EventPump& pump;
    const DatabaseCommands& databases;
    const TransferTabs& transfer;
    HistoryTabs& history;
    MainWindow& window;
  };

  // Sets the handlers of the two commands.
  explicit PrintCommands(const Ports& ports);

  void PrintCurrentTab();

 private:
  using Job = std::function<bool(ReportJob&)>;

  void PrintIngredients();
  void PrintRecipes();
  void PrintPens();
  void PrintTransactions();
  void PrintImportedTransactions();

  void PrintCurrentRecipe();
  void PrintAllRecipes(SQLite::Database& recipes);
  // With the columns in the order of the grid.
  Report ReportOf(const CurrentRecipe& recipe,
                  const std::vector<IngredientRecord>& ingredients) const;

  // Common to all grids: refuses an empty grid, otherwise prints with the busy cursor.
  void PrintGrid(std::string_view noun, Report report);
  // Asks for the PDF file if the target is one, and the questions of MayPrint.
  void PrintReport(Report report);
  // Returns false if the operator ended it.
  bool OnPaper(PrintTarget& paper, const Job& job);
  bool PrintPages(ReportJob& job, const Report& report);
  void Refuse(Icon icon, const std::string& text);

  ReportFacts Facts() const;
  SQLite::Database* Recipes() const;  // nullptr while none is open
  bool Ticked(const char* check_box) const;

  Ports ports_;
  PrintSetup setup_;
  bool printing_ = false;
};

}  // namespace vrx
