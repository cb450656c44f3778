#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "database/open_databases.h"
#include "export/export_driver.h"
#include "platform/operator.h"
#include "presenter/services.h"

namespace vrx {

class HistoryPresenter;
class PrivateINI;

// What the export asks of the main window.
class ExportHost {
 public:
  virtual ~ExportHost() = default;

  virtual OpenDatabases Databases() const = 0;

  // The `Batched/Fed` tab as it stands.
  virtual ExportSource DataGroup() = 0;

  // The import's routine of that name.
  virtual void ConfigureImportColumns() = 0;

  // Gives the control of that name the focus if it is visible and enabled.
  virtual void FocusControl(std::string_view name) = 0;

  // What the tab holds has changed: time to show it.
  virtual void ExportChanged() = 0;
};

// The controls of the Export tab.
struct ExportForm {
  std::string txt_f_name = {};               // without the extension of the format
  std::string txt_f_path = {};               // a folder
  ExportFormat format = ExportFormat::kCsv;  // `optCSV` and its kin
  bool progress_visible = false;             // `prgExport`, `lblExport` and `lblDataGroup`
  std::string lbl_data_group = {};
  int prg_export = 0;  // 0 to prg_export_max
  int prg_export_max = 100;
};

// The Export tab without its window. An export holds the thread until it is written; other events
// run once at its start and once at its end, and what is clicked then does nothing.
class ExportPresenter {
 public:
  // Everything referred to outlives the tab.
  ExportPresenter(Services& services, const StyleSheets& style_sheets, ExportHost& host)
      : services_(services), style_sheets_(style_sheets), host_(host) {}
  ExportPresenter(const ExportPresenter&) = delete;
  ExportPresenter& operator=(const ExportPresenter&) = delete;

  void EnterExportTab();

  // The key's code in, the code that `txtFName` takes out, 0 for none.
  static int KeyPressInFName(int key);
  void SetFName(std::string_view text) { form_.txt_f_name = text; }
  void SetFPath(std::string_view text) { form_.txt_f_path = text; }
  void SetFormat(ExportFormat format) { form_.format = format; }

  // The clicks of the buttons of those names. What goes wrong is reported to the operator.
  void ClickExport();
  void ClickBrowse();
  void ClickReset();

  // Adds a step to the bar, which starts over when the sum would pass its end.
  void UpdateExportProgress(int step);

  const ExportForm& Form() const { return form_; }

 private:
  bool ValidateExportInput();
  bool RunExport();
  void Browse();
  void ShowExportProgress(bool on);

  Services& services_;
  const StyleSheets& style_sheets_;
  ExportHost& host_;
  ExportForm form_;
  bool running_ = false;
};

// The data group of the `Batched/Fed` tab. Valid until another event runs.
ExportSource Current(HistoryPresenter& view);

class PrivateINI;

// What the operator is told of an export, in a window and on the command line.

void ShowExportMessage(Operator& op, Icon icon, std::string_view text);

// True if the grid has a row; else the operator was told that there is nothing to export.
bool HasDataToExport(Operator& op, const HistoryGrid& grid);

void ReportExportOutcome(Operator& op, const ExportOutcome& outcome);

// The error trap of an export: passes the result of `action` on, or tells what it throws, with a
// beep, and returns false.
bool TrapExportError(Operator& op, const PrivateINI& settings, const std::function<bool()>& action);

}  // namespace vrx
