#pragma once

#include <QTabWidget>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "database/bound_database.h"
#include "database/schema.h"
#include "desktop/records/edit_gate.h"
#include "presenter/command_states.h"

namespace vrx {

// A page of `tabMainFolder`: its reactions to events of the main window. By default they do
// nothing.
class MainTabPage : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

  // Called before another record, tab or database is shown and before the program ends. Stores the
  // page's pending edits, or asks what to do with them. Returns false if the operator stays; the
  // caller must then do nothing else. May run events.
  virtual bool LeaveEdits(MayStay /*may_stay*/) { return true; }

  // The program ends without questions: stores the pending edits and returns those that could not
  // be stored. Runs no events.
  virtual std::vector<LostEdit> EndEdits() { return {}; }

  // Any tab was selected, not only this page's; called before Prepare.
  virtual void TabChanged(int /*tab*/, int /*previous*/) {}

  // The page's part of its tab's Click routine, after the tab's panels are shown. May run events.
  virtual void Prepare() {}

  // The tab strip got the focus while this page is shown, or the operator clicked its tab.
  virtual void StripFocused() {}

  // The operator selected this page's tab with a key or a menu. Like StripFocused, but the focus
  // does not move.
  virtual void TabChosen() { StripFocused(); }

  // The window was activated while this page is shown. May run events.
  virtual void Activated() {}

  // Binds the page's views of that kind to this database, leaving no statement open. Runs no
  // events. Throws DatabaseError; then the page is bound to the previous one again.
  virtual void Rebind(DatabaseKind /*kind*/, const BoundDatabase& /*database*/) {}

  // The open database is about to be written to: reads in threads end and begin again from a later
  // event.
  virtual void EndReads(DatabaseKind /*kind*/) {}

  // The program ends: the views release both databases.
  virtual void ReleaseViews() {}

  // The other events of the databases, on the record pages. LoadIdLists may run events.
  virtual void LoadIdLists() {}
  virtual void CheckPenCapacity() {}
  virtual void HidePenCapacityWarning() {}
  virtual void SelectPenItem(int /*list_index*/) {}
};

// Panels below the tabs (bit flags).
enum BottomPanels : unsigned {
  kNoPanel = 0,
  kPicAction = 1,
  kPicNavigate = 2,
  kPicTransferStatus = 4,
  kPicImport = 8,
};

struct TabRow {
  std::string_view caption;
  std::string_view page;  // its page's name until one is put in its place
  unsigned panels = kNoPanel;
  bool abbreviates = false;     // the toolbar's "Abbreviate" is on
  std::string_view needs = {};  // what it is off without; its tooltip then
};

// By the number of the tab.
const std::array<TabRow, kTabCount>& TabRows();

// The tab folder `tabMainFolder`. A click on a tab gives the focus to the strip.
class MainTabFolder : public QTabWidget {
  Q_OBJECT

 public:
  explicit MainTabFolder(QWidget* parent = nullptr);

  // Called before the operator switches to another tab; false keeps the tab.
  void SetLeaving(std::function<bool()> leave) { leave_ = std::move(leave); }

  // Replaces the page of a tab and returns the previous one.
  std::unique_ptr<MainTabPage> SetPage(int tab, MainTabPage* page);
  [[nodiscard]] MainTabPage& Page(int tab) const;

  // Shows a tab for the program; does not emit TabClicked.
  void ShowTab(int tab);

  // The current tab stays shown when it is disabled.
  void TurnTab(int tab, bool on);

 Q_SIGNALS:
  // The operator has selected the tab.
  void TabClicked(int tab);

  // Emitted after TabClicked if a key selected the tab.
  void TabChosenByKey();

  // The strip got the focus, or a tab was clicked and is now shown. Not emitted when the window is
  // activated or a menu closes.
  void StripFocused();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  [[nodiscard]] bool MayLeave() const { return !leave_ || leave_(); }

  std::function<bool()> leave_;
  bool by_program_ = false;
};

}  // namespace vrx
