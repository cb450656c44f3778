#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

class InsightOnDisplay : public OnDisplay {
 protected:
  InsightOnDisplay() { MakeDatabases(); }

  void SetUp() override {
    StartProgram();
    Keys({"alt+8"});
    ASSERT_TRUE(WaitForTable("Loads"));
  }

  // Until there are rows below that caption.
  bool WaitForTable(const std::string& caption) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const table = screen.Find("grdInsight");
      return table != nullptr && table->rows > 0 && screen.FindItem(caption) != nullptr;
    });
  }
  // Goes from field to field. Each key is sent after the program has processed the one before.
  void GoTo(const std::string& name, const std::string& key) {
    constexpr int kMostFields = 40;
    for (int i = 0; i < kMostFields && !HasFocus(Look(), name); ++i) {
      Keys({key});
      Settle();
    }
    ASSERT_TRUE(WaitFor([&](const Screen& screen) { return HasFocus(screen, name); })) << name;
  }
  static bool HasFocus(const Screen& screen, const std::string& name) {
    return screen.Focus() != nullptr && screen.Focus()->name == name;
  }
  // The current cell of the table of that name, which has the keyboard.
  static const Cell* CurrentCell(const Screen& screen, const std::string& table) {
    if (!HasFocus(screen, table)) {
      return nullptr;
    }
    const std::vector<Cell>& cells = screen.Focus()->cells;
    const auto found =
        std::find_if(cells.begin(), cells.end(), [](const Cell& cell) { return cell.current; });
    return found == cells.end() ? nullptr : &*found;
  }
};

TEST_F(InsightOnDisplay, SavesThePictureOfTheQuestion) {
  const fs::path picture = folder / "LOADING.SVG";
  GoTo("cmdInsightSave", "shift+Tab");
  Keys({"space"});
  AnswerFileDialog("Save Picture", picture);
  ASSERT_TRUE(Eventually([&] { return fs::exists(picture); }));
  EXPECT_THAT(ReadAll(picture), ::testing::HasSubstr("<svg"));
  EXPECT_TRUE(WaitForWindow(kMainTitle));
}

TEST_F(InsightOnDisplay, KeysLeadFromAQuestionToTheRecordsOfARowAndBack) {
  GoTo("lstInsight", "Tab");
  Keys({"Down", "Down", "Down", "Down"});
  ASSERT_TRUE(WaitForTable("Called (LB)"));
  EXPECT_EQ(TextOf("lblInsightQuestion"), "What was each pen called for and fed, day by day?");
  GoTo("grdInsight", "Tab");
  Keys({"Home", "Down", "Down"});
  std::string pen;
  ASSERT_TRUE(WaitFor([&](const Screen& screen) {
    const Cell* const cell = CurrentCell(screen, "grdInsight");
    pen = cell != nullptr ? cell->text : "";
    return cell != nullptr && cell->row == 2;
  }));
  Keys({"Return"});
  ASSERT_TRUE(WaitFor([&](const Screen& screen) {
    const Cell* const cell = CurrentCell(screen, "grdTRANS");
    const Widget* const group = screen.Find("lstGroupBy");
    return cell != nullptr && cell->text.starts_with("Pen:" + pen) && group != nullptr &&
           group->text == "Pens Fed (all)";
  })) << pen;
  Keys({"alt+Left"});
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Cell* const cell = CurrentCell(screen, "grdInsight");
    return cell != nullptr && cell->row == 2;
  }));
}

}  // namespace
}  // namespace vrx::testing
