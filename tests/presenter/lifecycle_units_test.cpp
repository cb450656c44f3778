#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenter/lifecycle_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class UnitQuestion : public LifecycleFixture {
 protected:
  static std::string UnitOf(const fs::path& path) {
    return Ask(path, "SELECT UoM FROM UnitsOfMeasure").front();
  }

  void Open(DatabaseKind kind, const fs::path& path) {
    chooser_.Choose(path);
    kind == kRecipe ? databases_.BrowseRecipeDatabase() : databases_.BrowseTransactionDatabase();
    operator_.boxes.clear();
    diary_.clear();
  }

  fs::path metric_ = MakeUserFile("METRIC.RDB", kRecipe, "KG");
};

TEST_F(UnitQuestion, HasTheFilesNameBothUnitsAndNoAsItsDefault) {
  Open(kRecipe, metric_);
  operator_.answers = {Answer::kNo};
  databases_.AskAboutUnits();
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kQuestion);
  EXPECT_EQ(operator_.boxes[0].buttons, Buttons::kYesNo);
  EXPECT_TRUE(operator_.boxes[0].refuses_by_default);
  EXPECT_EQ(operator_.boxes[0].text,
            "The weights of METRIC.RDB are labelled KG; this system works in LB. Label them LB "
            "from now on? No figure is converted.");
}

TEST_F(UnitQuestion, NoLeavesTheFileAndIsNotAskedAgainInThisOpening) {
  Open(kRecipe, metric_);
  const std::string before = ReadAll(metric_);
  operator_.answers = {Answer::kNo};
  databases_.AskAboutUnits();
  databases_.AskAboutUnits();
  databases_.SaveRecipeDatabase();
  databases_.AskAboutUnits();
  EXPECT_THAT(BoxTitles(), ElementsAre("Weight Units", "Weight Units Error"));
  EXPECT_EQ(ReadAll(metric_), before);
  EXPECT_EQ(databases_.Recipe().unit, "KG");
}

TEST_F(UnitQuestion, IsAskedAgainAfterTheNextOpening) {
  Open(kRecipe, metric_);
  operator_.answers = {Answer::kNo};
  databases_.AskAboutUnits();
  Open(kRecipe, metric_);
  operator_.answers = {Answer::kNo};
  databases_.AskAboutUnits();
  EXPECT_THAT(BoxTitles(), ElementsAre("Weight Units"));
}

TEST_F(UnitQuestion, YesLabelsTheFileAndDatesIt) {
  const fs::path transactions = MakeUserFile("Y2026.TDB", kTransaction, "KG");
  Open(kRecipe, metric_);
  Open(kTransaction, transactions);
  operator_.answers = {Answer::kYes, Answer::kYes};
  databases_.AskAboutUnits();
  EXPECT_THAT(diary_, ElementsAre("box Weight Units", "end reads recipe", "panel recipe 4 [LB]",
                                  "unit recipe [LB]", "box Weight Units", "end reads transaction",
                                  "panel transaction 4 [LB]", "unit transaction [LB]"));
  for (const fs::path& path : {metric_, transactions}) {
    EXPECT_EQ(UnitOf(path), "LB");
    EXPECT_THAT(Ask(path, "SELECT Modified FROM History"), ElementsAre("2026-01-05"));
  }
  EXPECT_EQ(databases_.Recipe().unit, "LB");
  EXPECT_EQ(databases_.Bound(kTransaction).unit, "LB");
}

TEST_F(UnitQuestion, YesEndsWhatAViewReads) {
  const fs::path transactions = MakeUserFile("Y2026.TDB", kTransaction, "KG");
  Open(kTransaction, transactions);
  SQLite::Database reader = OpenDatabase(transactions, Access::kRead);
  reader.exec("BEGIN; SELECT count(*) FROM Transactions");
  window_.on_end_reads = [&] { reader.exec("COMMIT"); };
  operator_.answers = {Answer::kYes};
  databases_.AskAboutUnits();
  EXPECT_THAT(BoxTitles(), ElementsAre("Weight Units"));
  EXPECT_EQ(UnitOf(transactions), "LB");
}

TEST_F(UnitQuestion, NoLetsTheViewsRead) {
  Open(kRecipe, metric_);
  operator_.answers = {Answer::kNo};
  databases_.AskAboutUnits();
  EXPECT_THAT(diary_, ElementsAre("box Weight Units"));
}

TEST_F(UnitQuestion, IsAboutTheOpenFileAfterAnotherOneWasRefused) {
  Open(kRecipe, metric_);
  const fs::path refused = MakeUserFile("WRONG.TDB", kTransaction, "KG");
  Open(kRecipe, refused);
  operator_.answers = {Answer::kYes};
  databases_.AskAboutUnits();
  EXPECT_EQ(UnitOf(metric_), "LB");
  EXPECT_EQ(UnitOf(refused), "KG");
}

TEST_F(UnitQuestion, OfAFileWithoutAUnitSaysSo) {
  const fs::path bare = MakeUserFile("BARE.TDB", kTransaction, "");
  Open(kTransaction, bare);
  operator_.answers = {Answer::kYes};
  databases_.AskAboutUnits();
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].text,
            "The weights of BARE.TDB have no unit; this system works in LB. Label them LB from now "
            "on? No figure is converted.");
  EXPECT_EQ(UnitOf(bare), "LB");
}

TEST_F(UnitQuestion, IsAboutTheCopyAfterASaveAs) {
  Open(kRecipe, metric_);
  const fs::path copy = app_folder_.DefaultAppPath() / "COPY.RDB";
  chooser_.Choose(copy);
  databases_.SaveAsRecipeCommand();
  operator_.boxes.clear();
  operator_.answers = {Answer::kYes};
  databases_.AskAboutUnits();
  EXPECT_THAT(BoxTitles(), ElementsAre("Weight Units"));
  EXPECT_EQ(UnitOf(copy), "LB");
  EXPECT_EQ(UnitOf(metric_), "KG");
}

TEST_F(UnitQuestion, IsNotAskedOfFilesOfTheSystemsUnitAndOfClosedOnes) {
  databases_.AskAboutUnits();
  Open(kTransaction, MakeUserFile("Y2026.TDB", kTransaction));
  Open(kRecipe, metric_);
  databases_.CloseRecipeDatabase();
  diary_.clear();
  databases_.AskAboutUnits();
  EXPECT_THAT(diary_, IsEmpty());
}

TEST_F(UnitQuestion, IsNotAskedOfAFileThatMayNotBeWritten) {
  const TempFolder locked;
  const fs::path path = locked / "PROT.RDB";
  fs::copy_file(metric_, path);
  {
    const WithoutWritePermission protection(locked.Path());
    databases_.OpenRecipeDatabase(path, "PROT.RDB");
  }
  operator_.boxes.clear();
  databases_.AskAboutUnits();
  EXPECT_THAT(BoxTitles(), IsEmpty());
}

TEST_F(UnitQuestion, LabelsNoFileThatIsOpenedWhileItIsShown) {
  const fs::path other = MakeUserFile("OTHER.RDB", kRecipe, "KG");
  Open(kRecipe, metric_);
  operator_.answers = {Answer::kYes};
  bool opened = false;
  operator_.on_message = [&](const MessageBox& box) {
    if (box.title == "Weight Units" && !std::exchange(opened, true)) {
      databases_.OpenRecipeDatabase(other, "OTHER.RDB");
    }
  };
  databases_.AskAboutUnits();
  EXPECT_EQ(databases_.Bound(kRecipe).path, other);
  EXPECT_EQ(UnitOf(metric_), "KG");
  EXPECT_EQ(UnitOf(other), "KG");
}

TEST_F(UnitQuestion, ThatCannotBeCarriedOutIsReportedAndTheUnitIsKept) {
  Open(kRecipe, metric_);
  operator_.answers = {Answer::kYes};
  {
    const ExclusiveHolder holder(metric_);
    databases_.AskAboutUnits();
  }
  EXPECT_THAT(BoxTitles(), ElementsAre("Weight Units", "Database UoM Write Error"));
  EXPECT_EQ(databases_.Recipe().unit, "KG");
  EXPECT_EQ(UnitOf(metric_), "KG");
  EXPECT_THAT(Ask(metric_, "SELECT Modified FROM History"), ElementsAre("NULL"));
  EXPECT_THAT(diary_, ::testing::Not(Contains("unit recipe [LB]")));
}

}  // namespace
}  // namespace vrx::testing
