#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

constexpr int kFeedDifferenceSection = 114;

// The first cell whose text begins so.
const Cell* CellWith(const Screen& screen, const std::string& text) {
  const auto& cells = screen.Find("grdTRANS")->cells;
  const auto found = std::find_if(cells.begin(), cells.end(),
                                  [&](const Cell& cell) { return cell.text.starts_with(text); });
  return found == cells.end() ? nullptr : &*found;
}

bool HasFigure(const Screen& screen, int row, int section) {
  const Cell* const cell = screen.Find("grdTRANS")->FindCell(row, section);
  return cell != nullptr && cell->text.find_first_of("0123456789") != std::string::npos;
}

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
  void ChooseGroup(int index, const std::string& item) {
    Click("lstGroupBy");
    std::vector<std::string> keys{"Home"};
    keys.insert(keys.end(), static_cast<std::size_t>(index), "Down");
    keys.emplace_back("Return");
    Keys(keys);
    ASSERT_TRUE(WaitFor([&](const Screen& screen) {
      const Widget* const list = screen.Find("lstGroupBy");
      return list != nullptr && list->text == item;
    }));
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

TEST_F(HistoryOnDisplay, DifferencesAreShownByTheirKeyAndHaveTotals) {
  ChooseGroup(8, "Pens Fed (all)");
  Keys({"alt+x"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.FindItem("Feed Wt") != nullptr; }));
  EXPECT_EQ(Look().FindItem("Feed Diff %"), nullptr);
  Keys({"alt+d"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    return screen.FindItem("Feed Diff") != nullptr && screen.FindItem("Feed Diff %") != nullptr;
  }));
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Cell* const total = CellWith(screen, "Total:");
    return total != nullptr && HasFigure(screen, total->row, kFeedDifferenceSection);
  }));
}

TEST_F(HistoryOnDisplay, AClosedGroupSaysItsTotals) {
  ChooseGroup(3, "Recipes (all)");
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Cell* const group = CellWith(screen, "Recipe:");
    return group != nullptr && group->text.find(", Batch Wt ") != std::string::npos;
  }));
}

// Three records with a pen of their own, and recipes in many groups.
class FindOnDisplay : public HistoryOnDisplay {
 protected:
  FindOnDisplay() {
    SQLite::Database database(transactions, SQLite::OPEN_READWRITE);
    database.exec(
        "UPDATE Transactions SET Pen = 'LAMBS 7' WHERE rowid % (SELECT count(*) / 3 FROM "
        "Transactions) = 1");
    database.exec("UPDATE Transactions SET Recipe = 'ZEBRA ' || [Transaction] WHERE rowid % 2 = 0");
    found = database.execAndGet("SELECT count(*) FROM Transactions WHERE Pen = 'LAMBS 7'").getInt();
    last_zebra =
        database.execAndGet("SELECT max(Recipe) FROM Transactions WHERE Recipe LIKE 'ZEBRA%'")
            .getString();
  }

  bool WaitForText(const std::string& label, const std::string& text) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const shown = screen.Find(label);
      return shown != nullptr && shown->text == text;
    });
  }
  // The current cell begins with that text, which its totals follow, and is on the screen.
  bool WaitForCurrentCell(const std::string& text) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const grid = screen.Find("grdTRANS");
      return grid != nullptr &&
             std::any_of(grid->cells.begin(), grid->cells.end(), [&](const Cell& cell) {
               return cell.current && cell.text.starts_with(text);
             });
    });
  }
  void ShowRecipes() {
    Click("lstGroupBy");
    Keys({"Home", "Down", "Down", "Down", "Return"});
    ASSERT_TRUE(WaitForText("lstGroupBy", "Recipes (all)"));
  }

  int found = 0;
  std::string last_zebra;
};

TEST_F(FindOnDisplay, ATextIsFoundFromRowToRow) {
  ASSERT_GT(found, 2);
  const std::string of = " of " + std::to_string(found);
  Keys({"ctrl+f"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    return screen.Focus() != nullptr && screen.Focus()->name == "txtFind";
  }));
  Type("lambs");
  EXPECT_TRUE(WaitForText("lblFindCount", "1" + of));
  EXPECT_TRUE(WaitForCurrentCell("LAMBS 7"));
  Keys({"Return"});
  EXPECT_TRUE(WaitForText("lblFindCount", "2" + of));
  Keys({"shift+F3", "shift+F3"});
  EXPECT_TRUE(WaitForText("lblFindCount", std::to_string(found) + of));
  EXPECT_TRUE(WaitForText("lblFindNote", "The search went on at the bottom."));
  Keys({"Escape", "F3"});
  EXPECT_TRUE(WaitForText("lblFindCount", "1" + of));
  Keys({"Escape"});
  EXPECT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("txtFind") == nullptr; }));
  Keys({"Down"});  // the grid has the keyboard
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const grid = screen.Find("grdTRANS");
    return grid != nullptr &&
           std::any_of(grid->cells.begin(), grid->cells.end(),
                       [](const Cell& cell) { return cell.current && cell.row == 1; });
  }));
}

TEST_F(FindOnDisplay, AGroupIsReachedByTypingItsName) {
  ShowRecipes();
  ClickCell("grdTRANS", 0, 0);
  Type(last_zebra);
  EXPECT_TRUE(WaitForCurrentCell("Recipe:" + last_zebra));
}

// What the program has copied is pasted into a field of it.
TEST_F(FindOnDisplay, SelectedRowsAreCopied) {
  ClickCell("grdTRANS", 0, 0);
  Keys({"shift+Down", "ctrl+c", "ctrl+f"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    return screen.Focus() != nullptr && screen.Focus()->name == "txtFind";
  }));
  Keys({"ctrl+v"});
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    return screen.Find("txtFind")->text.starts_with("Transaction\tRecipe\tType\t");
  }));
}

}  // namespace
}  // namespace vrx::testing
