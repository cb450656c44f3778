#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/number.h"
#include "ctl/command.h"
#include "ctl/insight_command.h"
#include "ctl/options.h"
#include "ctl/output.h"
#include "ctl/session.h"
#include "insight/accuracy.h"
#include "insight/import_units.h"
#include "insight/weight_limit.h"

namespace vrx {
namespace {

constexpr std::array kKeys = {
    AccuracyKey::kIngredient, AccuracyKey::kRecipe, AccuracyKey::kOperator, AccuracyKey::kPen,
    AccuracyKey::kDay,        AccuracyKey::kWeek,   AccuracyKey::kMonth};

// Nothing if the text is not one key or two different ones.
std::optional<std::vector<AccuracyKey>> ParseKeys(const std::string& typed) {
  std::vector<AccuracyKey> keys;
  for (std::size_t from = 0; from <= typed.size();) {
    const std::size_t end = std::min(typed.find(',', from), typed.size());
    const std::string_view word = std::string_view(typed).substr(from, end - from);
    const auto* const found = std::find_if(kKeys.begin(), kKeys.end(),
                                           [&](AccuracyKey key) { return WordOf(key) == word; });
    if (found == kKeys.end() || keys.size() == 2 || (!keys.empty() && keys[0] == *found)) {
      return std::nullopt;
    }
    keys.push_back(*found);
    from = end + 1;
  }
  return keys;
}

Json ToJson(const YardstickShare& share) {
  return {{"loads", share.loads},           {"lowest", share.lowest}, {"highest", share.highest},
          {"median", OrNull(share.median)}, {"yard", share.yard},     {"place", PlaceOf(share)}};
}

Json ToJson(const Yardstick& yardstick) {
  return {{"source", kYardstickSource},
          {"herds", kYardstickHerds},
          {"loads", kYardstickLoads},
          {"within", ToJson(yardstick.within)},
          {"withinWeight", ToJson(yardstick.within_weight)},
          {"beyond", ToJson(yardstick.beyond)}};
}

class AccuracyCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "accuracy", "How far loads or deliveries were from their targets, in groups");
    options_.Register(
        *command, {NameKind::kRecipe, NameKind::kIngredient, NameKind::kOperator, NameKind::kPen});
    command
        ->add_option("--by", by_,
                     "One of ingredient, recipe, operator, pen, day, week and month, or two by "
                     "comma; else ingredient, of deliveries pen")
        ->type_name("KEYS");
    command->add_flag("--deliveries", deliveries_, "Deliveries to pens in place of loads");
    AddAmount(*command, "--within-percent", "Limit in percent of the target; else 2", percent_);
    AddAmount(*command, "--within-weight", "Limit as a weight; else 5 kg", weight_);
    AddAmount(*command, "--beyond", "Limit of large deviations; else 62.5 kg", beyond_);
    AddAmount(*command, "--division", "The scale's division, which is always within; else 0",
              division_);
    AddExamples(*command,
                {{"accuracy JANUARY.TDB", "How exactly each ingredient was loaded."},
                 {"accuracy JANUARY.TDB --by ingredient,operator --from 2026-01-05 --to 2026-01-11",
                  "Operators within each ingredient, of one week."},
                 {"accuracy JANUARY.TDB --deliveries --by pen --csv",
                  "Deliveries by pen, for a spreadsheet."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    AccuracyQuestion question{.about = options_.About(), .deliveries = deliveries_, .by = Keys()};
    return options_.Run(session, [&](SQLite::Database& database, const InsightProgress& progress) {
      const WeightUnit unit = ReadWeightUnit(database);
      SetLimits(question.limits, unit);
      AnswerWriter writer(session, options_.Form(), TableOf(Accuracy(), question),
                          HeadOf(unit, LimitsIn(unit, question.limits)));
      const Accuracy answer = StreamAccuracy(
          database, question, [&](const AccuracyGroup& group) { writer.Write(RowOf(group)); },
          progress);
      Finish(session, writer, TableOf(answer, question), answer);
      WriteNotes(session, answer.notes);
      return kDone;
    });
  }

 private:
  [[nodiscard]] std::vector<AccuracyKey> Keys() const {
    const auto keys = ParseKeys(by_.value_or(deliveries_ ? "pen" : "ingredient"));
    if (!keys) {
      throw CLI::ValidationError("--by", "'" + *by_ + "' is not one key or two different ones");
    }
    const AccuracyKey missing = deliveries_ ? AccuracyKey::kIngredient : AccuracyKey::kPen;
    if (std::find(keys->begin(), keys->end(), missing) != keys->end()) {
      throw CLI::ValidationError("--by", deliveries_ ? "deliveries have no ingredient"
                                                     : "pen goes with --deliveries only");
    }
    return *keys;
  }

  // Typed weights are in the database's unit.
  void SetLimits(AccuracyLimits& limits, WeightUnit unit) const {
    limits.percent = percent_.value_or(limits.percent);
    limits.weight = weight_ ? WeightLimit{*weight_, unit} : limits.weight;
    limits.beyond = beyond_ ? WeightLimit{*beyond_, unit} : limits.beyond;
    limits.division = division_.value_or(limits.division);
  }

  static Json HeadOf(WeightUnit unit, const AccuracyLimits& limits) {
    return {{"units", TextOf(unit)},
            {"limits",
             {{"percent", limits.percent},
              {"weight", limits.weight.weight},
              {"beyond", limits.beyond.weight},
              {"division", limits.division}}},
            {"groups", Json::array()}};
  }

  void Finish(Session& session, AnswerWriter& writer, const AnswerTable& table,
              const Accuracy& answer) const {
    Json total = ObjectOf(table, table.total);
    total["key"] = Json::object();
    writer.Finish(
        table.total,
        {{"total", total}, {"yardstick", answer.yardstick ? ToJson(*answer.yardstick) : Json()}});
    if (options_.Form() == OutputForm::kPlain && answer.yardstick) {
      session.Out() << '\n';
      for (const std::string& sentence : SentencesOf(*answer.yardstick)) {
        session.Out() << sentence << '\n';
      }
    }
  }

  InsightOptions options_;
  std::optional<std::string> by_;
  bool deliveries_ = false;
  std::optional<double> percent_;
  std::optional<double> weight_;
  std::optional<double> beyond_;
  std::optional<double> division_;
};

class CompositionCommand : public Command {
 public:
  CLI::App* Register(CLI::App& app) override {
    CLI::App* command = app.add_subcommand(
        "composition", "What each batch had too much or too little of, in points of the ration");
    options_.Register(
        *command, {NameKind::kRecipe, NameKind::kIngredient, NameKind::kOperator, NameKind::kPen});
    AddExamples(*command,
                {{"composition JANUARY.TDB --from 2026-01-05", "The batches since that day."}});
    return command;
  }

  [[nodiscard]] bool OnlyReads() const override { return true; }

  int Run(Session& session) override {
    const Question question = options_.About();
    return options_.Run(session, [&](SQLite::Database& database, const InsightProgress& progress) {
      AnswerWriter writer(session, options_.Form(), TableOf(Composition()));
      const InsightNotes notes = StreamComposition(
          database, question, [&](const CompositionLine& line) { writer.Write(RowOf(line)); },
          progress);
      writer.Finish();
      WriteNotes(session, notes);
      return kDone;
    });
  }

 private:
  InsightOptions options_;
};

}  // namespace

std::unique_ptr<Command> MakeAccuracyCommand() { return std::make_unique<AccuracyCommand>(); }

std::unique_ptr<Command> MakeCompositionCommand() { return std::make_unique<CompositionCommand>(); }

}  // namespace vrx
