#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "database/open_databases.h"
#include "export/export_driver.h"
#include "platform/operator.h"
#include "presenter/operation.h"
#include "presenter/report_failure.h"
#include "presenter/services.h"

namespace vrx {

class HistoryPresenter;
class PrivateINI;

inline constexpr std::size_t kLongestExportName = 255;  // bytes that a file system takes

// The Export tab, as its presenter uses it.
class ExportView {
 public:
  virtual ~ExportView() = default;

  // The open databases.
  [[nodiscard]] virtual OpenDatabases Databases() const = 0;

  // The current state of the `Batched/Fed` tab.
  virtual ExportSource DataGroup() = 0;

  // The import's routine with that name.
  virtual void ConfigureImportColumns() = 0;

  // Gives the control of that name the focus if it is visible and enabled.
  virtual void FocusControl(std::string_view name) = 0;

  // The state of the tab has changed and must be shown.
  virtual void ExportChanged() = 0;

  // The data group was written to that file.
  virtual void Exported(const std::filesystem::path& file) = 0;
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

// The Export tab without its window. An export blocks the thread until it is written. Events run
// once at its start and once at its end; clicks then do nothing.
class ExportPresenter {
 public:
  // All references outlive the object.
  ExportPresenter(Services& services, const StyleSheets& style_sheets, ExportView& host)
      : services_(services), style_sheets_(style_sheets), view_(host) {}
  ExportPresenter(const ExportPresenter&) = delete;
  ExportPresenter& operator=(const ExportPresenter&) = delete;

  void EnterExportTab();

  // Takes the code of a key; returns the code that `txtFName` accepts, or 0 for none.
  static int KeyPressInFName(int key);
  // Why the field drops a key.
  [[nodiscard]] static std::string KeyRefusalInFName(std::string_view text);
  void SetFName(std::string_view text) { form_.txt_f_name = text; }
  void SetFPath(std::string_view text) { form_.txt_f_path = text; }
  void SetFormat(ExportFormat format) { form_.format = format; }

  // The clicks of the buttons with those names. They report failures.
  void ClickExport();
  void ClickBrowse();
  void ClickReset();

  // Advances the bar, which starts over when it would pass its end.
  void UpdateExportProgress(int step);

  [[nodiscard]] const ExportForm& Form() const { return form_; }

 private:
  bool ValidateExportInput();
  bool RunExport();
  void Browse();
  void ShowExportProgress(bool on);

  Services& services_;
  const StyleSheets& style_sheets_;
  ExportView& view_;
  ExportForm form_;
  OperationLock export_;
};

// The data group of the `Batched/Fed` tab. Valid until another event runs.
ExportSource Current(HistoryPresenter& view);

// The messages of an export, in a window and on the command line.

inline constexpr std::string_view kExportTitle = "Export";

void ShowExportMessage(Operator& op, Icon icon, std::string_view text);

// Whether the grid has a row; otherwise reports that there is nothing to export.
bool HasDataToExport(Operator& op, const HistoryGrid& grid);

void ReportExportOutcome(Operator& op, const ExportOutcome& outcome);

// How an exception of an export is reported.
FailureReport ExportFailure(const PrivateINI& settings);

}  // namespace vrx
