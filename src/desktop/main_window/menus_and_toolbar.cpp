#include "desktop/main_window/menus_and_toolbar.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QToolButton>

#include "base/error.h"
#include "desktop/app/caption_pass.h"
#include "widgets/main_window_layout.h"
#include "widgets/qt_text.h"
#include "widgets/svg_icon.h"

namespace vrx {
namespace {

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

// A button whose list is open does not see the pointer leave, and would stay raised.
void CatchUpWithPointer(QWidget& button) {
  if (!button.rect().contains(button.mapFromGlobal(QCursor::pos()))) {
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&button, &leave);
  }
}

}  // namespace

std::span<const ToolButton> ToolButtons() { return kToolButtons; }

MainToolBar::MainToolBar(CommandActions& actions) {
  setObjectName(QStringLiteral("tbToolBar"));
  setWindowTitle(QStringLiteral("Toolbar"));
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
  auto* action = new QAction(SvgIcon(button.icon), ToQString(button.label), this);
  action->setObjectName(ToQString(button.key));
  action->setToolTip(ToQString(button.tool_tip_id));
  action->setCheckable(button.command == kAutoAbbreviate);
  if (button.command == kCalendar) {
    action->setShortcut(Qt::CTRL | Qt::Key_D);  // no menu leads there
  }
  if (button.command == kNone) {
    auto* items = new QMenu(this);
    for (const ToolItem& item : button.items) {
      QAction* entry = items->addAction(ToQString(item.text));
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
