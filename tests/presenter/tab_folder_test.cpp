#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "presenter/command_states.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TabFolderTest : public ::testing::Test, public MainView, public CommandObserver {
 protected:
  TabFolderTest() {
    states_.DisableRecipeCommands();
    states_.DisableTransactionCommands();
    states_.TurnPrintCommands(true);
    states_.AddObserver(*this);
  }

  void ShowTab(int tab) override { steps_.push_back("show " + std::to_string(tab)); }
  void PrepareTab(int tab, int previous) override {
    steps_.push_back("click " + std::to_string(tab) + " after " + std::to_string(previous));
    on_click_();
  }
  PrintSources Printable() const override { return sources_; }
  // The choice of a tab does not use the rest of the window.
  void Rebind(DatabaseKind /*kind*/, const BoundDatabase& /*database*/) override {}
  void ReleaseViews() override {}
  void ShowUnit(DatabaseKind /*kind*/, std::string_view /*unit*/) override {}
  void SetStatusPanel(DatabaseKind /*kind*/, StatusPanel /*panel*/,
                      std::string_view /*text*/) override {}
  void LoadIdLists() override {}
  void ShowTransferOption() override {}
  void CheckPenCapacity() override {}
  void HidePenCapacityWarning() override {}
  void SelectPenItem(int /*list_index*/) override {}
  void CommandChanged(std::string_view name, bool on) override {
    steps_.push_back(std::string(name) + (on ? " on" : " off"));
  }
  void TabChanged(int tab, bool on) override {
    steps_.push_back("tab " + std::to_string(tab) + (on ? " on" : " off"));
  }

  CommandStates states_;
  TabFolder tabs_{states_, *this};
  PrintSources sources_;
  std::function<void()> on_click_ = [] {};
  std::vector<std::string> steps_;
};

TEST_F(TabFolderTest, SelectTabShowsTurnsOnClicksAndThenSetsThePrintCommands) {
  tabs_.SelectTab(4);
  EXPECT_THAT(steps_, ElementsAre("show 4", "tab 4 on", "click 4 after 0", "mnuFilePrint off",
                                  "mnuFilePrintPreview off", "Print off"));
  EXPECT_EQ(tabs_.CurrentTab(), 4);
}

TEST_F(TabFolderTest, WhatTheClickOpensIsPrintable) {
  states_.TurnPrintCommands(false);
  steps_.clear();
  on_click_ = [&] { sources_.recipe_database = true; };
  tabs_.SelectTab(0);
  EXPECT_THAT(steps_, ElementsAre("show 0", "tab 0 on", "click 0 after 0", "mnuFilePrint on",
                                  "mnuFilePrintPreview on", "Print on"));
}

TEST_F(TabFolderTest, AClickOfTheOperatorRunsTheClickRoutineAlone) {
  tabs_.Clicked(5);
  tabs_.Clicked(3);
  EXPECT_THAT(steps_, ElementsAre("click 5 after 0", "click 3 after 5"));
}

TEST_F(TabFolderTest, RefusesWhatIsNoTab) {
  EXPECT_THROW(tabs_.SelectTab(8), Error);
  EXPECT_THAT(steps_, IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
