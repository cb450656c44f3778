#include <array>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/number.h"
#include "ctl/command.h"
#include "ctl/insight_command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "database/connection.h"
#include "database/imports.h"
#include "insight/completeness.h"
#include "insight/import_units.h"

namespace vrx {
namespace {

Json ToJson(const Statement& statement) {
  Json missing = Json::array();
  for (const MissingInFile& file : statement.missing) {
    missing.push_back({{"import", file.import}, {"file", file.file}, {"numbers", file.numbers}});
  }
  Json gaps = Json::array();
  for (const ImportGap& gap : statement.gaps) {
    gaps.push_back(
        {{"after", gap.after}, {"before", gap.before}, {"first", gap.first}, {"last", gap.last}});
  }
  Json days = Json::array();
  for (const Date& day : statement.first_days_without) {
    days.push_back(StoredText(day));
  }
  Json units = Json::array();
  for (const ImportInOtherUnit& import : statement.other_units) {
    units.push_back({{"import", import.import},
                     {"file", import.file},
                     {"units", import.units},
                     {"settled", import.settled.empty() ? Json() : Json(import.settled)}});
  }
  return {{"from", OrNull(statement.from)},
          {"to", OrNull(statement.to)},
          {"imports", statement.imports},
          {"batches", statement.batches},
          {"loads", statement.loads},
          {"deliveries", statement.deliveries},
          {"loaded", OrNull(statement.loaded)},
          {"fed", OrNull(statement.fed)},
          {"notRead", statement.not_read},
          {"leftOut", statement.left_out},
          {"missing", missing},
          {"gaps", gaps},
          {"same", statement.same},
          {"continued", statement.continued},
          {"conflicts", statement.conflicts},
          {"neverFed", statement.never_fed},
          {"out", statement.out},
          {"daysWithout", {{"n", statement.days_without}, {"days", days}}},
          {"oddDates", statement.odd_dates.size()},
          {"otherUnits", units},
          {"notRecorded", statement.not_recorded}};
}

class CompletenessCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "completeness", "What is stored of a period, and what of it is known to be incomplete");
    options_.Register(*command, {});
    AddExamples(*command, {{"completeness JANUARY.TDB --from 2026-01-01 --to 2026-01-31 --json",
                            "The statement of a month."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const Question about = options_.About();
    return options_.Run(session, [&](SQLite::Database& database, const InsightProgress& progress) {
      const Statement statement = ReadStatement(database, about.from, about.to, progress);
      WriteNotes(session, statement.notes);
      if (options_.Form() == OutputForm::kJson) {
        WriteObject(session.Out(), OutputForm::kJson, ToJson(statement));
      } else {
        WriteAnswer(session, options_.Form(), TableOf(statement));
      }
      return kDone;
    });
  }

 private:
  InsightOptions options_;
};

Json OrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

Json ToJson(const ImportRecord& import) {
  return {{"Number", import.number},
          {"At", import.at},
          {"File", import.file},
          {"SHA256", import.sha256},
          {"Units", import.units},
          {"RowsRead", import.rows_read},
          {"Stored", import.stored},
          {"LeftOut", import.left_out},
          {"NotRead", import.not_read},
          {"Repeated", import.repeated},
          {"Batches", import.batches},
          {"FileLow", vrx::OrNull(import.file_low)},
          {"FileHigh", vrx::OrNull(import.file_high)},
          {"Missing", import.missing},
          {"StoredLow", vrx::OrNull(import.stored_low)},
          {"StoredHigh", vrx::OrNull(import.stored_high)},
          {"FirstDate", vrx::OrNull(import.first_date)},
          {"LastDate", vrx::OrNull(import.last_date)},
          {"Settled", OrNull(import.settled)}};
}

class ImportsCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "imports", "The stores of a transaction database; settles weights in another unit");
    command->add_option("tdb", transactions_, "A transaction database")->required();
    command
        ->add_option("--settle", settle_,
                     "A store in another unit, and keep: its weights are in the database's unit "
                     "after all; or convert: they are converted when read")
        ->type_name("NUMBER keep|convert")
        ->expected(2);
    output_.RegisterCsv(*command);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"imports JANUARY.TDB", "What each store read and stored."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return settle_.empty(); }

  int Run(Session& session) override {
    const auto settled = Settled();
    if (!session.IsUserDatabase(transactions_, DatabaseKind::kTransaction)) {
      return kFailed;
    }
    return session.OnDatabase(transactions_, DatabaseKind::kTransaction, [&] {
      SQLite::Database database = OpenDatabase(
          transactions_, settled ? Access::kWrite : Access::kRead, session.Context().busy_timeout);
      if (settled) {
        SettleImport(database, settled->first, settled->second, session.Context().calendar);
      }
      OutputTable table;
      const Json headings = ToJson(ImportRecord());
      for (const auto& [key, value] : headings.items()) {
        table.header.push_back(key);
      }
      for (const ImportRecord& import : ReadImports(database)) {
        std::vector<Json>& row = table.rows.emplace_back();
        const Json cells = ToJson(import);
        for (const auto& [key, value] : cells.items()) {
          row.push_back(value);
        }
      }
      WriteTable(session.Out(), output_.Form(), table);
      return kDone;
    });
  }

 private:
  [[nodiscard]] std::optional<std::pair<std::int64_t, Settlement>> Settled() const {
    if (settle_.empty()) {
      return std::nullopt;
    }
    const auto number = ParseLong(settle_.at(0));
    if (!number || *number < 1 || settle_[0] != std::to_string(*number)) {
      throw CLI::ValidationError("--settle", "'" + settle_[0] + "' is not the number of a store");
    }
    for (const Settlement settlement : {Settlement::kKeep, Settlement::kConvert}) {
      if (settle_.at(1) == TextOf(settlement)) {
        return std::pair(std::int64_t{*number}, settlement);
      }
    }
    throw CLI::ValidationError("--settle", "'" + settle_[1] + "' is neither keep nor convert");
  }

  std::string transactions_;
  std::vector<std::string> settle_;
  OutputOptions output_;
};

}  // namespace

std::unique_ptr<Command> MakeCompletenessCommand() {
  return std::make_unique<CompletenessCommand>();
}

std::unique_ptr<Command> MakeImportsCommand() { return std::make_unique<ImportsCommand>(); }

}  // namespace vrx
