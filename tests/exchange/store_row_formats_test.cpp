#include <array>
#include <string>

#include <gtest/gtest.h>

#include "exchange/store_row.h"
#include "history/columns.h"

namespace vrx {
namespace {

TEST(FormatTransactionTime, IsEmptyForAnEmptyText) { EXPECT_EQ(FormatTransactionTime(""), ""); }

TEST(FormatTransactionTime, TurnsTwentyFourHoursIntoTwelve) {
  EXPECT_EQ(FormatTransactionTime("1405"), "02:05 pm");
  EXPECT_EQ(FormatTransactionTime("0010"), "12:10 am");
  EXPECT_EQ(FormatTransactionTime("0100"), "01:00 am");
  EXPECT_EQ(FormatTransactionTime("1159"), "11:59 am");
  EXPECT_EQ(FormatTransactionTime("1200"), "12:00 pm");
  EXPECT_EQ(FormatTransactionTime("1300"), "01:00 pm");
  EXPECT_EQ(FormatTransactionTime("2359"), "11:59 pm");
}

TEST(FormatTransactionTime, KeepsTheHoursOfASuffixedTime) {
  EXPECT_EQ(FormatTransactionTime("0830am"), "08:30 AM");
  EXPECT_EQ(FormatTransactionTime("1205PM"), "12:05 PM");
  EXPECT_EQ(FormatTransactionTime("9999xy"), "99:99 XY");
}

TEST(FormatTransactionTime, OmitsHoursAndSuffixOfAnInvalidHour) {
  EXPECT_EQ(FormatTransactionTime("2400"), ":00 ");
  EXPECT_EQ(FormatTransactionTime("9930"), ":30 ");
  EXPECT_EQ(FormatTransactionTime("-130"), ":30 ");
}

TEST(FormatTransactionTime, ReadsAnHourThatIsNoNumberAsMidnight) {
  EXPECT_EQ(FormatTransactionTime("xx30"), "12:30 am");
}

TEST(FormatTransactionTime, TakesWhatThereIsOfAShortText) {
  EXPECT_EQ(FormatTransactionTime("7"), "07:7 am");
  EXPECT_EQ(FormatTransactionTime("0"), "12:0 am");
  EXPECT_EQ(FormatTransactionTime("930"), ":30 ");
}

TEST(FormatTransactionDate, IsEmptyForAnEmptyText) { EXPECT_EQ(FormatTransactionDate(""), ""); }

TEST(FormatTransactionDate, PutsTheDayFirst) {
  EXPECT_EQ(FormatTransactionDate("01152009"), "15-Jan-2009");
}

TEST(FormatTransactionDate, NamesEveryMonth) {
  const std::array<std::string, 12> names = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  for (std::size_t month = 1; month <= names.size(); ++month) {
    const std::string number = (month < 10 ? "0" : "") + std::to_string(month);
    EXPECT_EQ(FormatTransactionDate(number + "092026"), "09-" + names[month - 1] + "-2026");
  }
}

TEST(FormatTransactionDate, MarksAnInvalidMonth) {
  EXPECT_EQ(FormatTransactionDate("00152009"), "15-XXX-2009");
  EXPECT_EQ(FormatTransactionDate("13152009"), "15-XXX-2009");
  EXPECT_EQ(FormatTransactionDate("xx152009"), "15-XXX-2009");
}

TEST(FormatTransactionDate, TakesWhatThereIsOfAShortText) {
  EXPECT_EQ(FormatTransactionDate("1"), "-Jan-1");
  EXPECT_EQ(FormatTransactionDate("0115"), "15-Jan-0115");
}

TEST(IngredientColumnNames, KeepsANameForEachOfItsKeys) {
  IngredientColumnNames names;
  for (int ingredient = 1; ingredient <= 50; ++ingredient) {
    const std::string key =
        std::string("Ing") + (ingredient < 10 ? "0" : "") + std::to_string(ingredient) + "Wt";
    EXPECT_EQ(names.GetIngredientColumnName(key), "");
    names.SetIngredientColumnName(key, "NAME" + std::to_string(ingredient));
  }
  EXPECT_EQ(names.GetIngredientColumnName("Ing01Wt"), "NAME1");
  EXPECT_EQ(names.GetIngredientColumnName("Ing32Wt"), "NAME32");
  EXPECT_EQ(names.GetIngredientColumnName("Ing34Wt"), "NAME34");
  EXPECT_EQ(names.GetIngredientColumnName("Ing50Wt"), "NAME50");
}

TEST(IngredientColumnNames, HasNoPlaceForTheThirtyThird) {
  IngredientColumnNames names;
  names.SetIngredientColumnName("Ing33Wt", "HAY");
  EXPECT_EQ(names.GetIngredientColumnName("Ing33Wt"), "");
}

TEST(IngredientColumnNames, IgnoresUnknownKeys) {
  IngredientColumnNames names;
  for (const char* key : {"", "Ing00Wt", "Ing51Wt", "Ing100Wt", "Ing1Wt", "ing01wt", "Pen01Wt",
                          "Ing01Wx", "IngxxWt", "Recipe"}) {
    names.SetIngredientColumnName(key, "HAY");
    EXPECT_EQ(names.GetIngredientColumnName(key), "") << key;
  }
  EXPECT_EQ(names.GetIngredientColumnName("Ing01Wt"), "");
}

}  // namespace
}  // namespace vrx
