#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "adapters/program_runner.h"
#include "adapters/signals.h"
#include "base/date.h"
#include "base/number.h"
#include "base/text.h"
#include "central/server.h"
#include "ctl/command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/schema.h"
#include "database/summary.h"
#include "legacy/conversion_report.h"
#include "legacy/convert.h"
#include "presenter/create_database.h"
#include "presenter/legacy_conversion.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"

namespace vrx {

namespace {

Json ToJson(const ConvertedTable& table) {
  return {{"table", table.name},
          {"read", table.read},
          {"stored", table.stored},
          {"repaired", table.repaired},
          {"refused", table.refused}};
}

// `rows` are pairs of a first and a last row of the old table, from 1; `ids` are pairs of IDs.
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
                            "Converts it, and reports what was converted and what was not."},
                           {"convert OLDYARD.TDB YARD.TDB --json > report.json",
                            "The report for a program."}});
    return command;
  }

  int Run(Session& session) override {
    const auto report = [](const Error& failure) -> FailureReport {
      return {
          .title = kConversionErrorTitle,
          .text = IsDatabaseError(failure) ? FailureText::kDatabaseWords : FailureText::kMessage};
    };
    return RunReported<Error>(session.Op(), report, [&] { Convert(session); }) ? kDone : kFailed;
  }

 private:
  void Convert(Session& session) const {
    const InterruptFlag stop;
    const ConversionReport report = ConvertLegacyDatabase(
        {.old_file = old_,
         .new_file = new_,
         .program_directory = session.Context().system.ProgramDirectory(),
         .default_unit = session.Settings().SystemUnits()},
        session.GetServices().programs, session.Progress(), [&stop] { return !stop.Raised(); });
    session.Progress().Clear();
    if (output_.Form() == OutputForm::kJson) {
      WriteObject(session.Out(), OutputForm::kJson, Describe(report));
    } else {
      session.Out() << ReportText(report);
    }
  }

  std::string old_;
  std::string new_;
  OutputOptions output_;
};

class NewCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("new", "Make a database from the blank template");
    command->add_option("kind", kind_, "recipe or transaction")
        ->required()
        ->check(CLI::IsMember({"recipe", "transaction"}));
    command->add_option("file", file_, "Path of the new database")->required();
    command->add_option("--units", units_, "Weight unit; by default the system's")
        ->check(CLI::IsMember({"LB", "KG"}));
    AddExamples(*command,
                {{"new recipe YARD.RDB", "Makes a recipe database in the unit of the settings."},
                 {"new transaction FEBRUARY.TDB --units KG",
                  "Makes a transaction database for weights in kilograms."}});
    return command;
  }

  int Run(Session& session) override {
    const std::filesystem::path path = file_;
    CurrentDatabase current;
    const NewDatabase wanted{
        .kind = kind_ == "recipe" ? DatabaseKind::kRecipe : DatabaseKind::kTransaction,
        .program_directory = session.Context().system.ProgramDirectory(),
        .path = path,
        .title = path.filename().string(),
        .unit = units_.empty() ? session.Settings().SystemUnits() : units_};
    return CreateDatabase(wanted, session.Identity(), session.Op(), current) ? kDone : kFailed;
  }

 private:
  std::string kind_;
  std::string file_;
  std::string units_;
};

Json DateOrNull(const std::optional<Date>& date) { return date ? Json(StoredText(*date)) : Json(); }

Json Describe(const DatabaseSummary& summary) {
  const bool recipe = summary.kind == DatabaseKind::kRecipe;
  Json object = {{"type", recipe ? "recipe" : "transaction"},
                 {"units", summary.unit},
                 {"created", DateOrNull(summary.created)},
                 {"modified", DateOrNull(summary.modified)}};
  if (recipe) {
    object["ingredients"] = summary.recipe.ingredients;
    object["recipes"] = summary.recipe.recipes;
    object["pens"] = summary.recipe.pens;
    // A complete database has no such key.
    if (summary.missing.Any()) {
      object["missing"] = ToText(summary.missing);
    }
  } else {
    object["rows"] = summary.transaction.rows;
    object["transactions"] = summary.transaction.transactions;
    object["firstDate"] = DateOrNull(summary.transaction.first_date);
    object["lastDate"] = DateOrNull(summary.transaction.last_date);
  }
  return object;
}

class InfoCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("info", "Describe a database and its contents");
    command->add_option("file", file_, "A recipe or transaction database")->required();
    output_.RegisterJson(*command);
    AddExamples(
        *command,
        {{"info SITE.RDB", "Shows unit, dates and the numbers of records in use."},
         {"info JANUARY.TDB --json", "The same of a transaction database, for a program."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const std::filesystem::path path = file_;
    const std::string type = session.Identity().GetDatabaseType(path);
    const DatabaseKind kind =
        type == kUserTransDb ? DatabaseKind::kTransaction : KindOfExtension(path);
    const bool accepted = type == kUserRecipeDb || session.AcceptsType(path, kind, type);
    if (!accepted) {
      return kFailed;
    }
    return session.OnDatabase(path, kind, [&] {
      const DatabaseSummary summary = ReadDatabaseSummary(path, session.Context().busy_timeout);
      WriteObject(session.Out(), output_.Form(), Describe(summary));
      return kDone;
    });
  }

 private:
  std::string file_;
  OutputOptions output_;
};

// Checks keys whose range the settings do not check.
bool FitsKey(std::string_view key, std::string_view value) {
  constexpr std::array<std::string_view, 4> kBaudRates = {"1200", "2400", "9600", "19200"};
  if (EqualsIgnoringCase(key, "KRMBaudRate")) {
    return std::find(kBaudRates.begin(), kBaudRates.end(), value) != kBaudRates.end();
  }
  if (EqualsIgnoringCase(key, "SerialPort")) {
    return !value.empty() && std::all_of(value.begin(), value.end(), IsDigitChar) &&
           ParseLong(value).value_or(0) > 0;
  }
  return true;
}

// The keys of the section [Central]. A missing one is empty.
struct CentralKey {
  std::string_view key;
  std::string (*read)(const CentralSettings& settings);
  // Returns false for a value that the key does not have.
  bool (*let)(CentralSettings& settings, const std::string& value);
};

// A password would be shown to everybody who sees the settings.
bool LetConnection(CentralSettings& settings, const std::string& value) {
  if (!value.empty()) {
    static_cast<void>(ReadConnectionString(value));
  }
  settings.connection = value;
  return true;
}

bool LetAutomatic(CentralSettings& settings, const std::string& value) {
  settings.automatic = EqualsIgnoringCase(value, "YES");
  return settings.automatic || EqualsIgnoringCase(value, "NO");
}

constexpr std::array<CentralKey, 3> kCentralKeys{
    {{"Connection", [](const CentralSettings& settings) { return settings.connection; },
      LetConnection},
     {"Yard", [](const CentralSettings& settings) { return settings.yard; },
      [](CentralSettings& settings, const std::string& value) {
        settings.yard = value;
        return true;
      }},
     {"Automatic",
      [](const CentralSettings& settings) {
        return std::string(settings.automatic ? "YES" : "NO");
      },
      LetAutomatic}}};

const CentralKey* FindCentralKey(std::string_view key) {
  const auto* const found =
      std::find_if(kCentralKeys.begin(), kCentralKeys.end(),
                   [key](const CentralKey& entry) { return EqualsIgnoringCase(entry.key, key); });
  return found == kCentralKeys.end() ? nullptr : found;
}

class SettingsCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand("settings", "List, read or write the settings");
    command->add_option("key", key_, "Name of a setting")->check(KnownKey);
    value_option_ = command->add_option("value", value_, "Its new value");
    AddExamples(*command, {{"settings", "Lists every setting."},
                           {"settings SerialPort", "Reads one."},
                           {"settings SystemUnits KG", "Writes one."},
                           {"settings Connection service=company",
                            "Where the central database is, without a password."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return value_option_->count() == 0; }

  int Run(Session& session) override {
    if (key_.empty()) {
      List(session);
      return kDone;
    }
    if (const CentralKey* const central = FindCentralKey(key_)) {
      return OnCentralKey(session, *central);
    }
    if (OnlyReads()) {
      session.Out() << session.Settings().TextByKey(key_).value_or("") << '\n';
      return kDone;
    }
    if (!FitsKey(key_, value_) || !session.Settings().LetByKey(key_, value_)) {
      return Refuse(session, key_ + " cannot be '" + value_ + "'.");
    }
    return session.SaveSettings() ? kDone : kFailed;
  }

 private:
  static int Refuse(Session& session, const std::string& why) {
    session.Op().ShowMessage({.icon = Icon::kWarning, .title = "Settings Error", .text = why});
    return kFailed;
  }

  int OnCentralKey(Session& session, const CentralKey& key) const {
    CentralSettings settings = session.Central();
    if (OnlyReads()) {
      session.Out() << key.read(settings) << '\n';
      return kDone;
    }
    try {
      if (!key.let(settings, value_)) {
        return Refuse(session, key_ + " cannot be '" + value_ + "'.");
      }
    } catch (const ConnectionStringError& error) {
      return Refuse(session, error.what());
    }
    return session.SaveCentral(settings) ? kDone : kFailed;
  }

  static std::string KnownKey(const std::string& key) {
    const auto keys = PrivateINI::Keys();
    const bool known = FindCentralKey(key) != nullptr ||
                       std::any_of(keys.begin(), keys.end(), [&](std::string_view entry) {
                         return EqualsIgnoringCase(entry, key);
                       });
    return known ? "" : "there is no setting " + key;
  }

  static void List(Session& session) {
    OutputTable table{.header = {"Key", "Value"}, .rows = {}};
    for (const std::string_view key : PrivateINI::Keys()) {
      table.rows.push_back({key, session.Settings().TextByKey(key).value_or("")});
    }
    const CentralSettings central = session.Central();
    for (const CentralKey& key : kCentralKeys) {
      table.rows.push_back({key.key, key.read(central)});
    }
    WriteTable(session.Out(), OutputForm::kPlain, table);
  }

  std::string key_;
  std::string value_;
  CLI::Option* value_option_ = nullptr;
};

}  // namespace

std::unique_ptr<Command> MakeConvertCommand() { return std::make_unique<ConvertCommand>(); }

std::unique_ptr<Command> MakeNewCommand() { return std::make_unique<NewCommand>(); }

std::unique_ptr<Command> MakeInfoCommand() { return std::make_unique<InfoCommand>(); }

std::unique_ptr<Command> MakeSettingsCommand() { return std::make_unique<SettingsCommand>(); }

}  // namespace vrx
