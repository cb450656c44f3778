#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "export/csv_export.h"
#include "export/export_driver.h"
#include "export/export_fixture.h"
#include "export/xml_export.h"
#include "history/data_group.h"
#include "history/history_grid.h"
#include "history/period.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

Period Days(const char* from, const char* to) {
  return {.from = ParseStoredDate(from), .to = ParseStoredDate(to)};
}

class ExportOfAPeriod : public ::testing::TestWithParam<int> {
 protected:
  ExportOfAPeriod() {
    site_.StoreYard();
    system_.program_directory = fs::path(VRX_BIN_DIR).string();
  }

  std::string Csv(const Period& period) const {
    const fs::path file = site_.Folder() / "out.csv";
    EXPECT_TRUE(CSVExport(site_.Names())
                    .ExportData(GetParam(), file, site_.Database(), VisibleColumnsOf(GetParam()),
                                YardNameOf(GetParam()), kBusyTimeout, period));
    return ReadFileBytes(file, kLongest);
  }

  std::string Xml(const Period& period) {
    const fs::path file = site_.Folder() / "out.xml";
    const StyleSheets style_sheets(site_.Folder().Path(), system_, op_);
    EXPECT_TRUE(XMLExport(site_.Names(), style_sheets)
                    .ExportData(GetParam(), file, site_.Database(), VisibleColumnsOf(GetParam()),
                                YardNameOf(GetParam()), kBusyTimeout, period));
    return ReadFileBytes(file, kLongest);
  }

  static constexpr std::size_t kLongest = 1'000'000;
  ExportFixture site_;
  FixedSystemInfo system_;
  RecordingOperator op_;
};

TEST_P(ExportOfAPeriod, IsThatOfATableWithoutTheOtherRows) {
  site_.Alter("UPDATE Transactions SET Date = '2011-02-30' WHERE rowid = 2");
  const Period period = Days("2011-03-14", "2011-03-14");
  const std::string csv = Csv(period);
  const std::string xml = Xml(period);
  EXPECT_NE(csv, Csv(Days("1990-01-01", "2030-01-01"))) << "the period leaves nothing out";
  site_.Alter("DELETE FROM Transactions WHERE Date IS NOT '2011-03-14'");
  EXPECT_EQ(csv, Csv({}));
  EXPECT_EQ(xml, Xml({}));
}

INSTANTIATE_TEST_SUITE_P(Group, ExportOfAPeriod, ::testing::Range(0, kDataGroupCount));

class ExportedPage : public ExportOfAPeriod {
 protected:
  std::string Page(const Period& period) {
    SQLite::Database database(site_.Database());
    HistoryGrid grid(database);
    grid.SetUp(*FindDataGroup(GetParam()), "");
    grid.ShowPeriod(period);
    const StyleSheets style_sheets(site_.Folder().Path(), system_, op_);
    const fs::path file = site_.Folder() / "out.html";
    const ExportOutcome outcome =
        ExportDriver(style_sheets)
            .ExportGroup({.grid = grid, .index = GetParam(), .text = grid.Group().item, .name = {}},
                         ExportFormat::kHtml, file, {.trans_db_path = site_.Database()});
    EXPECT_TRUE(outcome.done) << outcome.error_text;
    return ReadFileBytes(file, kLongest);
  }
};

TEST_P(ExportedPage, NamesItsPeriodBelowTheTitle) {
  EXPECT_THAT(Page({}), Not(HasSubstr("Period")));
  EXPECT_THAT(Page(Days("2011-03-14", "2011-03-15")),
              HasSubstr("Pens Fed (all)</h1><p style=\"margin: 0; padding: 0 16px 16px\">"
                        "Period: 14-Mar-11 to 15-Mar-11</p>"));
}

INSTANTIATE_TEST_SUITE_P(PensFed, ExportedPage, ::testing::Values(8));

}  // namespace
}  // namespace vrx::testing
