#include <filesystem>
#include <string>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

// The records of one day of the sample site, and a copy of them on the next day.
class HistoryOnDisplay : public OnDisplay {
 protected:
  HistoryOnDisplay() {
    MakeDatabases();
    SQLite::Database database(transactions, SQLite::OPEN_READWRITE);
    first_day = database.execAndGet("SELECT min(Date) FROM Transactions").getString();
    next_day =
        database.execAndGet("SELECT date(min(Date), '+1 day') FROM Transactions").getString();
    records = database.execAndGet("SELECT count(*) FROM Transactions").getInt();
    database.exec("UPDATE Transactions SET Date = '" + next_day + "' WHERE rowid % 3 = 0");
    on_next_day =
        database.execAndGet("SELECT count(*) FROM Transactions WHERE Date = '" + next_day + "'")
            .getInt();
  }

  void SetUp() override {
    StartProgram();
    ASSERT_TRUE(WaitForRows(records));
  }

  bool WaitForRows(int rows) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const grid = screen.Find("grdTRANS");
      return grid != nullptr && grid->rows == rows;
    });
  }
  // Types over the text of the field with the focus.
  void TypeOver(const std::string& text) {
    Keys({"ctrl+a"});
    Type(text);
    Keys({"Return"});
  }

  std::string first_day;
  std::string next_day;
  int records = 0;
  int on_next_day = 0;
};

TEST_F(HistoryOnDisplay, APeriodIsTypedAndLeavesOnlyItsRecords) {
  ASSERT_GT(on_next_day, 0);
  ASSERT_LT(on_next_day, records);
  Click("txtPeriodFrom");
  TypeOver(next_day);
  ASSERT_TRUE(WaitForRows(on_next_day));
  EXPECT_EQ(TextOf("cboPeriod"), "From - to");
  Click("txtPeriodFrom");
  TypeOver("13/45/2026");
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const note = screen.Find("lblPeriodNote");
    return note != nullptr && note->text == "\"13/45/2026\" is not a day. Type it as 1/31/2026.";
  }));
  Click("txtPeriodFrom");
  TypeOver(first_day);
  EXPECT_TRUE(WaitForRows(records));
}

}  // namespace
}  // namespace vrx::testing
