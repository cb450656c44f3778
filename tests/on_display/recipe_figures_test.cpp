#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

// The Recipes tab by real keys and clicks: its figures on the screen and in the file.
class RecipeFiguresOnDisplay : public OnDisplay {
 protected:
  static constexpr int kNew = 16;  // not in use at the sample site

  RecipeFiguresOnDisplay() { MakeDatabases(); }

  std::vector<std::string> Stored(int recipe, const std::string& field) const {
    constexpr int kBusyMilliseconds = 5000;  // the program stores meanwhile
    SQLite::Database file(recipes, SQLite::OPEN_READONLY, kBusyMilliseconds);
    SQLite::Statement lines(file, "SELECT [" + field + "] FROM RecipeRation WHERE RecipeID = '" +
                                      std::to_string(recipe) + "' ORDER BY Sequence");
    std::vector<std::string> cells;
    while (lines.executeStep()) {
      cells.push_back(lines.getColumn(0).getString());
    }
    return cells;
  }

  // The field of a line as the command line computes it, from what was entered alone.
  std::vector<std::string> Computed(int recipe, const std::string& field) const {
    const Result shown = Ctl({"recipe", recipes.string(), std::to_string(recipe), "--json"});
    EXPECT_EQ(shown.code, 0) << shown.err;
    std::vector<std::string> cells;
    const Json document = Json::parse(shown.out);
    for (const Json& line : document.at("lines")) {
      cells.push_back(line[field].get<std::string>());
    }
    return cells;
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

  void GoToNewRecipe() {
    for (int position = 2; position <= kNew; ++position) {
      ClickButton(">");
      ASSERT_TRUE(WaitForText("lblRecordNumber", std::to_string(position)));
    }
  }
};

// The strip has the focus since the start, and nothing else had it.
TEST_F(RecipeFiguresOnDisplay, TheFirstClickOnTheTabRecomputes) {
  const std::vector<std::string> computed = Computed(1, "DryMatter");
  {
    SQLite::Database file(recipes, SQLite::OPEN_READWRITE);
    file.exec("UPDATE RecipeRation SET DryMatter = '4321'");
  }
  StartProgram();
  ClickItem("Recipes");
  EXPECT_TRUE(
      WaitFor([&](const Screen& /*screen*/) { return Stored(1, "DryMatter") == computed; }));
}

TEST_F(RecipeFiguresOnDisplay, AreRightAfterTwoLinesATargetAndAnAdjustmentByKeys) {
  ASSERT_EQ(Ctl({"set", "recipe", recipes.string(), std::to_string(kNew), "--type", "W"}).code, 0);
  StartProgram();
  ClickItem("Recipes");
  ASSERT_TRUE(WaitForText("lblRecordNumber", "1"));
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("grdREC") != nullptr; }));
  GoToNewRecipe();
  ClickCell("grdREC", 0, 0);
  Type("1");
  Keys({"Return"});
  Type("1000");
  Keys({"Return"});
  ASSERT_TRUE(
      WaitFor([&](const Screen& /*screen*/) { return Stored(kNew, "Target").size() == 1; }));
  EXPECT_TRUE(WaitFor([&](const Screen& screen) {
    const Widget* const list = screen.Find("cboRecID");
    return list != nullptr && list->text.starts_with(" 16: R");
  })) << "the list names the recipe";
  Type("2");
  Keys({"Return"});
  Type("800");
  Keys({"Return"});
  ASSERT_TRUE(
      WaitFor([&](const Screen& /*screen*/) { return Stored(kNew, "Target").size() == 2; }));

  Click("txtRecDesc");
  ASSERT_TRUE(WaitForFocus("txtRecDesc"));
  Keys({"ctrl+a"});
  Type("Steers");
  Keys({"Tab"});
  ASSERT_TRUE(WaitForFocus("txtRecName"));
  Keys({"Tab"});
  Settle();
  if (const Screen screen = Look();
      screen.Focus() != nullptr && screen.Focus()->name == "lstRecBatchType") {
    Keys({"Tab"});  // the list of batch types is still open
  }
  ASSERT_TRUE(WaitForFocus("txtRecRationTarget"));
  Keys({"ctrl+a"});
  Type("5000");
  Keys({"Tab"});
  ASSERT_TRUE(WaitForFocus("lstAdjustBatchTotal"));
  Keys({"Home"});  // drops the list down
  Settle();
  Keys({"Home", "Return"});
  EXPECT_TRUE(WaitForText("lblBatchTargetTotal", "6000"));
  EXPECT_EQ(Stored(kNew, "BatchTarget"), Computed(kNew, "BatchTarget"));
  EXPECT_NE(Stored(kNew, "BatchTarget"), (std::vector<std::string>{"0", "0"}));

  ClickButton("Delete");
  ASSERT_TRUE(WaitForBox("There is no ingredient selected to delete."));
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  ClickButton("Update");
  Settle();
  EXPECT_EQ(TextOf("lblBatchTargetTotal"), "6000");
  EXPECT_EQ(Stored(kNew, "BatchTarget"), Computed(kNew, "BatchTarget"));
}

}  // namespace
}  // namespace vrx::testing
