// The program on a desktop with another language than English.

#include <filesystem>
#include <string>

#include "on_display/on_display.h"
#include "support/environment.h"

namespace vrx::testing {
namespace {

class LanguageOnDisplay : public OnDisplay {
 protected:
  Environment language_{"LANGUAGE", "de"};
  Environment locale_{"LC_ALL", "C.UTF-8"};
};

TEST_F(LanguageOnDisplay, ShowsOurTextsInItAndSpecifiedCaptionsInEnglish) {
  folder.Write("home/data/Brantock/VRX-2260/VRX-2260.INI",
               "[Comments]\nTitle=x\n[Options]\nEnableBeeper=NO\n");
  program = Start();
  ASSERT_TRUE(WaitForWindow(kMainTitle)) << program->Err();
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    return screen.FindButton("Rezeptdatenbank anlegen...") != nullptr;
  }));
  EXPECT_NE(Look().FindItem("Data Transfer"), nullptr);
  EXPECT_NE(Look().FindItem("File"), nullptr);
}

TEST_F(LanguageOnDisplay, NamesAnEditInIt) {
  MakeDatabases();
  StartProgram();
  ChooseFromMenu({"Edit", "Ingredients"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("txtIngDesc") != nullptr; }));
  Click("txtIngDesc");
  Keys({"ctrl+a"});
  Type("Mais");
  Keys({"Tab"});
  Settle();
  Keys({"alt+e"});
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const menu = screen.Find("mnuEdit");
    return menu != nullptr && !menu->items.empty() &&
           menu->items.front().text.find("Beschreibung von") != std::string::npos &&
           menu->items.front().text.find(" in Mais") != std::string::npos;
  }));
}

TEST_F(LanguageOnDisplay, WritesTheSameFiles) {
  MakeDatabases();
  StartProgram();
  ClickItem("Batched/Fed");
  Settle();
  ExportTo(folder.Path(), "out");
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  const std::string german = ReadAll(folder / "out.csv");
  const std::filesystem::path english = folder / "english.csv";
  ASSERT_EQ(Ctl({"export", transactions.string(), "--group", "0", "--recipes", recipes.string(),
                 "--format", "csv", "--out", english.string()})
                .code,
            0);
  ASSERT_FALSE(german.empty());
  EXPECT_EQ(german, ReadAll(english));
}

}  // namespace
}  // namespace vrx::testing
