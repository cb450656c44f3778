#pragma once

#include <QMainWindow>
#include <QString>
#include <array>
#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

#include "desktop/main_window/menus_and_toolbar.h"
#include "desktop/main_window/panels.h"
#include "desktop/main_window/status_bar.h"
#include "desktop/main_window/tabs.h"
#include "platform/calendar.h"
#include "platform/operator.h"
#include "presenter/command_states.h"
#include "presenter/database_commands.h"
#include "presenter/recent_files.h"
#include "settings/settings.h"
#include "widgets/calendar_popup.h"

namespace vrx {

// The window `VRXMAIN`: menus, toolbar, tabs, panels and status bars. It contains no logic:
// commands call the handlers set for them, enabled states come from Commands(), everything else is
// emitted as signals.
class MainWindow : public QMainWindow, public MainView, private CommandObserver {
  Q_OBJECT

 public:
  // The settings and the calendar outlive it.
  MainWindow(const PrivateINI& settings, const Calendar& calendar);

  CommandStates& Commands() { return commands_; }
  TabFolder& Tabs() { return tabs_; }
  PanelRow& Panels() { return *panels_; }

  // Commits the focused field or cell, as leaving it does, and then returns the focus to it.
  // Returns false if it was not stored and the operator stays in it; the caller must then do
  // nothing else. Menus and the toolbar do not take the focus, so every command, and the close box,
  // starts with this.
  bool LeaveEdits();

  // The program ends without questions: stores the pending edits and returns those that are lost.
  std::vector<LostEdit> EndEdits();

  // The operator selects a tab with a command.
  void ChooseTab(int tab);

  // A command without a handler is disabled.
  void SetHandler(MainCommand command, CommandActions::Handler handler);
  void Turn(MainCommand command, bool on) { actions_.Turn(command, on); }
  void SetText(MainCommand command, const QString& text) { actions_.SetText(command, text); }

  // `sources` returns the data that can be printed; none until it is set.
  void SetPrintSources(std::function<PrintSources()> sources) { sources_ = std::move(sources); }

  // Replaces the page of a tab and returns the previous one. The window owns the page. Call it
  // before
  // ApplyCaptions.
  std::unique_ptr<MainTabPage> SetPage(int tab, MainTabPage* page) {
    return tab_folder_->SetPage(tab, page);
  }

  // Shrinks the window to the available area of the screen. Call it before showing the window.
  void FitIntoScreen();

  // Files that are dropped on the window, also on a field. `take` must return soon.
  using TakeFiles = std::function<void(const std::vector<std::filesystem::path>&)>;
  void SetDropHandler(TakeFiles take);

  // Lists the files in File, Open. The list outlives the window; `open` is called once the menu has
  // closed.
  using OpenRecent = std::function<void(FileKind, const std::filesystem::path&)>;
  void ShowRecentFiles(const RecentFiles& files, OpenRecent open);

  // Shows a minimized window and asks the desktop to give it the keyboard.
  void ComeToFront();

  // Notifies the current page that the window was activated.
  void PageActivated();

  // The caption pass, including texts that the caption table lacks.
  void ApplyCaptions();

  // The check marks of `mnuEditAutoAbbrev` and of the toolbar's "Abbreviate".
  void UpdateAutoAbbrevUI(bool on);

  void ShowSystemUnits();  // `lblSystemUoM`
  void ShowToday() { calendar_->ShowToday(); }
  void ToggleCalendar();
  [[nodiscard]] CentralSignButton& CentralSign() const { return *central_sign_; }

  // MainView.
  void ShowTab(int tab) override { tab_folder_->ShowTab(tab); }
  void PrepareTab(int tab, int previous) override;
  [[nodiscard]] PrintSources Printable() const override {
    return sources_ ? sources_() : PrintSources{};
  }
  void LeaveEdits(DatabaseKind kind) override;
  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;
  void EndReads(DatabaseKind kind) override;
  void ReleaseViews() override;
  void ShowUnit(DatabaseKind kind, std::string_view unit) override;
  void SetStatusPanel(DatabaseKind kind, StatusPanel panel, std::string_view text) override;
  void LoadIdLists() override;
  void ShowTransferOption() override;
  void CheckPenCapacity() override;
  void HidePenCapacityWarning() override;
  void SelectPenItem(int list_index) override;

  // The handlers of the operator's signals.
  void SetStatusLine(const QString& text) { panels_->PicTransferStatus().SetStatusLine(text); }
  void SetStatusColor(vrx::StatusColor color) {
    panels_->PicTransferStatus().SetStatusColor(color);
  }

 Q_SIGNALS:
  void Painted();         // some part of the window was drawn anew
  void Activated();       // the window came to the front
  void CloseRequested();  // the close box; the window itself does not close
  void DatabaseBound(DatabaseKind kind, const BoundDatabase& database);  // before the pages have it
  void WriteBegins(DatabaseKind kind);  // a write to that database follows at once
  void StripFocused();                  // the tab strip took the focus, or the operator chose a tab

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
  void ShowTitle();
  void AddTabKeys();
  template <typename Call>
  void OnEveryPage(const Call& call);
  [[nodiscard]] DatabaseStatusBar& StatusBar(DatabaseKind kind) const;
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
  CentralSignButton* central_sign_;
  CalendarPopup* calendar_;
  std::array<QString, 2> open_names_;  // by DatabaseKind; empty for a closed database
};

}  // namespace vrx
