#include <filesystem>
#include <string>

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
  bool HasFocus(const std::string& name) const {
    const Screen screen = Look();
    return screen.Focus() != nullptr && screen.Focus()->name == name;
  }
  // Goes from field to field as far as it needs.
  void TabTo(const std::string& name) {
    constexpr int kMostFields = 40;
    for (int i = 0; i < kMostFields && !HasFocus(name); ++i) {
      Keys({"Tab"});
      Settle();
    }
    ASSERT_TRUE(HasFocus(name)) << name;
  }
};

TEST_F(InsightOnDisplay, IsAskedByKeysAndARowLeadsToItsRecordsAndBack) {
  TabTo("lstInsight");
  Keys({"End"});
  ASSERT_TRUE(WaitForTable("Cost"));
  TabTo("grdInsight");
  Keys({"Return"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    return screen.Find("cmdBackToInsight") != nullptr && screen.Find("grdTRANS") != nullptr &&
           screen.Focus() != nullptr && screen.Focus()->name == "grdTRANS";
  }));
  EXPECT_EQ(TextOf("lstGroupBy"), "Ingredients (all)");
  Keys({"alt+Left"});
  ASSERT_TRUE(WaitForTable("Cost"));
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    return screen.Focus() != nullptr && screen.Focus()->name == "grdInsight";
  }));
}

TEST_F(InsightOnDisplay, SavesThePictureOfTheQuestion) {
  const fs::path picture = folder / "LOADING.SVG";
  TabTo("cmdInsightSave");
  Keys({"space"});
  AnswerFileDialog("Save Picture", picture);
  ASSERT_TRUE(Eventually([&] { return fs::exists(picture); }));
  EXPECT_THAT(ReadAll(picture), ::testing::HasSubstr("<svg"));
  EXPECT_TRUE(WaitForWindow(kMainTitle));
}

}  // namespace
}  // namespace vrx::testing
