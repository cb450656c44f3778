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

// A page of `tabMainFolder`: its part in what the main window does. What a page has no part in
// stays as it is here, nothing.
class MainTabPage : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

  // The operator is about to leave what is being edited on the page, for another record, another
  // tab, another database or the end of the program. Stores it, or asks what becomes of it. False:
  // the operator stays, and nothing else may happen. May run events.
  virtual bool LeaveEdits(MayStay /*may_stay*/) { return true; }

  // The program ends without waiting for an answer: stores what is being edited, and returns what
  // could not be stored. Runs no events.
  virtual std::vector<LostEdit> EndEdits() { return {}; }

  // Any tab was chosen, this page's or not; called ahead of Prepare.
  virtual void TabChanged(int /*tab*/, int /*previous*/) {}

  // The page's part of its tab's Click routine, once the panels are as the tab has them. May run
  // events.
  virtual void Prepare() {}

  // The tab strip took the focus with this page on show, or the operator clicked its tab.
  virtual void StripFocused() {}

  // The operator chose this page's tab by a key or a menu. The same is due as when the strip takes
  // the focus, but the focus stays where it is.
  virtual void TabChosen() { StripFocused(); }

  // The window came to the front with this page on show. May run events.
  virtual void Activated() {}

  // The page's views of that kind move to this database, with no statement left open. Runs no
  // events. Throws DatabaseError; the page is then given the old one again.
  virtual void Rebind(DatabaseKind /*kind*/, const BoundDatabase& /*database*/) {}

  // The program ends: the views let go of both databases.
  virtual void ReleaseViews() {}

  // The other events of the databases, on the record pages. LoadIdLists may run events.
  virtual void LoadIdLists() {}
  virtual void CheckPenCapacity() {}
  virtual void HidePenCapacityWarning() {}
  virtual void SelectPenItem(int /*list_index*/) {}
};

// What stands in the row below the tabs, to be combined.
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
  bool abbreviates = false;  // the toolbar's "Abbreviate" is on
};

// By the number of the tab.
const std::array<TabRow, kTabCount>& TabRows();

// The tab folder `tabMainFolder`. A click on a tab gives the focus to the strip.
class MainTabFolder : public QTabWidget {
  Q_OBJECT

 public:
  explicit MainTabFolder(QWidget* parent = nullptr);

  // Asked before the operator turns to another tab; false holds the tab.
  void SetLeaving(std::function<bool()> leave) { leave_ = std::move(leave); }

  // Puts a page in the place of the one that the tab has had, and gives that one.
  std::unique_ptr<MainTabPage> SetPage(int tab, MainTabPage* page);
  MainTabPage& Page(int tab) const;

  // Brings a tab on show, as the program does; TabClicked is not sent.
  void ShowTab(int tab);

  // The tab on show stays on show when it is turned off.
  void TurnTab(int tab, bool on);

 Q_SIGNALS:
  // The operator has brought the tab on show.
  void TabClicked(int tab);

  // After TabClicked, where a key did it.
  void TabChosenByKey();

  // The strip took the focus, or a tab was clicked; that tab is on show then. A window that comes
  // to the front or a menu that closes gives no focus.
  void StripFocused();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool MayLeave() const { return !leave_ || leave_(); }

  std::function<bool()> leave_;
  bool by_program_ = false;
};

}  // namespace vrx
