#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "export/export_driver.h"
#include "export/export_fixture.h"
#include "export/specified_totals.h"
#include "history/columns.h"
#include "history/data_group.h"
#include "history/history_grid.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

class Agreement : public ::testing::TestWithParam<int> {
 protected:
  static constexpr int kTables = 8;

  Agreement() {
    fs::create_directories(data_);
    system_.program_directory = (fs::path(VRX_BIN_DIR)).string();
  }

  // The rows of a load as an import stores them. If `wild`, with any other contents of a table:
  // several dates and users in one transaction, fed ingredients, batched pens, other types.
  Rows MakeRows(bool wild) {
    Rows rows;
    const int count = Number(1, 60);
    for (int at = 0; at < count; ++at) {
      SiteRow row;
      row.transaction = Number(1, 8);
      const int load = wild ? Number(1, 8) : row.transaction;
      row.recipe = OneOf({"STARTER", "FINISH", "O'NEIL"}, Number(0, 2));
      row.type = OneOf({"BATCH", "FEED", "WASTE"}, Number(0, wild ? 2 : 1));
      row.user = OneOf({"", "7", "12"}, load % 3);
      row.date = OneOf({"2026-01-05", "2026-01-06"}, load % 2);
      const bool batched = wild ? Number(0, 1) == 1 : row.type == "BATCH";
      const bool fed = wild ? Number(0, 1) == 1 : row.type == "FEED";
      row.target = Number(0, 5000) / 10.0;
      if (batched) {
        row.ingredient = OneOf({"CORN", "HAY", "SALT"}, Number(0, 2));
        row.batch = Number(0, 5000) / 10.0;
      }
      if (fed) {
        row.pen = OneOf({"PEN 1", "PEN 2"}, Number(0, 1));
        row.feed = Number(0, 5000) / 10.0;
      }
      rows.push_back(row);
    }
    return rows;
  }

  // Replaces the stored rows. A group by name needs at least one row.
  void Store(int group, Rows& rows) {
    SiteRow& first = rows.front();
    first.recipe = "STARTER";
    if (group == 7) {
      first.type = "BATCH";
      first.ingredient = "CORN";
      first.pen = "";
      first.feed = 0;
    } else if (group == 9) {
      first.type = "FEED";
      first.pen = "PEN 1";
      first.ingredient = "";
      first.batch = 0;
    }
    site_.Alter("DELETE FROM Transactions");
    site_.Store(rows);
  }

  void DropIndexesByName() const {
    site_.Alter(
        "DROP INDEX TransactionsByRecipe; DROP INDEX TransactionsByRecipeIngredient; "
        "DROP INDEX TransactionsByIngredient; DROP INDEX TransactionsByPen");
  }

  // The total rows of the innermost groups. A blank weight is treated as missing.
  Totals InGrid(int group) {
    HistoryGrid& grid = SetUpGrid(group);
    grid.ExpandAll();
    const DataGroup& chosen = grid.Group();
    Key key;
    Totals totals;
    for (std::int64_t number = 1; number <= grid.RowCount(); ++number) {
      const ShownRow row = grid.Row(number);
      const auto depth = static_cast<std::size_t>(row.depth);
      if (row.kind == HistoryRowKind::kGroup) {
        const std::string field = Specified(group).levels[depth - 1];
        const std::string& prefix = HistoryColumnAt(HistoryColumnOfField(field)).group_prefix;
        key.resize(depth - 1);
        key.push_back(row.caption.substr(prefix.size()));
        if (field == "UserID" && key.back().empty()) {
          key.back() = "(none)";
        }
      } else if (row.kind == HistoryRowKind::kTotal && depth == chosen.levels.size()) {
        Sums sums;
        for (const std::string& weight : WeightsOf(group, key)) {
          const auto column = static_cast<std::size_t>(HistoryColumnOfField(weight));
          sums[weight] = row.cells[column - 1].empty() ? "0" : row.cells[column - 1];
        }
        totals.emplace_back(Compared(group, key), sums);
      }
    }
    return Sorted(totals);
  }

  Totals InXml(int group) {
    const std::string xml = Exported(group, ExportFormat::kXml);
    const std::regex element(R"re(<(\w+) Value="([^"]*)"((?: \w+="[^"]*")*)>)re");
    const std::regex attribute(R"re((\w+)="([^"]*)")re");
    const std::map<std::string, std::string> fields{{"Batch_Weight", "ActualBatch"},
                                                    {"Feed_Weight", "ActualFeed"},
                                                    {"Target_Weight", "Target"}};
    const Key& levels = Specified(group).levels;
    Key key;
    Totals totals;
    for (std::sregex_iterator match(xml.begin(), xml.end(), element), end; match != end; ++match) {
      const std::string name = (*match)[1] == "User_Id" ? "UserID" : (*match)[1].str();
      const auto depth =
          static_cast<std::size_t>(std::find(levels.begin(), levels.end(), name) - levels.begin());
      key.resize(depth);
      key.push_back((*match)[2]);
      if (depth + 1 < levels.size()) {
        continue;
      }
      const std::string attributes = (*match)[3];
      Sums sums;
      for (std::sregex_iterator one(attributes.begin(), attributes.end(), attribute); one != end;
           ++one) {
        sums[fields.at((*one)[1])] = (*one)[2];
      }
      totals.emplace_back(Compared(group, key), sums);
    }
    return Sorted(totals);
  }

  Totals InCsv(int group) {
    const std::vector<std::string> lines = Split(Exported(group, ExportFormat::kCsv), "\r\n");
    const std::vector<std::string> header = Split(lines.front(), ",");
    Totals totals;
    Key key;
    for (std::size_t at = 1; at < lines.size(); ++at) {
      const std::vector<std::string> cells = Split(lines[at], ",");
      if (std::find(cells.begin(), cells.end(), "Total:") != cells.end()) {
        totals.emplace_back(Compared(group, key), SumsOf(header, cells));
      } else if (group == 10) {
        key = {cells[ColumnOf(header, "Pen")]};
      } else {
        FollowGroupLine(group, header, cells, key);
      }
    }
    return Sorted(totals);
  }

  std::string Exported(int group, ExportFormat format) {
    const fs::path file = site_.Folder() / "out.txt";
    const StyleSheets style_sheets(data_, system_, op_);
    EXPECT_TRUE(ExportDriver(style_sheets)
                    .ExportGroup({SetUpGrid(group), group, "", NameOf(group)}, format, file,
                                 {{}, site_.Database(), {}})
                    .done);
    return ReadAll(file);
  }

 private:
  static std::vector<std::string> Split(const std::string& text, const std::string& separator) {
    std::vector<std::string> parts;
    std::size_t from = 0;
    for (std::size_t to = text.find(separator); to != std::string::npos;
         to = text.find(separator, from)) {
      parts.push_back(text.substr(from, to - from));
      from = to + separator.size();
    }
    if (from < text.size()) {
      parts.push_back(text.substr(from));
    }
    return parts;
  }

  static std::size_t ColumnOf(const std::vector<std::string>& header, std::string_view caption) {
    return static_cast<std::size_t>(std::find(header.begin(), header.end(), caption) -
                                    header.begin());
  }

  static Sums SumsOf(const std::vector<std::string>& header,
                     const std::vector<std::string>& cells) {
    Sums sums;
    for (const auto& [caption, field] : {std::pair("Batch Wt", "ActualBatch"),
                                         {"Feed Wt", "ActualFeed"},
                                         {"Target Wt", "Target"}}) {
      const std::size_t column = ColumnOf(header, caption);
      if (column < header.size() && cells[column] != " ") {
        sums[field] = cells[column];
      }
    }
    return sums;
  }

  // A line with a single value is that of a group; a user's line has no other cells.
  static void FollowGroupLine(int group, const std::vector<std::string>& header,
                              const std::vector<std::string>& cells, Key& key) {
    const auto filled = [](const std::string& cell) { return !cell.empty(); };
    if (std::count_if(cells.begin(), cells.end(), filled) != 1) {
      return;
    }
    const auto value = std::find_if(cells.begin(), cells.end(), filled);
    const std::string& caption = header[static_cast<std::size_t>(value - cells.begin())];
    const std::string field = caption == "User ID" ? "UserID" : caption;
    const Key& levels = Specified(group).levels;
    key.resize(
        static_cast<std::size_t>(std::find(levels.begin(), levels.end(), field) - levels.begin()));
    key.push_back(*value);
  }

  HistoryGrid& SetUpGrid(int group) {
    grid_.reset();
    database_.emplace(OpenDatabase(site_.Database(), Access::kRead));
    grid_.emplace(*database_);
    grid_->SetUp(*FindDataGroup(group), NameOf(group));
    return *grid_;
  }

  int Number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  static std::string OneOf(const std::vector<std::string>& texts, int at) {
    return texts[static_cast<std::size_t>(at)];
  }

  ExportFixture site_;
  fs::path data_ = site_.Folder() / "data";
  FixedSystemInfo system_;
  RecordingOperator op_;
  std::mt19937 random_{static_cast<unsigned>(GetParam()) + 2026};
  std::optional<SQLite::Database> database_;
  std::optional<HistoryGrid> grid_;
};

class AgreementOfLoads : public Agreement {};

TEST_P(AgreementOfLoads, GridXmlAndCsvHaveTheSameTotals) {
  const int group = GetParam();
  for (int table = 0; table < kTables; ++table) {
    SCOPED_TRACE(table);
    Rows rows = MakeRows(false);
    Store(group, rows);
    const Totals totals = ExpectedInGrid(group, rows);
    EXPECT_EQ(InGrid(group), totals);
    EXPECT_EQ(InXml(group), totals);
    EXPECT_EQ(InCsv(group), totals);
  }
}

// A user's types are summed by either in an export, whatever the table.
INSTANTIATE_TEST_SUITE_P(AllButUsersTypes, AgreementOfLoads, ::testing::Range(1, 12));

class AgreementOfAnyRows : public Agreement {};

TEST_P(AgreementOfAnyRows, XmlAndCsvHaveTheSpecifiedTotalsOfExports) {
  const int group = GetParam();
  for (int table = 0; table < kTables; ++table) {
    SCOPED_TRACE(table);
    Rows rows = MakeRows(true);
    Store(group, rows);
    const Totals totals = ExpectedInExport(group, rows);
    EXPECT_EQ(InXml(group), totals);
    EXPECT_EQ(InCsv(group), totals);
  }
}

TEST_P(AgreementOfAnyRows, TheGridShowsTheTotalsOfItsOwnRows) {
  const int group = GetParam();
  for (int table = 0; table < kTables; ++table) {
    SCOPED_TRACE(table);
    Rows rows = MakeRows(true);
    Store(group, rows);
    EXPECT_EQ(InGrid(group), ExpectedInGrid(group, rows));
  }
}

// Like a file of another program, which is read without ranges of transactions.
TEST_P(AgreementOfAnyRows, AreTheSameFilesOfATableWithoutIndexesByName) {
  const int group = GetParam();
  Rows rows;
  for (int table = 0; table < kTables; ++table) {
    const Rows more = MakeRows(true);
    rows.insert(rows.end(), more.begin(), more.end());
  }
  Store(group, rows);
  const std::string xml = Exported(group, ExportFormat::kXml);
  const std::string csv = Exported(group, ExportFormat::kCsv);
  DropIndexesByName();
  EXPECT_EQ(Exported(group, ExportFormat::kXml), xml);
  EXPECT_EQ(Exported(group, ExportFormat::kCsv), csv);
}

INSTANTIATE_TEST_SUITE_P(AllGroups, AgreementOfAnyRows, ::testing::Range(1, 13));

// Tables on which the grid and the exports differ, for the reason that the name states.
class Difference : public Agreement {
 protected:
  void ExpectDifference(Rows rows, const Totals& grid, const Totals& exports) {
    Store(GetParam(), rows);
    EXPECT_EQ(InGrid(GetParam()), grid);
    EXPECT_EQ(InXml(GetParam()), exports);
    EXPECT_EQ(InCsv(GetParam()), exports);
  }
};

class TransactionOfTwoDates : public Difference {};
TEST_P(TransactionOfTwoDates, IsCompleteUnderBothInAnExport) {
  ExpectDifference({{.target = 1, .batch = 10, .date = "2026-01-05"},
                    {.target = 2, .batch = 20, .date = "2026-01-06"}},
                   {{{"1", "BATCH"}, {{"ActualBatch", "10"}, {"Target", "1"}}},
                    {{"1", "BATCH"}, {{"ActualBatch", "20"}, {"Target", "2"}}}},
                   {{{"1", "BATCH"}, {{"ActualBatch", "30"}, {"Target", "3"}}},
                    {{"1", "BATCH"}, {{"ActualBatch", "30"}, {"Target", "3"}}}});
}
INSTANTIATE_TEST_SUITE_P(ByDate, TransactionOfTwoDates, ::testing::Values(2));

class RowWithoutUser : public Difference {};
TEST_P(RowWithoutUser, HasTheWeightsOfItsWholeTransactionInAnExport) {
  ExpectDifference({{.user = "7", .batch = 10}, {.user = "", .batch = 20}},
                   {{{"(none)", "1"}, {{"ActualBatch", "20"}, {"ActualFeed", "0"}}},
                    {{"7", "1"}, {{"ActualBatch", "10"}, {"ActualFeed", "0"}}}},
                   {{{"(none)", "1"}, {{"ActualBatch", "30"}, {"ActualFeed", "0"}}},
                    {{"7", "1"}, {{"ActualBatch", "10"}, {"ActualFeed", "0"}}}});
}
INSTANTIATE_TEST_SUITE_P(ByUserAndTransaction, RowWithoutUser, ::testing::Values(11));

class TypeOfUser : public Difference {};
TEST_P(TypeOfUser, HasTheWeightsOfTheUserAndOfTheTypeInAnExport) {
  ExpectDifference(
      {{.user = "7", .target = 1, .batch = 10}, {.user = "12", .target = 2, .batch = 20}},
      {{{"12", "BATCH"}, {{"ActualBatch", "20"}, {"Target", "2"}}},
       {{"7", "BATCH"}, {{"ActualBatch", "10"}, {"Target", "1"}}}},
      {{{"12", "BATCH"}, {{"ActualBatch", "30"}, {"Target", "3"}}},
       {{"7", "BATCH"}, {{"ActualBatch", "30"}, {"Target", "3"}}}});
}
INSTANTIATE_TEST_SUITE_P(ByUserAndType, TypeOfUser, ::testing::Values(12));

class IngredientOfAnotherType : public Difference {};
TEST_P(IngredientOfAnotherType, CountsInAnExportAndNotInTheGrid) {
  ExpectDifference({{.ingredient = "CORN", .target = 1, .batch = 10},
                    {.type = "FEED", .ingredient = "CORN", .target = 2, .batch = 20}},
                   {{{"CORN"}, {{"ActualBatch", "10"}, {"Target", "1"}}}},
                   {{{"CORN"}, {{"ActualBatch", "30"}, {"Target", "3"}}}});
}
INSTANTIATE_TEST_SUITE_P(ByIngredient, IngredientOfAnotherType, ::testing::Values(6));

class PenOfAnotherType : public Difference {};
TEST_P(PenOfAnotherType, CountsInAnExportAndNotInTheGrid) {
  ExpectDifference({{.type = "FEED", .pen = "PEN 1", .target = 1, .feed = 10},
                    {.type = "BATCH", .pen = "PEN 1", .target = 2, .feed = 20}},
                   {{{"PEN 1"}, {{"ActualFeed", "10"}, {"Target", "1"}}}},
                   {{{"PEN 1"}, {{"ActualFeed", "30"}, {"Target", "3"}}}});
}
INSTANTIATE_TEST_SUITE_P(ByPen, PenOfAnotherType, ::testing::Values(8, 10));

}  // namespace
}  // namespace vrx::testing
