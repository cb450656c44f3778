#include "presenter/export.h"

#include <filesystem>

#include "base/text.h"
#include "feed/key_filters.h"
#include "feed/record_fields.h"
#include "history/period.h"
#include "presenter/history.h"
#include "settings/data_folder.h"
#include "settings/settings.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

// Uses the two fields as typed: a name that already has an extension gets a second one.
fs::path ComposePath(const ExportForm& form) {
  fs::path path = form.txt_f_path;
  path += fs::path::preferred_separator;
  path += form.txt_f_name;
  path += ExtensionOf(form.format);
  return path;
}

// The group, and its period so that nobody takes the file for a whole one.
std::string DataGroupText(const ExportSource& shown) {
  const std::string period = PeriodText(shown.grid.ShownPeriod());
  return std::string(shown.text) + (period.empty() ? "" : ", " + period);
}

}  // namespace

void ExportPresenter::EnterExportTab() {
  form_.progress_visible = false;
  form_.lbl_data_group = DataGroupText(view_.DataGroup());
  view_.ConfigureImportColumns();
  view_.ExportChanged();
}

int ExportPresenter::KeyPressInFName(int key) {
  return key == kBackspaceKey ? key : FilterDescriptionKey(key);
}

std::string ExportPresenter::KeyRefusalInFName(std::string_view text) {
  return text.size() >= kLongestExportName ? FullRefusal(kLongestExportName)
                                           : std::string(kTakesDescription);
}

void ExportPresenter::ClickExport() {
  const OperationLock::Scope running = export_.TryEnter();
  if (!running) {
    return;
  }
  RunReported(services_.op, ExportFailure(services_.settings),
              [this] { return ValidateExportInput() && RunExport(); });
}

bool ExportPresenter::ValidateExportInput() {
  if (TrimBlanks(form_.txt_f_name).empty()) {
    ShowExportMessage(services_.op, Icon::kCritical, "Please enter File Name.");
    view_.FocusControl("txtFName");
    return false;
  }
  if (TrimBlanks(form_.txt_f_path).empty()) {
    ShowExportMessage(services_.op, Icon::kCritical, "Please select File Path.");
    Browse();
    return false;
  }
  return HasDataToExport(services_.op, view_.DataGroup().grid);
}

bool ExportPresenter::RunExport() {
  Folder::CheckPathAndCreate(form_.txt_f_path);
  ShowExportProgress(true);
  if (services_.pump.Closing()) {
    return false;
  }
  ExportOutcome outcome;
  {
    const BusyCursor busy(services_.op);
    outcome =
        ExportDriver(style_sheets_)
            .ExportGroup(view_.DataGroup(), form_.format, ComposePath(form_), view_.Databases());
  }
  if (outcome.done) {
    form_.prg_export = form_.prg_export_max;
    view_.ExportChanged();
  }
  ReportExportOutcome(services_.op, outcome);
  ShowExportProgress(false);
  if (outcome.done) {
    view_.Exported(ComposePath(form_));
  }
  return outcome.done;
}

void ExportPresenter::ClickBrowse() {
  if (!export_.Running()) {
    Browse();
  }
}

// Does not check for write-protected drives, which this platform does not distinguish by folder;
// the export reports what it cannot write.
void ExportPresenter::Browse() {
  const std::string folder =
      services_.files.ShowFolder("Choose the File Path for Exporting the Data");
  if (!folder.empty()) {
    form_.txt_f_path = folder;
    view_.ExportChanged();
  }
}

void ExportPresenter::ClickReset() {
  if (export_.Running()) {
    return;
  }
  form_.txt_f_name.clear();
  form_.txt_f_path.clear();
  form_.format = ExportFormat::kCsv;
  view_.ExportChanged();
}

void ExportPresenter::ShowExportProgress(bool on) {
  form_.progress_visible = on;
  form_.prg_export_max = 100;
  form_.lbl_data_group = DataGroupText(view_.DataGroup());
  form_.prg_export = 0;
  view_.ExportChanged();
  services_.pump.Pump(Milliseconds{0});
}

void ExportPresenter::UpdateExportProgress(int step) {
  const int sum = form_.prg_export + step;
  form_.prg_export = sum > form_.prg_export_max ? 0 : sum;
  view_.ExportChanged();
}

ExportSource Current(HistoryPresenter& view) {
  return {.grid = view.Grid(),
          .index = view.GroupIndex(),
          .text = view.CurrentDataGroupText(),
          .name = view.Picker().Text()};
}

void ShowExportMessage(Operator& op, Icon icon, std::string_view text) {
  op.ShowMessage({.icon = icon, .title = std::string(kExportTitle), .text = std::string(text)});
}

bool HasDataToExport(Operator& op, const HistoryGrid& grid) {
  if (grid.RowCount() >= 1) {
    return true;
  }
  ShowExportMessage(op, Icon::kInformation, "No data to export.");
  return false;
}

void ReportExportOutcome(Operator& op, const ExportOutcome& outcome) {
  if (outcome.done) {
    ShowExportMessage(op, Icon::kInformation, "Data exported successfully.");
  } else if (!TrimBlanks(outcome.error_text).empty()) {
    ShowExportMessage(op, Icon::kInformation, outcome.error_text);
  } else {
    ShowExportMessage(op, Icon::kInformation, "Data exporting failed.");
  }
}

FailureReport ExportFailure(const PrivateINI& settings) {
  return {.title = kExportTitle, .text = FailureText::kMessage, .beeps = settings.EnableBeeperOn()};
}

}  // namespace vrx
