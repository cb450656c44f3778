#include <filesystem>
#include <string>
#include <utility>

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
  std::string FocusName() const {
    const Screen screen = Look();
    return screen.Focus() != nullptr ? screen.Focus()->name : "";
  }
  // Goes from field to field as far as it needs; the fields on the way have different names.
  void GoTo(const std::string& name, const std::string& key) {
    constexpr int kMostFields = 20;
    for (int i = 0; i < kMostFields && FocusName() != name; ++i) {
      const std::string before = FocusName();
      Keys({key});
      std::string now = before;
      ASSERT_TRUE(Eventually([&] {
        const std::string last = std::exchange(now, FocusName());
        return now != before && now == last;  // no longer on its way
      })) << before;
    }
    ASSERT_EQ(FocusName(), name);
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

}  // namespace
}  // namespace vrx::testing
