#pragma once

#include <SQLiteCpp/Database.h>

#include "desktop/main_window/panels.h"
#include "desktop/main_window/tabs.h"
#include "feed/key_filters.h"
#include "presenter/command_states.h"
#include "presenter/report_failure.h"
#include "presenter/services.h"
#include "presenter/undo_commands.h"

namespace vrx {

// The page of one kind of record, for the action bar and the navigator. A record's position is its
// `ID`, from 1. These functions are not called while the database is closed and the page shows the
// blank template.
class RecordPage : public MainTabPage {
  Q_OBJECT

 public:
  using MainTabPage::MainTabPage;

  // `cmdAction`. Each reports its failures and keeps the current record.
  virtual void UpdateRecord() = 0;
  virtual void CancelRecord() = 0;
  virtual void DefaultRecord() = 0;

  // `cmdNavigate`. Stores pending edits first; wraps around at both ends.
  virtual void Navigate(NavigateButton button) = 0;

  // Shows a record like a click in the ID list, even while the page is hidden. If it cannot be
  // read, the position does not change.
  virtual void GoTo(int position) = 0;

  // With automatic abbreviation the Tab key goes to the description before the name, which follows
  // from it.
  virtual void OrderFields(bool description_first) = 0;

  // The focus goes to the first field of entries.
  virtual void FocusFirstField() = 0;

  // An edit of the current record was undone or redone in the database: shows the record anew, with
  // the focus where the edit was made.
  virtual void ShowRestored(const EditPlace& place) = 0;

  // The position of the current record; 0 while the database is closed.
  [[nodiscard]] virtual int Position() const = 0;

 Q_SIGNALS:
  // The page has shown a record, possibly the same one.
  void Moved(int position);

  // `cmdAction` item 1 is disabled while the lines of a recipe have the focus.
  void CancelAllowed(bool allowed);

  // Another database is shown: items 0 and 2 are disabled if it is read-only.
  void WritingAllowed(bool allowed);

  // LoadIdLists has put the item of one more record in its list.
  void RecordLoaded();

  // A change of a record was stored, its transaction included.
  void RecordChanged();
};

}  // namespace vrx
