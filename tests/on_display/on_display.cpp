#include "on_display/on_display.h"

#include <algorithm>
#include <cstdlib>

namespace vrx::testing {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

OnDisplay::OnDisplay(int width, int height)
    : DesktopUser("xcb"),
      display(width, height),
      window_manager_(
          "/usr/bin/openbox",
          {"--sm-disable", "--config-file", VRX_SOURCE_DIR "/tests/on_display/openbox.xml"},
          folder.Path().string()) {
  EXPECT_TRUE(Eventually([&] { return windows.Managed(); })) << window_manager_.Err();
}

void OnDisplay::TearDown() {
  if (HasFailure()) {
    TakePicture();
  }
}

// Of a failed test, where VRX_PICTURES names a folder for it.
void OnDisplay::TakePicture() const {
  const char* const pictures = std::getenv("VRX_PICTURES");  // NOLINT(concurrency-mt-unsafe)
  if (pictures != nullptr) {
    const auto& test = *::testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string(test.test_suite_name()) + '.' + test.name() + ".png";
    Program("/usr/bin/scrot", {"-o", (fs::path(pictures) / name).string()}, folder.Path().string())
        .Wait();
  }
}

void OnDisplay::StartProgram() {
  program = Start();
  ASSERT_TRUE(WaitForWindow(kMainTitle)) << program->Err();
  ASSERT_TRUE(WaitFor([&](const Screen& screen) { return HasOpenedRecent(screen); }));
  Settle();
}

// The last thing that the opening of a transaction database does is to select its tab.
bool OnDisplay::HasOpenedRecent(const Screen& screen) const {
  const bool has_recipes = fs::exists(recipes) && ValueIn(ini, "AutoloadRecipeDB") == "YES";
  const bool has_transactions =
      fs::exists(transactions) && ValueIn(ini, "AutoloadTransDB") == "YES";
  const Item* const recipe_tab = screen.FindItem("Recipes");
  const Item* const history_tab = screen.FindItem("Batched/Fed");
  return recipe_tab != nullptr && history_tab != nullptr && (!has_recipes || recipe_tab->enabled) &&
         (!has_transactions || history_tab->checked);
}

void OnDisplay::Settle() {
  constexpr std::chrono::seconds kLongest{30};
  const xcb_window_t active = windows.Active();
  EXPECT_TRUE(active == XCB_NONE || windows.Answers(active, kLongest) || program->Ended() ||
              windows.Active() != active)
      << "the program does not take its input";
}

bool OnDisplay::WaitFor(const std::function<bool(const Screen&)>& condition) const {
  return Eventually([&] { return condition(Look()); });
}

bool OnDisplay::WaitForWindow(const std::string& title) {
  return Eventually(
             [&] { return Windows::IsTitle(windows.ActiveTitle(), title) || program->Ended(); }) &&
         !program->Ended();
}

bool OnDisplay::WaitForNoWindow(const std::string& title) {
  return Eventually([&] { return !windows.Find(title).has_value(); });
}

bool OnDisplay::WaitForBox(const std::string& text) {
  return WaitFor([&](const Screen& screen) {
    const std::string box = screen.BoxText();
    const Widget* const focus = screen.Focus();
    return !box.empty() && box.starts_with(text) && focus != nullptr && !focus->behind_dialog;
  });
}

void OnDisplay::ChooseFromMenu(const std::vector<std::string>& captions) {
  for (std::size_t depth = 0; depth < captions.size(); ++depth) {
    Item item;
    ASSERT_TRUE(WaitFor([&](const Screen& screen) {
      const Item* const found = screen.FindItemOfMenu(captions[depth], static_cast<int>(depth));
      if (found != nullptr) {
        item = *found;
      }
      return found != nullptr && found->enabled;
    })) << captions[depth];
    input.Click(item.place.Center());
  }
}

void OnDisplay::AnswerFileDialog(const std::string& title, const fs::path& path) {
  ASSERT_TRUE(WaitForWindow(title)) << title;
  Keys({"ctrl+a"});
  Type(path.string());
  ASSERT_TRUE(WaitFor([&](const Screen& screen) {
    const Widget* const name = screen.Find("fileNameEdit");
    return name != nullptr && name->text == path.string();
  })) << title;
  Keys({"Return"});
  EXPECT_TRUE(WaitForNoWindow(title)) << title;
}

void OnDisplay::Click(const std::string& widget, int times) {
  const Screen screen = Look();
  const Widget* const found = screen.Find(widget);
  ASSERT_NE(found, nullptr) << widget;
  input.Click(found->place.Center(), times);
}

void OnDisplay::ExportTo(const std::filesystem::path& directory, const std::string& name) {
  ClickItem("Export");
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("txtFName") != nullptr; }));
  Click("txtFName");
  Keys({"ctrl+a"});
  Type(name);
  Click("txtFPath");
  Keys({"ctrl+a"});
  Type(directory.string());
  Click("optCSV");
  Click("cmdExport");
  ASSERT_TRUE(WaitForBox("Data exported successfully."));
  Keys({"Return"});
}

void OnDisplay::ClickItem(const std::string& caption) {
  const Screen screen = Look();
  const Item* const found = screen.FindItem(caption);
  ASSERT_NE(found, nullptr) << caption;
  input.Click(found->place.Center());
}

void OnDisplay::ClickButton(const std::string& caption) {
  const Screen screen = Look();
  const Widget* const found = screen.FindButton(caption);
  ASSERT_NE(found, nullptr) << caption;
  input.Click(found->place.Center());
}

void OnDisplay::ClickCell(const std::string& widget, int row, int column, int times) {
  const Screen screen = Look();
  const Widget* const grid = screen.Find(widget);
  ASSERT_NE(grid, nullptr) << widget;
  const Cell* const found = grid->FindCell(row, column);
  ASSERT_NE(found, nullptr) << widget << " row " << row << " column " << column;
  input.Click(found->place.Center(), times);
}

void OnDisplay::ClickCloseBox(const std::string& title) {
  const auto window = windows.Find(title);
  ASSERT_TRUE(window.has_value()) << title;
  input.Click(windows.CloseBoxOf(*window));
}

std::string OnDisplay::TextOf(const std::string& widget) const {
  const Screen screen = Look();
  const Widget* const found = screen.Find(widget);
  EXPECT_NE(found, nullptr) << widget;
  return found == nullptr ? "" : found->text;
}

}  // namespace vrx::testing
