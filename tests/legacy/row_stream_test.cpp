#include "legacy/row_stream.h"

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

// Records the received calls.
class KeptRows : public LegacyRowSink {
 public:
  void Directory(const std::vector<std::string>& tables) override { directory = tables; }
  void BeginTable(const LegacyTable& table) override {
    events.push_back("begin " + table.name + " " + std::to_string(table.announced_rows));
    columns = table.columns.size();
  }
  void Row(const LegacyRow& row) override { rows.push_back(row); }
  void DamagedRow(const std::string& place) override { events.push_back("damaged " + place); }
  void EndTable() override { events.emplace_back("end"); }
  void DamagedTable(const std::string& name) override { events.push_back("no table " + name); }

  std::vector<std::string> directory;
  std::vector<std::string> events;
  std::vector<LegacyRow> rows;
  std::size_t columns = 0;
};

const LegacyRow kFirstRow{true,
                          std::int32_t{-7},
                          37.9F,
                          1e300,
                          JetDate{-1.25},
                          std::string("Pe\xC3\xB1"
                                      "a"),
                          {}};
const LegacyRow kSecondRow{false,
                           {},
                           std::numeric_limits<float>::infinity(),
                           std::numeric_limits<double>::quiet_NaN(),
                           {},
                           std::string(),
                           {}};

std::string Stream() {
  std::string bytes;
  RowStreamWriter writer([&bytes](std::string_view piece) { bytes += piece; });
  writer.Directory({"Pen", "Extra"});
  writer.BeginTable({.name = "Pen",
                     .announced_rows = 3,
                     .columns = {{"B", LegacyType::kBoolean},
                                 {"W", LegacyType::kWhole},
                                 {"S", LegacyType::kSingle},
                                 {"D", LegacyType::kDouble},
                                 {"T", LegacyType::kDate},
                                 {"X", LegacyType::kText},
                                 {"O", LegacyType::kUnread}}});
  writer.Row(kFirstRow);
  writer.DamagedRow("page 7, row 1");
  writer.Row(kSecondRow);
  writer.EndTable();
  writer.DamagedTable("Recipe");
  writer.End();
  return bytes;
}

std::string FailureOf(const std::string& bytes) {
  KeptRows kept;
  RowStreamReader reader(kept);
  try {
    reader.Take(bytes);
  } catch (const RowStreamError& failure) {
    return failure.what();
  }
  return reader.Ended() ? "" : "no end";
}

TEST(RowStream, BringsEveryValueAsItWas) {
  KeptRows kept;
  RowStreamReader reader(kept);
  reader.Take(Stream());
  EXPECT_TRUE(reader.Ended());
  EXPECT_THAT(kept.directory, ElementsAre("Pen", "Extra"));
  EXPECT_THAT(kept.events,
              ElementsAre("begin Pen 3", "damaged page 7, row 1", "end", "no table Recipe"));
  ASSERT_EQ(kept.rows.size(), 2U);
  for (std::size_t index = 0; index < kFirstRow.size(); ++index) {
    ColumnSum sent;
    ColumnSum got;
    AddToSum(sent, kFirstRow[index]);
    AddToSum(got, kept.rows[0][index]);
    EXPECT_EQ(kept.rows[0][index].index(), kFirstRow[index].index()) << index;
    EXPECT_EQ(sent, got) << index;
  }
  EXPECT_TRUE(IsNull(kept.rows[1][1]));
  EXPECT_EQ(std::get<std::string>(kept.rows[1][5]), "");  // no NULL
  EXPECT_TRUE(std::isnan(std::get<double>(kept.rows[1][3])));
}

TEST(RowStream, MayBeCutAnywhereOnItsWay) {
  const std::string bytes = Stream();
  for (std::size_t size = 1; size < 40; ++size) {
    KeptRows kept;
    RowStreamReader reader(kept);
    for (std::size_t at = 0; at < bytes.size(); at += size) {
      reader.Take(std::string_view(bytes).substr(at, size));
    }
    EXPECT_TRUE(reader.Ended()) << size;
    EXPECT_EQ(kept.rows.size(), 2U) << size;
  }
}

TEST(RowStream, IsNotWholeWithoutItsEnd) {
  const std::string bytes = Stream();
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_EQ(FailureOf(bytes.substr(0, size)), "no end") << size;
  }
}

TEST(RowStream, OfAnotherProgramIsRefused) {
  EXPECT_EQ(FailureOf("ID,Name\n"), "the bytes are no rows of this version");
  std::string next_version = Stream();
  next_version[7] = 2;
  EXPECT_EQ(FailureOf(next_version), "the bytes are no rows of this version");
  EXPECT_EQ(FailureOf(Stream() + "x"), "something follows the end of the rows");
}

// Refuses a record that is too long before its bytes arrive.
TEST(RowStream, LimitsARecordToOneMegabyte) {
  const auto directory_of = [](std::uint32_t length) {
    std::string bytes(kRowStreamMark);
    bytes += 'D';
    for (unsigned shift = 0; shift < 32; shift += 8) {
      bytes += static_cast<char>(length >> shift);
    }
    return bytes;
  };
  EXPECT_EQ(FailureOf(directory_of(1'048'576)), "no end");
  EXPECT_EQ(FailureOf(directory_of(1'048'577)), "a record of the rows is too long");
}

TEST(RowStream, RefusesWhatFollowsTheEndAndAnotherNumberOfTables) {
  const std::string bytes = Stream();
  constexpr std::size_t kEndRecord = 1 + 4 + 4;
  EXPECT_EQ(FailureOf(bytes + bytes.substr(bytes.size() - kEndRecord)),
            "a record of the rows is out of place");
  std::string one_more = bytes;
  ++one_more[bytes.size() - 4];
  EXPECT_EQ(FailureOf(one_more), "tables were lost on the way");
}

TEST(RowStream, RefusesRecordsOutsideTheirTable) {
  const LegacyTable table{.name = "Pen", .announced_rows = 0, .columns = {}};
  const std::vector<std::function<void(RowStreamWriter&)>> without_table{
      [](RowStreamWriter& writer) { writer.Row({}); },
      [](RowStreamWriter& writer) { writer.DamagedRow("x"); },
      [](RowStreamWriter& writer) { writer.EndTable(); }};
  const std::vector<std::function<void(RowStreamWriter&)>> within_table{
      [&table](RowStreamWriter& writer) { writer.BeginTable(table); },
      [](RowStreamWriter& writer) { writer.DamagedTable("x"); },
      [](RowStreamWriter& writer) { writer.End(); }};
  for (const bool within : {false, true}) {
    for (const auto& misplaced : within ? within_table : without_table) {
      std::string bytes;
      RowStreamWriter writer([&bytes](std::string_view piece) { bytes += piece; });
      writer.Directory({"Pen"});
      if (within) {
        writer.BeginTable(table);
      }
      misplaced(writer);
      writer.End();
      EXPECT_EQ(FailureOf(bytes), "a record of the rows is out of place") << within;
    }
  }
}

TEST(RowStream, RefusesARecordThatIsLongerThanItsContent) {
  std::string bytes;
  RowStreamWriter writer([&bytes](std::string_view piece) { bytes += piece; });
  writer.Directory({"Pen"});
  writer.End();
  ++bytes[kRowStreamMark.size() + 1];
  bytes.insert(kRowStreamMark.size() + 5 + 11, 1, 'x');
  EXPECT_EQ(FailureOf(bytes), "a record of the rows is too long");
}

TEST(RowStream, RefusesARowThatIsLongerThanItsColumns) {
  std::string bytes;
  RowStreamWriter writer([&bytes](std::string_view piece) { bytes += piece; });
  writer.Directory({"Pen"});
  writer.BeginTable({.name = "Pen", .columns = {{"Name", LegacyType::kText}}});
  writer.Row({std::string("NORTH")});
  writer.EndTable();
  writer.End();
  const std::string row("R\x0A\0\0\0\x01\x05\0\0\0NORTH", 15);
  const std::size_t at = bytes.find(row);
  ASSERT_NE(at, std::string::npos);
  bytes.insert(at + row.size(), 1, 'x');
  ++bytes[at + 1];
  EXPECT_EQ(FailureOf(bytes), "a record of the rows is too long");
}

TEST(RowStream, WritesWhatItHasFrom64KilobytesOn) {
  std::vector<std::size_t> pieces;
  RowStreamWriter writer([&pieces](std::string_view piece) { pieces.push_back(piece.size()); });
  writer.Directory({std::string(65536 - kRowStreamMark.size() - 13 - 1, 'x')});
  EXPECT_THAT(pieces, ElementsAre());
  writer.DamagedTable("");
  EXPECT_THAT(pieces, ElementsAre(65536 - 1 + 9));
  writer.End();
  EXPECT_THAT(pieces, ElementsAre(65536 - 1 + 9, 9));
}

TEST(RowStream, NoticesARowThatIsMissing) {
  std::string bytes;
  std::size_t before = 0;
  RowStreamWriter writer([&bytes](std::string_view piece) { bytes += piece; });
  writer.Directory({"Pen"});
  writer.BeginTable({.name = "Pen", .announced_rows = 1, .columns = {{"W", LegacyType::kWhole}}});
  writer.Row({std::int32_t{5}});
  writer.Row({std::int32_t{6}});
  writer.EndTable();
  writer.End();
  before = bytes.find('R', kRowStreamMark.size());
  ASSERT_NE(before, std::string::npos);
  constexpr std::size_t kRowRecord = 1 + 4 + 1 + 4;
  bytes.erase(before, kRowRecord);
  EXPECT_THAT(FailureOf(bytes), HasSubstr("rows of the table Pen were lost on the way"));
}

TEST(ColumnSum, ReportsNullFromZeroAndFromAnEmptyText) {
  for (const LegacyValue& value :
       {LegacyValue{std::int32_t{0}}, LegacyValue{false}, LegacyValue{0.0}, LegacyValue{0.0F},
        LegacyValue{JetDate{0}}, LegacyValue{std::string()}}) {
    ColumnSum sum;
    AddToSum(sum, value);
    EXPECT_FALSE(sum == ColumnSum{}) << value.index();
  }
}

TEST(RowStream, NoticesAValueThatChanged) {
  std::string bytes = Stream();
  const std::size_t at = bytes.find("Pe\xC3");
  bytes[at] = 'Q';
  EXPECT_THAT(FailureOf(bytes), HasSubstr("lost on the way"));
  bytes.replace(at, 2, "eP");
  EXPECT_THAT(FailureOf(bytes), HasSubstr("lost on the way"));
}

TEST(RowStream, SurvivesAnyChangedByte) {
  std::mt19937 random(5);
  const std::string bytes = Stream();
  for (int round = 0; round < 5000; ++round) {
    std::string changed = bytes;
    const std::size_t at = random() % changed.size();
    const char before = changed[at];
    changed[at] = static_cast<char>(random());
    if (changed[at] != before) {
      // Only a change of a name is not detected.
      FailureOf(changed);
    }
  }
}

}  // namespace
}  // namespace vrx::testing
