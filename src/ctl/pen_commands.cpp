#include <cstddef>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/date.h"
#include "base/files.h"
#include "base/number.h"
#include "ctl/command.h"
#include "ctl/insight_command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "insight/pens.h"
#include "insight/use.h"

namespace vrx {
namespace {

constexpr std::size_t kHoursAndMinutes = 5;

std::string ReadInput(const std::string& file) {
  constexpr std::size_t kMostBytes = 16 * 1024 * 1024;
  std::string text = ReadFileBytes(file, kMostBytes);
  if (text.size() > kMostBytes) {
    throw QuestionError(file + " is longer than 16 MB.");
  }
  return text;
}

// Names of a file that no record has.
void WriteUnknown(Session& session, const std::vector<std::string>& names,
                  const std::string& noun) {
  for (const std::string& name : names) {
    session.Context().err << "No record of the answer has the " << noun << " '" << name
                          << "' of the file.\n";
  }
}

Json ToJson(const DeliveredLine& line) {
  return {
      {"pen", OrNull(line.pen)},
      {"date", StoredText(line.date)},
      {"called", OrNull(line.called)},
      {"delivered", OrNull(line.delivered)},
      {"feedings", line.feedings},
      {"mean7", OrNull(line.mean7)},
      {"recipe", OrNull(line.recipe)},
      {"recipeChanged", line.recipe_changed},
      {"first", line.first ? Json(StoredText(*line.first).substr(0, kHoursAndMinutes)) : Json()},
      {"firstShift", OrNull(line.first_shift)},
      {"missed", line.missed},
      {"perHead", OrNull(line.per_head)}};
}

class DeliveredCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command =
        app.add_subcommand("delivered", "What each pen was called for and was fed, day by day");
    options_.Register(
        *command, {NameKind::kRecipe, NameKind::kIngredient, NameKind::kOperator, NameKind::kPen});
    command->add_option("--heads", heads_, "Head counts: lines of pen,from,heads")
        ->type_name("CSV");
    AddExamples(*command, {{"delivered JANUARY.TDB --from 2026-01-05 --to 2026-01-11 --csv",
                            "A week of all pens, for a spreadsheet."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const Question about = options_.About();
    return options_.Run(session, [&](SQLite::Database& database, const InsightProgress& progress) {
      std::vector<HeadCount> heads;
      if (!heads_.empty()) {
        heads = ParseHeadCounts(ReadInput(heads_), heads_);
      }
      const Delivered answer = ReadDelivered(database, about, heads, progress);
      WriteNotes(session, answer.notes);
      WriteUnknown(session, answer.unknown_pens, "pen");
      std::vector<Json> rows;
      for (const DeliveredLine& line : answer.lines) {
        rows.push_back(ToJson(line));
      }
      WriteRecords(session.Out(), options_.Form(),
                   {.prototype = ToJson(DeliveredLine()), .names = {"pen"}}, rows);
      return kDone;
    });
  }

 private:
  InsightOptions options_;
  std::string heads_;
};

Json Forward(const TraceLine& line) {
  return {{"transaction", OrNull(line.transaction)},
          {"date", OrNull(line.date)},
          {"recipe", OrNull(line.recipe)},
          {"operator", OrNull(line.operator_id)},
          {"pen", OrNull(line.pen)},
          {"weight", OrNull(line.weight)},
          {"share", OrNull(line.share)}};
}

Json Backward(const TraceLine& line) {
  return {{"transaction", OrNull(line.transaction)}, {"date", OrNull(line.date)},
          {"recipe", OrNull(line.recipe)},           {"operator", OrNull(line.operator_id)},
          {"ingredient", OrNull(line.ingredient)},   {"weight", OrNull(line.weight)}};
}

class TraceCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command =
        app.add_subcommand("trace", "Which pens an ingredient went to, or what a pen was fed");
    options_.Register(
        *command, {NameKind::kRecipe, NameKind::kIngredient, NameKind::kOperator, NameKind::kPen});
    AddExamples(*command, {{"trace JANUARY.TDB --ingredient CORN --from 2026-01-05",
                            "The batches, pens and weights of an ingredient."},
                           {"trace JANUARY.TDB --pen A01 --from 2026-01-05 --csv",
                            "All ingredients of a pen, for a spreadsheet."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const Question about = options_.About();
    if (about.ingredient.has_value() == about.pen.has_value()) {
      throw CLI::ValidationError("--ingredient", "a trace is of an ingredient or of a pen");
    }
    const bool forward = about.ingredient.has_value();
    return options_.Run(session, [&](SQLite::Database& database, const InsightProgress& progress) {
      const Trace answer = forward ? TraceIngredient(database, about, progress)
                                   : TracePen(database, about, progress);
      WriteNotes(session, answer.notes);
      std::vector<Json> rows;
      for (const TraceLine& line : answer.lines) {
        rows.push_back(forward ? Forward(line) : Backward(line));
      }
      WriteRecords(session.Out(), options_.Form(),
                   {.prototype = forward ? Forward({}) : Backward({}),
                    .percents = {"share"},
                    .names = {"recipe", "operator", "ingredient"}},
                   rows);
      return kDone;
    });
  }

 private:
  InsightOptions options_;
};

Json ToJson(const HoldingLine& line) {
  const auto text = [](const std::optional<Moment>& moment) {
    return moment ? Json(TextOf(*moment)) : Json();
  };
  return {{"pen", OrNull(line.pen)},     {"last", text(line.last)},
          {"since", text(line.since)},   {"until", text(line.until)},
          {"state", TextOf(line.state)}, {"why", line.why.empty() ? Json() : Json(line.why)}};
}

class HoldingCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "holding", "Which pens have been without an ingredient for a number of days");
    command->add_option("tdb", transactions_, "A transaction database")->required();
    command->add_option("--ingredient", question_.ingredients, "One ingredient or more, by comma")
        ->required()
        ->delimiter(',')
        ->type_name("T[,T...]");
    constexpr int kMostDays = 3650;
    AddWholeNumber(*command, "--days", "Days of 24 hours", 1, kMostDays, question_.days)
        ->required();
    AddDay(*command, "--on", "As of the end of this day; else today", on_);
    command->add_option("--pen", question_.pen, "Only this pen")->type_name("T");
    output_.RegisterCsv(*command);
    output_.RegisterJson(*command);
    AddExamples(*command, {{"holding JANUARY.TDB --ingredient CORN --days 5",
                            "Each pen, as of the end of today."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    question_.on = ParseStoredDate(on_).value_or(session.Context().calendar.Today());
    return OpenForQuestion(
        session, transactions_, [&](SQLite::Database& database, const InsightProgress& progress) {
          const Holding answer = ReadHolding(database, question_, progress);
          WriteNotes(session, answer.notes);
          std::vector<Json> rows;
          for (const HoldingLine& line : answer.lines) {
            rows.push_back(ToJson(line));
          }
          WriteRecords(session.Out(), output_.Form(),
                       {.prototype = ToJson(HoldingLine()), .names = {"pen"}}, rows);
          session.Context().err
              << "Pens, not animals; names, not drug lots. It is no proof that the wagon was "
                 "cleaned.\n";
          return kDone;
        });
  }

 private:
  std::string transactions_;
  HoldingQuestion question_;
  std::string on_;
  OutputOptions output_;
};

Json ToJson(const UseLine& line) {
  return {{"ingredient", OrNull(line.ingredient)},
          {"used", line.used},
          {"cost", OrNull(line.cost)},
          {"over", OrNull(line.over)},
          {"under", OrNull(line.under)},
          {"net", OrNull(line.net)},
          {"shrink", OrNull(line.shrink)}};
}

class UseCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command =
        app.add_subcommand("use", "What was used of each ingredient, its cost and its shrink");
    options_.Register(
        *command, {NameKind::kRecipe, NameKind::kIngredient, NameKind::kOperator, NameKind::kPen});
    command->add_option("--prices", prices_, "Prices of a unit: lines of ingredient,price,from")
        ->type_name("CSV");
    command
        ->add_option("--stock", stock_, "Stock: lines of ingredient,date,opening,received,closing")
        ->type_name("CSV");
    AddExamples(*command,
                {{"use JANUARY.TDB --from 2026-01-01 --to 2026-01-31", "What a month used."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    UseQuestion question{.about = options_.About()};
    return options_.Run(session, [&](SQLite::Database& database, const InsightProgress& progress) {
      if (!prices_.empty()) {
        question.prices = ParsePrices(ReadInput(prices_), prices_);
      }
      if (!stock_.empty()) {
        question.stock = ParseStock(ReadInput(stock_), stock_);
      }
      const Use answer = ReadUse(database, question, progress);
      WriteNotes(session, answer.notes);
      WriteUnknown(session, answer.unknown, "ingredient");
      std::vector<Json> rows;
      for (const UseLine& line : answer.lines) {
        rows.push_back(ToJson(line));
      }
      WriteRecords(
          session.Out(), options_.Form(),
          {.prototype = ToJson(UseLine()), .percents = {"shrink"}, .names = {"ingredient"}}, rows);
      return kDone;
    });
  }

 private:
  InsightOptions options_;
  std::string prices_;
  std::string stock_;
};

}  // namespace

std::unique_ptr<Command> MakeDeliveredCommand() { return std::make_unique<DeliveredCommand>(); }

std::unique_ptr<Command> MakeTraceCommand() { return std::make_unique<TraceCommand>(); }

std::unique_ptr<Command> MakeHoldingCommand() { return std::make_unique<HoldingCommand>(); }

std::unique_ptr<Command> MakeUseCommand() { return std::make_unique<UseCommand>(); }

}  // namespace vrx
