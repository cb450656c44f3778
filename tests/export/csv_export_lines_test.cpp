#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/error.h"
#include "export/csv_export.h"

namespace vrx::testing {
namespace {

const ColumnDictionary kDictionary{{"Transaction", "Transaction"},
                                   {"Recipe", "Recipe"},
                                   {"Target", "Target Wt"},
                                   {"Date", "Date"}};

const std::vector<WalkedField> kRecordFields{{"Recipe", ColumnContent::kText},
                                             {"Target", ColumnContent::kWeight},
                                             {"Date", ColumnContent::kDate}};

using Build = void (*)(const CsvColumns&, std::span<const CellView>, std::string&);

std::string LineOf(Build build, const std::vector<WalkedField>& list,
                   const std::vector<CellView>& cells) {
  std::string line;
  build(CsvColumns(kDictionary, list), cells, line);
  return line;
}

TEST(CsvHeader, JoinsTheCaptionsWithoutACommaAfterTheLast) {
  EXPECT_EQ(BuildCsvHeader(kDictionary, ""), "Transaction,Recipe,Target Wt,Date");
}

TEST(CsvHeader, LeavesOutACaptionThatIsFoundInTheExcludeText) {
  EXPECT_EQ(BuildCsvHeader(kDictionary, "Transaction,Recipe"), "Target Wt,Date");
}

TEST(CsvHeader, IsWrittenInOneBytePerCharacter) {
  EXPECT_EQ(BuildCsvHeader({{"Ing01Wt", "GR\u00dcN"}}, ""), "GR\xdcN");
}

TEST(CsvDataRow, PutsValuesIntoTheirColumnsWithACommaAfterEveryCell) {
  EXPECT_EQ(LineOf(BuildCsvDataRow, kRecordFields, {"STARTER", 500.5, "2011-03-14"}),
            ",STARTER,500.5,3/14/2011,");
}

TEST(CsvDataRow, OfOneFieldIsAGroupLine) {
  EXPECT_EQ(LineOf(BuildCsvDataRow, {{"Transaction", ColumnContent::kNumber}}, {std::int64_t{17}}),
            "17,,,,");
  EXPECT_EQ(LineOf(BuildCsvDataRow, {{"Target", ColumnContent::kWeight}}, {5.0}), ",,5,,");
}

TEST(CsvDataRow, ANullAfterTheFirstColumnIsAnEmptyCell) {
  EXPECT_EQ(LineOf(BuildCsvDataRow, kRecordFields, {CellView(), CellView(), CellView()}), ",,,,");
}

TEST(CsvDataRow, ANullInTheFirstColumnIsAnError) {
  EXPECT_THROW(LineOf(BuildCsvDataRow, {{"Transaction", ColumnContent::kNumber}}, {CellView()}),
               Error);
}

TEST(CsvDataRow, AnEmptyTextInTheFirstColumnIsNoNull) {
  EXPECT_EQ(LineOf(BuildCsvDataRow, {{"Transaction", ColumnContent::kText}}, {""}), ",,,,");
}

TEST(CsvDataRow, QuotesAndEscapesNothing) {
  EXPECT_EQ(LineOf(BuildCsvDataRow, kRecordFields, {"=1+1,\"A\"", -5.5, CellView()}),
            ",=1+1,\"A\",-5.5,,");
}

TEST(CsvDataRow, ACharacterThatTheCodePageLacksIsAQuestionMark) {
  EXPECT_EQ(LineOf(BuildCsvDataRow, kRecordFields, {"\u00c9T\u00c9 \u20ac \u4e00", 0.0, ""}),
            ",\xc9T\xc9 \x80 ?,0,,");
}

TEST(CsvPlainRow, HasNoCommaAfterTheLastCell) {
  EXPECT_EQ(LineOf(BuildCsvPlainRow,
                   {{"Transaction", ColumnContent::kNumber},
                    {"Recipe", ColumnContent::kText},
                    {"Target", ColumnContent::kWeight},
                    {"Date", ColumnContent::kDate}},
                   {std::int64_t{17}, "STARTER", CellView(), CellView()}),
            "17,STARTER,,");
}

TEST(CsvPlainRow, ANullInTheFirstColumnIsABlank) {
  EXPECT_EQ(LineOf(BuildCsvPlainRow, {{"Transaction", ColumnContent::kNumber}}, {CellView()}),
            " ,,,");
}

TEST(CsvValueLine, HoldsTheValueAlone) {
  std::string line;
  BuildCsvValueLine("(none)", ColumnContent::kNumber, line);
  EXPECT_EQ(line, "(none)");
}

TEST(CsvTotalRow, HasABlankInEveryOtherCellAndACommaAfterEachOne) {
  std::string line;
  BuildCsvTotalRow(kDictionary, std::array<CsvTotal, 2>{{{"Recipe", "Total:"}, {"Target", "500"}}},
                   line);
  EXPECT_EQ(line, " ,Total:,500, ,");
}

TEST(CsvTotalRow, ASumOverNoValuesIsAnEmptyCellAndNoBlank) {
  std::string line;
  BuildCsvTotalRow(kDictionary, std::array<CsvTotal, 2>{{{"Recipe", "Total:"}, {"Target", ""}}},
                   line);
  EXPECT_EQ(line, " ,Total:,, ,");
}

TEST(CsvTotalRow, ASumWithoutAColumnIsLeftOut) {
  std::string line;
  BuildCsvTotalRow(kDictionary, std::array<CsvTotal, 1>{{{"ActualFeed", "7"}}}, line);
  EXPECT_EQ(line, " , , , ,");
}

}  // namespace
}  // namespace vrx::testing
