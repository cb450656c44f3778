#include "desktop/main_window/main_window_menus.h"

#include <QKeySequence>
#include <QMenu>
#include <array>
#include <map>

#include "widgets/qt_text.h"

namespace vrx {
namespace {

using enum MainCommand;

constexpr std::string_view kSeparator = "1003";
constexpr std::string_view kRecipeDatabase = "1070";
constexpr std::string_view kTransactionDatabase = "1071";

constexpr std::array kMenuRows = std::to_array<MenuRow>({
    {"mnuFile", "1000"},
    {"mnuFileNew", "1001", "mnuFile"},
    {"mnuFileNewRecipeDB", kRecipeDatabase, "mnuFileNew", kNewRecipeDatabase},
    {"mnuFileNewTransactionDB", kTransactionDatabase, "mnuFileNew", kNewTransactionDatabase},
    {"mnuFileOpen", "1002", "mnuFile"},
    {"mnuFileOpenRecipeDB", kRecipeDatabase, "mnuFileOpen", kBrowseRecipeDatabase},
    {"mnuFileOpenTransactionDB", kTransactionDatabase, "mnuFileOpen", kBrowseTransactionDatabase},
    {"mnuFileClose", "1090", "mnuFile"},
    {"mnuFileCloseRecipeDB", kRecipeDatabase, "mnuFileClose", kCloseRecipeDatabase},
    {"mnuFileCloseTransactionDB", kTransactionDatabase, "mnuFileClose", kCloseTransactionDatabase},
    {"mnuFileBar0", kSeparator, "mnuFile"},
    {"mnuFileSave", "1004", "mnuFile"},
    {"mnuFileSaveRecipeDB", kRecipeDatabase, "mnuFileSave", kSaveRecipeDatabase},
    {"mnuFileSaveTransactionDB", kTransactionDatabase, "mnuFileSave", kSaveTransactionDatabase},
    {"mnuFileSaveAs", "1122", "mnuFile"},
    {"mnuFileSaveAsRecipeDB", kRecipeDatabase, "mnuFileSaveAs", kSaveAsRecipeDatabase},
    {"mnuFileSaveAsTransactionDB", kTransactionDatabase, "mnuFileSaveAs",
     kSaveAsTransactionDatabase},
    {"mnuFileBar3", kSeparator, "mnuFile"},
    {"mnuFileImportTransactionFile", "1073", "mnuFile", kImportTransactionFile},
    {"mnuFileBar1", kSeparator, "mnuFile"},
    {"mnuFilePrintSetup", "1103", "mnuFile", kPrintSetup},
    {"mnuFilePrint", "1006", "mnuFile", kPrint, "Ctrl+P"},
    {"mnuFileBar2", kSeparator, "mnuFile"},
    {"mnuFileExit", "1007", "mnuFile", kExit, "Ctrl+Q"},
    {"mnuEdit", "1008"},
    {"mnuEditIngredient", "1009", "mnuEdit", kEditIngredients},
    {"mnuEditRecipe", "1010", "mnuEdit", kEditRecipes},
    {"mnuEditPen", "1011", "mnuEdit", kEditPens},
    {"mnuEditBar1", kSeparator, "mnuEdit"},
    {"mnuEditAutoAbbrev", "1078", "mnuEdit", kAutoAbbreviate},
    {"mnuTransfer", "1012"},
    {"mnuTransferUpload", "1013", "mnuTransfer", kTransferUpload},
    {"mnuTransferDownload", "1014", "mnuTransfer", kTransferDownload},
    {"mnuTransferBar1", kSeparator, "mnuTransfer"},
    {"mnuTransferImport", "1106", "mnuTransfer", kImportTransactionFile},
    {"mnuView", "1072"},
    {"mnuViewTransactionFile", kTransactionDatabase, "mnuView", kViewTransactions},
    {"mnuTools", "1015"},
    {"mnuToolsSetup", "1016", "mnuTools", kSetup},
    {"mnuHelp", "1017"},
    {"mnuHelpManual", "1127", "mnuHelp", kManual, "F1"},
    {"mnuHelpBar1", kSeparator, "mnuHelp"},
    {"mnuHelpReadme", "1128", "mnuHelp", kReadme},
    {"mnuHelpBar2", kSeparator, "mnuHelp"},
    {"mnuHelpAbout", "1018", "mnuHelp", kAbout},
});

using Menus = std::map<std::string_view, QMenu*>;

QAction* AddMenu(QMenu* menu, const MenuRow& row, Menus& menus) {
  menu->setObjectName(ToQString(row.name));
  menus.emplace(row.name, menu);
  return menu->menuAction();
}

QAction* AddRow(QMenu& parent, const MenuRow& row, Menus& menus) {
  const QString id = ToQString(row.caption_id);
  if (row.caption_id == kSeparator) {
    return parent.addSeparator();
  }
  if (row.command == kNone) {
    return AddMenu(parent.addMenu(id), row, menus);
  }
  QAction* item = parent.addAction(id);
  item->setCheckable(row.command == kAutoAbbreviate);
  item->setShortcut(QKeySequence(ToQString(row.shortcut)));
  return item;
}

}  // namespace

std::span<const MenuRow> MenuRows() { return kMenuRows; }

void BuildMenus(QMenuBar& menu_bar, CommandActions& actions) {
  Menus menus;
  for (const MenuRow& row : kMenuRows) {
    QAction* action = row.parent.empty()
                          ? AddMenu(menu_bar.addMenu(ToQString(row.caption_id)), row, menus)
                          : AddRow(*menus.at(row.parent), row, menus);
    action->setObjectName(ToQString(row.name));
    if (!row.parent.empty() && !action->isSeparator()) {
      actions.Add(row.name, row.command, *action);
    }
  }
}

}  // namespace vrx
