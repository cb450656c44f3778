// Edits that cannot be stored, by real keys and clicks.

#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

constexpr const char* kNotStored =
    "The 'Description' field could not be stored: SITE.RDB is locked by another program";

constexpr const char* kShareNotStored =
    "The 'Ingredient%' field could not be stored: SITE.RDB is locked by another program";

// How long a test that reads the file waits for the program to store.
constexpr int kLongestStoreMs = 5000;

// Another program writes into the file.
class Lock {
 public:
  explicit Lock(const std::filesystem::path& path)
      : file_(path.string(), SQLite::OPEN_READWRITE),
        lock_(file_, SQLite::TransactionBehavior::IMMEDIATE) {}

 private:
  SQLite::Database file_;
  SQLite::Transaction lock_;
};

class EditOnDisplay : public OnDisplay {
 protected:
  static constexpr int kShareColumn = 7;  // of the recipe grid, in the order of its design

  EditOnDisplay() { MakeDatabases(); }

  // A new description of ingredient 1 in its field, which is not left.
  void TypeDescription(const std::string& text) {
    ChooseFromMenu({"Edit", "Ingredients"});
    ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("txtIngDesc") != nullptr; }));
    Click("txtIngDesc");
    Keys({"ctrl+a"});
    Type(text);
    ASSERT_TRUE(WaitForDescription(text));
  }
  bool WaitForDescription(const std::string& text) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const field = screen.Find("txtIngDesc");
      return field != nullptr && field->focus && field->text == text;
    });
  }

  void ShowRecipe1() {
    ClickItem("Recipes");
    ASSERT_TRUE(WaitFor([](const Screen& screen) {
      const Widget* const grid = screen.Find("grdREC");
      return grid != nullptr && grid->rows > 1;
    }));
    Settle();
  }

  // Types into the share of the first line and leaves its editor open.
  void TypeShare(const std::string& text) {
    ClickCell("grdREC", 0, kShareColumn);
    ASSERT_TRUE(WaitFor([](const Screen& screen) {
      const Widget* const grid = screen.Find("grdREC");
      const Cell* const cell = grid == nullptr ? nullptr : grid->FindCell(0, kShareColumn);
      return cell != nullptr && cell->current && screen.Focus() != nullptr;
    }));
    Type(text);
    ASSERT_TRUE(WaitFor([&](const Screen& screen) {
      return screen.Focus() != nullptr && screen.Focus()->text == text;
    }));
  }

  std::string StoredDescription() const {
    SQLite::Database file(recipes.string(), SQLite::OPEN_READONLY, kLongestStoreMs);
    return file.execAndGet("SELECT Description FROM Ingredient WHERE ID = 1").getString();
  }

  // The shares of the lines of all recipes, in one text.
  std::string StoredShares() const {
    SQLite::Database file(recipes.string(), SQLite::OPEN_READONLY, kLongestStoreMs);
    return file
        .execAndGet(
            "SELECT group_concat(RecipeID || ':' || Sequence || '=' || ifnull([Ingredient%], '')) "
            "FROM "
            "(SELECT * FROM RecipeRation ORDER BY CAST(RecipeID AS INTEGER), Sequence)")
        .getString();
  }
};

TEST_F(EditOnDisplay, StayKeepsTheTypedTextAndTheProgram) {
  StartProgram();
  TypeDescription("Hay of May");
  {
    const Lock other_program(recipes);
    ClickCloseBox(kMainTitle);
    ASSERT_TRUE(WaitForBox(kNotStored));
    ClickButton("Stay");
    ASSERT_TRUE(WaitForDescription("Hay of May"));
  }
  ClickCloseBox(kMainTitle);
  EXPECT_EQ(ExitCode(), 0);
  EXPECT_EQ(StoredDescription(), "Hay of May");
}

TEST_F(EditOnDisplay, AnotherTryGoesOnWithWhatWasClicked) {
  StartProgram();
  TypeDescription("Hay of May");
  std::optional<Lock> other_program(recipes);
  Click("cmdNavigate(2)");
  ASSERT_TRUE(WaitForBox(kNotStored));
  other_program.reset();
  ClickButton("Try Again");
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const record = screen.Find("lblRecordNumber");
    return record != nullptr && record->text == "2";
  }));
  EXPECT_EQ(StoredDescription(), "Hay of May");
}

// The second start of the program shows a box of its own.
TEST_F(EditOnDisplay, AHalfTypedCellIsNotStoredByAnotherWindow) {
  StartProgram();
  ShowRecipe1();
  const std::string before = StoredShares();
  TypeShare("3");
  const std::unique_ptr<Program> second = Start();
  ASSERT_TRUE(Eventually([this] { return !Windows::IsTitle(windows.ActiveTitle(), kMainTitle); }));
  EXPECT_EQ(StoredShares(), before);
  Keys({"Return"});
  second->Wait();
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  // The window manager gives the window the focus before the window gives it to the cell.
  Settle();
  Type("3");
  Keys({"Return"});
  EXPECT_TRUE(Eventually([&] { return StoredShares() != before; }));
  EXPECT_NE(StoredShares().find("1:1=33.00"), std::string::npos) << StoredShares();
}

// The share stays in its recipe, or is given up: the tab shows the last recipe on its way back.
TEST_F(EditOnDisplay, ARefusedShareReachesNoOtherRecipe) {
  StartProgram();
  ShowRecipe1();
  const std::string before = StoredShares();
  TypeShare("33");
  {
    const Lock other_program(recipes);
    ClickItem("Ingredients");
    ASSERT_TRUE(WaitForBox(kShareNotStored));
    ClickButton("Discard");
    ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("txtIngDesc") != nullptr; }));
  }
  ClickItem("Recipes");
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("grdREC") != nullptr; }));
  Settle();
  EXPECT_EQ(StoredShares(), before);
}

TEST_F(EditOnDisplay, ASignalKeepsWhatCannotBeStoredForTheNextStart) {
  StartProgram();
  TypeDescription("Hay of May");
  {
    const Lock other_program(recipes);
    program->Signal(SIGTERM);
    EXPECT_EQ(ExitCode(), 0);
  }
  ASSERT_TRUE(std::filesystem::exists(data / "UNSTORED.TXT"));
  program = Start();
  ASSERT_TRUE(WaitForBox("The program was ended before this could be stored:"));
  EXPECT_NE(Look().BoxText().find("Hay of May"), std::string::npos);
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  EXPECT_FALSE(std::filesystem::exists(data / "UNSTORED.TXT"));
}

}  // namespace
}  // namespace vrx::testing
