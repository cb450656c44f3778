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
      AnswerWriter writer(session, options_.Form(), TableOf(Delivered()));
      const Delivered answer = StreamDelivered(
          database, about, heads, [&](const DeliveredLine& line) { writer.Write(RowOf(line)); },
          progress);
      writer.Finish();
      WriteNotes(session, answer.notes);
      WriteUnknown(session, answer.unknown_pens, "pen");
      return kDone;
    });
  }

 private:
  InsightOptions options_;
  std::string heads_;
};

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
      AnswerWriter writer(session, options_.Form(),
                          forward ? ForwardTable(Trace()) : BackwardTable(Trace()));
      const TakeLine<TraceLine> take = [&](const TraceLine& line) {
        writer.Write(forward ? ForwardRow(line) : BackwardRow(line));
      };
      const InsightNotes notes = forward ? StreamTraceOfIngredient(database, about, take, progress)
                                         : StreamTraceOfPen(database, about, take, progress);
      writer.Finish();
      WriteNotes(session, notes);
      return kDone;
    });
  }

 private:
  InsightOptions options_;
};

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
          WriteAnswer(session, output_.Form(), TableOf(answer));
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
      WriteAnswer(session, options_.Form(), TableOf(answer));
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
