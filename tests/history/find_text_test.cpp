#include "history/find_text.h"

#include <string>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

const HistoryColumn& Column(const char* key) { return HistoryColumnAt(HistoryColumnOfKey(key)); }

bool Finds(const std::string& typed, const char* column, const CellValue& value) {
  return FindText(typed).IsIn(Column(column), value);
}

TEST(FindText, IsPartOfATextIgnoringCase) {
  EXPECT_TRUE(Finds("orn", "Ingredient", "CORN"));
  EXPECT_TRUE(Finds(" corn ", "Ingredient", "CORN SILAGE"));
  EXPECT_TRUE(Finds("\xC3\xA4hre", "Ingredient", "\xC3\x84HREN"));  // a with two dots
  EXPECT_FALSE(Finds("corns", "Ingredient", "CORN"));
  EXPECT_FALSE(Finds("corn", "Ingredient", CellValue()));
}

TEST(FindText, OfNothingIsNowhere) {
  for (const char* const typed : {"", "   "}) {
    EXPECT_TRUE(FindText(typed).IsEmpty());
    EXPECT_FALSE(Finds(typed, "Recipe", "STEERS"));
    EXPECT_FALSE(Finds(typed, "Recipe", ""));
    EXPECT_FALSE(Finds(typed, "Target", 0.0));
  }
}

TEST(FindText, FindsANumberWhole) {
  EXPECT_TRUE(Finds("5200", "Target", 5200.0));
  EXPECT_TRUE(Finds("5200.0", "Target", 5200.0));
  EXPECT_TRUE(Finds("5200", "Transaction", std::int64_t{5200}));
  EXPECT_TRUE(Finds("-2.5", "Target", -2.5));
  EXPECT_TRUE(Finds("0", "Target", -0.0));
  EXPECT_FALSE(Finds("5200", "Target", 15200.0));
  EXPECT_FALSE(Finds("5200", "Target", 52001.0));
  EXPECT_FALSE(Finds("5200", "Target", 5200.5));
  EXPECT_FALSE(Finds("2", "Transaction", std::int64_t{12}));
}

// 0.1 + 0.2 is shown as 0.3.
TEST(FindText, ComparesTheFigureThatIsShown) {
  EXPECT_TRUE(Finds("0.3", "Target", 0.1 + 0.2));
  EXPECT_FALSE(Finds("0.3", "Target", 0.30000000001));
  EXPECT_TRUE(Finds("1.5e15", "Target", 1.5e15));
}

TEST(FindText, FindsANumberInATextOnlyAsAWholeNumber) {
  EXPECT_TRUE(Finds("12", "Pen", "PEN 12"));
  EXPECT_TRUE(Finds("12", "Pen", "A12B"));
  EXPECT_TRUE(Finds("2", "Pen", "12-2"));
  EXPECT_TRUE(Finds("2", "UserID", "002"));
  EXPECT_FALSE(Finds("12", "Pen", "PEN 112"));
  EXPECT_FALSE(Finds("12", "Pen", "PEN 120"));
  EXPECT_FALSE(Finds("12", "Recipe", "MIX 12.5"));
  EXPECT_FALSE(Finds("5", "Recipe", "MIX 12.5"));
  EXPECT_TRUE(Finds("12.5", "Recipe", "MIX 12.5"));
  EXPECT_FALSE(Finds("2", "UserID", "12"));
}

TEST(FindText, FindsADayInEveryFormOfIt) {
  for (const char* const typed :
       {"11-Jan-26", "11-jan-2026", "2026-01-11", "1/11/2026", "1/11/26", " 01/11/2026 "}) {
    EXPECT_TRUE(Finds(typed, "Date", "2026-01-11")) << typed;
    EXPECT_FALSE(Finds(typed, "Date", "2025-01-11")) << typed;
    EXPECT_FALSE(Finds(typed, "Date", "2026-11-01")) << typed;
  }
  EXPECT_FALSE(Finds("1-Jan-26", "Date", "2026-01-11"));
  EXPECT_TRUE(Finds("11-jan-26", "Recipe", "TRIAL 11-JAN-26"));
}

TEST(FindText, FindsAPartOfADateAndOfATimeAsTheyAreShown) {
  EXPECT_TRUE(Finds("jan-26", "Date", "2026-01-11"));
  EXPECT_TRUE(Finds("feb", "Date", "2026-02-11"));
  EXPECT_FALSE(Finds("feb", "Date", "2026-01-11"));
  EXPECT_TRUE(Finds("2:05 pm", "Time", "14:05:59"));
  EXPECT_FALSE(Finds("14:05", "Time", "14:05:59"));
  EXPECT_TRUE(Finds("soon", "Date", "soon"));
  EXPECT_TRUE(Finds("25:00", "Time", "25:00:00"));  // no time: shown as it is stored
}

TEST(FindText, DoesNotLookForNumbersInDatesAndTimes) {
  EXPECT_FALSE(Finds("11", "Date", "2026-01-11"));
  EXPECT_FALSE(Finds("26", "Date", "2026-01-11"));
  EXPECT_FALSE(Finds("2026", "Date", "2026-01-11"));
  EXPECT_FALSE(Finds("2", "Time", "14:02:00"));
}

TEST(FindText, FindsTheSignsOfANumber) {
  EXPECT_TRUE(Finds("-", "Target", -2.0));
  EXPECT_FALSE(Finds("-", "Target", 2.0));
  EXPECT_TRUE(Finds("e+15", "Target", 1.5e15));
  EXPECT_FALSE(Finds("kg", "Target", 2.0));
}

TEST(FindText, BeginsWithWhatWasTypedIgnoringCase) {
  EXPECT_TRUE(BeginsWith("STEERS", "st"));
  EXPECT_TRUE(BeginsWith("11-Jan-26", "11-JAN"));
  EXPECT_FALSE(BeginsWith("STEERS", "ee"));
  EXPECT_FALSE(BeginsWith("ST", "STE"));
}

}  // namespace
}  // namespace vrx::testing
