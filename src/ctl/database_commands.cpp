#include <exception>
#include <filesystem>
#include <string>

#include <CLI/CLI.hpp>

#include "adapters/posix_program_runner.h"
#include "adapters/stop_flag.h"
#include "ctl/command.h"
#include "ctl/examples.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "database/database_error.h"
#include "legacy/conversion_report.h"
#include "legacy/convert.h"
#include "presenter/legacy_conversion.h"

namespace vrx {
namespace {

Json ToJson(const ConvertedTable& table) {
  return {{"table", table.name},
          {"read", table.read},
          {"stored", table.stored},
          {"repaired", table.repaired},
          {"refused", table.refused}};
}

// `rows` are pairs of a first and a last row of the old table, from 1; `ids` the same of IDs.
Json ToJson(const ConversionNotice& notice) {
  Json ranges = Json::array();
  for (const RowRange& range : notice.rows) {
    ranges.push_back({range.first, range.last});
  }
  Json object = {{"table", notice.table.empty() ? Json() : Json(notice.table)}};
  object[notice.are_ids ? "ids" : "rows"] = ranges;
  object["text"] = notice.text;
  return object;
}

Json Describe(const ConversionReport& report) {
  const bool recipe = report.kind == DatabaseKind::kRecipe;
  Json object = {
      {"old",
       {{"file", report.old_file.string()}, {"bytes", report.old_size}, {"sha256", report.sha256}}},
      {"new",
       {{"file", report.new_file.string()},
        {"type", recipe ? "recipe" : "transaction"},
        {"units", report.unit}}},
      {"read", report.Read()},
      {"stored", report.Stored()},
      {"repaired", report.Repaired()},
      {"refused", report.Refused()},
      {"tables", Json::array()},
      {"sums", Json::array()},
      {"notices", Json::array()},
      {"furtherNotices", report.further_notices}};
  for (const ConvertedTable& table : report.tables) {
    object["tables"].push_back(ToJson(table));
  }
  for (const ConvertedSum& sum : report.sums) {
    object["sums"].push_back({{"table", sum.table},
                              {"column", sum.column},
                              {"old", sum.old_file},
                              {"new", sum.new_file}});
  }
  for (const ConversionNotice& notice : report.notices) {
    object["notices"].push_back(ToJson(notice));
  }
  return object;
}

class ConvertCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command =
        app.add_subcommand("convert", "Make a database of one of an earlier installation");
    command->add_option("old", old_, "A database of an earlier installation, which is only read")
        ->required();
    command->add_option("new", new_, "Path of the new database, which must not exist")->required();
    output_.RegisterJson(*command);
    AddExamples(*command, {{"convert OLDSITE.RDB YARD.RDB",
                            "Converts it, and tells what was taken over and what was not."},
                           {"convert OLDYARD.TDB YARD.TDB --json > report.json",
                            "The report for a program."}});
    return command;
  }

  int Run(Session& session) override {
    try {
      const StopFlag stop;
      PosixProgramRunner runner;
      const ConversionReport report = ConvertLegacyDatabase(
          {.old_file = old_,
           .new_file = new_,
           .program_directory = session.Context().system.ProgramDirectory(),
           .default_unit = session.Settings().SystemUnits()},
          {.runner = runner, .progress = session.Progress(), .go_on = [&stop] {
             return !stop.Raised();
           }});
      session.Progress().Clear();
      if (output_.Form() == OutputForm::kJson) {
        WriteObject(session.Out(), OutputForm::kJson, Describe(report));
      } else {
        session.Out() << ReportText(report);
      }
      return kDone;
    } catch (const DatabaseError& failure) {
      session.Identity().ShowDatabaseError(failure.Number(), kConversionErrorTitle, failure.what());
    } catch (const Error& failure) {
      session.Op().ShowMessage({.icon = Icon::kCritical,
                                .title = std::string(kConversionErrorTitle),
                                .text = failure.what()});
    }
    return kFailed;
  }

 private:
  std::string old_;
  std::string new_;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeConvertCommand() { return std::make_unique<ConvertCommand>(); }

}  // namespace vrx
