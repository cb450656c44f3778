#include <gmock/gmock.h>

#include "exchange/store_fixture.h"
#include "exchange/transaction_texts.h"
#include "presenter/import.h"
#include "report/reports.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

class ImportReports : public ::testing::Test, public ImportView {
 protected:
  OpenDatabases Databases() const override { return {}; }
  std::vector<IngredientRecord> GridIngredients() override { return ingredients_; }
  void SelectImportTab() override {}
  void FocusControl(std::string_view /*name*/) override {}
  void SaveTransactionDatabase() override {}
  void ImportChanged() override {}

  void Import(std::string_view text) {
    ASSERT_TRUE(session_.ImportFile(
        {.path = site_.folder.Write("day1.qxt", text).string(), .title = "day1.qxt"}));
  }

  Report Printed(bool fit_columns, const ReportFacts& facts) const {
    const ImportForm& form = session_.Form();
    return ImportReport(session_.File(), form.grd_import_rows, form.grd_import_columns, fit_columns,
                        facts);
  }

  StoreFixture site_;
  TestServices services_;
  std::vector<IngredientRecord> ingredients_{
      {.id = 4, .name = "cORN"}, {.id = 7, .name = "HAY"}, {.id = 100, .name = "SALT"}};
  ImportPresenter session_{services_.services, site_.progress, *this};
};

TEST_F(ImportReports, HaveTheVisibleColumnsOfTheGridAndTheRowsOfTheFile) {
  Import(
      "{BAT/FED},K\r\n"
      "[BAT],B,1,3,01152009,J\xFCrg,4,7,0,0,0;0830,0835,0,0,0;1000.0,500.0,0,0,0;"
      "750.0,250.0,0,0,0\r\n\r\n"
      "[FED],B,1,12,2,0915,01152009,800.0,1000.0\r\n\r\n");
  const Report report = Printed(false, {.weight_unit = "LB", .grid_lines = false});
  std::vector<std::string> captions;
  std::vector<std::string> at_the_left;
  for (const ReportColumn& column : report.design.columns) {
    captions.push_back(column.caption);
    if (!column.right_aligned) {
      at_the_left.push_back(column.caption);
    }
    EXPECT_FALSE(column.total_color);
  }
  EXPECT_THAT(captions, ElementsAre("Transaction", "Recipe ID", "Type", "Target Wt",
                                    "Ingredient ID", "Batch Wt", "Pen ID", "Feed Wt", "Time",
                                    "Date", "User ID", "Ing% Of Batch", "CORN", "HAY", "SALT"));
  EXPECT_THAT(at_the_left, ElementsAre("Type", "Time", "Date"));
  ASSERT_EQ(report.rows->Count(), 3);
  EXPECT_THAT(report.rows->Row(1).cells,
              ElementsAre("1", "3", "BATCH", "1000.0", "4", "750.0", "", "", "0830", "01152009",
                          "J\u00FCrg", "75.0000", "", "", ""));
  EXPECT_THAT(report.rows->Row(3).cells,
              ElementsAre("1", "3", "FEED", "800.0", "", "", "12", "1000.0", "0915", "01152009",
                          "2", "", "750.0", "250.0", ""));
  EXPECT_EQ(report.design.texts.header_center,
            "Report: Imported Transactions\r\nFile: " + (site_.folder / "day1.qxt").string());
  EXPECT_EQ(report.design.texts.header_right, "Weight Units: KG");
}

TEST_F(ImportReports, TakeFitAndGridLinesFromTheirSettings) {
  Import(kWorkedExample);
  const Report plain = Printed(false, {.grid_lines = false});
  EXPECT_FALSE(plain.design.fit_columns);
  EXPECT_FALSE(plain.design.grid_lines);
  const Report lined = Printed(true, {.grid_lines = true});
  EXPECT_TRUE(lined.design.fit_columns);
  EXPECT_TRUE(lined.design.grid_lines);
  EXPECT_TRUE(lined.design.fixed_pitch);
  EXPECT_TRUE(lined.design.captions);
}

}  // namespace
}  // namespace vrx::testing
