#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/insight_command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "insight/batches.h"
#include "insight/import_units.h"

namespace vrx {
namespace {

class BalanceCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "balance", "Batches that were never fed or loaded, or of which too much or little is left");
    options_.Register(
        *command, {NameKind::kRecipe, NameKind::kIngredient, NameKind::kOperator, NameKind::kPen});
    AddAmount(*command, "--percent", "Limit in percent of what was loaded; else 2", percent_);
    AddAmount(*command, "--weight", "Limit as a weight; the larger one counts; else 50 kg",
              weight_);
    command->add_flag("--all", all_, "Balanced batches too");
    AddExamples(*command, {{"balance JANUARY.TDB --from 2026-01-05 --to 2026-01-11",
                            "What needs an explanation, of one week."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    BalanceQuestion question{.about = options_.About(), .all = all_};
    question.percent = percent_.value_or(question.percent);
    return options_.Run(session, [&](SQLite::Database& database, const InsightProgress& progress) {
      if (weight_) {
        question.weight = {*weight_, ReadWeightUnit(database)};
      }
      AnswerWriter writer(session, options_.Form(), TableOf(Balance()));
      const Balance answer = StreamBalance(
          database, question, [&](const BalanceLine& line) { writer.Write(RowOf(line)); },
          progress);
      writer.Finish();
      WriteNotes(session, answer.notes);
      return kDone;
    });
  }

 private:
  InsightOptions options_;
  std::optional<double> percent_;
  std::optional<double> weight_;
  bool all_ = false;
};

class TimesCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "times", "How long batches were prepared, waited and were fed, in minutes");
    options_.Register(
        *command, {NameKind::kRecipe, NameKind::kIngredient, NameKind::kOperator, NameKind::kPen});
    command->add_option("--by", by_, "recipe or operator; else recipe")
        ->type_name("KEY")
        ->check(CLI::IsMember({"recipe", "operator"}));
    command->add_flag("--batches", batches_, "Each batch");
    AddExamples(*command,
                {{"times JANUARY.TDB --by operator", "Medians and quartiles of each operator."},
                 {"times JANUARY.TDB --batches --csv", "All batches, for a spreadsheet."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const TimesQuestion question{.about = options_.About(),
                                 .by = by_ == "operator" ? TimesKey::kOperator : TimesKey::kRecipe};
    return options_.Run(session, [&](SQLite::Database& database, const InsightProgress& progress) {
      AnswerWriter batches(session, options_.Form(), TableOfBatches(Times()));
      const TakeLine<BatchTimes> take = [&](const BatchTimes& batch) {
        if (batches_) {
          batches.Write(RowOf(batch));
        }
      };
      const Times answer = StreamTimes(database, question, take, progress);
      WriteNotes(session, answer.notes);
      if (batches_) {
        batches.Finish();
        return kDone;
      }
      WriteAnswer(session, options_.Form(), TableOf(answer, question.by));
      session.Context().err << "The resolution is one minute; the work before the first record is "
                               "not in the times.\n";
      return kDone;
    });
  }

 private:
  InsightOptions options_;
  std::string by_ = "recipe";
  bool batches_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeBalanceCommand() { return std::make_unique<BalanceCommand>(); }

std::unique_ptr<Command> MakeTimesCommand() { return std::make_unique<TimesCommand>(); }

}  // namespace vrx
