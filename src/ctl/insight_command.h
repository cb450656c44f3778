#pragma once

#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "ctl/command.h"
#include "ctl/output.h"
#include "insight/question.h"
#include "insight/tables.h"

namespace CLI {  // NOLINT(readability-identifier-naming): named by the library
class App;
class Option;
}  // namespace CLI

namespace vrx {

// The options of a command that asks what the records of a transaction database say.
class InsightOptions {
 public:
  // With the period and the filters that the command takes, and --csv and --json.
  void Register(CLI::App& command, std::initializer_list<NameKind> filters);

  // Throws CLI::ParseError if the period ends before it begins.
  [[nodiscard]] Question About() const;

  // Opens the database for reading, runs `work` and returns its result. Reports an unusable
  // database and a question that cannot be answered, and returns kFailed.
  int Run(Session& session,
          const std::function<int(SQLite::Database&, const InsightProgress&)>& work) const;

  [[nodiscard]] OutputForm Form() const { return output_.Form(); }

 private:
  std::string transactions_;
  std::string from_;
  std::string to_;
  std::optional<std::string> recipe_;
  std::optional<std::string> ingredient_;
  std::optional<std::string> operator_id_;
  std::optional<std::string> pen_;
  OutputOptions output_;
};

// The same for a command with options of its own.
int OpenForQuestion(Session& session, const std::string& transactions,
                    const std::function<int(SQLite::Database&, const InsightProgress&)>& work);

// An option for a weight or percentage from 0; the text that is not one is wrong usage.
CLI::Option* AddAmount(CLI::App& app, const std::string& name, const std::string& help,
                       std::optional<double>& amount);

// What is left out and which names are alike, on the error stream.
void WriteNotes(Session& session, const InsightNotes& notes);

// Writes an answer in the chosen form: a table with the keys of its columns as headings, or an
// array of objects with inner objects for keys with a point. A total goes below a plain table only.
void WriteAnswer(Session& session, OutputForm form, const AnswerTable& table);

// Writes the same row by row, for an answer that may be too long for memory. Nothing is written
// before the first row, so that a question without an answer leaves no output.
class AnswerWriter {
 public:
  // `table` has the columns. As JSON the rows are an array, or fill the empty one that is the last
  // member of `head`, an object.
  AnswerWriter(Session& session, OutputForm form, AnswerTable table, Json head = {})
      : session_(session), form_(form), table_(std::move(table)), head_(std::move(head)) {}

  void Write(const AnswerRow& row);
  // `total` goes below a plain table only; `tail` has the members after the rows of an object.
  void Finish(const AnswerRow& total = {}, const Json& tail = {});

 private:
  void Begin();
  [[nodiscard]] int Depth() const { return head_.empty() ? 1 : 2; }  // of a row

  Session& session_;
  OutputForm form_;
  AnswerTable table_;
  Json head_;
  bool has_row_ = false;
};

// A row, with inner objects for keys with a point.
[[nodiscard]] Json ObjectOf(const AnswerTable& table, const AnswerRow& row);
// All rows.
[[nodiscard]] Json ToJson(const AnswerTable& table);

// null for nothing.
template <typename Value>
Json OrNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}
[[nodiscard]] Json OrNull(const std::optional<Date>& date);

}  // namespace vrx
