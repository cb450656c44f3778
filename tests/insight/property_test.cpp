#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

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

 private:
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

using RandomYards = InsightTest;

// One walk through the yards for all answers: most of its time goes into making them.
TEST_F(RandomYards, HaveTheAnswersOfTheModel) {
  for (std::uint64_t seed = 1; seed <= kYards && !HasFailure(); ++seed) {
    const Model model = RandomYard(seed);
    model.WriteTo(database);
    Asker asker(model, seed + 1);
    SCOPED_TRACE("seed " + std::to_string(seed));
    for (int i = 0; i < 3; ++i) {
      const AccuracyQuestion accuracy = asker.OfAccuracy();
      EXPECT_EQ(Shown(ReadAccuracy(database, accuracy)), Shown(model.ReadAccuracy(accuracy)));
    }
    const Question about = asker.About();
    EXPECT_EQ(Shown(ReadComposition(database, about).lines), Shown(model.ReadComposition(about)));
    const BalanceQuestion balance = asker.OfBalance();
    EXPECT_EQ(Shown(ReadBalance(database, balance)), Shown(model.ReadBalance(balance)));
    const TimesQuestion times = asker.OfTimes();
    EXPECT_EQ(Shown(ReadTimes(database, times)), Shown(model.ReadTimes(times)));
  }
}

}  // namespace
}  // namespace vrx::testing
