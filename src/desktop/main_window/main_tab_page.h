#pragma once

#include <QWidget>
#include <vector>

#include "database/bound_database.h"
#include "database/schema.h"
#include "desktop/records/edit_gate.h"

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

}  // namespace vrx
