#include <array>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "legacy/conversion_fixture.h"

namespace vrx::testing {
namespace {

constexpr int kRows = 100000;

// Loads of four rows, as a yard writes them: two ingredients weighed, two pens fed.
JetWriter LargeFile() {
  JetWriter file;
  file.AddTable("UnitsOfMeasure", {{"UoM", JetWriter::kText}});
  file.AddRow({JetWriter::Utf16("LB")});
  file.AddTable("BrantockDatabase", {{"dBType", JetWriter::kText}});
  file.AddRow({JetWriter::Utf16("USER_TRANS_DB")});
  std::vector<JetWriter::Column> columns{
      {"Transaction", JetWriter::kLong},  {"Recipe", JetWriter::kText},
      {"Type", JetWriter::kText},         {"UserID", JetWriter::kText},
      {"Ingredient", JetWriter::kText},   {"Pen", JetWriter::kText},
      {"Target", JetWriter::kDouble},     {"ActualBatch", JetWriter::kDouble},
      {"Time", JetWriter::kDate},         {"Date", JetWriter::kDate},
      {"ActualFeed", JetWriter::kDouble}, {"IngPercent", JetWriter::kDouble}};
  for (int id = 1; id <= kWeightColumnCount; ++id) {
    columns.push_back({IngredientWeightColumn(id), JetWriter::kSingle});
  }
  file.AddTable("Transactions", columns);
  for (int row = 0; row < kRows; ++row) {
    const bool batch = row % 4 < 2;
    const std::string number = std::to_string(row % 7);
    const double weight = 1000 + row % 977 / 10.0;
    std::vector<LegacyValue> values{
        std::int32_t{1 + row / 4},
        JetWriter::Utf16("REC" + number),
        JetWriter::Utf16(batch ? "BATCH" : "FEED"),
        row % 3 == 0 ? LegacyValue{} : LegacyValue{JetWriter::Utf16("OP1")},
        batch ? LegacyValue{JetWriter::Utf16("ING" + number)} : LegacyValue{},
        batch ? LegacyValue{} : LegacyValue{JetWriter::Utf16("PEN" + number)},
        weight,
        batch ? weight + 0.5 : 0.0,
        JetDate{row % 86400 / 86400.0},
        JetDate{std::floor(40000 + row / 100.0)},
        batch ? 0.0 : weight - 0.5,
        12.5};
    for (int id = 1; id <= kWeightColumnCount; ++id) {
      values.emplace_back(id <= 7 ? static_cast<float>(weight / id) : 0.0F);
    }
    file.AddRow(values);
  }
  return file;
}

TEST(LargeFile, ConvertsWithinBoundedMemory) {
  ConversionFixture site;
  LargeFile().Write(site.old_path);
  const std::string command = std::string(CONVERT_PROCESS) + " '" + site.old_path.string() + "' '" +
                              site.copy.string() + "' '" + VRX_BIN_DIR + "'";
  FILE* const process = popen(command.c_str(), "r");
  ASSERT_NE(process, nullptr);
  std::array<char, 200> line{};
  ASSERT_NE(std::fgets(line.data(), line.size(), process), nullptr);
  ASSERT_EQ(pclose(process), 0) << line.data();
  std::istringstream fields(line.data());
  int stored = 0;
  long own_kilobytes = 0;
  long reader_kilobytes = 0;
  fields >> stored >> own_kilobytes >> reader_kilobytes;
  EXPECT_EQ(stored, kRows + 2);
#ifndef __SANITIZE_ADDRESS__
  // The page cache of the storage engine is 64 MB; the file has as many.
  EXPECT_LT(own_kilobytes, 128 * 1024);
  EXPECT_LT(reader_kilobytes, 32 * 1024);
#endif
  RecordProperty("own_kilobytes", static_cast<int>(own_kilobytes));
  RecordProperty("reader_kilobytes", static_cast<int>(reader_kilobytes));
  EXPECT_EQ(
      site.Rows("SELECT count(*), count(DISTINCT [Transaction]), max(Date) FROM Transactions"),
      (std::vector<std::vector<std::string>>{
          {std::to_string(kRows), std::to_string(kRows / 4), "2012-03-31"}}));
}

}  // namespace
}  // namespace vrx::testing
