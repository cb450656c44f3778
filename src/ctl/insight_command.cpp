#include "ctl/insight_command.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include <CLI/CLI.hpp>

#include "base/number.h"
#include "ctl/options.h"
#include "ctl/session.h"
#include "database/connection.h"

namespace vrx {
namespace {

bool Has(const std::vector<std::string_view>& keys, const std::string& key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

// The text of a cell outside JSON.
std::string CellText(const RecordForm& records, const std::string& key, const Json& cell) {
  if (cell.is_null()) {
    return Has(records.names, key) ? "(none)" : "";
  }
  if (cell.is_number_float()) {
    const auto value = cell.get<double>();
    return Has(records.percents, key) ? Format(value, "0.0") : DefaultText(value);
  }
  if (cell.is_boolean()) {
    return cell.get<bool>() ? "Yes" : "No";
  }
  return cell.is_string() ? cell.get<std::string>() : cell.dump();
}

void AddHeadings(const Json& object, const std::string& before, std::vector<std::string>& cells) {
  for (const auto& [key, value] : object.items()) {
    if (value.is_object()) {
      AddHeadings(value, before + key + ".", cells);
    } else {
      cells.push_back(before + key);
    }
  }
}

void AddCells(const RecordForm& records, const Json& object, std::vector<std::string>& cells) {
  for (const auto& [key, value] : object.items()) {
    if (value.is_object()) {
      AddCells(records, value, cells);
    } else {
      cells.push_back(CellText(records, key, value));
    }
  }
}

std::string NotANumber(const std::string& typed) {
  const auto number = ParseNumber(typed);
  return number && *number >= 0 ? std::string() : "'" + typed + "' is no number from 0";
}

std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? "" : ", ") + name;
  }
  return text;
}

}  // namespace

void InsightOptions::Register(CLI::App& command, std::initializer_list<NameKind> filters) {
  command.add_option("tdb", transactions_, "A transaction database")->required();
  AddDay(command, "--from", "Only batches from this day on", from_);
  AddDay(command, "--to", "Only batches up to this day, included", to_);
  for (const NameKind kind : filters) {
    const std::string noun(NounOf(kind));
    std::optional<std::string>* name = &recipe_;
    std::string help = "Only batches of this " + noun;
    if (kind == NameKind::kIngredient) {
      name = &ingredient_;
      help = "Only this ingredient, or batches with it";
    } else if (kind == NameKind::kOperator) {
      name = &operator_id_;
    } else if (kind == NameKind::kPen) {
      name = &pen_;
      help = "Only this pen, or batches fed to it";
    }
    command.add_option("--" + noun, *name, help)->type_name("T");
  }
  output_.RegisterCsv(command);
  output_.RegisterJson(command);
}

Question InsightOptions::About() const {
  Question question{.from = ParseStoredDate(from_),
                    .to = ParseStoredDate(to_),
                    .recipe = recipe_,
                    .ingredient = ingredient_,
                    .operator_id = operator_id_,
                    .pen = pen_};
  if (question.from && question.to && *question.to < *question.from) {
    throw CLI::ValidationError("--to", to_ + " is before " + from_ + ", the first day");
  }
  return question;
}

int InsightOptions::Run(
    Session& session,
    const std::function<int(SQLite::Database&, const InsightProgress&)>& work) const {
  return OpenForQuestion(session, transactions_, work);
}

int OpenForQuestion(Session& session, const std::string& transactions,
                    const std::function<int(SQLite::Database&, const InsightProgress&)>& work) {
  if (!session.IsUserDatabase(transactions, DatabaseKind::kTransaction)) {
    return kFailed;
  }
  return session.OnDatabase(transactions, DatabaseKind::kTransaction, [&] {
    SQLite::Database database =
        OpenDatabase(transactions, Access::kRead, session.Context().busy_timeout);
    ProgressLine& line = session.Progress();
    line.SetProgressMessage("Reading the records");
    constexpr int kWhole = 100;
    line.SetProgressRange(kWhole);
    const InsightProgress progress = [&line](int percent) {
      line.SetProgressValue(percent);
      return true;
    };
    return work(database, progress);
  });
}

CLI::Option* AddAmount(CLI::App& app, const std::string& name, const std::string& help,
                       std::optional<double>& amount) {
  return app
      .add_option_function<std::string>(
          name, [&amount](const std::string& typed) { amount = ParseNumber(typed); }, help)
      ->type_name("NUMBER")
      ->check(NotANumber);
}

void WriteNotes(Session& session, const InsightNotes& notes) {
  session.Progress().Clear();
  std::ostream& err = session.Context().err;
  for (const LeftOutImport& import : notes.left_out) {
    err << "Import " << import.import << " (" << import.file << ") is left out: its " << import.rows
        << (import.rows == 1 ? " row is" : " rows are") << " in " << import.units
        << ", the database is in " << notes.units
        << ". Say with imports --settle whether to keep or to convert them.\n";
  }
  if (notes.undated > 0) {
    err << notes.undated << (notes.undated == 1 ? " row has" : " rows have")
        << " no date and may be left out of the period.\n";
  }
  for (const std::vector<std::string>& alike : notes.alike) {
    err << "These names differ by case only and are different: " << Listed(alike) << ".\n";
  }
}

void WriteRecords(std::ostream& out, OutputForm form, const RecordForm& records,
                  const std::vector<Json>& rows) {
  if (form == OutputForm::kJson) {
    WriteObject(out, form, Json(rows));
    return;
  }
  std::vector<std::string> headings;
  AddHeadings(records.prototype, "", headings);
  WriteLine(out, form, headings);
  for (const Json& row : rows) {
    WriteLine(out, form, CellsOf(records, row));
  }
}

std::vector<std::string> CellsOf(const RecordForm& records, const Json& row) {
  std::vector<std::string> cells;
  AddCells(records, row, cells);
  return cells;
}

Json OrNull(const std::optional<Date>& date) { return date ? Json(StoredText(*date)) : Json(); }

}  // namespace vrx
