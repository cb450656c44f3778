#pragma once

#include <QAction>
#include <QMenuBar>
#include <QToolBar>
#include <array>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vrx {

// The commands of menus and toolbar. A menu item and a button that do the same share a command.
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
  kPrintPreview,
  kPrint,
  kReport,
  kExit,
  kUndo,
  kRedo,
  kCopy,
  kFind,
  kEditIngredients,
  kEditRecipes,
  kEditPens,
  kAutoAbbreviate,
  kCopyRecipe,
  kCompareRecipes,
  kTransferUpload,
  kTransferDownload,
  kViewTransactions,
  kRefresh,
  kSetup,
  kCentralDatabase,
  kManual,
  kChapter,
  kReadme,
  kAbout,
  kCalendar,
};

// The actions of menus and toolbar, each with its name there. A command without a handler is
// disabled, whatever its state is.
class CommandActions {
 public:
  using Handler = std::function<void()>;

  // The action outlives this.
  void Add(std::string_view name, MainCommand command, QAction& action);

  void SetHandler(MainCommand command, Handler handler);

  // Enabled at first. A name that was not added has no effect.
  void Turn(std::string_view name, bool on);
  // The same for all actions of a command.
  void Turn(MainCommand command, bool on);

  // Sets the text of all actions of a command.
  void SetText(MainCommand command, const QString& text) const;

  // Checks or unchecks all actions of a command that is a setting.
  void Tick(MainCommand command, bool on) const;

 private:
  struct Entry {
    std::string name;
    MainCommand command;
    QAction* action;
    bool on;
  };

  void Show(const Entry& entry) const;
  void Run(MainCommand command) const;

  std::vector<Entry> entries_;
  std::map<MainCommand, Handler> handlers_;
};

// A row of the menus: a menu, an item, or a separator, which is what the caption "-" makes it.
struct MenuRow {
  std::string_view name;                     // of the control
  std::string_view caption_id;               // in the caption table
  std::string_view parent = {};              // its menu; empty in the menu bar
  MainCommand command = MainCommand::kNone;  // none for a menu with items of its own
  std::string_view shortcut = {};
};

// In their order on the screen; a menu comes before its items.
std::span<const MenuRow> MenuRows();

// Fills the menu bar and adds every item and submenu to the actions. The texts are the ids until
// the caption pass of the form.
void BuildMenus(QMenuBar& menu_bar, CommandActions& actions);

// An item of a button's list.
struct ToolItem {
  std::string_view text;
  MainCommand command = MainCommand::kNone;
};

struct ToolButton {
  std::string_view key;
  std::string_view tool_tip_id;  // in the caption table
  std::string_view label;        // below the icon
  std::string_view icon;
  MainCommand command = MainCommand::kNone;  // none for a drop-down: a click on it does nothing
  std::array<ToolItem, 2> items = {};        // of a drop-down
  bool begins_group = false;
};

std::span<const ToolButton> ToolButtons();

// The toolbar `tbToolBar`, with the state of the transfer at its right end: `lblXfr`, `lblTransfer`
// and `lblSystemUoM`. None of its buttons takes the focus.
class MainToolBar : public QToolBar {
  Q_OBJECT

 public:
  // Adds its buttons and their items to the actions.
  explicit MainToolBar(CommandActions& actions);

  // Sets the buttons' names for screen readers from their tooltips. Call it after the caption pass.
  void NameButtons();

  [[nodiscard]] QWidget& Button(std::string_view key) const;

 private:
  void AddButton(const ToolButton& button, CommandActions& actions);
  void AddTransferOption();
};

}  // namespace vrx
