#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include <SQLiteCpp/Database.h>

#include "base/error.h"
#include "insight/question.h"
#include "insight/report_period.h"
#include "presenter/operation.h"
#include "presenter/report_failure.h"
#include "presenter/services.h"

namespace vrx {

// How a page that could not be written is reported, in a window and on the command line.
[[nodiscard]] FailureReport PeriodReportFailure(const Error& failure);

enum class PageFormat { kPdf, kHtml };

// The controls of the form.
struct PeriodReportForm {
  PeriodKind kind = PeriodKind::kWeek;
  std::string day = {};  // any day of the period, as it is typed
  PageFormat format = PageFormat::kPdf;
  bool opens = true;        // the written file
  std::string period = {};  // its days, or what is wrong with the typed day
  bool may_write = false;   // the typed day is one
  bool running = false;     // a page is being made
  int percent = 0;          // of that
};

class PeriodReportView {
 public:
  virtual ~PeriodReportView() = default;
  virtual void ReportChanged() = 0;
  // The form ends.
  virtual void ReportWritten(const std::filesystem::path& file) = 0;
};

// The form of File > Report...: the page of a day, a week or a month of a transaction database as a
// file. It reads on a connection of its own, and events run meanwhile.
class PeriodReport {
 public:
  // Writes the page; throws Error, and QuestionCancelled when the progress function returned false.
  using Writer =
      std::function<void(SQLite::Database& database, const ReportPeriod& period, PageFormat format,
                         const std::filesystem::path& file, const InsightProgress& progress)>;

  // The period is at first the week of the last record, or of today.
  PeriodReport(Services& services, std::filesystem::path database, Writer write,
               PeriodReportView& view);
  PeriodReport(const PeriodReport&) = delete;
  PeriodReport& operator=(const PeriodReport&) = delete;

  void ChooseKind(PeriodKind kind);
  void TypeDay(std::string_view typed);
  void ChooseFormat(PageFormat format) { form_.format = format; }
  void TurnOpens(bool on) { form_.opens = on; }

  // Asks for the file, makes the page and reports failures.
  void ClickWrite();
  // Ends the page that is being made. Returns false if there is none.
  bool ClickCancel();

  [[nodiscard]] const PeriodReportForm& Form() const { return form_; }

 private:
  void ShowPeriod();
  bool Write(const ReportPeriod& period, const std::filesystem::path& file);
  bool ShowPercent(int percent);

  Services& services_;
  std::filesystem::path database_;
  Writer write_;
  PeriodReportView& view_;
  PeriodReportForm form_;
  OperationLock writing_;
  bool cancelled_ = false;
};

}  // namespace vrx
