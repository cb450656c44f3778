#include "desktop/main_window/menus_and_toolbar.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QMenu>
#include <QToolButton>
#include <array>
#include <map>
#include <utility>

#include "base/error.h"
#include "desktop/app/captions.h"
#include "widgets/drawing.h"
#include "widgets/layout.h"
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
    {"mnuFilePrintPreview", "2000", "mnuFile", kPrintPreview, "Ctrl+Shift+P"},
    {"mnuFilePrint", "1006", "mnuFile", kPrint, "Ctrl+P"},
    {"mnuFileReport", "2060", "mnuFile", kReport},
    {"mnuFileBar2", kSeparator, "mnuFile"},
    {"mnuFileExit", "1007", "mnuFile", kExit, "Ctrl+Q"},
    {"mnuEdit", "1008"},
    {"mnuEditUndo", "2010", "mnuEdit", kUndo, "Ctrl+Z"},
    {"mnuEditRedo", "2011", "mnuEdit", kRedo, "Ctrl+Y"},
    {"mnuEditBar3", kSeparator, "mnuEdit"},
    {"mnuEditCopy", "2014", "mnuEdit", kCopy, "Ctrl+C"},
    {"mnuEditFind", "2015", "mnuEdit", kFind, "Ctrl+F"},
    {"mnuEditBar4", kSeparator, "mnuEdit"},
    {"mnuEditIngredient", "1009", "mnuEdit", kEditIngredients},
    {"mnuEditRecipe", "1010", "mnuEdit", kEditRecipes},
    {"mnuEditPen", "1011", "mnuEdit", kEditPens},
    {"mnuEditBar1", kSeparator, "mnuEdit"},
    {"mnuEditAutoAbbrev", "1078", "mnuEdit", kAutoAbbreviate},
    {"mnuEditBar2", kSeparator, "mnuEdit"},
    {"mnuEditCopyRecipe", "2012", "mnuEdit", kCopyRecipe},
    {"mnuEditCompareRecipes", "2013", "mnuEdit", kCompareRecipes},
    {"mnuTransfer", "1012"},
    {"mnuTransferUpload", "1013", "mnuTransfer", kTransferUpload},
    {"mnuTransferDownload", "1014", "mnuTransfer", kTransferDownload},
    {"mnuTransferBar1", kSeparator, "mnuTransfer"},
    {"mnuTransferImport", "1106", "mnuTransfer", kImportTransactionFile},
    {"mnuView", "1072"},
    {"mnuViewTransactionFile", kTransactionDatabase, "mnuView", kViewTransactions},
    {"mnuViewBar1", kSeparator, "mnuView"},
    {"mnuViewRefresh", "2020", "mnuView", kRefresh, "F5"},
    {"mnuTools", "1015"},
    {"mnuToolsSetup", "1016", "mnuTools", kSetup},
    {"mnuToolsCentral", "2070", "mnuTools", kCentralDatabase},
    {"mnuHelp", "1017"},
    {"mnuHelpManual", "1127", "mnuHelp", kManual},
    {"mnuHelpChapter", "2021", "mnuHelp", kChapter, "F1"},
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

using enum MainCommand;

constexpr std::array kToolButtons = std::to_array<ToolButton>({
    {.key = "New dB",
     .tool_tip_id = "1019",
     .label = "New",
     .icon = "new",
     .items = {{{"New Recipe", kNewRecipeDatabase}, {"New Transaction", kNewTransactionDatabase}}}},
    {.key = "Open dB",
     .tool_tip_id = "1020",
     .label = "Open",
     .icon = "open",
     .items = {{{"Open Recipe", kBrowseRecipeDatabase},
                {"Open Transaction", kBrowseTransactionDatabase}}}},
    {.key = "Save",
     .tool_tip_id = "1021",
     .label = "Save",
     .icon = "save",
     .items = {{{"Save Recipe", kSaveRecipeDatabase},
                {"Save Transaction", kSaveTransactionDatabase}}}},
    {.key = "Import Transaction",
     .tool_tip_id = "1101",
     .label = "Import",
     .icon = "import",
     .command = kImportTransactionFile,
     .begins_group = true},
    {.key = "Print",
     .tool_tip_id = "1022",
     .label = "Print",
     .icon = "print",
     .command = kPrint,
     .begins_group = true},
    {.key = "Abbreviate",
     .tool_tip_id = "1078",
     .label = "Abbreviate",
     .icon = "abbreviate",
     .command = kAutoAbbreviate,
     .begins_group = true},
    {.key = "Calendar",
     .tool_tip_id = "1100",
     .label = "Calendar",
     .icon = "calendar",
     .command = kCalendar},
    {.key = "Setup", .tool_tip_id = "1102", .label = "Setup", .icon = "setup", .command = kSetup},
});

constexpr int kTransferCaption = 1118;
constexpr int kIconSize = 24;  // logical pixels

// A button with an open list does not notice that the pointer leaves, and would stay raised.
void CatchUpWithPointer(QWidget& button) {
  if (!button.rect().contains(button.mapFromGlobal(QCursor::pos()))) {
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&button, &leave);
  }
}

}  // namespace

void CommandActions::Add(std::string_view name, MainCommand command, QAction& action) {
  const Entry& entry = entries_.emplace_back(Entry{std::string(name), command, &action, true});
  QObject::connect(&action, &QAction::triggered, [this, command] { Run(command); });
  Show(entry);
}

void CommandActions::SetHandler(MainCommand command, Handler handler) {
  handlers_[command] = std::move(handler);
  for (const Entry& entry : entries_) {
    Show(entry);
  }
}

void CommandActions::Turn(std::string_view name, bool on) {
  for (Entry& entry : entries_) {
    if (entry.name == name) {
      entry.on = on;
      Show(entry);
    }
  }
}

void CommandActions::Turn(MainCommand command, bool on) {
  for (Entry& entry : entries_) {
    if (entry.command == command) {
      entry.on = on;
      Show(entry);
    }
  }
}

void CommandActions::SetText(MainCommand command, const QString& text) const {
  for (const Entry& entry : entries_) {
    if (entry.command == command) {
      entry.action->setText(text);
    }
  }
}

void CommandActions::Tick(MainCommand command, bool on) const {
  for (const Entry& entry : entries_) {
    if (entry.command == command) {
      entry.action->setChecked(on);
    }
  }
}

void CommandActions::Show(const Entry& entry) const {
  const bool leads_somewhere =
      entry.command == MainCommand::kNone || handlers_.count(entry.command) > 0;
  entry.action->setEnabled(entry.on && leads_somewhere);
}

void CommandActions::Run(MainCommand command) const {
  const auto handler = handlers_.find(command);
  if (handler != handlers_.end()) {
    handler->second();
  }
}

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

std::span<const ToolButton> ToolButtons() { return kToolButtons; }

MainToolBar::MainToolBar(CommandActions& actions) {
  setObjectName(QStringLiteral("tbToolBar"));
  setWindowTitle(QTr("Toolbar"));
  setMovable(false);
  setContextMenuPolicy(Qt::PreventContextMenu);
  setIconSize({kIconSize, kIconSize});
  setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  for (const ToolButton& button : kToolButtons) {
    AddButton(button, actions);
  }
  AddTransferOption();
}

void MainToolBar::AddButton(const ToolButton& button, CommandActions& actions) {
  if (button.begins_group) {
    addSeparator();
  }
  auto* action = new QAction(SvgIcon(button.icon), QTr(button.label), this);
  action->setObjectName(ToQString(button.key));
  action->setToolTip(ToQString(button.tool_tip_id));
  action->setCheckable(button.command == kAutoAbbreviate);
  if (button.command == kCalendar) {
    action->setShortcut(Qt::CTRL | Qt::Key_D);  // no menu leads there
  }
  if (button.command == kNone) {
    auto* items = new QMenu(this);
    for (const ToolItem& item : button.items) {
      QAction* entry = items->addAction(QTr(item.text));
      entry->setObjectName(ToQString(item.text));
      actions.Add(item.text, item.command, *entry);
    }
    action->setMenu(items);
  }
  addAction(action);
  QWidget* const widget = widgetForAction(action);
  widget->setObjectName(ToQString(button.key));
  if (QMenu* const items = action->menu(); items != nullptr) {
    connect(items, &QMenu::aboutToHide, widget, [widget] { CatchUpWithPointer(*widget); });
  }
  actions.Add(button.key, button.command, *action);
}

void MainToolBar::AddTransferOption() {
  auto* place = new QWidget;
  auto* layout = new QHBoxLayout(place);
  layout->setContentsMargins(kGroupSpacing, 0, kSpacing, 0);
  layout->setSpacing(kSpacing);
  layout->addStretch();
  layout->addWidget(AddLabel(*place, "lblXfr", kTransferCaption));
  for (const char* const value : {"lblTransfer", "lblSystemUoM"}) {
    QLabel* label = AddLabel(*place, value);
    MakeDemiBold(*label);
    layout->addWidget(label);
  }
  layout->insertSpacing(layout->count() - 1, kSpacing);
  addWidget(place);
  place->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void MainToolBar::NameButtons() {
  for (QAction* action : actions()) {
    if (!action->objectName().isEmpty()) {
      widgetForAction(action)->setAccessibleName(action->toolTip());
    }
  }
}

QWidget& MainToolBar::Button(std::string_view key) const {
  QWidget* button = findChild<QToolButton*>(ToQString(key));
  if (button == nullptr) {
    throw Error("there is no toolbar button \"" + std::string(key) + "\"");
  }
  return *button;
}

}  // namespace vrx
