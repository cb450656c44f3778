#pragma once

#include <QMainWindow>
#include <functional>
#include <string_view>

#include "desktop/main_window/menus_and_toolbar.h"
#include "desktop/main_window/panels.h"
#include "desktop/main_window/status_bar.h"
#include "desktop/main_window/tabs.h"
#include "platform/calendar.h"
#include "platform/operator.h"
#include "presenter/command_states.h"
#include "presenter/database_commands.h"
#include "settings/settings.h"
#include "widgets/calendar_popup.h"

namespace vrx {

// The window `VRXMAIN`: menus, toolbar, tabs, panels and status bars, and what they show. It opens
// and decides nothing by itself: commands go to the handlers set for them, states come from
// Commands(), the rest goes out as signals.
class MainWindow : public QMainWindow,
                   public DatabaseWindow,
                   public TabFolderWindow,
                   private CommandObserver {
  Q_OBJECT

 public:
  // The settings and the calendar outlive it.
  MainWindow(const PrivateINI& settings, const Calendar& calendar);

  CommandStates& Commands() { return commands_; }
  TabFolder& Tabs() { return tabs_; }
  PanelRow& Panels() { return *panels_; }

  // Stores what is entered in the field or cell with the focus, as leaving it does; the focus then
  // comes back to it. False: it was not stored and the operator stays with it, so nothing else may
  // happen. Menus and the toolbar take no focus away, so every command begins with this, and so
  // does the close box.
  bool LeaveEdits();

  // The program ends and waits for no answer: stores what it can, and returns the rest.
  std::vector<LostEdit> EndEdits();

  // The operator chooses a tab by a command.
  void ChooseTab(int tab);

  // A command without a handler is off.
  void SetHandler(MainCommand command, CommandActions::Handler handler);
  void Turn(MainCommand command, bool on) { actions_.Turn(command, on); }

  // Tells what there is to print; nothing until it is set.
  void SetPrintSources(std::function<PrintSources()> sources) { sources_ = std::move(sources); }

  // The page takes the place of the one that it gives; the window owns it. Ahead of ApplyCaptions.
  std::unique_ptr<MainTabPage> SetPage(int tab, MainTabPage* page) {
    return tab_folder_->SetPage(tab, page);
  }

  // Makes the window smaller where it would be larger than the screen without the screen's bars.
  // Before it is shown.
  void FitIntoScreen();

  // Tells the page on show that the window came to the front.
  void PageActivated();

  // The caption pass, with the texts that are not in the caption table.
  void ApplyCaptions();

  // The tick of `mnuEditAutoAbbrev` and of the toolbar's "Abbreviate".
  void UpdateAutoAbbrevUI(bool on);

  void ShowSystemUnits();  // `lblSystemUoM`
  void ShowToday() { calendar_->ShowToday(); }
  void ToggleCalendar();

  // TabFolderWindow.
  void ShowTab(int tab) override { tab_folder_->ShowTab(tab); }
  void PrepareTab(int tab, int previous) override;
  PrintSources Printable() const override { return sources_ ? sources_() : PrintSources{}; }

  // DatabaseWindow.
  void LeaveEdits(DatabaseKind kind) override;
  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;
  void ReleaseViews() override;
  void ShowUnit(DatabaseKind kind, std::string_view unit) override;
  void SetStatusPanel(DatabaseKind kind, StatusPanel panel, std::string_view text) override;
  void LoadIdLists() override;
  void ShowTransferOption() override;
  void CheckPenCapacity() override;
  void HidePenCapacityWarning() override;
  void SelectPenItem(int list_index) override;

  // What the operator's signals lead to.
  void SetStatusLine(const QString& text) { panels_->PicTransferStatus().SetStatusLine(text); }
  void SetStatusColor(vrx::StatusColor color) {
    panels_->PicTransferStatus().SetStatusColor(color);
  }

 Q_SIGNALS:
  void Painted();         // some part of the window was drawn anew
  void Activated();       // the window came to the front
  void CloseRequested();  // the close box; the window stays until it is told otherwise
  void StripFocused();    // the tab strip took the focus, or the operator chose a tab

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void CommandChanged(std::string_view name, bool on) override { actions_.Turn(name, on); }
  void TabChanged(int tab, bool on) override { tab_folder_->TurnTab(tab, on); }

  void LayOut();
  void Connect();
  void TabChosen();
  void CommitFocus();
  template <typename Call>
  void OnEveryPage(const Call& call);
  DatabaseStatusBar& StatusBar(DatabaseKind kind) const;
  QLabel& Label(const char* name) const;

  const PrivateINI& settings_;
  CommandActions actions_;
  CommandStates commands_;
  TabFolder tabs_{commands_, *this};
  std::function<PrintSources()> sources_;
  MainToolBar* toolbar_;
  MainTabFolder* tab_folder_;
  PanelRow* panels_;
  DatabaseStatusBar* recipe_bar_;
  DatabaseStatusBar* transaction_bar_;
  CalendarPopup* calendar_;
};

}  // namespace vrx
