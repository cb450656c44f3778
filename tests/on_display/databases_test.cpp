#include <filesystem>
#include <string>

#include <SQLiteCpp/Database.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

class DatabasesOnDisplay : public OnDisplay {
 protected:
  DatabasesOnDisplay() { MakeDatabases(); }

  bool IsOn(const std::string& tab) {
    const Screen screen = Look();
    const Item* const item = screen.FindItem(tab);
    return item != nullptr && item->enabled;
  }

  // Clicks on the tab and waits until it is chosen.
  void ChooseTab(const std::string& tab) {
    ClickItem(tab);
    ASSERT_TRUE(WaitFor([&](const Screen& screen) {
      const Item* const item = screen.FindItem(tab);
      return item != nullptr && item->checked;
    })) << tab;
  }
};

TEST_F(DatabasesOnDisplay, AUnitIsAskedAboutOnceAndEnterLeavesTheFileAsItIs) {
  SQLite::Database(transactions, SQLite::OPEN_READWRITE)
      .exec("UPDATE UnitsOfMeasure SET UoM = 'KG'");
  program = Start();
  ASSERT_TRUE(WaitForWindow("Weight Units Error")) << program->Err();
  Keys({"Return"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Item* const tab = screen.FindItem("Batched/Fed");
    return screen.BoxText().empty() && tab != nullptr && tab->checked;
  }));
  Settle();
  ClickItem("Import");
  ASSERT_TRUE(WaitForBox(
      "The weights of DAY1.TDB are labelled KG; this system works in LB. Label them LB from now "
      "on? No figure is converted."));
  Keys({"Return"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.BoxText().empty(); }));
  ChooseTab("Batched/Fed");
  Settle();
  EXPECT_EQ(Look().BoxText(), "");
  EXPECT_EQ(TextOf("sbTrans.Panels(4)"), "KG");
  SQLite::Database file(transactions);
  EXPECT_EQ(file.execAndGet("SELECT UoM FROM UnitsOfMeasure").getString(), "KG");
}

TEST_F(DatabasesOnDisplay, ARefusedOpenLeavesBothDatabasesInUse) {
  StartProgram();
  const fs::path wrong = folder.Write("WRONG.RDB", "no database at all");
  Keys({"alt+f", "o", "Return"});
  ASSERT_TRUE(WaitForWindow("Open Recipe Database File"));
  Type(wrong.string());
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow("Database-Type Error"));
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow("Invalid Database"));
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  EXPECT_EQ(TextOf("sbRecipe.Panels(2)"), "SITE.RDB");
  for (const char* const tab :
       {"Ingredients", "Recipes", "Pens", "Batched/Fed", "Export", "Insight"}) {
    EXPECT_TRUE(IsOn(tab)) << tab;
  }
  ChooseTab("Pens");
  EXPECT_EQ(TextOf("sbTrans.Panels(2)"), "DAY1.TDB");
}

}  // namespace
}  // namespace vrx::testing
