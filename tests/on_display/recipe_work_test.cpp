// A nutritionist's work on the Recipes tab by real keys and clicks.
#include <string>

#include <SQLiteCpp/Database.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

class RecipeWorkOnDisplay : public OnDisplay {
 protected:
  static constexpr int kTargetColumn = 1;
  static constexpr int kShareColumn = 7;  // in the order of the design

  RecipeWorkOnDisplay() { MakeDatabases(); }

  std::string Stored(const std::string& query) const {
    constexpr int kBusyMilliseconds = 5000;  // the program stores meanwhile
    SQLite::Database file(recipes, SQLite::OPEN_READONLY, kBusyMilliseconds);
    return file.execAndGet(query).getString();
  }
  std::string Head(int id, const std::string& field) const {
    return Stored("SELECT [" + field + "] FROM Recipe WHERE ID = " + std::to_string(id));
  }
  std::string Lines(int id) const {
    return Stored(
        "SELECT group_concat(rowid || '|' || quote(Ingredient) || quote(Target) || "
        "quote([Ration%]) || quote(DryMatter) || quote(BatchTarget) || quote([Ingredient%])) FROM "
        "(SELECT rowid, * FROM RecipeRation WHERE RecipeID = '" +
        std::to_string(id) + "' ORDER BY Sequence)");
  }

  bool WaitForText(const std::string& widget, const std::string& text) const {
    return WaitFor([&](const Screen& screen) {
      const Widget* const found = screen.Find(widget);
      return found != nullptr && found->text == text;
    });
  }
  bool WaitForFocus(const std::string& widget) const {
    return WaitFor([&](const Screen& screen) {
      const Widget* const found = screen.Find(widget);
      return found != nullptr && found->focus;
    });
  }

  void ShowRecipes() {
    StartProgram();
    ClickItem("Recipes");
    ASSERT_TRUE(WaitFor([](const Screen& screen) {
      const Widget* const grid = screen.Find("grdREC");
      return grid != nullptr && grid->rows > 1;
    }));
    Settle();
  }

  void EditCell(int row, int column, const std::string& text) {
    ClickCell("grdREC", row, column);
    ASSERT_TRUE(WaitFor([](const Screen& screen) {
      return screen.Focus() != nullptr && screen.Focus()->name == "grdREC.Number";
    }));
    Keys({"ctrl+a"});
    Type(text);
  }

  // The caption of the command in the open menu Edit; closes the menu.
  std::string CaptionInEdit(const std::string& begin) {
    ClickItem("Edit");
    std::string caption;
    EXPECT_TRUE(WaitFor([&](const Screen& screen) {
      for (const Widget& widget : screen.Widgets()) {
        for (const Item& item : widget.items) {
          if (widget.menu_depth == 1 && item.text.starts_with(begin)) {
            caption = item.text;
            return true;
          }
        }
      }
      return false;
    }));
    Keys({"Escape", "Escape"});
    EXPECT_TRUE(WaitFor([](const Screen& screen) {
      return screen.FindItemOfMenu("Auto-Abbreviate Names") == nullptr;
    }));
    return caption;
  }
};

TEST_F(RecipeWorkOnDisplay, ADecimalCommaIsAPointInAShare) {
  ShowRecipes();
  EditCell(0, kShareColumn, "4,5");
  ASSERT_TRUE(WaitForText("grdREC.Number", "4.5"));
  Keys({"Return"});
  EXPECT_TRUE(WaitFor([&](const Screen& /*screen*/) {
    return Stored(
               "SELECT [Ingredient%] FROM RecipeRation WHERE RecipeID = '1' ORDER BY Sequence") ==
           "4.50";
  }));
}

TEST_F(RecipeWorkOnDisplay, ARefusedKeySaysWhyForAWhileAndNoNumberBecomesAnother) {
  ShowRecipes();
  Click("txtRecRationTarget");
  const Widget* const closed = Look().Find("txtRecRationTarget");
  ASSERT_NE(closed, nullptr);
  Keys({"ctrl+a"});
  Type("4,5");
  ASSERT_TRUE(WaitForText("lblRefusal", "Only whole numbers, no decimals"));
  EXPECT_EQ(TextOf("txtRecRationTarget"), "4");
  EXPECT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("lblRefusal") == nullptr; }));
}

TEST_F(RecipeWorkOnDisplay, AnEditIsUndoneAndRedoneByKeysAndByName) {
  ShowRecipes();
  const std::string before = Lines(1);
  EditCell(0, kShareColumn, "7.25");
  Keys({"Return"});
  ASSERT_TRUE(WaitFor([&](const Screen& /*screen*/) { return Lines(1) != before; }));
  const std::string after = Lines(1);
  const std::string undo = CaptionInEdit("Undo ");
  EXPECT_TRUE(undo.starts_with("Undo share of ")) << undo;
  EXPECT_TRUE(undo.ends_with(" to 7.25")) << undo;
  ClickItem("Pens");
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("grdPEN") != nullptr; }));
  Keys({"ctrl+z"});
  EXPECT_TRUE(WaitForFocus("grdREC"));
  EXPECT_TRUE(WaitFor([&](const Screen& /*screen*/) { return Lines(1) == before; }));
  Keys({"ctrl+y"});
  EXPECT_TRUE(WaitFor([&](const Screen& /*screen*/) { return Lines(1) == after; }));
}

TEST_F(RecipeWorkOnDisplay, ARecipeIsCopiedAndItsCopyNamed) {
  ShowRecipes();
  ChooseFromMenu({"Edit", "Copy Recipe..."});
  ASSERT_TRUE(WaitForWindow("Copy Recipe"));
  Keys({"Return"});
  ASSERT_TRUE(WaitForFocus("txtRecName"));
  const int copy = std::stoi(TextOf("lblRecordNumber"));
  EXPECT_GT(copy, 1);
  Type("COPY");
  Keys({"Tab"});
  EXPECT_TRUE(WaitFor([&](const Screen& /*screen*/) { return Head(copy, "Name") == "COPY"; }));
  EXPECT_EQ(Head(copy, "Description"), Head(1, "Description"));
}

TEST_F(RecipeWorkOnDisplay, TwoRecipesAreComparedByKeys) {
  ShowRecipes();
  ChooseFromMenu({"Edit", "Compare Recipes..."});
  ASSERT_TRUE(WaitForWindow("Compare Recipes"));
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const summary = screen.Find("lblSummary");
    return summary != nullptr && summary->text.starts_with("Different (\u2260): ");
  }));
  EXPECT_EQ(Look().Find("grdRecipeA")->rows, Look().Find("grdRecipeB")->rows);
  Keys({"Escape"});
  EXPECT_TRUE(WaitForNoWindow("Compare Recipes"));
}

TEST_F(RecipeWorkOnDisplay, TheNextRecordKeepsTheField) {
  ShowRecipes();
  Click("txtRecDesc");
  ASSERT_TRUE(WaitForFocus("txtRecDesc"));
  Keys({"ctrl+a"});
  Type("Starter new");
  Keys({"ctrl+Next"});
  ASSERT_TRUE(WaitForText("lblRecordNumber", "2"));
  EXPECT_TRUE(WaitForFocus("txtRecDesc"));
  EXPECT_EQ(Head(1, "Description"), "Starter new");
  Keys({"ctrl+Prior"});
  EXPECT_TRUE(WaitForText("txtRecDesc", "Starter new"));
}

TEST_F(RecipeWorkOnDisplay, EnterGoesFromTheLastColumnOfAListToTheNextRow) {
  StartProgram();
  ClickItem("Ingredients");
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const grid = screen.Find("grdING");
    return grid != nullptr && grid->FindCell(1, 3) != nullptr;
  }));
  ClickCell("grdING", 0, 3);
  ASSERT_TRUE(WaitForFocus("grdING"));
  Keys({"Return"});
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const grid = screen.Find("grdING");
    const Cell* const cell = grid == nullptr ? nullptr : grid->FindCell(1, 1);
    return cell != nullptr && cell->current;
  }));
  EXPECT_TRUE(WaitForText("lblRecordNumber", "2"));
}

}  // namespace
}  // namespace vrx::testing
