#pragma once

namespace vrx {

// What menus and toolbar of the main window call. A menu item and a button that do the same share
// one.
enum class MainCommand {
  kNone,  // a menu with items of its own, or a button that is only its list
  kNewRecipeDatabase,
  kNewTransactionDatabase,
  kBrowseRecipeDatabase,
  kBrowseTransactionDatabase,
  kCloseRecipeDatabase,
  kCloseTransactionDatabase,
  kSaveRecipeDatabase,
  kSaveTransactionDatabase,
  kSaveAsRecipeDatabase,
  kSaveAsTransactionDatabase,
  kImportTransactionFile,
  kPrintSetup,
  kPrint,
  kExit,
  kEditIngredients,
  kEditRecipes,
  kEditPens,
  kAutoAbbreviate,
  kTransferUpload,
  kTransferDownload,
  kViewTransactions,
  kSetup,
  kManual,
  kReadme,
  kAbout,
  kCalendar,
};

}  // namespace vrx
