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

constexpr std::array<std::pair<std::string_view, AccuracyKey>, 7> kKeys{{
    {"ingredient", AccuracyKey::kIngredient},
    {"recipe", AccuracyKey::kRecipe},
    {"operator", AccuracyKey::kOperator},
    {"pen", AccuracyKey::kPen},
    {"day", AccuracyKey::kDay},
    {"week", AccuracyKey::kWeek},
    {"month", AccuracyKey::kMonth},
}};

// Nothing if the text is not one key or two different ones.
std::optional<std::vector<AccuracyKey>> ParseKeys(const std::string& typed) {
  std::vector<AccuracyKey> keys;
  for (std::size_t from = 0; from <= typed.size();) {
    const std::size_t end = std::min(typed.find(',', from), typed.size());
    const std::string_view word = std::string_view(typed).substr(from, end - from);
    const auto* const found = std::find_if(kKeys.begin(), kKeys.end(),
                                           [&](const auto& key) { return key.first == word; });
    if (found == kKeys.end() || keys.size() == 2 || (!keys.empty() && keys[0] == found->second)) {
      return std::nullopt;
    }
    keys.push_back(found->second);
    from = end + 1;
  }
  return keys;
}

std::string WordOf(AccuracyKey key) {
  for (const auto& [word, value] : kKeys) {
    if (value == key) {
      return std::string(word);
    }
  }
  return {};
}

Json ToJson(const Json& key, const AccuracyFigures& figures) {
  return {
      {"key", key},
      {"n", figures.n},
      {"notLoaded", {{"n", figures.not_loaded.n}, {"target", OrNull(figures.not_loaded.weight)}}},
      {"withoutTarget",
       {{"n", figures.without_target.n}, {"actual", OrNull(figures.without_target.weight)}}},
      {"target", OrNull(figures.target)},
      {"actual", OrNull(figures.actual)},
      {"net", OrNull(figures.net)},
      {"netPercent", OrNull(figures.net_percent)},
      {"gross", OrNull(figures.gross)},
      {"grossPercent", OrNull(figures.gross_percent)},
      {"within", OrNull(figures.within)},
      {"weightWithin", OrNull(figures.weight_within)},
      {"withinWeight", OrNull(figures.within_weight)},
      {"beyond", OrNull(figures.beyond)},
      {"below", OrNull(figures.below)},
      {"median", OrNull(figures.median)},
      {"q1", OrNull(figures.q1)},
      {"q3", OrNull(figures.q3)},
      {"standardized", OrNull(figures.standardized)},
      {"marked", OrNull(figures.marked)}};
}

Json KeyOf(const std::vector<AccuracyKey>& by, const std::vector<std::optional<std::string>>& key) {
  Json object = Json::object();
  for (std::size_t i = 0; i < by.size(); ++i) {
    object[WordOf(by[i])] = i < key.size() ? OrNull(key[i]) : Json();
  }
  return object;
}

std::string PlaceOf(const YardstickShare& share) {
  if (share.yard < share.lowest) {
    return "below the range";
  }
  if (share.yard > share.highest) {
    return "above the range";
  }
  if (!share.median) {
    return "within the range";
  }
  return share.yard < *share.median   ? "in the lower half of the range"
         : share.yard > *share.median ? "in the upper half of the range"
                                      : "at the median";
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

std::string Sentence(const std::string& what, const YardstickShare& share) {
  std::string text = what + ": " + DefaultText(share.loads) + " % of their loads (herds " +
                     DefaultText(share.lowest) + " to " + DefaultText(share.highest);
  if (share.median) {
    text += ", median " + DefaultText(*share.median);
  }
  return text + "); this yard " + Format(share.yard, "0.0") + " %, " + PlaceOf(share);
}

const std::vector<std::string_view> kShares = {
    "netPercent", "grossPercent", "within", "weightWithin", "withinWeight", "beyond",
    "below",      "median",       "q1",     "q3",           "standardized"};

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
      SetLimits(question.limits, ReadWeightUnit(database));
      const Accuracy answer = ReadAccuracy(database, question, progress);
      WriteNotes(session, answer.notes);
      Write(session.Out(), question.by, answer);
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

  void Write(std::ostream& out, const std::vector<AccuracyKey>& by, const Accuracy& answer) const {
    std::vector<Json> groups;
    for (const AccuracyGroup& group : answer.groups) {
      groups.push_back(ToJson(KeyOf(by, group.key), group.figures));
    }
    if (options_.Form() == OutputForm::kJson) {
      WriteObject(out, OutputForm::kJson,
                  {{"units", answer.notes.units},
                   {"limits",
                    {{"percent", answer.limits.percent},
                     {"weight", answer.limits.weight.weight},
                     {"beyond", answer.limits.beyond.weight},
                     {"division", answer.limits.division}}},
                   {"groups", groups},
                   {"total", ToJson(Json::object(), answer.total)},
                   {"yardstick", answer.yardstick ? ToJson(*answer.yardstick) : Json()}});
      return;
    }
    RecordForm form{.prototype = ToJson(KeyOf(by, {}), {}), .percents = kShares};
    for (const auto& [word, key] : kKeys) {
      form.names.push_back(word);
    }
    WriteRecords(out, options_.Form(), form, groups);
    if (options_.Form() == OutputForm::kPlain && !groups.empty()) {
      WriteTotal(out, form, by, answer);
    }
  }

  static void WriteTotal(std::ostream& out, const RecordForm& form,
                         const std::vector<AccuracyKey>& by, const Accuracy& answer) {
    std::vector<std::string> cells = CellsOf(form, ToJson(KeyOf(by, {}), answer.total));
    std::fill_n(cells.begin(), by.size(), "");
    cells[0] = "Total";
    WriteLine(out, OutputForm::kPlain, cells);
    if (answer.yardstick) {
      out << "\n33 dairy herds, 386,011 loads (" << kYardstickSource << "):\n"
          << Sentence("within 2 %", answer.yardstick->within) << '\n'
          << Sentence("within 5 kg", answer.yardstick->within_weight) << '\n'
          << Sentence("beyond 62.5 kg", answer.yardstick->beyond) << '\n';
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

Json ToJson(const CompositionLine& line) {
  return {{"transaction", OrNull(line.transaction)},
          {"recipe", OrNull(line.recipe)},
          {"ingredient", OrNull(line.ingredient)},
          {"points", OrNull(line.points)}};
}

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
      const Composition answer = ReadComposition(database, question, progress);
      WriteNotes(session, answer.notes);
      std::vector<Json> rows;
      for (const CompositionLine& line : answer.lines) {
        rows.push_back(ToJson(line));
      }
      WriteRecords(session.Out(), options_.Form(),
                   {.prototype = ToJson(CompositionLine()),
                    .percents = {"points"},
                    .names = {"recipe", "ingredient"}},
                   rows);
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
