#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenter/history.h"
#include "support/small_history.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;

class HistoryDifferences : public ::testing::Test, protected TestServices, protected HistoryView {
 protected:
  HistoryDifferences() {
    view.TabEntered();
    view.SelectGroup(8);
    changed.clear();
  }

  void HistoryChanged(HistoryPart part) override { changed.push_back(part); }
  std::vector<std::string> Captions() { return VisibleCaptions(view.Grid()); }

  TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  std::vector<HistoryPart> changed;
  HistoryPresenter view{transactions, services, *this};
};

TEST_F(HistoryDifferences, AreHiddenUntilTheyAreChosen) {
  EXPECT_THAT(Captions(), Not(Contains("Feed Diff")));
  view.ShowDifferences(true);
  EXPECT_THAT(Captions(), Contains("Feed Diff"));
  EXPECT_THAT(changed, Contains(HistoryPart::kGrid));
  view.SelectGroup(5);
  EXPECT_THAT(Captions(), Contains("Batch Diff %"));
  view.ShowDifferences(false);
  EXPECT_THAT(Captions(), Not(Contains("Batch Diff %")));
}

TEST_F(HistoryDifferences, AreMarkedByTheToleranceOfTheSettings) {
  view.ShowDifferences(true);
  view.SetExpandAll(true);
  EXPECT_FALSE(view.Grid().Row(2).IsMarked(116)) << "+1.3";
  settings.SetDifferenceTolerance("1");
  view.FollowTolerance();
  EXPECT_TRUE(view.Grid().Row(2).IsMarked(116));
  settings.SetDifferenceTolerance("3");
  view.TabEntered();
  EXPECT_FALSE(view.Grid().Row(2).IsMarked(116));
}

TEST_F(HistoryDifferences, AnUnchangedToleranceDrawsNothingAnew) {
  view.FollowTolerance();
  EXPECT_THAT(changed, IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
