#include <algorithm>
#include <chrono>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/number.h"
#include "database/exact_sum.h"
#include "insight/insight_fixture.h"
#include "insight/insight_model.h"

namespace vrx::testing {
namespace {

constexpr std::uint64_t kYards = 1000;

// A question that one in a few yards has an answer to.
class Asker {
 public:
  Asker(const Model& model, std::uint64_t seed) : model_(model), engine_(seed) {}

  std::size_t Below(std::size_t limit) { return engine_() % limit; }

  Question About() {
    Question question;
    if (Below(2) == 0) {
      question.from = Day(Below(12));
    }
    if (Below(2) == 0) {
      question.to = Day(8 + Below(12));
      if (question.from && *question.from > *question.to) {
        question.to = question.from;
      }
    }
    if (Below(4) == 0) {
      question.recipe = Any(&ModelRow::recipe, "");
    }
    if (Below(4) == 0) {
      question.operator_id = Any(&ModelRow::user, "");
    }
    if (Below(4) == 0) {
      question.ingredient = Any(&ModelRow::ingredient, "BATCH");
    }
    if (Below(4) == 0) {
      question.pen = Any(&ModelRow::pen, "FEED");
    }
    if (Below(2) == 0) {
      question.rows_at_once = 1 + Below(20);
    }
    return question;
  }

  AccuracyQuestion OfAccuracy() {
    using enum AccuracyKey;
    AccuracyQuestion question{.about = About(), .deliveries = Below(3) == 0};
    const std::vector<AccuracyKey> keys =
        question.deliveries
            ? std::vector{kPen, kRecipe, kOperator, kDay, kWeek, kMonth}
            : std::vector{kIngredient, kRecipe, kOperator, kOperator, kDay, kWeek, kMonth};
    question.by = {keys[Below(keys.size())]};
    if (const AccuracyKey other = keys[Below(keys.size())];
        Below(3) == 0 && other != question.by[0]) {
      question.by.push_back(other);
    }
    if (Below(2) == 0) {
      question.limits.percent = static_cast<double>(Below(50)) / 10;
      question.limits.weight = {static_cast<double>(Below(40)) / 4, Unit()};
      question.limits.beyond = {static_cast<double>(Below(200)) / 4, Unit()};
      question.limits.division = static_cast<double>(Below(5)) / 2;
    }
    return question;
  }

  BalanceQuestion OfBalance() {
    BalanceQuestion question{.about = About(), .all = Below(2) == 0};
    if (Below(2) == 0) {
      question.percent = static_cast<double>(Below(60)) / 10;
      question.weight = {static_cast<double>(Below(300)) / 4, Unit()};
    }
    return question;
  }

  TimesQuestion OfTimes() {
    return {.about = About(), .by = Below(2) == 0 ? TimesKey::kRecipe : TimesKey::kOperator};
  }

  // A name of the records, if there is one.
  std::string Ingredient() { return Tried(&ModelRow::ingredient, "BATCH"); }
  std::string Pen() { return Tried(&ModelRow::pen, "FEED"); }

  HoldingQuestion OfHolding() {
    HoldingQuestion question{.ingredients = {Ingredient()},
                             .days = 1 + static_cast<int>(Below(4)),
                             .on = *Day(1 + Below(18)),
                             .division = static_cast<double>(Below(4)) * 10};
    if (Below(3) == 0) {
      question.ingredients.push_back(Ingredient());
    }
    if (Below(4) == 0) {
      question.pen = Pen();
    }
    return question;
  }

  std::vector<HeadCount> Heads() {
    std::vector<HeadCount> heads;
    for (const char* const pen : {"A01", "A01", "B1"}) {
      heads.push_back({pen, *Day(Below(14)), static_cast<double>(Below(30))});
    }
    return heads;
  }

  UseQuestion OfUse() {
    UseQuestion question{.about = About()};
    for (const char* const ingredient : {"CORN", "CORN", "HAY", "MINERAL", "MEDICATED", "Corn"}) {
      if (Below(4) != 0) {
        question.prices.push_back(
            {ingredient, static_cast<double>(Below(4000)) / 1000, *Day(Below(6))});
        question.stock.push_back({ingredient, *Day(Below(12)), static_cast<double>(Below(20000)),
                                  static_cast<double>(Below(900)),
                                  static_cast<double>(Below(3000))});
      }
    }
    std::stable_sort(question.stock.begin(), question.stock.end(),
                     [](const auto& one, const auto& other) { return one.date < other.date; });
    return question;
  }

 private:
  std::string Tried(std::optional<std::string> ModelRow::*name, const std::string& type) {
    for (int i = 0; i < 400; ++i) {
      if (const auto any = Any(name, type)) {
        return *any;
      }
    }
    return "";
  }

  static std::optional<Date> Day(std::size_t after) {
    return Date(std::chrono::sys_days(*ParseStoredDate("2025-12-25")) +
                std::chrono::days(static_cast<int>(after)));
  }
  WeightUnit Unit() { return Below(2) == 0 ? WeightUnit::kPounds : WeightUnit::kKilograms; }

  // A name of a random row that counts, if it has one.
  std::optional<std::string> Any(std::optional<std::string> ModelRow::*name,
                                 const std::string& type) {
    if (model_.Rows().empty()) {
      return std::nullopt;
    }
    const ModelRow& row = model_.Rows()[Below(model_.Rows().size())];
    const bool counts = type.empty() ? row.IsLoad() || row.IsDelivery() : row.type == type;
    const auto& text = row.*name;
    return counts && text && !text->empty() && *text != "-1" ? text : std::nullopt;
  }

  const Model& model_;
  std::mt19937_64 engine_;
};

class RandomYards : public InsightTest {
 protected:
  // The lines are those of the model, and those of an ingredient add up to what was loaded.
  void CheckTrace(const Model& model, Asker& asker) {
    Question forward = asker.About();
    forward.ingredient = asker.Ingredient();
    Question backward = asker.About();
    backward.pen = asker.Pen();
    if (!backward.pen->empty()) {
      EXPECT_EQ(Shown(TracePen(database, backward).lines), Shown(model.TracePen(backward)));
    }
    if (forward.ingredient->empty()) {
      return;
    }
    const std::vector<TraceLine> lines = TraceIngredient(database, forward).lines;
    EXPECT_EQ(Shown(lines), Shown(model.TraceIngredient(forward)));
    if (!forward.pen) {
      ExactSum traced;
      for (const TraceLine& line : lines) {
        traced.Add(line.weight.value_or(0));
      }
      EXPECT_EQ(Format(traced.Value(), "0.000000"),
                Format(model.LoadedAndTraced(forward), "0.000000"));
    }
  }

  // Counts how often each state occurs.
  void CheckHolding(const Model& model, Asker& asker, std::map<HoldingState, int>& states) {
    const HoldingQuestion question = asker.OfHolding();
    if (question.ingredients.front().empty() || (question.pen && question.pen->empty())) {
      return;
    }
    const std::vector<HoldingLine> lines = ReadHolding(database, question).lines;
    EXPECT_EQ(Shown(lines), Shown(model.ReadHolding(question)));
    for (const HoldingLine& line : lines) {
      ++states[line.state];
      EXPECT_EQ(line.why.empty(), line.state == HoldingState::kPassed ||
                                      line.state == HoldingState::kNotInTheRecords ||
                                      (line.state == HoldingState::kHeld && line.since));
    }
  }
};

// One walk through the yards for all answers: most of its time goes into making them.
TEST_F(RandomYards, HaveTheAnswersOfTheModel) {
  std::map<HoldingState, int> states;
  for (std::uint64_t seed = 1; seed <= kYards && !HasFailure(); ++seed) {
    const Model model = RandomYard(seed);
    model.WriteTo(database);
    Asker asker(model, seed + 1);
    SCOPED_TRACE("seed " + std::to_string(seed));
    for (int i = 0; i < 2; ++i) {
      const AccuracyQuestion accuracy = asker.OfAccuracy();
      EXPECT_EQ(Shown(ReadAccuracy(database, accuracy)), Shown(model.ReadAccuracy(accuracy)));
    }
    const Question about = asker.About();
    EXPECT_EQ(Shown(ReadComposition(database, about).lines), Shown(model.ReadComposition(about)));
    const BalanceQuestion balance = asker.OfBalance();
    EXPECT_EQ(Shown(ReadBalance(database, balance)), Shown(model.ReadBalance(balance)));
    const TimesQuestion times = asker.OfTimes();
    EXPECT_EQ(Shown(ReadTimes(database, times)), Shown(model.ReadTimes(times)));
    const Question days = asker.About();
    EXPECT_EQ(Shown(ReadStatement(database, days.from, days.to)),
              Shown(model.ReadStatement(days.from, days.to)));
    const Question delivered = asker.About();
    const std::vector<HeadCount> heads = asker.Heads();
    EXPECT_EQ(Shown(ReadDelivered(database, delivered, heads).lines),
              Shown(model.ReadDelivered(delivered, heads)));
    const UseQuestion use = asker.OfUse();
    EXPECT_EQ(Shown(ReadUse(database, use).lines), Shown(model.ReadUse(use)));
    CheckTrace(model, asker);
    CheckHolding(model, asker, states);
  }
  for (const HoldingState state : {HoldingState::kHeld, HoldingState::kPassed,
                                   HoldingState::kUnknown, HoldingState::kNotInTheRecords}) {
    EXPECT_GT(states[state], 20) << TextOf(state);
  }
}

}  // namespace
}  // namespace vrx::testing
