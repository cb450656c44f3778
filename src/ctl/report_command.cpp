#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <SQLiteCpp/Database.h>

#include "base/error.h"
#include "base/files.h"
#include "ctl/command.h"
#include "ctl/insight_command.h"
#include "ctl/options.h"
#include "ctl/session.h"
#include "insight/report_period.h"
#include "presenter/period_report.h"
#include "presenter/report_failure.h"
#include "report/period_page.h"
#include "report/print_target.h"

namespace vrx {
namespace {

class ReportCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "report", "The page of a day, a week or a month, on the terminal, as PDF or as HTML");
    command->add_option("tdb", transactions_, "A transaction database")->required();
    AddPeriod(*command, "--day", "A day", "YYYY-MM-DD", PeriodKind::kDay);
    AddPeriod(*command, "--week", "An ISO week, from Monday to Sunday", "YYYY-Www",
              PeriodKind::kWeek);
    AddPeriod(*command, "--month", "A month", "YYYY-MM", PeriodKind::kMonth);
    command->add_option("--pdf", pdf_, "The PDF file; an older one is replaced")->type_name("FILE");
    command->add_option("--html", html_, "The HTML file; an older one is replaced")
        ->type_name("FILE");
    AddExamples(*command, {{"report JANUARY.TDB --day 2026-01-05", "The page of a day, to read."},
                           {"report JANUARY.TDB --week 2026-W02 --html week.html",
                            "A week, for a browser or a telephone."},
                           {"report JANUARY.TDB --month 2026-01 --pdf month.pdf",
                            "A month, for the printer."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    if (periods_.size() != 1) {
      throw CLI::ValidationError("report", "takes one of --day, --week and --month");
    }
    return OpenForQuestion(
        session, transactions_, [&](SQLite::Database& database, const InsightProgress& progress) {
          const PeriodPage page =
              ReadPeriodPage(database,
                             {.period = periods_[0],
                              .database = FileTitle(std::filesystem::path(transactions_)),
                              .made = session.Context().calendar.Today()},
                             progress);
          session.Progress().Clear();
          return Write(session, page);
        });
  }

 private:
  void AddPeriod(CLI::App& command, const std::string& name, const std::string& help,
                 const std::string& form, PeriodKind kind) {
    command
        .add_option_function<std::string>(
            name,
            [this, kind](const std::string& typed) {
              periods_.push_back(*ParsePeriod(kind, typed));
            },
            help)
        ->type_name(form)
        ->check([kind, form](const std::string& typed) {
          return ParsePeriod(kind, typed) ? std::string()
                                          : "the calendar has no '" + typed + "' as " + form;
        });
  }

  [[nodiscard]] int Write(Session& session, const PeriodPage& page) const {
    if (pdf_.empty() && html_.empty()) {
      session.Out() << PlainText(page);
      return kDone;
    }
    for (const std::string& note : page.notes) {
      session.Op().ShowNote(note);
    }
    session.Context().start_drawing();
    const bool written = RunReported<Error>(session.Op(), PeriodReportFailure, [&] {
      if (!html_.empty()) {
        WriteHtml(page, html_);
      }
      if (!pdf_.empty()) {
        PrintPeriodPage(page, *MakePdfFile(pdf_, page.title));
      }
      return true;
    });
    return written ? kDone : kFailed;
  }

  std::string transactions_;
  std::vector<ReportPeriod> periods_;
  std::string pdf_;
  std::string html_;
};

}  // namespace

std::unique_ptr<Command> MakeReportCommand() { return std::make_unique<ReportCommand>(); }

}  // namespace vrx
