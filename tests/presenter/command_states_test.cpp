#include "presenter/command_states.h"

#include <map>
#include <random>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr PrintSources kEverything{
    .recipe_database = true, .transaction_database = true, .transaction_file = true};

class CommandStatesTest : public ::testing::Test, public CommandObserver {
 protected:
  void CommandChanged(std::string_view name, bool on) override {
    changes_.push_back(std::string(name) + (on ? " on" : " off"));
    shown_[std::string(name)] = on;
  }
  void TabChanged(int tab, bool on) override {
    changes_.push_back("tab " + std::to_string(tab) + (on ? " on" : " off"));
    shown_["tab " + std::to_string(tab)] = on;
  }

  void CloseBoth() {
    states_.DisableRecipeCommands();
    states_.DisableTransactionCommands();
  }

  std::set<std::string> CommandsOn() const {
    std::set<std::string> names;
    for (const std::string_view name : CommandStates::Names()) {
      if (states_.On(name)) {
        names.insert(std::string(name));
      }
    }
    return names;
  }

  std::vector<int> TabsOn() const {
    std::vector<int> tabs;
    for (int tab = 0; tab < kTabCount; ++tab) {
      if (states_.TabOn(tab)) {
        tabs.push_back(tab);
      }
    }
    return tabs;
  }

  bool PrintOn() const {
    EXPECT_EQ(states_.On("mnuFilePrint"), states_.On("Print"));
    return states_.On("Print");
  }

  CommandStates states_;
  std::vector<std::string> changes_;
  std::map<std::string, bool> shown_;
};

TEST_F(CommandStatesTest, EverythingIsOnToBeginWith) {
  EXPECT_EQ(CommandsOn().size(), CommandStates::kCount);
  EXPECT_THAT(TabsOn(), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
}

TEST_F(CommandStatesTest, WithBothClosedOnlyTheDataTransferAndImportTabsCanBeChosen) {
  CloseBoth();
  EXPECT_THAT(CommandsOn(),
              UnorderedElementsAre("mnuFilePrint", "mnuFilePrintPreview", "Print", "Abbreviate"));
  EXPECT_THAT(TabsOn(), ElementsAre(3, 5));
}

TEST_F(CommandStatesTest, WithTheTransactionDatabaseAloneSaveIsOnForItsItemOnly) {
  CloseBoth();
  states_.EnableTransactionCommands();
  EXPECT_THAT(CommandsOn(),
              UnorderedElementsAre("mnuFileClose", "mnuFileCloseTransactionDB", "mnuFileSave",
                                   "mnuFileSaveTransactionDB", "mnuFileSaveAs",
                                   "mnuFileSaveAsTransactionDB", "Save", "Save Transaction",
                                   "mnuViewTransactionFile", "mnuFileReport", "mnuFilePrint",
                                   "mnuFilePrintPreview", "Print", "Abbreviate"));
  EXPECT_THAT(TabsOn(), ElementsAre(3, 4, 5, 6, 7));
}

TEST_F(CommandStatesTest, WithTheRecipeDatabaseAloneItsCommandsAreOn) {
  CloseBoth();
  states_.EnableRecipeCommands();
  EXPECT_THAT(
      CommandsOn(),
      UnorderedElementsAre("mnuFileClose", "mnuFileCloseRecipeDB", "mnuFileSave",
                           "mnuFileSaveRecipeDB", "mnuFileSaveAs", "mnuFileSaveAsRecipeDB", "Save",
                           "Save Recipe", "mnuEditIngredient", "mnuEditRecipe", "mnuEditPen",
                           "mnuFilePrint", "mnuFilePrintPreview", "Print", "Abbreviate"));
  EXPECT_FALSE(states_.On("mnuViewTransactionFile"));
  EXPECT_THAT(TabsOn(), ElementsAre(0, 1, 2, 3, 5));
}

TEST_F(CommandStatesTest, AParentFollowsTheOtherDatabasesItem) {
  states_.DisableRecipeCommands();
  EXPECT_TRUE(states_.On("mnuFileClose"));
  EXPECT_TRUE(states_.On("Save"));
  states_.Turn("mnuFileSaveTransactionDB", false);
  states_.DisableRecipeCommands();
  EXPECT_TRUE(states_.On("mnuFileClose"));
  EXPECT_FALSE(states_.On("mnuFileSave"));
  EXPECT_FALSE(states_.On("Save"));
  EXPECT_TRUE(states_.On("mnuFileSaveAs"));
}

TEST_F(CommandStatesTest, ObserversAreNotifiedOnlyOfChangesAndInOrder) {
  CloseBoth();
  states_.AddObserver(*this);
  CloseBoth();
  EXPECT_THAT(changes_, IsEmpty());
  states_.EnableTransactionCommands();
  EXPECT_THAT(changes_,
              ElementsAre("tab 4 on", "tab 6 on", "tab 7 on", "mnuFileCloseTransactionDB on",
                          "mnuFileSaveTransactionDB on", "mnuFileSaveAsTransactionDB on",
                          "mnuFileClose on", "mnuFileSave on", "Save on", "mnuFileSaveAs on",
                          "Save Transaction on", "mnuViewTransactionFile on", "mnuFileReport on"));
}

TEST_F(CommandStatesTest, EveryObserverIsNotified) {
  states_.AddObserver(*this);
  states_.AddObserver(*this);
  states_.TurnTab(2, false);
  EXPECT_THAT(changes_, ElementsAre("tab 2 off", "tab 2 off"));
}

TEST_F(CommandStatesTest, RefusesANameOrATabThatIsMissing) {
  EXPECT_THROW(static_cast<void>(states_.On("mnuFileExit")), Error);
  EXPECT_THROW(states_.Turn("save", true), Error);
  EXPECT_THROW(static_cast<void>(states_.TabOn(8)), Error);
  EXPECT_THROW(states_.TurnTab(-1, true), Error);
}

TEST_F(CommandStatesTest, PrintIsOnForARecordTabThatIsOnWithARecipeDatabase) {
  for (const int tab : {0, 1, 2}) {
    states_.UpdatePrintCommands(tab, {.recipe_database = true});
    EXPECT_TRUE(PrintOn());
    states_.UpdatePrintCommands(tab, {.transaction_database = true, .transaction_file = true});
    EXPECT_FALSE(PrintOn());
    states_.TurnTab(tab, false);
    states_.UpdatePrintCommands(tab, kEverything);
    EXPECT_FALSE(PrintOn());
  }
}

TEST_F(CommandStatesTest, PrintIsOffOnTheDataTransferTabWhateverIsOpen) {
  states_.UpdatePrintCommands(3, kEverything);
  EXPECT_FALSE(PrintOn());
}

TEST_F(CommandStatesTest, PrintIsOnForTheHistoryWithATransactionDatabase) {
  states_.UpdatePrintCommands(4, {.recipe_database = true, .transaction_file = true});
  EXPECT_FALSE(PrintOn());
  states_.UpdatePrintCommands(4, {.transaction_database = true});
  EXPECT_TRUE(PrintOn());
  states_.TurnTab(4, false);
  states_.UpdatePrintCommands(4, kEverything);
  EXPECT_FALSE(PrintOn());
}

TEST_F(CommandStatesTest, PrintIsOnForTheImportTabWithATransactionFile) {
  states_.UpdatePrintCommands(5, {.recipe_database = true, .transaction_database = true});
  EXPECT_FALSE(PrintOn());
  states_.UpdatePrintCommands(5, {.transaction_file = true});
  EXPECT_TRUE(PrintOn());
}

TEST_F(CommandStatesTest, PrintIsOffForAnImportTabThatIsOff) {
  states_.TurnTab(5, false);
  states_.UpdatePrintCommands(5, kEverything);
  EXPECT_FALSE(PrintOn());
}

TEST_F(CommandStatesTest, APictureOfInsightCanBePrintedAndHasNoPreview) {
  states_.UpdatePrintCommands(7, {.recipe_database = true, .transaction_file = true});
  EXPECT_FALSE(PrintOn());
  states_.UpdatePrintCommands(7, {.transaction_database = true});
  EXPECT_TRUE(states_.On("mnuFilePrint"));
  EXPECT_TRUE(states_.On("Print"));
  EXPECT_FALSE(states_.On("mnuFilePrintPreview"));
}

TEST_F(CommandStatesTest, PrintIsLeftAsItIsByTheExportTabAndByWhatIsNoTab) {
  for (const bool on : {true, false}) {
    states_.TurnPrintCommands(on);
    for (const int tab : {6, 8, -1}) {
      states_.UpdatePrintCommands(tab, on ? PrintSources{} : kEverything);
      EXPECT_EQ(PrintOn(), on);
    }
  }
}

// In whatever order the two databases open and close, a parent is enabled exactly when one of its
// items is, and the observer was notified of the final states.
TEST_F(CommandStatesTest, AParentIsOnExactlyWhenOneOfItsItemsIs) {
  states_.AddObserver(*this);
  CloseBoth();
  std::mt19937 random(7);
  for (int step = 0; step < 1000; ++step) {
    switch (random() % 4) {
      case 0:
        states_.DisableRecipeCommands();
        break;
      case 1:
        states_.EnableRecipeCommands();
        break;
      case 2:
        states_.DisableTransactionCommands();
        break;
      default:
        states_.EnableTransactionCommands();
        break;
    }
    for (const std::string parent : {"mnuFileClose", "mnuFileSave", "mnuFileSaveAs"}) {
      ASSERT_EQ(states_.On(parent),
                states_.On(parent + "RecipeDB") || states_.On(parent + "TransactionDB"));
    }
    ASSERT_EQ(states_.On("Save"), states_.On("Save Recipe") || states_.On("Save Transaction"));
    for (const auto& [name, on] : shown_) {
      ASSERT_EQ(name.starts_with("tab ") ? states_.TabOn(name.back() - '0') : states_.On(name), on);
    }
  }
}

}  // namespace
}  // namespace vrx::testing
