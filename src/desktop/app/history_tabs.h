#pragma once

#include <functional>

#include "desktop/history/export_page.h"
#include "desktop/history/history_page.h"
#include "desktop/main_window/main_window.h"
#include "export/html_export.h"
#include "presenter/database_commands.h"
#include "presenter/services.h"

namespace vrx {

// The tabs Batched/Fed and Export: what is shown on the one is what the other writes.
class HistoryTabs : private ExportWindow {
 public:
  // Adds the pages to the window, before the caption pass. `configure_import_columns` is the
  // import's routine of that name. Everything outlives it, but the window, whose pages refer to it,
  // may be destroyed later.
  HistoryTabs(Services& services, DatabaseCommands& databases, MainWindow& window,
              std::function<void()> configure_import_columns);
  // Releases the databases, which may be closed before the window.
  ~HistoryTabs() override { history_->ReleaseViews(); }
  HistoryTabs(const HistoryTabs&) = delete;
  HistoryTabs& operator=(const HistoryTabs&) = delete;

  // For printing the shown rows.
  HistoryPage& History() { return *history_; }

 private:
  // ExportWindow.
  OpenDatabases ExportDatabases() const override;
  ExportSource DataGroup() override { return Current(*history_->View()); }
  void ConfigureImportColumns() override { configure_import_columns_(); }

  bool ActiveIngredientsOnly() const;

  Services& services_;
  DatabaseCommands& databases_;
  MainWindow& window_;
  std::function<void()> configure_import_columns_;
  StyleSheets style_sheets_;
  HistoryPage* history_;
  ExportPage* export_;
};

}  // namespace vrx
