#pragma once

#include <string_view>

#include "database/bound_database.h"
#include "database/schema.h"
#include "presenter/status_panels.h"

namespace vrx {

// What the databases' lifecycle asks of the main window.
class DatabaseWindow {
 public:
  virtual ~DatabaseWindow() = default;

  // The views of that kind are about to move: what is being edited is stored, or given up with a
  // message. May run events.
  virtual void LeaveEdits(DatabaseKind /*kind*/) {}

  // Every view of that kind moves to this database and shows what it holds, with no statement left
  // open. Runs no events: a database bound by one would be refused. When it throws, the views are
  // moved back to where they stood; the connection they leave is closed once they have left it.
  virtual void Rebind(DatabaseKind kind, const BoundDatabase& database) = 0;

  // The program ends: the views let go of both databases.
  virtual void ReleaseViews() = 0;

  // The caption of `lblDatabaseUoM` or `lblTransactionUoM`: the unit of what the views stand on.
  virtual void ShowUnit(DatabaseKind kind, std::string_view unit) = 0;

  virtual void SetStatusPanel(DatabaseKind kind, StatusPanel panel, std::string_view text) = 0;

  // Fills the three ID lists. May run events, and another database may be bound by one.
  virtual void LoadIdLists() = 0;

  virtual void ShowTransferOption() = 0;
  virtual void CheckPenCapacity() = 0;
  virtual void HidePenCapacityWarning() = 0;       // `lblRequiresIndicatorPenCapacityX`
  virtual void SelectPenItem(int list_index) = 0;  // of `cboPenID`
};

}  // namespace vrx
