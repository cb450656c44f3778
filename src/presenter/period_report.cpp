#include "presenter/period_report.h"

#include <optional>
#include <string_view>
#include <utility>

#include "base/translation.h"
#include "database/connection.h"
#include "database/keep_database.h"
#include "database/transactions.h"

namespace vrx {
namespace {

FailureReport DayFailure(const Error& /*failure*/) { return kNoReport; }

std::optional<ReportPeriod> PeriodIn(const PeriodReportForm& form) {
  const std::optional<Date> day = ParseTypedDate(form.day);
  return day ? std::optional(PeriodOf(form.kind, *day)) : std::nullopt;
}

FileDialog DialogFor(PageFormat format) {
  const bool pdf = format == PageFormat::kPdf;
  return {.title = pdf ? Tr("Save Report as PDF File") : Tr("Save Report as HTML File"),
          .filter = pdf ? "PDF Files (*.pdf)|*.pdf" : "HTML Files (*.html)|*.html",
          .default_extension = pdf ? "pdf" : "html",
          .flags = kOverwritePrompt | kHideReadOnly};
}

}  // namespace

FailureReport PeriodReportFailure(const Error& failure) {
  constexpr std::string_view kTitle = "Report Error";
  if (dynamic_cast<const DatabaseInTheWay*>(&failure) != nullptr) {
    return {.title = kTitle, .text = FailureText::kMessage, .icon = Icon::kWarning};
  }
  return {.title = kTitle,
          .text = FailureText::kWords,
          .words = TrMark("The report could not be written.")};
}

PeriodReport::PeriodReport(Services& services, std::filesystem::path database, Writer write,
                           PeriodReportView& view)
    : services_(services), database_(std::move(database)), write_(std::move(write)), view_(view) {
  std::optional<Date> day;
  RunReported<Error>(services_.op, DayFailure, [&] {
    SQLite::Database connection = OpenDatabase(database_, Access::kRead, services_.identity.Wait());
    day = LatestDay(connection);
  });
  form_.day = DefaultText(day.value_or(services_.calendar.Today()));
  ShowPeriod();
}

void PeriodReport::ChooseKind(PeriodKind kind) {
  form_.kind = kind;
  ShowPeriod();
  view_.ReportChanged();
}

void PeriodReport::TypeDay(std::string_view typed) {
  form_.day = typed;
  ShowPeriod();
  view_.ReportChanged();
}

void PeriodReport::ShowPeriod() {
  const std::optional<ReportPeriod> period = PeriodIn(form_);
  form_.may_write = period.has_value();
  if (!period) {
    form_.period = Tr("The day is written as 1/31/2026, 2026-01-31 or 31-Jan-26.");
  } else if (period->kind == PeriodKind::kDay) {
    form_.period = TextOf(*period);
  } else {
    form_.period =
        Tr("%1: %2 to %3", {TextOf(*period), StoredText(period->from), StoredText(period->to)});
  }
}

void PeriodReport::ClickWrite() {
  const OperationLock::Scope writing = writing_.TryEnter();
  const std::optional<ReportPeriod> period = PeriodIn(form_);
  if (!writing || !period) {
    return;
  }
  const FileChoice file = services_.files.ShowSave(DialogFor(form_.format));
  if (file.Cancelled()) {
    return;
  }
  cancelled_ = false;
  form_.running = true;
  form_.percent = 0;
  view_.ReportChanged();
  const bool written = RunReported<Error>(services_.op, PeriodReportFailure,
                                          [&] { return Write(*period, file.path); });
  form_.running = false;
  view_.ReportChanged();
  if (written) {
    view_.ReportWritten(file.path);
  }
}

bool PeriodReport::Write(const ReportPeriod& period, const std::filesystem::path& file) {
  try {
    KeepDatabase(file);  // before the work
    SQLite::Database connection = OpenDatabase(database_, Access::kRead, services_.identity.Wait());
    write_(connection, period, form_.format, file,
           [this](int percent) { return ShowPercent(percent); });
    return true;
  } catch (const QuestionCancelled&) {
    return false;
  }
}

bool PeriodReport::ShowPercent(int percent) {
  if (percent != form_.percent) {
    form_.percent = percent;
    view_.ReportChanged();
  }
  services_.pump.Pump(Milliseconds{0});
  return !cancelled_ && !services_.pump.Closing();
}

bool PeriodReport::ClickCancel() {
  cancelled_ = true;
  return form_.running;
}

}  // namespace vrx
