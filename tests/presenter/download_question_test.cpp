#include <string>

#include <gmock/gmock.h>

#include "presenter/recipe_download_fixture.h"

namespace vrx::testing {
namespace {

class DownloadQuestion : public RecipeDownloadTest {};

TEST_F(DownloadQuestion, TheQuestionListsWhatIsOddAndTheLastUpload) {
  const std::string question =
      "Are you sure you want to overwrite all data in the KRM module with recipe data from the "
      "YARD.RDB database?\r\n\r\n";
  tables.ingredients.at(0).dry_matter_percent = 0;
  tables.pens.at(249).feed_amount = "5";
  OpenSmallYard();
  const std::string odd =
      "Recipes without ration target: 1 (STEERS).\r\n"
      "Ingredients without dry matter: 1 (CORN), 5 (MINERAL).\r\n"
      "Pens above 200 have a feed amount: the indicator needs its 300-pen capacity option.\r\n";
  const auto ask = [&] {
    op.answers = {Answer::kNo};
    EXPECT_FALSE(session.DownloadRecipeDB());
    return op.boxes.back().text;
  };
  EXPECT_EQ(ask(), question + odd + "The module has not been uploaded in this run of the program.");
  tab.uploaded_at = pump.Now();
  EXPECT_EQ(ask(), question + odd + "The module was last uploaded less than a minute ago.");
  pump.Pump(Milliseconds{60'000});
  EXPECT_EQ(ask(), question + odd + "The module was last uploaded 1 minute ago.");
  pump.Pump(Milliseconds{3'600'000});
  EXPECT_EQ(ask(), question + odd + "The module was last uploaded 61 minutes ago.");
}

TEST_F(DownloadQuestion, TheQuestionOfABackupListsWhatItsTextShows) {
  ChooseBackup(
      "{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n\r\n[REC]\r\n\r\n"
      "1,STEERS,0,2500,0,CORN;2000\r\n2,HEIFERS,0,0,0,CORN;0\r\n7,NEW,0,0,0,\r\n\r\n"
      "[PEN]\r\n\r\n1,PEN001,10\r\n101,NORTH,1\r\n\r\n");
  op.answers = {Answer::kNo};
  tab.uploaded_at = pump.Now();
  EXPECT_FALSE(session.DownloadRecipeBU());
  EXPECT_EQ(op.boxes.back().text,
            "Are you sure you want to overwrite all data in the KRM module with recipe backup data "
            "from the OLD.RBU file?\r\n\r\nRecipes without ration target: 2 (HEIFERS).\r\n"
            "Recipes without ingredients: 7 (NEW).\r\n"
            "Pens above 100 have a feed amount: the indicator needs its 200-pen capacity option."
            "\r\nThe module was last uploaded less than a minute ago.");
}

TEST_F(DownloadQuestion, TheQuestionOfTheDirectConnectionNamesWhatWouldBeLost) {
  Connect(Connection::kIndicator);
  OpenSmallYard();
  const auto ask = [&] {
    op.answers = {Answer::kNo};
    EXPECT_FALSE(session.DownloadRecipeDB());
    return op.boxes.back().text;
  };
  EXPECT_EQ(ask().find("The module"), std::string::npos);
  EXPECT_EQ(ask().find("What the indicator"), std::string::npos);
  tab.received.Arrived();
  EXPECT_TRUE(ask().ends_with("What the indicator sent has not been saved."));
}

}  // namespace
}  // namespace vrx::testing
