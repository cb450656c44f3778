#include "legacy/field_value.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/date.h"

namespace vrx::testing {
namespace {

double StoredSingle(float single) {
  const FieldRule rule{.column = "Ing01Wt", .kind = FieldKind::kReal};
  Repairs repairs;
  return std::get<double>(ConvertField(rule, single, {}, repairs));
}

const FieldRule& RuleOf(std::string_view table, std::string_view column) {
  for (const FieldRule& rule : FindTableRule(table)->fields) {
    if (rule.column == column) {
      return rule;
    }
  }
  throw std::out_of_range("no column " + std::string(column));
}

// NULL as "NULL".
std::string StoredAs(const FieldRule& rule, const LegacyValue& value) {
  Repairs repairs;
  const FieldValue stored = ConvertField(rule, value, "REC007", repairs);
  if (const auto* const text = std::get_if<std::string>(&stored)) {
    return *text;
  }
  if (const auto* const whole = std::get_if<std::int64_t>(&stored)) {
    return std::to_string(*whole);
  }
  const auto* const real = std::get_if<double>(&stored);
  return real == nullptr ? "NULL" : std::to_string(*real);
}

LegacyValue Whole(std::int32_t number) { return number; }
LegacyValue Text(const char* text) { return std::string(text); }

TEST(FieldRule, HoldsEachFieldToItsLimits) {
  struct Case {
    const char* table;
    const char* column;
    LegacyValue value;
    const char* stored;
  };
  for (const Case& each :
       {Case{"Ingredient", "Name", Text("ABCDEF"), "ABCDEF"},
        {"Ingredient", "Name", Text("ABCDEFG"), "ABCDEF"},
        {"Ingredient", "Name", Text("A\x1F\x7F-B"), "A-B"},
        {"Recipe", "Name", Text("ABCDEFG"), "ABCDEF"},
        {"Recipe", "Name", {}, "REC007"},
        {"Pen", "Name", Text("ABCDEFG"), "ABCDEF"},
        {"Ingredient", "Description", Text("0123456789abcdef"), "0123456789abcdef"},
        {"Ingredient", "Description", Text("0123456789abcdefg"), "0123456789abcdef"},
        {"Ingredient", "Description", {}, ""},
        {"Ingredient", "DryMatter%", Whole(-1), "0"},
        {"Ingredient", "DryMatter%", Whole(0), "0"},
        {"Ingredient", "DryMatter%", Whole(100), "100"},
        {"Ingredient", "DryMatter%", Whole(101), "100"},
        {"Ingredient", "DryMatter%", {}, "100"},
        {"Ingredient", "HandAdd", Whole(-1), "1"},
        {"Ingredient", "HandAdd", {}, "0"},
        {"Recipe", "BatchType", Text("!"), "!"},
        {"Recipe", "BatchType", Text("W"), "W"},
        {"Recipe", "BatchType", Text("H"), "H"},
        {"Recipe", "BatchType", Text("%"), "%"},
        {"Recipe", "BatchType", Text("P"), "P"},
        {"Recipe", "BatchType", Text("w"), "!"},
        {"Recipe", "BatchType", {}, "!"},
        {"Recipe", "HeadCount", Whole(-1), "0"},
        {"Recipe", "HeadCount", Whole(1000), "1000"},
        {"Recipe", "HeadCount", Whole(1001), "1000"},
        {"Recipe", "HeadCount", {}, "0"},
        {"Recipe", "RationTarget", Text("x"), ""},
        {"Recipe", "RationTarget", {}, ""},
        {"Recipe", "AdjBatTotIndex", {}, "20"},
        {"RecipeRation", "Target", Text("12.50"), "12.50"},
        {"RecipeRation", "Target", Text("x"), "0"},
        {"RecipeRation", "Target", {}, "NULL"},
        {"RecipeRation", "Sequence", Whole(-1), "0"},
        {"RecipeRation", "Sequence", Whole(2147483647), "2147483647"},
        {"Pen", "FeedAmount", {}, "0"},
        {"Transactions", "Transaction", Whole(-2147483647 - 1), "-2147483648"},
        {"Transactions", "Transaction", Whole(2147483647), "2147483647"},
        {"Transactions", "Transaction", {}, "NULL"},
        {"Transactions", "Recipe", Text(""), ""},
        {"Transactions", "UserID", Text(""), "NULL"},
        {"Transactions", "Ingredient", Text(""), "NULL"},
        {"Transactions", "Pen", Text(""), "NULL"},
        {"Transactions", "Target", {}, "0.000000"},
        {"Transactions", "ActualBatch", {}, "0.000000"},
        {"Transactions", "ActualFeed", {}, "0.000000"},
        {"Transactions", "IngPercent", {}, "NULL"},
        {"Transactions", "Ing100Wt", {}, "NULL"}}) {
    EXPECT_EQ(StoredAs(RuleOf(each.table, each.column), each.value), each.stored)
        << each.table << " " << each.column << " " << Shown(each.value);
  }
}

TEST(FieldRule, TakesIdsFromOneToTheLastOfTheirTable) {
  for (const auto& [table, column, last] : {std::tuple{"Ingredient", "ID", 100},
                                            {"Recipe", "ID", 100},
                                            {"Pen", "ID", 400},
                                            {"RecipeRation", "RecipeID", 100},
                                            {"RecipeRation", "Ingredient", 100}}) {
    const FieldRule& rule = RuleOf(table, column);
    EXPECT_EQ(ReadId(rule, Whole(1)), 1) << table;
    EXPECT_EQ(ReadId(rule, Whole(last)), last) << table;
    EXPECT_EQ(ReadId(rule, Text("2")), 2) << table;
    for (const LegacyValue& wrong : {Whole(0), Whole(last + 1), LegacyValue{1.5}, LegacyValue{}}) {
      EXPECT_EQ(ReadId(rule, wrong), std::nullopt) << table << " " << Shown(wrong);
    }
  }
}

TEST(FieldRule, ReportsEachRepair) {
  struct Case {
    const char* table;
    const char* column;
    LegacyValue value;
    const char* repair;
  };
  for (const Case& each :
       {Case{"Recipe", "Name", {}, "Name was NULL; the record's default name was stored"},
        {"Recipe", "Name", Text("ABCDEFG"), "Name held \"ABCDEFG\"; \"ABCDEF\" was stored"},
        {"Recipe", "Name", JetDate{1e12},
         "Name held an impossible date in place of a text; NULL was stored"},
        {"Recipe", "Description", {}, "Description was NULL; an empty text was stored"},
        {"Recipe", "BatchType", Text("x"), "BatchType held \"x\"; ! was stored"},
        {"Recipe", "HeadCount", Text("x"),
         "HeadCount held \"x\" in place of a whole number; 0 was stored"},
        {"Recipe", "RationTarget", Text("x"),
         "RationTarget held \"x\" in place of a number; an empty text was stored"},
        {"Ingredient", "HandAdd", Text("x"),
         "HandAdd held \"x\" in place of yes or no; 0 was stored"},
        {"Transactions", "UserID", Text(""), "UserID was an empty text; NULL was stored"},
        {"Transactions", "Target", {}, "Target was NULL; 0 was stored"},
        {"Transactions", "IngPercent", Text("x"),
         "IngPercent held \"x\" in place of a number; NULL was stored"},
        {"Transactions", "Time", Text("x"), "Time held \"x\" in place of a time; NULL was stored"},
        {"Transactions", "Date", JetDate{1e12},
         "Date held an impossible date in place of a date; NULL was stored"}}) {
    Repairs repairs;
    static_cast<void>(ConvertField(RuleOf(each.table, each.column), each.value, "REC007", repairs));
    EXPECT_THAT(repairs, ::testing::ElementsAre(each.repair));
  }
}

TEST(FieldValue, IsShownInAtMost60Characters) {
  const std::string longest = std::string(59, 'x') + "\xC3\xB1";
  EXPECT_EQ(Shown(longest), '"' + longest + '"');
  EXPECT_EQ(Shown(longest + "y"), '"' + longest + "...\"");
}

TEST(FieldValue, StoresASingleAsItsDecimalOfSevenDigits) {
  EXPECT_EQ(StoredSingle(37.9F), 37.9);
  EXPECT_EQ(StoredSingle(0.1F), 0.1);
  EXPECT_EQ(StoredSingle(1234.567F), 1234.567);
  EXPECT_EQ(StoredSingle(-2.5F), -2.5);
  EXPECT_EQ(StoredSingle(0.0F), 0.0);
  EXPECT_EQ(StoredSingle(1e20F), 1e20);
}

TEST(FieldValue, StoresEveryWeightOfAScaleAsItWasWritten) {
  for (int tenths = 0; tenths < 200000; ++tenths) {
    const double written = tenths / 10.0;
    ASSERT_EQ(StoredSingle(static_cast<float>(written)), written) << tenths;
  }
}

TEST(FieldValue, StoresADoubleAsItIs) {
  const FieldRule rule{.column = "Target", .kind = FieldKind::kReal};
  Repairs repairs;
  EXPECT_EQ(std::get<double>(ConvertField(rule, 0.1 + 0.2, {}, repairs)), 0.1 + 0.2);
  EXPECT_TRUE(repairs.empty());
}

TEST(FieldValue, ClampsAndRoundsAWholeNumberAndTellsIt) {
  const FieldRule rule{
      .column = "DryMatter%", .kind = FieldKind::kWhole, .smallest = 0, .largest = 100};
  Repairs repairs;
  EXPECT_EQ(std::get<std::int64_t>(ConvertField(rule, std::int32_t{130}, {}, repairs)), 100);
  EXPECT_EQ(std::get<std::int64_t>(ConvertField(rule, 86.7, {}, repairs)), 87);
  EXPECT_THAT(repairs, ::testing::ElementsAre("DryMatter% held 130; 100 was stored",
                                              "DryMatter% held 86.7; 87 was stored"));
}

TEST(JetDate, CountsDaysFrom1899) {
  const auto stored = [](double days) {
    const auto moment = ToMoment({days});
    return StoredText(moment->date) + " " + StoredText(moment->time);
  };
  EXPECT_EQ(stored(0), "1899-12-30 00:00:00");
  EXPECT_EQ(stored(40000.75), "2009-07-06 18:00:00");
  EXPECT_EQ(stored(-1.25), "1899-12-29 06:00:00");
  // To the nearest second.
  EXPECT_EQ(stored(36585.999999), "2000-03-01 00:00:00");
}

TEST(JetDate, KeepsEverySecondOfADay) {
  for (int second = 0; second < 86400; ++second) {
    const auto moment = ToMoment({40000 + second / 86400.0});
    ASSERT_TRUE(moment);
    ASSERT_EQ(moment->time.hour * 3600 + moment->time.minute * 60 + moment->time.second, second);
  }
}

TEST(JetDate, RefusesWhatIsNoDate) {
  EXPECT_FALSE(ToMoment({std::numeric_limits<double>::quiet_NaN()}));
  EXPECT_FALSE(ToMoment({std::numeric_limits<double>::infinity()}));
  EXPECT_FALSE(ToMoment({1e300}));
  EXPECT_FALSE(ToMoment({-800000}));
  EXPECT_FALSE(ToMoment({-657435}));  // the last day of the year 99
  EXPECT_TRUE(ToMoment({-657434}));
  EXPECT_FALSE(ToMoment({2958466}));  // 10000-01-01
  EXPECT_TRUE(ToMoment({2958465}));
}

}  // namespace
}  // namespace vrx::testing
