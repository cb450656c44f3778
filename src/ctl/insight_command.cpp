#include "ctl/insight_command.h"

#include <cstddef>
#include <ostream>
#include <type_traits>
#include <utility>
#include <variant>

#include <CLI/CLI.hpp>

#include "base/number.h"
#include "ctl/options.h"
#include "ctl/session.h"
#include "database/connection.h"

namespace vrx {
namespace {

Json ToJson(const AnswerCell& cell) {
  return std::visit(
      [](const auto& value) {
        if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::monostate>) {
          return Json();
        } else {
          return Json(value);
        }
      },
      cell);
}

// Sets a cell of an object; "target.n" is the cell n of the inner object target.
void SetCell(Json& object, std::string_view key, const AnswerCell& cell) {
  Json* inner = &object;
  std::size_t point = key.find('.');
  while (point != std::string_view::npos) {
    inner = &(*inner)[std::string(key.substr(0, point))];
    key.remove_prefix(point + 1);
    point = key.find('.');
  }
  (*inner)[std::string(key)] = ToJson(cell);
}

std::vector<std::string> TextsOf(const AnswerTable& table, const AnswerRow& row) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < row.size(); ++i) {
    texts.push_back(TextOf(table.columns.at(i), row[i]));
  }
  return texts;
}

std::string NotANumber(const std::string& typed) {
  const auto number = ParseNumber(typed);
  return number && *number >= 0 ? std::string() : "'" + typed + "' is not a number from 0";
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
  for (const std::string& sentence : SentencesOf(notes)) {
    session.Context().err << sentence << '\n';
  }
}

Json ToJson(const AnswerTable& table) {
  Json rows = Json::array();
  for (const AnswerRow& row : table.rows) {
    rows.push_back(ObjectOf(table, row));
  }
  return rows;
}

Json ObjectOf(const AnswerTable& table, const AnswerRow& row) {
  Json object = Json::object();
  for (std::size_t i = 0; i < row.size(); ++i) {
    SetCell(object, table.columns.at(i).key, row[i]);
  }
  return object;
}

void WriteAnswer(Session& session, OutputForm form, const AnswerTable& table) {
  AnswerWriter writer(session, form, table);
  for (const AnswerRow& row : table.rows) {
    writer.Write(row);
  }
  writer.Finish(table.total);
}

void AnswerWriter::Begin() {
  if (form_ == OutputForm::kJson) {
    constexpr std::string_view kEnd = "]\n}";
    std::string head = head_.empty() ? "[" : JsonText(head_, 0);
    head.resize(head.size() - (head_.empty() ? 0 : kEnd.size()));
    session_.Out() << head;
    return;
  }
  std::vector<std::string> headings;
  for (const AnswerColumn& column : table_.columns) {
    headings.emplace_back(column.key);
  }
  WriteLine(session_.Out(), form_, headings);
}

void AnswerWriter::Write(const AnswerRow& row) {
  session_.Progress().Clear();
  if (!has_row_) {
    Begin();
  }
  if (form_ == OutputForm::kJson) {
    session_.Out() << (has_row_ ? ",\n" : "\n") << JsonText(ObjectOf(table_, row), Depth());
  } else {
    WriteLine(session_.Out(), form_, TextsOf(table_, row));
  }
  has_row_ = true;
}

void AnswerWriter::Finish(const AnswerRow& total, const Json& tail) {
  session_.Progress().Clear();
  if (!has_row_) {
    Begin();
  }
  if (form_ == OutputForm::kJson) {
    const std::string margin = head_.empty() ? "\n" : "\n  ";
    session_.Out() << (has_row_ ? margin : "") << ']';
    if (!head_.empty()) {
      session_.Out() << ',' << JsonText(tail, 0).substr(1);
    }
    session_.Out() << '\n';
  } else if (form_ == OutputForm::kPlain && has_row_ && !total.empty()) {
    WriteLine(session_.Out(), form_, TextsOf(table_, total));
  }
}

Json OrNull(const std::optional<Date>& date) { return date ? Json(StoredText(*date)) : Json(); }

}  // namespace vrx
