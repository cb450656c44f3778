#pragma once

#include <SQLiteCpp/Database.h>

#include "desktop/main_window/panels.h"
#include "desktop/main_window/tabs.h"
#include "feed/key_filters.h"
#include "presenter/command_states.h"
#include "presenter/report_failure.h"
#include "presenter/services.h"

namespace vrx {

// The page of one kind of record, as the action bar and the navigator know it. A record's position
// is its `ID`, from 1. No call opens a database: with a closed one the page shows the blank
// template and none of these is made.
class RecordPage : public MainTabPage {
  Q_OBJECT

 public:
  using MainTabPage::MainTabPage;

  // `cmdAction`. Each tells its failures and leaves the record on show.
  virtual void UpdateRecord() = 0;
  virtual void CancelRecord() = 0;
  virtual void DefaultRecord() = 0;

  // `cmdNavigate`, with what is written ahead of the move; wraps around at both ends.
  virtual void Navigate(NavigateButton button) = 0;

  // Goes to a record as a click in the ID list does, also while the page is not on show. Where it
  // cannot be read, the position stays.
  virtual void GoTo(int position) = 0;

  // Of the record on show; 0 while the database is closed.
  virtual int Position() const = 0;

 Q_SIGNALS:
  // The page came to a record, the one that it was on included.
  void Moved(int position);

  // `cmdAction` item 1 is off while the lines of a recipe have the focus.
  void CancelAllowed(bool allowed);

  // Another database is on show: items 0 and 2 are off for one that may not be written.
  void WritingAllowed(bool allowed);

  // LoadIdLists has put the item of one more record in its list.
  void RecordLoaded();

  // A change of a record was stored, its transaction included.
  void RecordChanged();
};

}  // namespace vrx
